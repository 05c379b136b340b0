// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_DATE_PARSING_H
#define COMMON_DATE_PARSING_H

#include <QDateTime>
#include <QString>

/**
 * The date and time that @p text shows in the Qt pattern @p pattern, taken as UTC; an invalid date when the text does
 * not match as a whole. Month names and AM/PM are English and the machine's own zone has no part in it: a time that
 * this zone skips in spring is read as well.
 */
QDateTime parse_as_utc(const QString &text, const QString &pattern);

/**
 * The same for an ISO 8601 date, with or without a time. A zone of its own is applied; it may stand behind a blank, as
 * in "2019-05-03 10:00:00 +0000", which is how date objects of property lists describe themselves.
 */
QDateTime parse_iso_as_utc(const QString &text);

/** Whole Unix seconds, cut toward zero; 0 for an invalid date. */
qint64 whole_seconds(const QDateTime &date);

/** The same as decimal text; empty for an invalid date. */
QString whole_seconds_text(const QDateTime &date);

#endif
