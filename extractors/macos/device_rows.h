// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_MACOS_DEVICE_ROWS_H
#define EXTRACTORS_MACOS_DEVICE_ROWS_H

#include <QJsonObject>
#include <QList>
#include <QSqlQuery>
#include <QString>

#include <optional>

struct reading_texts;

/** What a device database gave. */
struct device_rows
{
    QList<QJsonObject> devices = {};
    std::optional<QString> warning = {}; ///< why there are no rows, or why they end early
    bool is_read = false;                ///< the table could be queried
};

/**
 * The rows of the texts' table in an open database. The statement is executed only on an ordinary table: a view or a
 * virtual table would run what the author of the evidence put into it.
 */
device_rows select_devices(const QSqlDatabase &database, const reading_texts &texts);

/** The remaining rows of an executed query, each as an object with one member per column, in the query's order. */
QList<QJsonObject> read_rows(QSqlQuery &query, QJsonValue (*to_json)(const QVariant &value));

#endif
