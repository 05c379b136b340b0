// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QMetaMethod>
#include <QTest>

using namespace Qt::StringLiterals;

using library = plugin_static_function;

class test_run_context : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void values_at_load();
    void setters_take_their_fields();
    void source_count_name();
    void reset();
    void untouched_records_are_empty();
    void cleared_source_info_keeps_its_last_texts();
    void cleared_general_info_keeps_its_fifth_flag();
    void cleared_examiner_machine_info();
    void meta_object_is_plain();
};

void test_run_context::values_at_load() // runs first
{
    QCOMPARE(library::debug_file_path, QString());
    QCOMPARE(library::type_engine_int, -1);
    QCOMPARE(library::source_count_int, -1);
    QCOMPARE(library::bool_cancel_extraction, false);
    QCOMPARE(library::debug_mode_status_bool, false);
    QCOMPARE(library::debug_print_in_file_bool, false);
    QCOMPARE(library::debug_print_on_terminal_bool, false);
    QCOMPARE(library::examiner_machine_timezone_offset_qint64, 0);
    QCOMPARE(library::examiner_machine_os_version_full, QString());
    QCOMPARE(library::examiner_selected_timezone_offset_qint64, 0);
    QCOMPARE(library::examiner_selected_date_format_int, 0);
    QCOMPARE(library::source_os_version_full, QString());
    QVERIFY(library::system_account_QList.isEmpty());
    QVERIFY(library::system_account_QStringList.isEmpty());
    QCOMPARE(library::root_pwd, QString());
}

void test_run_context::setters_take_their_fields()
{
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info general;
    general.debug_mode_status = true;
    general.debug_print_in_file = true;
    general.debug_file_path = u"/case/debug.log"_s;
    library::set_general_info(general);
    QCOMPARE(library::debug_mode_status_bool, true);
    QCOMPARE(library::debug_print_in_file_bool, true);
    QCOMPARE(library::debug_print_on_terminal_bool, false);
    QCOMPARE(library::debug_file_path, u"/case/debug.log"_s);

    general = {};
    general.debug_print_on_terminal = true;
    library::set_general_info(general);
    QCOMPARE(library::debug_mode_status_bool, false);
    QCOMPARE(library::debug_print_in_file_bool, false);
    QCOMPARE(library::debug_print_on_terminal_bool, true);

    library::set_examiner_machine_info({-19800, u"13.1"_s});
    QCOMPARE(library::examiner_machine_timezone_offset_qint64, -19800);
    QCOMPARE(library::examiner_machine_os_version_full, u"13.1"_s);

    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    source.os_version_full = u"12.6"_s;
    source.system_account_list = {{u"alice"_s, u"/Users/alice"_s}, {u"alice"_s, u""_s}};
    library::set_source_info(source);
    QCOMPARE(library::source_os_version_full, u"12.6"_s);
    QCOMPARE(library::system_account_QList.size(), 2);
    QCOMPARE(library::system_account_QList.at(0).system_account_home_path, u"/Users/alice"_s);
    QVERIFY(library::system_account_QStringList.isEmpty());
    source.system_account_list = {{u"bob"_s, u"/Users/bob"_s}};
    library::set_source_info(source); // the next source's accounts stand alone
    QCOMPARE(library::system_account_QList.size(), 1);
    QCOMPARE(library::system_account_QList.at(0).system_user, u"bob"_s);

    library::set_engine_type(2);
    QCOMPARE(library::type_engine_int, 2);
    library::set_cancel_extraction(true);
    QCOMPARE(library::bool_cancel_extraction, true);
    library::set_cancel_extraction(false);
    QCOMPARE(library::bool_cancel_extraction, false);
}

void test_run_context::source_count_name()
{
    library::set_source_count(1);
    QCOMPARE(library::get_source_count_name(), u"Source1"_s);
    library::set_source_count(0);
    QCOMPARE(library::get_source_count_name(), u"Source0"_s);
    library::set_source_count(-25);
    QCOMPARE(library::get_source_count_name(), u"Source-25"_s);
    library::set_essentials();
    QCOMPARE(library::get_source_count_name(), u"Source-1"_s);
}

