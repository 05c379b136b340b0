// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/sqlite_connection.h"

#include "common/evidence_file.h"

using namespace Qt::StringLiterals;

QSqlDatabase add_sqlite_connection(const QString &name, const QString &file)
{
    QSqlDatabase::removeDatabase(name);
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
    database.setDatabaseName(file);
    return database;
}

QSqlDatabase open_sqlite_connection(const QString &name, const QString &file)
{
    QSqlDatabase database = add_sqlite_connection(name, file);
    database.open();
    return database;
}

QSqlDatabase open_result_database(const QString &name, const QString &file, const QString &source_root)
{
    QSqlDatabase database = add_sqlite_connection(name, file);
    if (is_safe_target(file, source_root))
        database.open();
    return database;
}

bool execute_with_values(QSqlQuery &query, const QString &statement, const QStringList &values)
{
    if (!query.prepare(statement))
        return false;

    for (const QString &value : values)
        query.addBindValue(value);
    return query.exec();
}
