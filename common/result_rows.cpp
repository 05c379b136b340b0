// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/result_rows.h"

#include "common/plugin_static_function.h"
#include "common/sqlite_connection.h"

#include <QSqlError>

using namespace Qt::StringLiterals;

bool insert_row_or_log(QSqlQuery &query, const QString &statement, const QStringList &values, const QString &detail,
                       const QString &function_info)
{
    if (execute_with_values(query, statement, values))
        return true;

    plugin_static_function::app_debug(u" query insert file------FAILED------"_s + detail, function_info);
    plugin_static_function::app_debug(query.lastError().text(), function_info);
    plugin_static_function::app_debug(query.executedQuery(), function_info);
    return false;
}

bool is_progress_due(const QElapsedTimer &timer)
{
    return timer.isValid() && timer.elapsed() > 1000;
}
