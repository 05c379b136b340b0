// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_IOS_ROWS_H
#define HOST_RUN_IOS_ROWS_H

#include <QByteArray>
#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QStringList>

/** A column of a result table and the text that a row has there; a null text is NULL. */
struct expected_cell
{
    QLatin1StringView column;
    QString text;
};

/**
 * What a row that is made of @p line, the bytes of a line of an iOS log without its line end, holds in @p table, by the
 * host's own reading of docs/formats.md.
 */
QList<expected_cell> expected_cells(const QString &table, const QByteArray &line);

/**
 * Compares the rows of the result tables @p tables, in their order, with the lines that the host found, text by text.
 * Gives in plain words, one text a table, where they differ. Throws host_error (not_found) when one of the files cannot
 * be read.
 */
QStringList ios_row_differences(const QString &result_database, const QString &ios_lines, const QStringList &tables);

#endif
