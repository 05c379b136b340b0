// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RESULT_DATABASE_H
#define HOST_RESULT_DATABASE_H

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

/** A result database that is there. It is closed with this object. */
class result_database
{
public:
    enum class access { read_only, read_write };

    /** Throws host_error (input) when the file cannot be opened. */
    result_database(const QString &file, access mode);
    ~result_database();
    result_database(const result_database &) = delete;
    result_database &operator=(const result_database &) = delete;

    /** The names of its result tables, in the plug-in's order. Throws host_error (input) when there are none. */
    QStringList tables() const;

    /** Throws host_error (input) when the table cannot be read. */
    qint64 row_count(const QString &table) const;

    /** Adds the columns that the plug-in's iOS rows name. Throws host_error (internal_error). */
    void widen_for_ios();

    QSqlDatabase connection() const;

private:
    QString path;
};

#endif
