// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_helper_functions.h"
#include "extractors/macos/bluetooth_logs_macos.h"
#include "tests/support/file_content.h"
#include "tests/support/macos_source.h"
#include "tests/support/plugin_run.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QDir>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

class test_macos_source : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void signals_in_order();
    void initial_values();
    void setters();
    void source_info();
    void user_names_data();
    void user_names();
    void user_names_of_several_sources();
    void root_without_slash_finds_nothing();
    void found_lists_are_replaced_and_copied_lists_stay();
    void any_kind_of_entry_is_found();
    void cancelled_staging_adds_nothing();
    void cancelled_extractor_writes_nothing();
    void staging_keeps_an_earlier_copy();
};

void test_macos_source::signals_in_order()
{
    const QMetaObject &meta = bluetooth_logs_macos::staticMetaObject;
    QCOMPARE(meta.superClass(), &QWidget::staticMetaObject);
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod records = meta.method(meta.methodOffset());
    QCOMPARE(meta.indexOfSignal("signal_extracted_records_of_plugin_macos(qint64)"), meta.methodOffset());
    QCOMPARE(records.parameterNames(), QList<QByteArray>{"records"});
    QCOMPARE(records.methodType(), QMetaMethod::Signal);
    const QMetaMethod tabs = meta.method(meta.methodOffset() + 1);
    QCOMPARE(tabs.methodSignature(), "signal_total_tabs_processed_macos(int)");
    QCOMPARE(tabs.parameterNames(), QList<QByteArray>{"count"});
    QCOMPARE(tabs.methodType(), QMetaMethod::Signal);
}

void test_macos_source::initial_values()
{
    const bluetooth_logs_macos extractor;
    QCOMPARE(extractor.records_count, 0);
    QCOMPARE(extractor.tabs_processed_count, 0);
    QCOMPARE(extractor.helper_obj, nullptr);
    QCOMPARE(extractor.engine_type, 0);
    QCOMPARE(extractor.bool_cancel_extraction, false);
    QCOMPARE(extractor.source_count, 0);
    for (const QString &text :
         {extractor.desktop_text_4, extractor.temp_directory, extractor.destination_db_file,
          extractor.plugin_result_directory, extractor.source_root_path, extractor.source_path_2,
          extractor.os_scheme_display, extractor.plugin_name, extractor.source_text_8, extractor.source_path_list_text,
          extractor.source_other_db_file, extractor.source_paired_db_file})
        QCOMPARE(text, QString());
    for (const QStringList &list :
         {extractor.system_user_list, extractor.selected_tabs_list, extractor.source_file_paired_list,
          extractor.source_file_other_list, extractor.source_file_copied_paired_list,
          extractor.source_file_copied_connected_list})
        QCOMPARE(list, QStringList());
}

void test_macos_source::setters()
{
    bluetooth_logs_macos extractor;
    plugin_helper_functions helper(nullptr);
    extractor.macos_set_plugin_helper_obj(&helper);
    QCOMPARE(extractor.helper_obj, &helper);
    extractor.macos_set_record_count(qint64(1) << 40);
    QCOMPARE(extractor.records_count, qint64(1) << 40);
    extractor.macos_set_tab_processed_count(7);
    QCOMPARE(extractor.tabs_processed_count, 7);
    extractor.macos_set_desktop_info({u"1"_s, u"2"_s, true, u"4"_s, u"5"_s});
    QCOMPARE(extractor.desktop_text_4, u"4"_s);
    extractor.macos_set_plugin_name(u" \tBluetooth Logs\n"_s);
    QCOMPARE(extractor.plugin_name, u"Bluetooth Logs"_s);
    extractor.macos_set_destination_location(u"result"_s, u"tmp"_s, u"db"_s);
    QCOMPARE(extractor.plugin_result_directory, u"result"_s);
    QCOMPARE(extractor.temp_directory, u"tmp"_s);
    QCOMPARE(extractor.destination_db_file, u"db"_s);
    extractor.macos_set_essential_for_kaldo_desk_extraction({u"a"_s});
    extractor.macos_set_essential_for_kaldo_desk_extraction({u"b"_s, u"c"_s});
    QCOMPARE(extractor.selected_tabs_list, QStringList({u"b"_s, u"c"_s}));
    extractor.macos_set_engine_type(2);
    QCOMPARE(extractor.engine_type, 2);
    extractor.macos_set_source_count(9);
    QCOMPARE(extractor.source_count, 9);
    extractor.macos_cancel_extraction();
    QCOMPARE(extractor.bool_cancel_extraction, true);
    extractor.macos_set_essentials();
    QCOMPARE(extractor.bool_cancel_extraction, false);
    extractor.macos_set_general_info({});
    extractor.macos_set_examiner_machine_info({});
    extractor.macos_set_extended_attributes_list({u"x"_s});
}

