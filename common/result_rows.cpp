// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/result_rows.h"

#include "common/sqlite_connection.h"

#include <QSqlError>

using namespace Qt::StringLiterals;

bool insert_row_or_log(QSqlQuery &query, const QString &statement, const QStringList &values, const QString &detail,
                       const function_log &log)
{
    if (execute_with_values(query, statement, values))
        return true;

    log(u" query insert file------FAILED------"_s + detail);
    log(query.lastError().text());
    log(query.executedQuery());
    return false;
}

bool is_progress_due(const QElapsedTimer &timer)
{
    return timer.isValid() && timer.elapsed() > 1000;
}
