// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_RESULT_DATABASE_H
#define HOST_CASE_RESULT_DATABASE_H

#include "host/sqlite/sqlite.h"

#include <QString>
#include <QStringList>

/**
 * A read-only snapshot; later writes are not seen. The file is not trusted. Every function throws host_error
 * (not_found) when it cannot be read.
 */
class result_database
{
public:
    /** Opens it for reading. */
    explicit result_database(const QString &file);

    /** The names of its result tables, in the plug-in's order. Throws host_error (not_found) also when there are none.
     */
    QStringList tables() const;

    qint64 row_count(const QString &table) const;

    /** A forward reading of all rows of one of its tables, in the order of their rowids. */
    sqlite_statement rows(const QString &table) const;

private:
    QString path;
    sqlite_database database;
};

/**
 * Adds to the result tables of @p file the columns that rows of iOS sources fill and the tables, made for macOS, lack.
 * Throws host_error (io).
 */
void widen_result_tables_for_ios(const QString &file);

#endif
