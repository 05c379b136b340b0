// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/shared_records.h"
#include "tests/support/macos_source.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QFrame>
#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class ios_uid_backup_parser;

/**
 * The plug-in as a host sees it that never had our header: nothing but the order of the virtual operations
 * behind those of QFrame. The names here are the test's own. It has external
 * linkage, or the compiler would know that no class of this program implements it.
 */
class host_view : public QFrame
{
public:
    virtual void engine_type(int) = 0;
    virtual QString artifact_name() = 0;
    virtual void essentials() = 0;
    virtual void source_count(int) = 0;
    virtual void ios_uid_backup_pointer(ios_uid_backup_parser *) = 0;
    virtual void desktop_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_desktop_info) = 0;
    virtual void general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info) = 0;
    virtual void source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info) = 0;
    virtual void essential_for_extraction(QList<QString>, QList<QString>) = 0;
    virtual void result_directory(QString) = 0;
    virtual void create_db_tables() = 0;
    virtual void clear_db(bool) = 0;
    virtual void cancel_extraction() = 0;
    virtual void find_source_file() = 0;
    virtual void extended_attributes_list(QList<QString>) = 0;
    virtual void extract_artifacts() = 0;
    virtual void generate_chat_html_pages() = 0;
    virtual void remove_temporary_files() = 0;
    virtual void examiner_machine_info(struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info) = 0;
};

/** The plug-in file itself, as the suite loads it. Its path is the first argument of the build. */
class test_plugin_file : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void exported_names();
    void fields_of_the_records_stand_in_order();
    void operations_stand_in_slot_order();
};

void test_plugin_file::exported_names()
{
    const QString nm = QStandardPaths::findExecutable(u"nm"_s);
    QVERIFY2(!nm.isEmpty(), "nm of binutils lists the exported names");
    QProcess process;
    process.start(nm, {u"-DC"_s, u"--defined-only"_s, QStringLiteral(PLUGIN_FILE)});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QStringList names = QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    for (QString &name : names)
        name = name.section(u' ', 2); // address, kind, name
    QCOMPARE(names.count(u"create_object"_s), 1);
    QVERIFY(names.contains(u"bluetooth_logs::pub_extract_artifacts()"_s));
    QVERIFY(names.contains(u"vtable for bluetooth_logs"_s));

    const QRegularExpression ours(
        uR"(^(non-virtual thunk to |(vtable|typeinfo|typeinfo name) for )?bluetooth_logs(::|$))"_s);
    names.removeAll(u"create_object"_s);
    names.removeIf([&ours](const QString &name) { return ours.match(name).hasMatch(); });
    QCOMPARE(names, QStringList());
}

