// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_IOS_UID_LOG_TABLES_H
#define EXTRACTORS_IOS_UID_LOG_TABLES_H

#include "common/function_log.h"
#include "extractors/ios_uid/parse_log_line.h"

#include <QStringList>
#include <QStringView>

/**
 * What differs between the two result tables that are filled from the log. The work on them is written once. The texts
 * are part of the log format, odd blanks and dashes included.
 */
struct log_table
{
    QStringView tab;         ///< result table, as the examiner selects it
    function_log log;        ///< its function also names the connection to the result database
    QStringView open_failed; ///< followed by the path of the result database
    const log_line_format &format;
    QStringView insert_statement;
    QStringList (*values)(const log_line_fields &fields); ///< bound between the bookmark and the os scheme

    static const log_table available;
    static const log_table paired;
};

#endif
