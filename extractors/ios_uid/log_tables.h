// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_IOS_UID_LOG_STEPS_H
#define EXTRACTORS_IOS_UID_LOG_STEPS_H

#include "extractors/ios_uid/bluetooth_logs_ios_uid.h"
#include "extractors/ios_uid/parse_log_line.h"

#include <QLatin1StringView>
#include <QStringView>

#include <span>

/**
 * Everything that differs between the two steps that read the log: their texts, lines and statements. The work is
 * written once. The texts are part of the log format, odd blanks and dashes included.
 */
struct bluetooth_logs_ios_uid::log_step
{
    QStringView tab;                            ///< result table, as the examiner selects it
    QStringView function_info;                  ///< also the name of the connection to the result database
    QStringView open_failed;                    ///< followed by the path of the result database
    std::span<const QLatin1StringView> markers; ///< what a line of the step holds, the rarest first
    log_line_format format;
    QStringView insert_statement;
    std::span<QString log_line_fields::*const> values; ///< bound between the bookmark and the os scheme

    /** Writes a line of this step to the debug log. */
    void log(const QString &message) const;

    static const log_step available;
    static const log_step paired;
};

#endif
