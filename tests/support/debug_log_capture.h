// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_DEBUG_LOG_CAPTURE_H
#define TESTS_SUPPORT_DEBUG_LOG_CAPTURE_H

#include "common/shared_records.h"

#include <QStringList>
#include <QTemporaryDir>

/** A debug log file as the host creates it, and what is written to it, with the times masked. */
class debug_log_capture
{
public:
    debug_log_capture();

    /** The record that makes a plug-in log to this file. */
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info general_info() const;

    /** Switches the run context of this program to this file, for code that is tested without the frame. */
    void start();

    /** Every line since the last call, as "[time][engine][Artifacts Extraction][function]:-- message". */
    QStringList take_lines();

    /** The same without the fields before the message, for steps whose function the test knows: "function: message". */
    QStringList take_messages();

    QString path() const;

private:
    QTemporaryDir directory;
};

#endif