void test_macos_source::source_info()
{
    bluetooth_logs_macos extractor;
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info;
    info.source_root_path = u"/root/"_s;
    info.source_path_2 = u"/second/"_s;
    info.source_text_8 = u"eight"_s;
    info.os_scheme_display = u"macOS 13"_s;
    info.source_path_list = QStringList{u"a"_s, u""_s, u"b"_s};
    extractor.macos_set_source_info(info);
    QCOMPARE(extractor.source_root_path, u"/root/"_s);
    QCOMPARE(extractor.source_path_2, u"/second/"_s);
    QCOMPARE(extractor.source_text_8, u"eight"_s);
    QCOMPARE(extractor.os_scheme_display, u"macOS 13"_s);
    QCOMPARE(extractor.source_path_list_text, u"a;++::++;;++::++;b"_s);
    QCOMPARE(extractor.system_user_list, QStringList());
}

void test_macos_source::user_names_data()
{
    QTest::addColumn<QStringList>("accounts");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("no account") << QStringList{} << QStringList{};
    QTest::newRow("empty name") << QStringList{u""_s} << QStringList{};
    QTest::newRow("same name twice") << QStringList{u"bob"_s, u"alice"_s, u"bob"_s}
                                     << QStringList{u"bob"_s, u"alice"_s};
    QTest::newRow("blank is a name") << QStringList{u" "_s, u""_s, u"a"_s} << QStringList{u" "_s, u"a"_s};
    QTest::newRow("case differs") << QStringList{u"A"_s, u"a"_s} << QStringList{u"A"_s, u"a"_s};
}

void test_macos_source::user_names()
{
    QFETCH(QStringList, accounts);
    bluetooth_logs_macos extractor;
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info;
    for (const QString &name : accounts)
        info.system_account_list.append({name, u"/home"_s});
    extractor.macos_set_source_info(info);
    QTEST(extractor.system_user_list, "names");
}

void test_macos_source::user_names_of_several_sources()
{
    bluetooth_logs_macos extractor;
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info;
    info.system_account_list = {{u"a"_s, {}}, {u"b"_s, {}}};
    extractor.macos_set_source_info(info);
    info.system_account_list = {{u"c"_s, {}}, {u"a"_s, {}}};
    extractor.macos_set_source_info(info);
    QCOMPARE(extractor.system_user_list, QStringList({u"a"_s, u"b"_s, u"c"_s}));
}

void test_macos_source::root_without_slash_finds_nothing()
{
    const macos_source source;
    source.make_other();
    source.make_paired();
    plugin_run run;
    run.source.source_root_path = source.root().chopped(1);
    run.run();
    const QString folder = source.root().chopped(1) + u"Library/Bluetooth/"_s;
    QStringList lines = run.log.take_messages().first(4);
    const QString prefix = u"bluetooth_logs_macos::find_source_file: [find_source_file] "_s;
    QCOMPARE(lines,
             QStringList({prefix + u"start"_s,
                          prefix + u"file not found: "_s + folder + u"com.apple.MobileBluetooth.ledevices.paired.db"_s,
                          prefix + u"file not found: "_s + folder + u"com.apple.MobileBluetooth.ledevices.other.db"_s,
                          prefix + u"end"_s}));
}

