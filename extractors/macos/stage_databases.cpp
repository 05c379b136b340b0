// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "common/plugin_static_function.h"
#include "extractors/macos/device_tables.h"

#include <QDir>
#include <QProcessEnvironment>

using namespace Qt::StringLiterals;

void bluetooth_logs_macos::copy_source_bluetooth_other_db()
{
    copy_source_db(device_table::other);
}

void bluetooth_logs_macos::copy_source_bluetooth_paired_db()
{
    copy_source_db(device_table::paired);
}

void bluetooth_logs_macos::copy_source_db(const device_table &table)
{
    const auto log = [&table](const QString &message) {
        plugin_static_function::app_debug(message, table.staging.function_info.toString());
    };

    log(u"[copy_source_bluetooth_dbs] start"_s);
    if ((this->*table.found).isEmpty()) {
        log(table.staging.found_list_empty.toString());
        return;
    }

    for (const QString &source : std::as_const(this->*table.found)) {
        // Read and not used: the staging path is the same for every user.
        const QString user = QProcessEnvironment::systemEnvironment().value(u"USER"_s);
        Q_UNUSED(user)
        if (bool_cancel_extraction)
            return;

        const QString temp_path = plugin_result_directory + u"Logs/"_s;
        const QString copy = temp_path + table.file_name;
        (this->*table.copied).append(copy);
        if (QDir(temp_path).exists()) {
            log(u"[copy_source_bluetooth_dbs] temp_path exists: "_s + temp_path);
        } else {
            log(u"[copy_source_bluetooth_dbs] temp_path does not exist, creating: "_s + temp_path);
            if (is_safe_target(temp_path, source_root_path))
                QDir().mkpath(temp_path);
        }
        // A copy that cannot be made shows when it is read.
        if (is_safe_target(copy, source_root_path))
            copy_evidence_file(source, copy);
    }
    log(u"[copy_source_bluetooth_dbs] end"_s);
}
