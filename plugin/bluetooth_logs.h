// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef PLUGIN_BLUETOOTH_LOGS_H
#define PLUGIN_BLUETOOTH_LOGS_H

#include "common/shared_records.h"

#include <QFrame>
#include <QString>
#include <QStringList>

class Ui_bluetooth_logs;
class bluetooth_logs_ios_uid;
class bluetooth_logs_macos;
class bluetooth_logs_winos;
class ios_uid_backup_parser; // the host's, passed through and never called
class plugin_helper_functions;

/**
 * The object that the host creates through create_object() and drives through the virtual operations. It forwards
 * every setting to its extractors and to the run context, keeps the result folder and database, and hands control to
 * the extractor of the source's os scheme ("macOS", "iOS_UID" or "winOS").
 *
 * The host keeps this order for a source: pub_set_essentials, the records, pub_set_engine_type, pub_set_source_count,
 * pub_set_result_directory, pub_set_essential_for_kaldo_desk_extraction, pub_create_db_tables, perhaps
 * pub_set_clear_db, pub_find_source_file, pub_extract_artifacts, pub_remove_temporary_asthetics.
 *
 * Failures are only logged. The order of the virtual operations is the binary interface to the host.
 */
class Q_DECL_EXPORT bluetooth_logs : public QFrame
{
    Q_OBJECT

public:
    explicit bluetooth_logs(QWidget *parent = nullptr);
    ~bluetooth_logs() override;

    virtual void pub_set_engine_type(int type);
    virtual QString pub_get_artifact_name();
    /** Takes the frame, the run context and the extractors back to their start; logging is off afterwards. */
    virtual void pub_set_essentials();
    virtual void pub_set_source_count(int count);
    virtual void pub_set_ios_uid_backup_pointer(ios_uid_backup_parser *pointer);
    virtual void pub_set_desktop_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_desktop_info info);
    virtual void pub_set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info);
    virtual void pub_set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info);
    /** The result tables to fill; the second list belongs to other plug-ins of the suite and is ignored. */
    virtual void pub_set_essential_for_kaldo_desk_extraction(QList<QString> tabs, QList<QString> unused);
    /** Lays out the result folder below @p dir, the case's result directory. */
    virtual void pub_set_result_directory(QString dir);
    virtual void pub_create_db_tables();
    /** Empties the selected tables when @p clear is set. */
    virtual void pub_set_clear_db(bool clear);
    virtual void pub_cancel_extraction();
    virtual void pub_find_source_file();
    virtual void pub_set_extended_attributes_list(QList<QString> list);
    virtual void pub_extract_artifacts();
    /** Nothing to do: this artifact has no chat pages. */
    virtual void pub_generate_chat_html_pages();
    /** Removes the temporary folder; the database and the staged copies stay. */
    virtual void pub_remove_temporary_asthetics();
    virtual void pub_set_examiner_machine_info(struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info);

Q_SIGNALS:
    /** Running total of the rows written. */
    void signal_extracted_records_of_plugin_overall(qint64 records);
    /** Running total of the result tables done. */
    void signal_tab_processed_of_plugin_overall(int tab_count);

public Q_SLOTS:
    void slot_m_process_finished(int status);
    void slot_extracted_records_of_plugin(qint64);
    void slot_total_tabs_processed(int);

private:
    // Tests look at what was set, which no host asks for.
    friend class test_frame;
    friend class test_result_store;

    void set_destination_location(QString dir);
    void create_destination_database();
    void create_db_tables();
    void clear_db_tables();
    void remove_temporary_directory();

    Ui_bluetooth_logs *ui;
    bool bool_process_finished = false;
    qint64 records_count = 0;
    int tabs_processed_count = 0;
    QString temp_directory;
    QString destination_db_file;
    QString plugin_result_directory;
    int engine_type = 0;
    bool bool_cancel_extraction = false;
    QString os_scheme_internal;
    QStringList selected_tabs_list;
    plugin_helper_functions *helper_obj = nullptr; // never deleted: lives until the process ends
    bluetooth_logs_macos *macos_obj = nullptr;
    bluetooth_logs_ios_uid *ios_uid_obj = nullptr;
    bluetooth_logs_winos *winos_obj = nullptr;
    QString source_root_path; // nothing is ever written below it
};

/** Creates the plug-in's object, without a parent; the host owns it. */
extern "C" Q_DECL_EXPORT bluetooth_logs *create_object();

#endif