void test_macos_source::found_lists_are_replaced_and_copied_lists_stay()
{
    const macos_source source;
    source.make_other();
    plugin_run run;
    run.source.source_root_path = source.root();
    run.run();
    const auto &extractor = *run.frame.findChild<bluetooth_logs_macos *>();
    QCOMPARE(extractor.source_file_other_list, QStringList{source.other_db()});
    QCOMPARE(extractor.source_file_paired_list, QStringList());
    const QStringList copies{run.plugin_directory() + u"Logs/com.apple.MobileBluetooth.ledevices.other.db"_s};
    QCOMPARE(extractor.source_file_copied_connected_list, copies);
    QCOMPARE(extractor.source_file_copied_paired_list, QStringList());
    QCOMPARE(extractor.source_other_db_file, copies.first());

    QFile::remove(source.other_db());
    run.frame.pub_set_essentials();
    run.frame.pub_find_source_file();
    run.frame.pub_find_source_file();
    QCOMPARE(extractor.source_file_other_list, QStringList());
    QCOMPARE(extractor.source_file_copied_connected_list, copies);
}

void test_macos_source::any_kind_of_entry_is_found()
{
    const macos_source source;
    QVERIFY(QDir().mkpath(source.other_db()));
    write_file(source.paired_db(), "");
    plugin_run run;
    run.source.source_root_path = source.root();
    run.prepare();
    run.frame.pub_find_source_file();
    const auto &extractor = *run.frame.findChild<bluetooth_logs_macos *>();
    QCOMPARE(extractor.source_file_other_list, QStringList{source.other_db()});
    QCOMPARE(extractor.source_file_paired_list, QStringList{source.paired_db()});
}

void test_macos_source::cancelled_staging_adds_nothing()
{
    const macos_source source;
    source.make_other();
    plugin_run run;
    run.source.source_root_path = source.root();
    run.prepare();
    run.frame.pub_find_source_file();
    run.log.take_lines();
    auto &extractor = *run.frame.findChild<bluetooth_logs_macos *>();
    extractor.macos_cancel_extraction();
    extractor.copy_source_bluetooth_other_db();
    QCOMPARE(run.take_messages(),
             QStringList{u"bluetooth_logs_macos::copy_source_bluetooth_other_db: [copy_source_bluetooth_dbs] start"_s});
    QCOMPARE(extractor.source_file_copied_connected_list, QStringList());
    QVERIFY(!QFile::exists(run.plugin_directory() + u"Logs"_s));
}

void test_macos_source::cancelled_extractor_writes_nothing()
{
    const macos_source source;
    macos_source::add_device(source.make_other(), u"OtherDevices"_s, {u"u"_s});
    plugin_run run;
    run.source.source_root_path = source.root();
    run.prepare();
    run.frame.pub_find_source_file();
    auto &extractor = *run.frame.findChild<bluetooth_logs_macos *>();
    extractor.copy_source_bluetooth_other_db();
    run.log.take_lines();
    extractor.macos_cancel_extraction();
    extractor.extract_connected_devices();
    QCOMPARE(run.take_messages(),
             QStringList{u"bluetooth_logs_macos::extract_connected_devices: [extract_connected_devices] start"_s});
    QCOMPARE(run.database().rows(u"SELECT * FROM devices"_s).size(), 0);

    // The work operations can also be called by themselves, without a run's timer.
    extractor.macos_set_essentials();
    const QSignalSpy records(&extractor, &bluetooth_logs_macos::signal_extracted_records_of_plugin_macos);
    extractor.extract_connected_devices();
    QCOMPARE(run.database().rows(u"SELECT * FROM devices"_s).size(), 1);
    QCOMPARE(records.count(), 0);
}

void test_macos_source::staging_keeps_an_earlier_copy()
{
    const macos_source source;
    source.make_other();
    plugin_run run;
    run.source.source_root_path = source.root();
    const QString copy = run.plugin_directory() + u"Logs/com.apple.MobileBluetooth.ledevices.other.db"_s;
    write_file(copy, "earlier");
    run.prepare();
    run.frame.pub_find_source_file();
    run.frame.findChild<bluetooth_logs_macos *>()->copy_source_bluetooth_other_db();
    QCOMPARE(content_of(copy), "earlier");
}

BLUETOOTH_LOGS_TEST(test_macos_source, QApplication)

#include "test_macos_source.moc"
