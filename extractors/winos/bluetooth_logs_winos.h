// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_WINOS_BLUETOOTH_LOGS_WINOS_H
#define EXTRACTORS_WINOS_BLUETOOTH_LOGS_WINOS_H

#include "common/shared_records.h"

#include <QElapsedTimer>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <memory>

class plugin_helper_functions;

/**
 * Extractor for Windows sources: accepts every setting, keeps the source's paths and account texts, and extracts
 * nothing. A run emits one records signal and leaves the tables empty.
 */
class bluetooth_logs_winos : public QWidget
{
    Q_OBJECT

public:
    explicit bluetooth_logs_winos(QWidget *parent = nullptr);
    ~bluetooth_logs_winos() override;

    void winos_set_plugin_helper_obj(plugin_helper_functions *helper);
    void winos_set_record_count(qint64 count);
    void winos_set_tab_processed_count(int count);
    void winos_set_examiner_machine_info(struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info);
    void winos_set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info);
    /** User names and home paths of the accounts are added to those of earlier sources. */
    void winos_set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info);
    void winos_set_plugin_name(QString name);
    void winos_set_destination_location(QString result_directory, QString temporary_directory, QString db_file);
    void winos_set_essential_for_kaldo_desk_extraction(QStringList tabs);
    void winos_set_engine_type(int type);
    void winos_set_essentials();
    void winos_cancel_extraction();
    void winos_set_source_count(int count);
    void winos_find_artifacts_source();
    void winos_extract_artifacts();

    void find_source_file();
    void extract_plugin_artifacts();

Q_SIGNALS:
    void signal_extracted_records_of_plugin_winos(qint64 records);
    void signal_total_tabs_processed_winos(int count);

private:
    // Tests look at what was set, which no host asks for.
    friend class test_bluetooth_logs_winos;
    friend class test_frame;

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
    QStringList system_account_text_list;
    QStringList selected_tab_list;
    QString plugin_name;
};

#endif
