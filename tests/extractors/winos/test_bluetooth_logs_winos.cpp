// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/winos/bluetooth_logs_winos.h"

#include "common/plugin_helper_functions.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QDir>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

using account = struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_system_account;

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
    QStringList system_account_text_list;
    QStringList selected_tab_list;
    QString plugin_name;

    bool operator==(const kept_settings &) const = default;
};

class test_bluetooth_logs_winos : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void own_methods_are_the_two_signals();
    void starts_empty();
    void setters_store();
    void account_texts_data();
    void account_texts();
    void accounts_of_a_second_source_are_added();
    void a_run_emits_one_records_signal_data();
    void a_run_emits_one_records_signal();

private:
    static kept_settings settings_of(const bluetooth_logs_winos &extractor)
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
                extractor.system_account_text_list,
                extractor.selected_tab_list,
                extractor.plugin_name};
    }
};

void test_bluetooth_logs_winos::own_methods_are_the_two_signals()
{
    const QMetaObject &type = bluetooth_logs_winos::staticMetaObject;
    QCOMPARE(type.superClass(), &QWidget::staticMetaObject);
    QCOMPARE(type.methodCount() - type.methodOffset(), 2);
    QCOMPARE(type.indexOfSignal("signal_extracted_records_of_plugin_winos(qint64)"), type.methodOffset());
    QCOMPARE(type.indexOfSignal("signal_total_tabs_processed_winos(int)"), type.methodOffset() + 1);
    QCOMPARE(type.method(type.methodOffset()).parameterNames(), QList<QByteArray>{"records"});
    QCOMPARE(type.method(type.methodOffset() + 1).parameterNames(), QList<QByteArray>{"count"});
    QCOMPARE(type.propertyCount(), type.propertyOffset());
}

void test_bluetooth_logs_winos::starts_empty()
{
    QWidget parent;
    const bluetooth_logs_winos extractor(&parent);
    QCOMPARE(extractor.parentWidget(), &parent);
    QVERIFY(!extractor.isVisible());
    QVERIFY(settings_of(extractor) == kept_settings());
}

void test_bluetooth_logs_winos::setters_store()
{
    bluetooth_logs_winos extractor;
    plugin_helper_functions helper(nullptr);
    extractor.winos_set_plugin_helper_obj(&helper);
    extractor.winos_set_record_count(12);
    extractor.winos_set_tab_processed_count(4);
    extractor.winos_set_examiner_machine_info({.timezone_offset = 3600, .os_version_full = u"ignored"_s});
    extractor.winos_set_general_info({});
    extractor.winos_set_plugin_name(u" \tBluetooth Logs\n "_s);
    extractor.winos_set_destination_location(u"result/"_s, u"result/tmp/"_s, u"result/file.sqlite"_s);
    extractor.winos_set_essential_for_kaldo_desk_extraction({u"devices"_s});
    extractor.winos_set_essential_for_kaldo_desk_extraction({u"paired_devices"_s, u"paired_devices"_s});
    extractor.winos_set_engine_type(2);
    extractor.winos_set_source_count(7);
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    source.source_root_path = u"/root/"_s;
    source.source_path_2 = u"/second/"_s;
    source.os_scheme_display = u"Windows"_s;
    source.system_account_list = {{u"user"_s, u"/Users/user"_s}};
    extractor.winos_set_source_info(source);
    extractor.winos_cancel_extraction();

    kept_settings expected{
        .record_count = 12,
        .tab_processed_count = 4,
        .plugin_helper_obj = &helper,
        .destination_tmp_dir_path = u"result/tmp/"_s,
        .destination_db_file_path = u"result/file.sqlite"_s,
        .destination_result_dir_path = u"result/"_s,
        .source_root_path = u"/root/"_s,
        .source_path_2 = u"/second/"_s,
        .engine_type = 2,
        .bool_cancel_extraction = true,
        .source_count = 7,
        .os_scheme_display = u"Windows"_s,
        .system_account_text_list = {u"user"_s, u"/Users/user"_s},
        .selected_tab_list = {u"paired_devices"_s, u"paired_devices"_s},
        .plugin_name = u"Bluetooth Logs"_s,
    };
    QVERIFY(settings_of(extractor) == expected);

    extractor.winos_set_essentials();
    expected.bool_cancel_extraction = false;
    QVERIFY(settings_of(extractor) == expected);
}

