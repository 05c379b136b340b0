// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_SQLITE_CONNECTION_H
#define COMMON_SQLITE_CONNECTION_H

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>

/** Registers a "QSQLITE" connection to @p file under @p name, in place of an older one. Does not open it. */
QSqlDatabase add_sqlite_connection(const QString &name, const QString &file);

/**
 * The same, and opens it; SQLite creates a missing file. Check isOpen() on the result; lastError() says why it failed.
 */
QSqlDatabase open_sqlite_connection(const QString &name, const QString &file);

/** The same for a result database; a file that is no safe target beside @p source_root is not opened. */
QSqlDatabase open_result_database(const QString &name, const QString &file, const QString &source_root);

/**
 * Prepares @p statement, binds the texts in order (a null text as NULL) and executes it. A statement that cannot be
 * prepared is not executed, so that the query's last error is SQLite's own.
 */
bool execute_with_values(QSqlQuery &query, const QString &statement, const QStringList &values);

#endif
