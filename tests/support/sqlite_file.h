// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_SQLITE_FILE_H
#define TESTS_SUPPORT_SQLITE_FILE_H

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

/** An SQLite file that a test makes or looks into. Every call opens and closes it; a failure ends the test program. */
class sqlite_file
{
public:
    explicit sqlite_file(const QString &path);

    /** Runs one statement, with values for its "?". */
    void execute(const QString &statement, const QVariantList &values = {}) const;

    /** Runs one statement for many rows of values in one transaction. */
    void execute_many(const QString &statement, const QList<QVariantList> &rows) const;

    /** Every row of the query; NULL is an invalid or null QVariant. */
    QList<QVariantList> rows(const QString &query) const;

    /** The rows as texts, the values quoted as SQL would quote them and joined by "|": NULL, 1, 'a', x'00'. */
    QStringList quoted_rows(const QString &table, const QStringList &columns) const;

    QString path() const
    {
        return file;
    }

private:
    QString file;
};

#endif
