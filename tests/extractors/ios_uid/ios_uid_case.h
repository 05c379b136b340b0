// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_EXTRACTORS_IOS_UID_IOS_UID_CASE_H
#define TESTS_EXTRACTORS_IOS_UID_IOS_UID_CASE_H

#include "extractors/ios_uid/bluetooth_logs_ios_uid.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/sqlite_file.h"

#include <QTemporaryDir>

/** Gives result tables the columns that the steps' statements name and the plug-in's own tables lack. */
void widen_tables(const sqlite_file &results);

/** An extractor with all its settings, a result database with the plug-in's tables, and a log that a test writes. */
class ios_uid_case
{
public:
    ios_uid_case();

    void write_log(const QByteArray &bytes) const;
    /** Makes the extractor read another path than that of the written log. */
    void set_log_path(const QString &path);

    const QTemporaryDir dir;
    const QString log_path;
    const sqlite_file results;
    debug_log_capture debug_log;
    bluetooth_logs_ios_uid extractor;
    QStringList signals_emitted; ///< "records 1", "tabs 1"
};

#endif