void test_plugin_file::fields_of_the_records_stand_in_order()
{
    // A host that was built on its own knows the fields by their places only.
    const struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_system_account account{u"1"_s, u"2"_s};
    QCOMPARE(QStringList({account.system_user, account.system_account_home_path}), QStringList({u"1"_s, u"2"_s}));

    const struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source{u"1"_s,    u"2"_s,  u"3"_s, u"4"_s,   u"5"_s,
                                                                     {account}, u"7"_s,  u"8"_s, {u"9"_s}, u"10"_s,
                                                                     u"11"_s,   u"12"_s, u"13"_s};
    QCOMPARE(QStringList({source.source_root_path, source.source_path_2, source.os_scheme_display,
                          source.os_scheme_internal, source.os_version_full, source.source_text_7, source.source_text_8,
                          source.source_path_list.value(0), source.source_log_file_path, source.source_text_11,
                          source.source_text_12, source.source_text_13}),
             QStringList(
                 {u"1"_s, u"2"_s, u"3"_s, u"4"_s, u"5"_s, u"7"_s, u"8"_s, u"9"_s, u"10"_s, u"11"_s, u"12"_s, u"13"_s}));
    QCOMPARE(source.system_account_list.size(), 1);

    for (int flag = 0; flag < 5; ++flag) {
        const struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info general{flag == 0, flag == 1, flag == 2,
                                                                           flag == 3, flag == 4, u"6"_s};
        const bool flags[] = {general.general_flag_1, general.debug_mode_status, general.debug_print_on_terminal,
                              general.debug_print_in_file, general.general_flag_5};
        QVERIFY(flags[flag]);
    }

    const struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info machine{1, u"2"_s};
    QVERIFY(machine.timezone_offset == 1 && machine.os_version_full == u"2"_s);

    const struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_desktop_info desktop{u"1"_s, u"2"_s, true, u"4"_s, u"5"_s};
    QCOMPARE(QStringList(
                 {desktop.desktop_text_1, desktop.desktop_text_2, desktop.desktop_text_4, desktop.desktop_text_5}),
             QStringList({u"1"_s, u"2"_s, u"4"_s, u"5"_s}));

    const struct_GLOBAL_ARTIFACT_artifact_source_file file{u"1"_s, u"2"_s};
    QCOMPARE(QStringList({file.artifact_source_file, file.complete_source_file_path}), QStringList({u"1"_s, u"2"_s}));

    const struct_GLOBAL_ARTIFACT_used_dates dates{u"1"_s, {u"2"_s}, u"3"_s, u"4"_s};
    QCOMPARE(QStringList({dates.last_used_date, dates.used_dates_list.value(0), dates.first_used_date,
                          dates.last_entry_used_date}),
             QStringList({u"1"_s, u"2"_s, u"3"_s, u"4"_s}));
}

void test_plugin_file::operations_stand_in_slot_order()
{
    QLibrary library(QStringLiteral(PLUGIN_FILE));
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    QVERIFY2(library.load(), qPrintable(library.errorString()));
    const auto create_object = reinterpret_cast<void *(*) ()>(library.resolve("create_object"));
    QVERIFY(create_object);
    auto *plugin = static_cast<host_view *>(create_object());

    const macos_source source;
    macos_source::add_device(source.make_other(), u"OtherDevices"_s, {u"u"_s, u"n"_s});
    const QTemporaryDir case_directory;
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info;
    info.source_root_path = source.root();
    info.os_scheme_internal = u"macOS"_s;

    QCOMPARE(plugin->artifact_name(), u"Bluetooth Logs"_s);
    QSignalSpy records(plugin, SIGNAL(signal_extracted_records_of_plugin_overall(qint64)));
    QSignalSpy tabs(plugin, SIGNAL(signal_tab_processed_of_plugin_overall(int)));
    plugin->essentials();
    plugin->general_info({});
    plugin->examiner_machine_info({});
    plugin->desktop_info({});
    plugin->source_info(info);
    plugin->ios_uid_backup_pointer(nullptr);
    plugin->engine_type(0);
    plugin->source_count(3);
    plugin->result_directory(case_directory.path());
    plugin->essential_for_extraction({u"devices"_s}, {});
    plugin->extended_attributes_list({});
    plugin->create_db_tables();
    plugin->clear_db(true);
    plugin->find_source_file();
    plugin->extract_artifacts();
    plugin->generate_chat_html_pages();

    const QString folder = case_directory.path() + u"/Artifacts_Result/Bluetooth_Logs/"_s;
    QCOMPARE(sqlite_file(folder + u"Bluetooth_Logs.sqlite"_s)
                 .quoted_rows(u"devices"_s, {u"device_name"_s, u"source_count_name"_s}),
             QStringList{u"'n'|'Source3'"_s});
    QVERIFY(QFile::exists(folder + u"tmp"_s));
    plugin->remove_temporary_files();
    QVERIFY(!QFile::exists(folder + u"tmp"_s));
    QCOMPARE(records.last().first().toLongLong(), 1);
    QCOMPARE(tabs.count(), 1);

    records.clear();
    plugin->cancel_extraction();
    plugin->extract_artifacts();
    QCOMPARE(records.count(), 1);
    delete plugin;
}

BLUETOOTH_LOGS_TEST(test_plugin_file, QApplication)

#include "test_plugin_file.moc"
