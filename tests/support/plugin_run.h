// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_PLUGIN_RUN_H
#define TESTS_SUPPORT_PLUGIN_RUN_H

#include "plugin/bluetooth_logs.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/sqlite_file.h"

#include <QTemporaryDir>

/** The columns of both result tables, as the plug-in makes them, in order. */
QStringList result_columns();

/** One case with a frame in it that is driven in the documented order. Change the settings before prepare(). */
class plugin_run
{
public:
    plugin_run();

    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    int engine_type = 0;
    int source_count = 1;
    QStringList tabs;

    bluetooth_logs frame;
    debug_log_capture log;

    /** Everything from pub_set_essentials to pub_create_db_tables. */
    void prepare();
    /** Finds, extracts and removes the temporary folder. */
    void extract();
    /** Both, without the log lines of prepare(). */
    void run();

    /** The case's result directory, without a final "/". */
    QString result_directory() const;
    QString plugin_directory() const;
    QString db_path() const;
    sqlite_file database() const;

    /** Log lines with the places of this case and of the source replaced: "<case>/", "<source>/". */
    QStringList take_messages();

private:
    QTemporaryDir directory;
};

#endif
