// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/extractors/ios_uid/ios_uid_case.h"

#include "common/plugin_static_function.h"
#include "plugin/result_schema.h"

#include <QFile>

using namespace Qt::StringLiterals;

void widen_tables(const sqlite_file &results)
{
    for (const QString &column : {u"model"_s, u"sf_device_id"_s, u"date"_s})
        results.execute(u"ALTER TABLE devices ADD COLUMN "_s + column + u" TEXT"_s);
    for (const QString &column : {u"device_address"_s, u"model"_s, u"status"_s, u"date"_s})
        results.execute(u"ALTER TABLE paired_devices ADD COLUMN "_s + column + u" TEXT"_s);
}

ios_uid_case::ios_uid_case()
    : log_path(dir.filePath(u"system.log"_s))
    , results(dir.filePath(u"results.sqlite"_s))
{
    debug_log.start();
    plugin_static_function::set_source_count(3);
    for (const result_table &table : result_tables)
        results.execute(table.create_statement.toString());

    extractor.ios_uid_set_destination_location(dir.path(), dir.filePath(u"tmp"_s), results.path());
    extractor.ios_uid_set_essential_for_kaldo_desk_extraction({u"devices"_s, u"paired_devices"_s});
    set_log_path(log_path);
    QObject::connect(&extractor, &bluetooth_logs_ios_uid::signal_extracted_records_of_plugin_ios_uid, &extractor,
                     [this](qint64 records) { signals_emitted.append(u"records "_s + QString::number(records)); });
    QObject::connect(&extractor, &bluetooth_logs_ios_uid::signal_total_tabs_processed_ios_uid, &extractor,
                     [this](int count) { signals_emitted.append(u"tabs "_s + QString::number(count)); });
}

void ios_uid_case::write_log(const QByteArray &bytes) const
{
    QFile file(log_path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write the log of a test");
}

void ios_uid_case::set_log_path(const QString &path)
{
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    source.source_log_file_path = path;
    source.os_scheme_display = u"iOS 17"_s;
    extractor.ios_uid_set_source_info(source);
}
