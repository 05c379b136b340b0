// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_REPORT_PAGE_DATA_H
#define TESTS_HOST_REPORT_PAGE_DATA_H

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>

/** The rows of a table in the data block of a report's page, by column: texts as the page shows them, or null. */
QList<QJsonObject> page_rows(const QByteArray &page, const QString &table);

#endif
