// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/sqlite_file.h"

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

using namespace Qt::StringLiterals;

namespace {

void require(bool done, const QSqlQuery &query)
{
    if (!done)
        qFatal("%s: %s", qPrintable(query.lastQuery()), qPrintable(query.lastError().text()));
}

template<typename Work>
void with_open_file(const QString &file, Work work)
{
    const QString name = u"sqlite file of a test"_s;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        database.setDatabaseName(file);
        if (!database.open())
            qFatal("%s: %s", qPrintable(file), qPrintable(database.lastError().text()));
        work(database);
        database.close();
    }
    QSqlDatabase::removeDatabase(name);
}

} // namespace

sqlite_file::sqlite_file(const QString &path)
    : file(path)
{
}

void sqlite_file::execute(const QString &statement, const QVariantList &values) const
{
    execute_many(statement, {values});
}

void sqlite_file::execute_many(const QString &statement, const QList<QVariantList> &rows) const
{
    with_open_file(file, [&](QSqlDatabase &database) {
        const bool in_transaction = rows.size() > 1 && database.transaction();
        {
            QSqlQuery query(database);
            require(query.prepare(statement), query);
            for (const QVariantList &values : rows) {
                for (const QVariant &value : values)
                    query.addBindValue(value);
                require(query.exec(), query);
            }
        }
        if (in_transaction)
            database.commit();
    });
}

QList<QVariantList> sqlite_file::rows(const QString &query_text) const
{
    QList<QVariantList> result;
    with_open_file(file, [&](QSqlDatabase &database) {
        QSqlQuery query(database);
        require(query.exec(query_text), query);
        while (query.next()) {
            QVariantList row;
            for (int column = 0; column < query.record().count(); ++column)
                row.append(query.value(column));
            result.append(row);
        }
    });
    return result;
}

QStringList sqlite_file::quoted_rows(const QString &table, const QStringList &columns) const
{
    QStringList quoted;
    for (const QString &column : columns)
        quoted.append(u"quote("_s + column + u')');
    QStringList result;
    const QList<QVariantList> table_rows = rows(u"SELECT "_s + quoted.join(u", "_s) + u" FROM "_s + table);
    for (const QVariantList &row : table_rows) {
        QStringList texts;
        for (const QVariant &value : row)
            texts.append(value.toString());
        result.append(texts.join(u'|'));
    }
    return result;
}
