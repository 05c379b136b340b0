// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_MACOS_BLUETOOTH_LOGS_MACOS_H
#define EXTRACTORS_MACOS_BLUETOOTH_LOGS_MACOS_H

#include "common/shared_records.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QSqlDatabase;
class plugin_helper_functions;
struct device_table;
struct reading_texts;
struct writing_texts;

/**
 * Extractor for macOS sources. Finds the two Bluetooth low-energy device databases below the source root, stages a
 * copy of each in the result folder, reads the copies and writes one row per device: the other-devices database fills
 * the table "devices", the paired-devices database the table "paired_devices". The source's own files are only ever
 * read, and never by the database driver.
 *
 * Work operations report nothing; failures are logged. Cancelling takes effect at the next staging copy.
 */
class bluetooth_logs_macos : public QWidget
{
    Q_OBJECT

public:
    explicit bluetooth_logs_macos(QWidget *parent = nullptr);
    ~bluetooth_logs_macos() override;

    void macos_set_plugin_helper_obj(plugin_helper_functions *helper);
    void macos_set_record_count(qint64 count);
    void macos_set_tab_processed_count(int count);
    void macos_set_examiner_machine_info(struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info);
    void macos_set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info);
    void macos_set_desktop_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_desktop_info info);
    /** The accounts' user names are added to those of earlier sources. */
    void macos_set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info);
    void macos_set_plugin_name(QString name);
    void macos_set_destination_location(QString result_directory, QString temporary_directory, QString db_file);
    void macos_set_extended_attributes_list(QList<QString> list);
    void macos_set_essential_for_kaldo_desk_extraction(QList<QString> tabs);
    void macos_set_engine_type(int type);
    void macos_set_essentials();
    void macos_cancel_extraction();
    void macos_set_source_count(int count);
    void macos_find_artifacts_source();
    void macos_extract_artifacts();

    /** Remembers which of the two databases exist; the lists of staged copies are left as they are. */
    void find_source_file();
    /** Copy the found databases to the folder "Logs" of the result folder; a copy that is already there is kept. */
    void copy_source_bluetooth_other_db();
    void copy_source_bluetooth_paired_db();
    /** Fills the selected tables, "devices" first. Engine types 0 to 2 only. */
    void extract_plugin_artifacts();
    /** Write a row to "devices" or to "paired_devices" for each device in the staged copies. */
    void extract_connected_devices();
    void extract_paired_devices();

    /**
     * Every row of the staged copy's OtherDevices or PairedDevices, keyed by column name, in the query's order. Values
     * of other devices are all texts; values of paired devices keep their type. Empty on failure.
     */
    QList<QJsonObject> read_other_devices();
    QList<QJsonObject> read_paired_devices();

    /**
     * Name of a device in the DeviceCache of the source's com.apple.Bluetooth.plist. @p device_key is the cache's key
     * exactly as stored (aa-bb-cc-dd-ee-ff). Empty when there is none.
     */
    QString xcode_get_device_name(QString device_key);

Q_SIGNALS:
    void signal_extracted_records_of_plugin_macos(qint64 records);
    void signal_total_tabs_processed_macos(int count);

private:
    // Tests look at what was set, which no host asks for.
    friend class test_frame;
    friend class test_macos_source;

    void stage(const device_table &table, const QStringList &found, QStringList &copies);
    QList<QJsonObject> read_devices(const reading_texts &texts, const QString &copy,
                                    const std::optional<QString> &open_failed_detail);
    bool leads_into_source(const QString &copy) const;
    void extract_devices(const writing_texts &texts, const QStringList &copies, const QStringList &found,
                         QString &reader_input, const std::function<QList<QJsonObject>()> &read);
    void write_devices(const writing_texts &texts, const QList<QJsonObject> &devices, const QString &source_file,
                       QSqlDatabase &database);
    void finish_tab();

    qint64 records_count = 0;
    int tabs_processed_count = 0;
    QString desktop_text_4;
    std::unique_ptr<QElapsedTimer> elapsed_timer;
    plugin_helper_functions *helper_obj = nullptr;
    QString temp_directory;
    QString destination_db_file;
    QString plugin_result_directory;
    QString source_root_path;
    QString source_path_2;
    int engine_type = 0;
    bool bool_cancel_extraction = false;
    int source_count = 0;
    QString os_scheme_display;
    QStringList system_user_list;
    QStringList selected_tabs_list;
    QString plugin_name;
    QString source_text_8;
    QString source_path_list_text;
    QStringList source_file_paired_list;
    QStringList source_file_other_list;
    QStringList source_file_copied_paired_list;
    QStringList source_file_copied_connected_list;
    QString source_other_db_file;
    QString source_paired_db_file;
};

#endif
