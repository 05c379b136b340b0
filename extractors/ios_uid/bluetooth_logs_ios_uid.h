// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_IOS_UID_BLUETOOTH_LOGS_IOS_UID_H
#define EXTRACTORS_IOS_UID_BLUETOOTH_LOGS_IOS_UID_H

#include "common/shared_records.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <memory>

class QSqlDatabase;
class QSqlQuery;
class ios_uid_backup_parser;
class plugin_helper_functions;
struct log_line_fields;
struct log_table;

/**
 * Extractor for iOS device acquisitions. Reads the source's system-log text: "BLE device found:" lines become inserts
 * into "devices", "active device:" notices inserts into "paired_devices". The statements name columns that the
 * plug-in's own tables lack; rows land where the host has added them.
 *
 * Engine type 0 only. Failures are logged. Cancelling takes effect at the next line.
 */
class bluetooth_logs_ios_uid : public QWidget
{
    Q_OBJECT

public:
    explicit bluetooth_logs_ios_uid(QWidget *parent = nullptr);
    ~bluetooth_logs_ios_uid() override;

    void ios_uid_set_ios_backup_pointer(ios_uid_backup_parser *pointer);
    void ios_uid_set_plugin_helper_obj(plugin_helper_functions *helper);
    void ios_uid_set_record_count(qint64 count);
    void ios_uid_set_tab_processed_count(int count);
    void ios_uid_set_examiner_machine_info(struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info);
    void ios_uid_set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info);
    void ios_uid_set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info);
    void ios_uid_set_plugin_name(QString name);
    void ios_uid_set_destination_location(QString result_directory, QString temporary_directory, QString db_file);
    void ios_uid_set_essential_for_kaldo_desk_extraction(QStringList tabs);
    void ios_uid_set_engine_type(int type);
    void ios_uid_set_essentials();
    void ios_uid_cancel_extraction();
    void ios_uid_set_source_count(int count);
    void ios_uid_find_artifacts_source();
    void ios_uid_extract_artifacts();

    /** Does nothing: the source record holds the complete path of the log. */
    void find_source_file();
    /** Fills the selected tables, "devices" first. */
    void extract_plugin_artifacts();
    /** Write a row to "devices" or to "paired_devices" for each line of the log that reports such a device. */
    void extract_available_devices();
    void extract_paired_devices();

Q_SIGNALS:
    void signal_extracted_records_of_plugin_ios_uid(qint64 records);
    void signal_total_tabs_processed_ios_uid(int count);

private:
    // Tests look at what was set, which no host asks for.
    friend class test_bluetooth_logs_ios_uid;
    friend class test_frame;

    void extract_devices(const log_table &table);
    /** Writes a row for each line of the table. False when the log was not read to its end. */
    bool read_log(const log_table &table, QSqlDatabase &database);
    void write_device(const log_table &table, const log_line_fields &fields, QSqlQuery &query);
    void finish_tab();

    qint64 record_count = 0;
    int tab_processed_count = 0;
    std::unique_ptr<QElapsedTimer> elapsed_timer;
    plugin_helper_functions *plugin_helper_obj = nullptr;
    QString destination_tmp_dir_path;
    QString destination_db_file_path;
    QString destination_result_dir_path;
    QString source_root_path;
    QString source_path_2;
    int engine_type = 0;
    bool bool_cancel_extraction = false;
    int source_count = 0;
    QString os_scheme_display;
    QStringList selected_tab_list;
    QString plugin_name;
    ios_uid_backup_parser *ios_backup_pointer = nullptr;
    QString source_log_file_path;
};

#endif