void test_run_context::reset()
{
    library::debug_file_path = u"x"_s;
    library::type_engine_int = 1;
    library::bool_cancel_extraction = true;
    library::source_count_int = 4;
    library::system_account_QStringList = QStringList{u"x"_s};
    library::examiner_machine_timezone_offset_qint64 = 1;
    library::examiner_selected_timezone_offset_qint64 = 2;
    library::examiner_selected_date_format_int = 2;
    library::debug_mode_status_bool = true;
    library::debug_print_in_file_bool = true;
    library::debug_print_on_terminal_bool = true;
    library::system_account_QList = {{u"alice"_s, u""_s}};
    library::examiner_machine_os_version_full = u"13.1"_s;
    library::source_os_version_full = u"12.6"_s;
    library::root_pwd = u"secret"_s;

    library::set_essentials();
    QCOMPARE(library::examiner_machine_os_version_full, u"13.1"_s); // these three stay
    QCOMPARE(library::source_os_version_full, u"12.6"_s);
    QCOMPARE(library::root_pwd, u"secret"_s);

    library::examiner_machine_os_version_full.clear();
    library::source_os_version_full.clear();
    library::root_pwd.clear();
    values_at_load();
}

void test_run_context::untouched_records_are_empty()
{
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info general;
    QVERIFY(!general.general_flag_1 && !general.debug_mode_status && !general.debug_print_on_terminal
            && !general.debug_print_in_file && !general.general_flag_5 && general.debug_file_path.isEmpty());
    struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info machine;
    QVERIFY(machine.timezone_offset == 0 && machine.os_version_full.isEmpty());
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_desktop_info desktop;
    QVERIFY(!desktop.desktop_flag && desktop.desktop_text_4.isEmpty());
    struct_GLOBAL_ARTIFACT_posix_timestamp times;
    QVERIFY(times.birth_time == 0 && times.last_access_time == 0 && times.last_modification_time == 0);
}

void test_run_context::cleared_source_info_keeps_its_last_texts()
{
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info{u"1"_s,  u"2"_s,  u"3"_s,
                                                             u"4"_s,  u"5"_s,  {{u"user"_s, u"home"_s}},
                                                             u"7"_s,  u"8"_s,  {u"9"_s},
                                                             u"10"_s, u"11"_s, u"12"_s,
                                                             u"13"_s};
    library::clear_variables_kaldo_and_artifact_common_source_info(info);
    QVERIFY(info.source_root_path.isEmpty() && info.source_path_2.isEmpty() && info.os_scheme_display.isEmpty()
            && info.os_scheme_internal.isEmpty() && info.os_version_full.isEmpty() && info.system_account_list.isEmpty()
            && info.source_text_7.isEmpty() && info.source_text_8.isEmpty() && info.source_path_list.isEmpty()
            && info.source_log_file_path.isEmpty() && info.source_text_11.isEmpty());
    QCOMPARE(info.source_text_12, u"12"_s);
    QCOMPARE(info.source_text_13, u"13"_s);
}

void test_run_context::cleared_general_info_keeps_its_fifth_flag()
{
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info{true, true, true, true, true, u"/log"_s};
    library::clear_variables_kaldo_and_artifact_common_general_info(info);
    QVERIFY(!info.general_flag_1 && !info.debug_mode_status && !info.debug_print_on_terminal
            && !info.debug_print_in_file);
    QCOMPARE(info.general_flag_5, true);
    QCOMPARE(info.debug_file_path, QString());
}

void test_run_context::cleared_examiner_machine_info()
{
    struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info{3600, u"13"_s};
    library::clear_variables_kaldo_and_artifact_common_examiner_machine_info(info);
    QCOMPARE(info.timezone_offset, 0);
    QCOMPARE(info.os_version_full, QString());
}

void test_run_context::meta_object_is_plain()
{
    const QMetaObject &meta = library::staticMetaObject;
    QCOMPARE(meta.superClass(), &QWidget::staticMetaObject);
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

BLUETOOTH_LOGS_TEST(test_run_context, QCoreApplication)

#include "test_run_context.moc"
