// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_RESULT_ROWS_H
#define COMMON_RESULT_ROWS_H

#include "common/function_log.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <QString>
#include <QStringList>

/**
 * Inserts a row with execute_with_values(). A failure is logged in three lines: that the insert failed, followed by
 * @p detail; the driver's error text; the statement.
 */
bool insert_row_or_log(QSqlQuery &query, const QString &statement, const QStringList &values, const QString &detail,
                       const function_log &log);

/** Whether more than a second has passed since @p timer was started; false for a timer that never was. */
bool is_progress_due(const QElapsedTimer &timer);

#endif
