// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_helper_functions.h"
#include "tests/extractors/ios_uid/ios_uid_case.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QMetaMethod>
#include <QTest>

using namespace Qt::StringLiterals;

class ios_uid_backup_parser
{
};

/** What the object keeps, most of it for the host alone. */
struct kept_settings
{
    qint64 record_count = 0;
    int tab_processed_count = 0;
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

    bool operator==(const kept_settings &) const = default;
};

class test_bluetooth_logs_ios_uid : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void own_methods_are_the_two_signals();
    void starts_empty();
    void setters_store();
    void finding_does_nothing();
    void a_run_emits_data();
    void a_run_emits();
    void counts_go_on_from_run_to_run();

private:
    static kept_settings settings_of(const bluetooth_logs_ios_uid &extractor)
    {
        return {extractor.record_count,
                extractor.tab_processed_count,
                extractor.plugin_helper_obj,
                extractor.destination_tmp_dir_path,
                extractor.destination_db_file_path,
                extractor.destination_result_dir_path,
                extractor.source_root_path,
                extractor.source_path_2,
                extractor.engine_type,
                extractor.bool_cancel_extraction,
                extractor.source_count,
                extractor.os_scheme_display,
                extractor.selected_tab_list,
                extractor.plugin_name,
                extractor.ios_backup_pointer,
                extractor.source_log_file_path};
    }
};

void test_bluetooth_logs_ios_uid::own_methods_are_the_two_signals()
{
    const QMetaObject &type = bluetooth_logs_ios_uid::staticMetaObject;
    QCOMPARE(type.superClass(), &QWidget::staticMetaObject);
    QCOMPARE(type.methodCount() - type.methodOffset(), 2);
    QCOMPARE(type.indexOfSignal("signal_extracted_records_of_plugin_ios_uid(qint64)"), type.methodOffset());
    QCOMPARE(type.indexOfSignal("signal_total_tabs_processed_ios_uid(int)"), type.methodOffset() + 1);
    QCOMPARE(type.method(type.methodOffset()).parameterNames(), QList<QByteArray>{"records"});
    QCOMPARE(type.method(type.methodOffset() + 1).parameterNames(), QList<QByteArray>{"count"});
    QCOMPARE(type.propertyCount(), type.propertyOffset());
}

void test_bluetooth_logs_ios_uid::starts_empty()
{
    QWidget parent;
    const bluetooth_logs_ios_uid extractor(&parent);
    QCOMPARE(extractor.parentWidget(), &parent);
    QVERIFY(settings_of(extractor) == kept_settings());
}

