// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_REPORT_DATABASE_H
#define HOST_REPORT_TABLES_REPORT_DATABASE_H

#include "host/files/unfinished_file.h"
#include "host/report/tables/table_store.h"
#include "host/sqlite/sqlite.h"

#include <QMap>
#include <QStringList>

#include <memory>

/**
 * Makes report.sqlite: a table for each of the report's, indexes on addresses and UUIDs, an FTS5 table over names, and
 * views that answer the first questions. All of it is one transaction; the same lines give the same bytes.
 */
class report_database : public table_store
{
public:
    explicit report_database(const QString &path);
    ~report_database() override;
    Q_DISABLE_COPY_MOVE(report_database)

    void begin_table(const QString &name, const QList<report_column> &columns) override;
    void add(const line_cells &cells) override;
    void commit() override;

private:
    void add_names(const QString &table);
    void add_indexes(const QString &table);
    QByteArray column_or_null(const QString &table, const QByteArray &column) const;
    QByteArray first_filled(const QString &table, const QByteArrayList &columns) const;
    void add_views();
    void execute(const QByteArray &statement);

    QString path;
    QString temporary;
    unfinished_file unfinished;
    std::unique_ptr<sqlite_database> database;
    std::unique_ptr<sqlite_statement> insert;
    QList<qsizetype> places;               ///< of the current table's columns among the cells
    QMap<QString, QByteArrayList> columns; ///< by table, as they are called there
};

#endif