void test_bluetooth_logs_winos::account_texts_data()
{
    QTest::addColumn<QList<account>>("accounts");
    QTest::addColumn<QStringList>("texts");

    // clang-format off
    QTest::newRow("no account")          << QList<account>() << QStringList();
    QTest::newRow("name before path")    << QList<account>{{u"b"_s, u"/B"_s}, {u"a"_s, u"/A"_s}} << QStringList{u"b"_s, u"/B"_s, u"a"_s, u"/A"_s};
    QTest::newRow("shared home path")    << QList<account>{{u"a"_s, u"/H"_s}, {u"b"_s, u"/H"_s}} << QStringList{u"a"_s, u"/H"_s, u"b"_s};
    QTest::newRow("shared name")         << QList<account>{{u"a"_s, u"/A"_s}, {u"a"_s, u"/B"_s}} << QStringList{u"a"_s, u"/A"_s, u"/B"_s};
    QTest::newRow("name equals a path")  << QList<account>{{u"/A"_s, u"/A"_s}} << QStringList{u"/A"_s};
    QTest::newRow("other letter case")   << QList<account>{{u"a"_s, u"A"_s}} << QStringList{u"a"_s, u"A"_s};
    QTest::newRow("empty name")          << QList<account>{{u""_s, u"/A"_s}} << QStringList{u"/A"_s};
    QTest::newRow("null path")           << QList<account>{{u"a"_s, QString()}} << QStringList{u"a"_s};
    QTest::newRow("nothing in it")       << QList<account>{{u""_s, QString()}, {QString(), u""_s}} << QStringList();
    QTest::newRow("blanks are kept")     << QList<account>{{u" "_s, u" a "_s}} << QStringList{u" "_s, u" a "_s};
    // clang-format on
}

void test_bluetooth_logs_winos::account_texts()
{
    QFETCH(QList<account>, accounts);
    QFETCH(QStringList, texts);

    bluetooth_logs_winos extractor;
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    source.system_account_list = accounts;
    extractor.winos_set_source_info(source);
    QCOMPARE(settings_of(extractor).system_account_text_list, texts);
}

void test_bluetooth_logs_winos::accounts_of_a_second_source_are_added()
{
    bluetooth_logs_winos extractor;
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    source.system_account_list = {{u"a"_s, u"/A"_s}};
    extractor.winos_set_source_info(source);
    source.system_account_list = {{u"b"_s, u"/A"_s}, {u"a"_s, u""_s}};
    extractor.winos_set_source_info(source);
    extractor.winos_set_essentials();
    QCOMPARE(settings_of(extractor).system_account_text_list, QStringList({u"a"_s, u"/A"_s, u"b"_s}));
}

void test_bluetooth_logs_winos::a_run_emits_one_records_signal_data()
{
    QTest::addColumn<QStringList>("selected");
    QTest::addColumn<int>("engine_type");
    QTest::addColumn<bool>("cancelled");

    // clang-format off
    QTest::newRow("both tables")   << QStringList{u"devices"_s, u"paired_devices"_s} << 0 << false;
    QTest::newRow("no table")      << QStringList()                                  << 0 << false;
    QTest::newRow("other engine")  << QStringList{u"devices"_s}                      << 5 << false;
    QTest::newRow("cancelled")     << QStringList{u"devices"_s}                      << 0 << true;
    // clang-format on
}

void test_bluetooth_logs_winos::a_run_emits_one_records_signal()
{
    QFETCH(QStringList, selected);
    QFETCH(int, engine_type);
    QFETCH(bool, cancelled);

    debug_log_capture log;
    log.start();
    const QTemporaryDir dir;
    bluetooth_logs_winos extractor;
    extractor.winos_set_destination_location(dir.path(), dir.path(), dir.filePath(u"results.sqlite"_s));
    extractor.winos_set_essential_for_kaldo_desk_extraction(selected);
    extractor.winos_set_engine_type(engine_type);
    extractor.winos_set_record_count(Q_INT64_C(5'000'000'000));
    if (cancelled)
        extractor.winos_cancel_extraction();
    const QSignalSpy records(&extractor, &bluetooth_logs_winos::signal_extracted_records_of_plugin_winos);
    const QSignalSpy tabs_done(&extractor, &bluetooth_logs_winos::signal_total_tabs_processed_winos);

    extractor.winos_find_artifacts_source();
    QCOMPARE(records.size(), 0);
    extractor.winos_extract_artifacts();
    QCOMPARE(records, QList<QVariantList>{{Q_INT64_C(5'000'000'000)}});
    QCOMPARE(tabs_done.size(), 0);
    QCOMPARE(log.take_lines(), QStringList());
    QVERIFY(QDir(dir.path()).isEmpty());
}

BLUETOOTH_LOGS_TEST(test_bluetooth_logs_winos, QApplication)

#include "test_bluetooth_logs_winos.moc"