void test_bluetooth_logs_ios_uid::setters_store()
{
    bluetooth_logs_ios_uid extractor;
    ios_uid_backup_parser parser;
    plugin_helper_functions helper(nullptr);
    extractor.ios_uid_set_ios_backup_pointer(&parser);
    extractor.ios_uid_set_plugin_helper_obj(&helper);
    extractor.ios_uid_set_record_count(Q_INT64_C(5'000'000'000));
    extractor.ios_uid_set_tab_processed_count(4);
    extractor.ios_uid_set_examiner_machine_info({.timezone_offset = 3600, .os_version_full = u"ignored"_s});
    extractor.ios_uid_set_general_info({});
    extractor.ios_uid_set_plugin_name(u"\n Bluetooth  Logs\t"_s);
    extractor.ios_uid_set_destination_location(u"result/"_s, u"result/tmp/"_s, u"result/file.sqlite"_s);
    extractor.ios_uid_set_essential_for_kaldo_desk_extraction({u"devices"_s});
    extractor.ios_uid_set_essential_for_kaldo_desk_extraction({u"paired_devices"_s});
    extractor.ios_uid_set_engine_type(-1);
    extractor.ios_uid_set_source_count(7);
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    source.source_root_path = u"/root/"_s;
    source.source_path_2 = u"/second/"_s;
    source.os_scheme_display = u"iOS 17"_s;
    source.os_scheme_internal = u"iOS_UID"_s;
    source.source_log_file_path = u"/logs/system.log"_s;
    extractor.ios_uid_set_source_info(source);
    extractor.ios_uid_cancel_extraction();

    kept_settings expected{
        .record_count = Q_INT64_C(5'000'000'000),
        .tab_processed_count = 4,
        .plugin_helper_obj = &helper,
        .destination_tmp_dir_path = u"result/tmp/"_s,
        .destination_db_file_path = u"result/file.sqlite"_s,
        .destination_result_dir_path = u"result/"_s,
        .source_root_path = u"/root/"_s,
        .source_path_2 = u"/second/"_s,
        .engine_type = -1,
        .bool_cancel_extraction = true,
        .source_count = 7,
        .os_scheme_display = u"iOS 17"_s,
        .selected_tab_list = {u"paired_devices"_s},
        .plugin_name = u"Bluetooth  Logs"_s,
        .ios_backup_pointer = &parser,
        .source_log_file_path = u"/logs/system.log"_s,
    };
    QVERIFY(settings_of(extractor) == expected);

    extractor.ios_uid_set_essentials();
    extractor.ios_uid_set_ios_backup_pointer(nullptr);
    expected.bool_cancel_extraction = false;
    expected.ios_backup_pointer = nullptr;
    QVERIFY(settings_of(extractor) == expected);
}

void test_bluetooth_logs_ios_uid::finding_does_nothing()
{
    ios_uid_case test;
    const kept_settings before = settings_of(test.extractor);
    test.extractor.ios_uid_find_artifacts_source();
    QVERIFY(settings_of(test.extractor) == before);
    QCOMPARE(test.debug_log.take_lines(), QStringList());
    QCOMPARE(test.signals_emitted, QStringList());
}

void test_bluetooth_logs_ios_uid::a_run_emits_data()
{
    QTest::addColumn<int>("engine_type");
    QTest::addColumn<QStringList>("selected");
    QTest::addColumn<QStringList>("emitted");

    const QStringList both{u"devices"_s, u"paired_devices"_s};
    const QStringList nothing{u"records 10"_s};
    const QStringList all{u"records 12"_s, u"tabs 5"_s, u"records 13"_s, u"tabs 6"_s, u"records 13"_s};
    // clang-format off
    QTest::newRow("both tables")        <<  0 << both                                         << all;
    QTest::newRow("in the other order") <<  0 << QStringList{both.at(1), both.at(0)}          << all;
    QTest::newRow("named twice")        <<  0 << (both + both)                                << all;
    QTest::newRow("only devices")       <<  0 << QStringList{both.at(0), u"other"_s}          << QStringList{u"records 12"_s, u"tabs 5"_s, u"records 12"_s};
    QTest::newRow("only paired")        <<  0 << QStringList{both.at(1)}                      << QStringList{u"records 11"_s, u"tabs 5"_s, u"records 11"_s};
    QTest::newRow("no table")           <<  0 << QStringList()                                << nothing;
    QTest::newRow("other letter case")  <<  0 << QStringList{u"Devices"_s, u"PAIRED_devices"_s} << nothing;
    QTest::newRow("part of a name")     <<  0 << QStringList{u"device"_s, u" devices"_s}      << nothing;
    QTest::newRow("engine not set")     << -1 << both                                         << nothing;
    QTest::newRow("field edition")      <<  1 << both                                         << nothing;
    QTest::newRow("boot edition")       <<  2 << both                                         << nothing;
    // clang-format on
}

void test_bluetooth_logs_ios_uid::a_run_emits()
{
    QFETCH(int, engine_type);
    QFETCH(QStringList, selected);
    QFETCH(QStringList, emitted);

    ios_uid_case test;
    widen_tables(test.results);
    test.write_log("BLE device found: 1\nBLE device found: 2\n<Notice>: active device: 3\n");
    test.extractor.ios_uid_set_engine_type(engine_type);
    test.extractor.ios_uid_set_essential_for_kaldo_desk_extraction(selected);
    test.extractor.ios_uid_set_record_count(10);
    test.extractor.ios_uid_set_tab_processed_count(4);
    test.extractor.ios_uid_extract_artifacts();
    QCOMPARE(test.signals_emitted, emitted);
    if (emitted.size() == 1)
        QCOMPARE(test.debug_log.take_lines(), QStringList());
}

void test_bluetooth_logs_ios_uid::counts_go_on_from_run_to_run()
{
    ios_uid_case test;
    widen_tables(test.results);
    test.write_log("BLE device found: 1\n");
    test.extractor.ios_uid_extract_artifacts();
    test.extractor.ios_uid_extract_artifacts();
    QCOMPARE(test.signals_emitted,
             QStringList({u"records 1"_s, u"tabs 1"_s, u"records 1"_s, u"tabs 2"_s, u"records 1"_s, u"records 2"_s,
                          u"tabs 3"_s, u"records 2"_s, u"tabs 4"_s, u"records 2"_s}));
}

BLUETOOTH_LOGS_TEST(test_bluetooth_logs_ios_uid, QApplication)

#include "test_bluetooth_logs_ios_uid.moc"
