// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "extractors/macos/bluetooth_logs_macos.h"
#include "extractors/macos/device_tables.h"

#include <QDir>
#include <QProcessEnvironment>

using namespace Qt::StringLiterals;

void bluetooth_logs_macos::copy_source_bluetooth_other_db()
{
    stage(device_table::other, source_file_other_list, source_file_copied_connected_list);
}

void bluetooth_logs_macos::copy_source_bluetooth_paired_db()
{
    stage(device_table::paired, source_file_paired_list, source_file_copied_paired_list);
}

void bluetooth_logs_macos::stage(const device_table &table, const QStringList &found, QStringList &copies)
{
    const function_log &log = table.staging.log;
    log(u"[copy_source_bluetooth_dbs] start");
    if (found.isEmpty()) {
        log(table.staging.found_list_empty);
        return;
    }

    for (const QString &source : found) {
        // Read and not used: the staging path is the same for every user.
        const QString user = QProcessEnvironment::systemEnvironment().value(u"USER"_s);
        Q_UNUSED(user)
        if (bool_cancel_extraction)
            return;

        const QString temp_path = plugin_result_directory + u"Logs/"_s;
        const QString copy = temp_path + table.file_name;
        const bool is_safe = is_safe_target(copy, source_root_path);
        copies.append(copy);
        if (QDir(temp_path).exists()) {
            log(u"[copy_source_bluetooth_dbs] temp_path exists: "_s + temp_path);
        } else {
            log(u"[copy_source_bluetooth_dbs] temp_path does not exist, creating: "_s + temp_path);
            if (is_safe)
                QDir().mkpath(temp_path);
        }
        // Reading the copy reports one that could not be made.
        if (is_safe)
            copy_evidence_file(source, copy);
    }
    log(u"[copy_source_bluetooth_dbs] end");
}
