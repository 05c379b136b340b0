// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_TABLE_STORE_H
#define HOST_REPORT_TABLES_TABLE_STORE_H

#include "host/report/reading/report_column.h"

#include <QString>

/** One file that holds all tables of a report: a database or a workbook. Every function throws host_error (io). */
class table_store
{
public:
    table_store() = default;
    virtual ~table_store() = default;
    Q_DISABLE_COPY_MOVE(table_store)

    /** The lines that follow are of this table, until the next begins. */
    virtual void begin_table(const QString &name, const QList<report_column> &columns) = 0;

    /** @p cells are in the order of the columns. */
    virtual void add(const line_cells &cells) = 0;

    /** Gives the whole file its name; without it none is left. */
    virtual void commit() = 0;
};

#endif
