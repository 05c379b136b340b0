// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "extractors/ios_uid/bluetooth_logs_ios_uid.h"
#include "extractors/macos/bluetooth_logs_macos.h"
#include "extractors/winos/bluetooth_logs_winos.h"
#include "plugin/m_bluetooth_logs.h"
#include "tests/support/plugin_run.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QDir>
#include <QMetaMethod>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <cstdint>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

using frame_operation = std::function<void(bluetooth_logs &)>;
using frame_reader = std::function<QVariantList(const bluetooth_logs &)>;
Q_DECLARE_METATYPE(frame_operation)
Q_DECLARE_METATYPE(frame_reader)

class test_frame : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void methods_in_order();
    void form();
    void form_keeps_an_object_name();
    void initial_values();
    void children();
    void artifact_name_is_translatable();
    void run_context_gets_the_settings();
    void settings_are_forwarded_data();
    void settings_are_forwarded();
    void reset();
    void cancel();
    void relay_slots();
    void process_finished();
    void unmatched_scheme_data();
    void unmatched_scheme();
    void matched_schemes_data();
    void matched_schemes();
    void cancelled_extraction_data();
    void cancelled_extraction();
    void cancelled_by_the_first_signal();
    void second_list_is_ignored();
    void operations_without_effect();
    void main_class();
};

void test_frame::init()
{
    strict_test::init();
    plugin_static_function::set_essentials();
}

void test_frame::methods_in_order()
{
    const QMetaObject &meta = bluetooth_logs::staticMetaObject;
    QCOMPARE(meta.superClass(), &QFrame::staticMetaObject);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    struct method
    {
        const char *signature;
        QMetaMethod::MethodType type;
        QList<QByteArray> parameters;
    };
    const method methods[] = {
        {"signal_extracted_records_of_plugin_overall(qint64)", QMetaMethod::Signal, {"records"}},
        {"signal_tab_processed_of_plugin_overall(int)", QMetaMethod::Signal, {"tab_count"}},
        {"slot_m_process_finished(int)", QMetaMethod::Slot, {"status"}},
        {"slot_extracted_records_of_plugin(qint64)", QMetaMethod::Slot, {""}},
        {"slot_total_tabs_processed(int)", QMetaMethod::Slot, {""}},
    };
    QCOMPARE(meta.methodCount() - meta.methodOffset(), int(std::size(methods)));
    for (int index = 0; index < int(std::size(methods)); ++index) {
        const QMetaMethod actual = meta.method(meta.methodOffset() + index);
        QCOMPARE(meta.indexOfMethod(methods[index].signature), meta.methodOffset() + index);
        QCOMPARE(actual.methodType(), methods[index].type);
        QCOMPARE(actual.parameterNames(), methods[index].parameters);
    }
}

void test_frame::form()
{
    const bluetooth_logs frame;
    QCOMPARE(frame.objectName(), u"bluetooth_logs"_s);
    QCOMPARE(frame.frameShadow(), QFrame::Raised);
    QCOMPARE(frame.frameShape(), QFrame::StyledPanel);
    QCOMPARE(frame.size(), QSize(400, 300));
    QCOMPARE(frame.windowTitle(), u"Frame"_s);
    QVERIFY(!frame.isVisible());
    QCOMPARE(frame.parent(), nullptr);
}

void test_frame::form_keeps_an_object_name()
{
    QWidget parent;
    const bluetooth_logs frame(&parent);
    QCOMPARE(frame.parentWidget(), &parent);
}

void test_frame::initial_values()
{
    const bluetooth_logs frame;
    QCOMPARE(frame.bool_process_finished, false);
    QCOMPARE(frame.records_count, 0);
    QCOMPARE(frame.tabs_processed_count, 0);
    QCOMPARE(frame.engine_type, 0);
    QCOMPARE(frame.bool_cancel_extraction, false);
    QCOMPARE(frame.os_scheme_internal, QString());
    QCOMPARE(frame.selected_tabs_list, QStringList());
}

void test_frame::children()
{
    // The extractors die with the frame; the helper object lives on.
    auto frame = std::make_unique<bluetooth_logs>();
    const QObjectList children = frame->children();
    QCOMPARE(children.size(), 3);
    QVERIFY(qobject_cast<bluetooth_logs_macos *>(children.at(0)));
    QVERIFY(qobject_cast<bluetooth_logs_ios_uid *>(children.at(1)));
    QVERIFY(qobject_cast<bluetooth_logs_winos *>(children.at(2)));
    QPointer<QObject> extractors[] = {children.at(0), children.at(1), children.at(2)};
    plugin_helper_functions *helper = frame->helper_obj;
    frame.reset();
    for (const QPointer<QObject> &extractor : extractors)
        QVERIFY(extractor.isNull());
    QVERIFY(helper->check_is_image_by_extn(u"a.jpg"_s));
}

void test_frame::artifact_name_is_translatable()
{
    class reverse : public QTranslator
    {
    public:
        QString translate(const char *context, const char *text, const char *, int) const override
        {
            return qstrcmp(context, "QObject") == 0 && qstrcmp(text, "Bluetooth Logs") == 0 ? u"Funk Protokolle"_s
                   : qstrcmp(context, "bluetooth_logs") == 0 && qstrcmp(text, "Frame") == 0 ? u"Rahmen"_s
                                                                                            : QString();
        }
        bool isEmpty() const override
        {
            return false;
        }
    };
    plugin_run run;
    QCOMPARE(run.frame.pub_get_artifact_name(), u"Bluetooth Logs"_s);
    reverse translator;
    QCoreApplication::installTranslator(&translator);
    const bluetooth_logs translated;
    const QString title = translated.windowTitle();
    const QString name = run.frame.pub_get_artifact_name();
    run.frame.pub_set_result_directory(run.result_directory());
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(name, u"Funk Protokolle"_s);
    QCOMPARE(title, u"Rahmen"_s);
    QVERIFY(QDir(run.result_directory() + u"/Artifacts_Result/Funk_Protokolle/tmp"_s).exists());
}

void test_frame::run_context_gets_the_settings()
{
    plugin_run run;
    run.engine_type = 1;
    run.source_count = 4;
    run.source.os_version_full = u"12.6"_s;
    run.source.system_account_list = {{u"alice"_s, u"/Users/alice"_s}};
    run.prepare();
    QCOMPARE(plugin_static_function::type_engine_int, 1);
    QCOMPARE(plugin_static_function::get_source_count_name(), u"Source4"_s);
    QCOMPARE(plugin_static_function::source_os_version_full, u"12.6"_s);
    QCOMPARE(plugin_static_function::system_account_QList.size(), 1);
    QCOMPARE(plugin_static_function::debug_file_path, run.log.path());
    QCOMPARE(run.frame.engine_type, 1);
    QCOMPARE(run.frame.os_scheme_internal, u"macOS"_s);
    QCOMPARE(run.frame.selected_tabs_list, QStringList({u"devices"_s, u"paired_devices"_s}));
    run.frame.pub_set_examiner_machine_info({3600, u"13"_s});
    QCOMPARE(plugin_static_function::examiner_machine_timezone_offset_qint64, 3600);
    QCOMPARE(plugin_static_function::examiner_machine_os_version_full, u"13"_s);
}

void test_frame::settings_are_forwarded_data()
{
    // An operation, what the objects behind the frame keep of it in the order macOS, iOS, Windows, then the frame, the
    // helper and the run context, and what that must be. The operation is called on a frame as it is constructed.
    QTest::addColumn<frame_operation>("operation");
    QTest::addColumn<frame_reader>("kept");
    QTest::addColumn<QVariantList>("expected");
    const auto row = [](const char *name, const frame_operation &operation, const frame_reader &kept,
                        const QVariantList &expected) { QTest::newRow(name) << operation << kept << expected; };

    static plugin_helper_functions *const nobody = nullptr;
    static auto *const backup = reinterpret_cast<ios_uid_backup_parser *>(std::uintptr_t(0x10));
    const auto cancel_flags = [](const bluetooth_logs &f) -> QVariantList {
        return {f.macos_obj->bool_cancel_extraction,  f.ios_uid_obj->bool_cancel_extraction,
                f.winos_obj->bool_cancel_extraction,  f.bool_cancel_extraction,
                f.helper_obj->bool_cancel_extraction, plugin_static_function::bool_cancel_extraction};
    };
    const auto extract_for_nobody = [](bluetooth_logs &f) {
        f.slot_extracted_records_of_plugin(qint64(1) << 40);
        f.slot_total_tabs_processed(3);
        f.pub_extract_artifacts();
    };
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info source;
    source.source_root_path = u"/root/"_s;
    source.source_path_2 = u"/second/"_s;
    source.os_scheme_display = u"display"_s;
    source.os_scheme_internal = u"internal"_s;
    source.os_version_full = u"1.2"_s;
    source.system_account_list = {{u"alice"_s, u"/home"_s}};
    source.source_text_8 = u"eight"_s;
    source.source_path_list = QStringList{u"a"_s, u"b"_s};
    source.source_log_file_path = u"/log"_s;
    const auto set_source = [source](bluetooth_logs &f) { f.pub_set_source_info(source); };
    const auto directory = std::make_shared<QTemporaryDir>();
    const auto set_directory = [directory](bluetooth_logs &f) { f.pub_set_result_directory(directory->path()); };
    const QString result = directory->path() + u"/Artifacts_Result/Bluetooth_Logs/"_s;

    row(
        "engine type", [](bluetooth_logs &f) { f.pub_set_engine_type(2); },
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->engine_type, f.ios_uid_obj->engine_type, f.winos_obj->engine_type, f.engine_type,
                    plugin_static_function::type_engine_int};
        },
        QVariantList(5, 2));
    row(
        "plug-in name", [](bluetooth_logs &f) { f.pub_set_engine_type(2); },
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->plugin_name, f.ios_uid_obj->plugin_name, f.winos_obj->plugin_name};
        },
        QVariantList(3, u"Bluetooth Logs"_s));
    row(
        "source count", [](bluetooth_logs &f) { f.pub_set_source_count(7); },
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->source_count, f.ios_uid_obj->source_count, f.winos_obj->source_count,
                    plugin_static_function::get_source_count_name()};
        },
        {7, 7, 7, u"Source7"_s});
    row(
        "selected tables", [](bluetooth_logs &f) { f.pub_set_essential_for_kaldo_desk_extraction({u"t"_s}, {u"x"_s}); },
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->selected_tabs_list, f.ios_uid_obj->selected_tab_list, f.winos_obj->selected_tab_list,
                    f.selected_tabs_list};
        },
        QVariantList(4, QStringList{u"t"_s}));
    row(
        "root path", set_source,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->source_root_path, f.ios_uid_obj->source_root_path, f.winos_obj->source_root_path,
                    f.source_root_path};
        },
        QVariantList(4, u"/root/"_s));
    row(
        "second path", set_source,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->source_path_2, f.ios_uid_obj->source_path_2, f.winos_obj->source_path_2};
        },
        QVariantList(3, u"/second/"_s));
    row("system's name", set_source,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->os_scheme_display, f.ios_uid_obj->os_scheme_display, f.winos_obj->os_scheme_display,
                    f.os_scheme_internal, plugin_static_function::source_os_version_full};
        },
        {u"display"_s, u"display"_s, u"display"_s, u"internal"_s, u"1.2"_s});
    row("accounts", set_source,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->system_user_list, f.winos_obj->system_account_text_list,
                    plugin_static_function::system_account_QList.size()};
        },
        {QStringList{u"alice"_s}, QStringList{u"alice"_s, u"/home"_s}, qsizetype(1)});
    row("one extractor's own texts", set_source,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->source_text_8, f.macos_obj->source_path_list_text,
                    f.ios_uid_obj->source_log_file_path};
        },
        {u"eight"_s, u"a;++::++;b"_s, u"/log"_s});
    row(
        "desktop",
        [](bluetooth_logs &f) {
            f.pub_set_desktop_info({u"1"_s, u"2"_s, true, u"4"_s, u"5"_s});
        },
        [](const bluetooth_logs &f) -> QVariantList { return {f.macos_obj->desktop_text_4}; }, {u"4"_s});
    row(
        "backup pointer", [](bluetooth_logs &f) { f.pub_set_ios_uid_backup_pointer(backup); },
        [](const bluetooth_logs &f) -> QVariantList { return {f.ios_uid_obj->ios_backup_pointer == backup}; }, {true});
    row(
        "result folder", set_directory,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->plugin_result_directory, f.ios_uid_obj->destination_result_dir_path,
                    f.winos_obj->destination_result_dir_path, f.plugin_result_directory};
        },
        QVariantList(4, result));
    row(
        "temporary folder", set_directory,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->temp_directory, f.ios_uid_obj->destination_tmp_dir_path,
                    f.winos_obj->destination_tmp_dir_path, f.temp_directory, f.helper_obj->adhoc_parent_path};
        },
        QVariantList(5, QString(result + u"tmp/"_s)));
    row(
        "result database", set_directory,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->destination_db_file, f.ios_uid_obj->destination_db_file_path,
                    f.winos_obj->destination_db_file_path, f.destination_db_file};
        },
        QVariantList(4, QString(result + u"Bluetooth_Logs.sqlite"_s)));
    row(
        "cancel", [](bluetooth_logs &f) { f.pub_cancel_extraction(); }, cancel_flags, QVariantList(6, true));
    row(
        "reset",
        [](bluetooth_logs &f) {
            f.pub_cancel_extraction();
            f.pub_set_essentials();
        },
        cancel_flags, QVariantList(6, false));
    row(
        "helper", extract_for_nobody,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.helper_obj != nobody, f.macos_obj->helper_obj == f.helper_obj,
                    f.ios_uid_obj->plugin_helper_obj == f.helper_obj, f.winos_obj->plugin_helper_obj == f.helper_obj};
        },
        QVariantList(4, true));
    row(
        "records so far", extract_for_nobody,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->records_count, f.ios_uid_obj->record_count, f.winos_obj->record_count,
                    f.records_count};
        },
        QVariantList(4, qint64(1) << 40));
    row(
        "tables so far", extract_for_nobody,
        [](const bluetooth_logs &f) -> QVariantList {
            return {f.macos_obj->tabs_processed_count, f.ios_uid_obj->tab_processed_count,
                    f.winos_obj->tab_processed_count, f.tabs_processed_count};
        },
        QVariantList(4, 3));
    row(
        "general record",
        [](bluetooth_logs &f) {
            f.pub_set_general_info({false, false, true, true, false, u"/d"_s});
        },
        [](const bluetooth_logs &) -> QVariantList {
            return {plugin_static_function::debug_mode_status_bool,
                    plugin_static_function::debug_print_on_terminal_bool,
                    plugin_static_function::debug_print_in_file_bool, plugin_static_function::debug_file_path};
        },
        {false, true, true, u"/d"_s});
    row(
        "examiner's machine",
        [](bluetooth_logs &f) {
            f.pub_set_examiner_machine_info({3600, u"13"_s});
        },
        [](const bluetooth_logs &) -> QVariantList {
            return {plugin_static_function::examiner_machine_timezone_offset_qint64,
                    plugin_static_function::examiner_machine_os_version_full};
        },
        {qint64(3600), u"13"_s});
}

void test_frame::settings_are_forwarded()
{
    QFETCH(frame_operation, operation);
    QFETCH(frame_reader, kept);
    bluetooth_logs frame;
    operation(frame);
    QTEST(kept(frame), "expected");
}

void test_frame::reset()
{
    plugin_run run;
    run.prepare();
    run.frame.slot_extracted_records_of_plugin(5);
    run.frame.slot_total_tabs_processed(2);
    run.frame.pub_cancel_extraction();
    run.frame.pub_set_essentials();
    QCOMPARE(run.frame.records_count, 0);
    QCOMPARE(run.frame.tabs_processed_count, 0);
    QCOMPARE(run.frame.bool_cancel_extraction, false);
    QCOMPARE(plugin_static_function::bool_cancel_extraction, false);
    QCOMPARE(plugin_static_function::debug_mode_status_bool, false);
    QCOMPARE(run.frame.os_scheme_internal, u"macOS"_s); // records and paths stay
    QCOMPARE(run.frame.engine_type, 0);

    // The switched-off log says nothing until the general record comes again.
    run.log.take_lines();
    run.frame.pub_find_source_file();
    QCOMPARE(run.log.take_lines(), QStringList());
    run.frame.pub_set_general_info(run.log.general_info());
    run.frame.pub_find_source_file();
    QVERIFY(run.log.take_lines().first().startsWith(u"[time][ -----FAILED----- to find Engine Type ][-1]["_s));
}

void test_frame::cancel()
{
    bluetooth_logs frame;
    frame.pub_cancel_extraction();
    QCOMPARE(frame.bool_cancel_extraction, true);
    QCOMPARE(plugin_static_function::bool_cancel_extraction, true);
}

void test_frame::relay_slots()
{
    bluetooth_logs frame;
    const QSignalSpy records(&frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall);
    const QSignalSpy tabs(&frame, &bluetooth_logs::signal_tab_processed_of_plugin_overall);
    const qint64 many = qint64(1) << 40;
    Q_EMIT frame.findChild<bluetooth_logs_macos *>()->signal_extracted_records_of_plugin_macos(many);
    Q_EMIT frame.findChild<bluetooth_logs_macos *>()->signal_total_tabs_processed_macos(1);
    QCOMPARE(frame.records_count, many);
    QCOMPARE(frame.tabs_processed_count, 1);
    Q_EMIT frame.findChild<bluetooth_logs_ios_uid *>()->signal_extracted_records_of_plugin_ios_uid(2);
    Q_EMIT frame.findChild<bluetooth_logs_ios_uid *>()->signal_total_tabs_processed_ios_uid(2);
    Q_EMIT frame.findChild<bluetooth_logs_winos *>()->signal_extracted_records_of_plugin_winos(3);
    Q_EMIT frame.findChild<bluetooth_logs_winos *>()->signal_total_tabs_processed_winos(3);
    const QList<QList<QVariant>> expected_records = {{many}, {qint64(2)}, {qint64(3)}};
    const QList<QList<QVariant>> expected_tabs = {{1}, {2}, {3}};
    QCOMPARE(records, expected_records);
    QCOMPARE(tabs, expected_tabs);
}

void test_frame::process_finished()
{
    bluetooth_logs frame;
    frame.slot_m_process_finished(1);
    QCOMPARE(frame.bool_process_finished, true);
    frame.pub_set_essentials();
    QCOMPARE(frame.bool_process_finished, true);
}

void test_frame::unmatched_scheme_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::newRow("other case") << u"macos"_s;
    QTest::newRow("empty") << u""_s;
    QTest::newRow("blank behind") << u"macOS "_s;
    QTest::newRow("another system") << u"Linux"_s;
    QTest::newRow("short for iOS") << u"iOS"_s;
}

void test_frame::unmatched_scheme()
{
    QFETCH(QString, scheme);
    plugin_run run;
    run.source.os_scheme_internal = scheme;
    run.prepare();
    run.frame.slot_extracted_records_of_plugin(7);
    run.log.take_lines();
    const QSignalSpy records(&run.frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall);
    run.frame.pub_find_source_file();
    run.frame.pub_extract_artifacts();
    QCOMPARE(run.log.take_lines(),
             QStringList(
                 {u"[time][KALDO_DESK][Artifacts Extraction][bluetooth_logs::pub_find_source_file]:-- "
                  "------FAILED------- supported os scheme internal not matched, received os scheme internal=  "_s
                      + scheme + u", plugin name is Bluetooth Logs"_s,
                  u"[time][KALDO_DESK][Artifacts Extraction][bluetooth_logs::pub_extract_artifacts]:-- "
                  "[pub_extract_artifacts] - START"_s,
                  u"[time][KALDO_DESK][Artifacts Extraction][bluetooth_logs::pub_extract_artifacts]:-- "
                  "------FAILED------- supported os scheme internal not matched, received os scheme internal =  "_s
                      + scheme + u", plugin name is Bluetooth Logs"_s,
                  u"[time][KALDO_DESK][Artifacts Extraction][bluetooth_logs::pub_extract_artifacts]:-- "
                  "[pub_extract_artifacts] - END"_s}));
    const QList<QList<QVariant>> expected = {{qint64(0)}, {qint64(7)}};
    QCOMPARE(records, expected);
}

void test_frame::matched_schemes_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::newRow("iOS") << u"iOS_UID"_s;
    QTest::newRow("Windows") << u"winOS"_s;
}

void test_frame::matched_schemes()
{
    // Nothing selected: the extractor is called and ends its run with the count that it was given.
    QFETCH(QString, scheme);
    plugin_run run;
    run.source.os_scheme_internal = scheme;
    run.tabs.clear();
    run.prepare();
    run.frame.slot_extracted_records_of_plugin(7);
    run.log.take_lines();
    const QSignalSpy records(&run.frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall);
    const QSignalSpy tabs(&run.frame, &bluetooth_logs::signal_tab_processed_of_plugin_overall);
    run.extract();
    QCOMPARE(run.take_messages(),
             QStringList({u"bluetooth_logs::pub_extract_artifacts: [pub_extract_artifacts] - START"_s,
                          u"bluetooth_logs::pub_extract_artifacts: [pub_extract_artifacts] - END"_s}));
    const QList<QList<QVariant>> expected = {{qint64(0)}, {qint64(7)}, {qint64(7)}};
    QCOMPARE(records, expected);
    QCOMPARE(tabs.count(), 0);
}

void test_frame::cancelled_extraction_data()
{
    QTest::addColumn<QString>("scheme");
    QTest::addColumn<qsizetype>("lines");
    QTest::addColumn<qsizetype>("records");
    QTest::newRow("macOS") << u"macOS"_s << qsizetype(1) << qsizetype(1);
    QTest::newRow("iOS") << u"iOS_UID"_s << qsizetype(1) << qsizetype(1);
    QTest::newRow("Windows") << u"winOS"_s << qsizetype(1) << qsizetype(1);
    QTest::newRow("unmatched goes on") << u"other"_s << qsizetype(3) << qsizetype(2);
}

void test_frame::cancelled_extraction()
{
    QFETCH(QString, scheme);
    plugin_run run;
    run.source.os_scheme_internal = scheme;
    run.prepare();
    run.log.take_lines();
    const QSignalSpy records(&run.frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall);
    run.frame.pub_cancel_extraction();
    run.frame.pub_extract_artifacts();
    const QStringList lines = run.take_messages();
    QTEST(lines.size(), "lines");
    QCOMPARE(lines.first(), u"bluetooth_logs::pub_extract_artifacts: [pub_extract_artifacts] - START"_s);
    QTEST(records.count(), "records");
    QCOMPARE(records.first().first().toLongLong(), 0);
}

void test_frame::cancelled_by_the_first_signal()
{
    // The flag is read behind the first signal: a host that answers it with a cancellation gets no row.
    plugin_run run;
    run.source.os_scheme_internal = u"winOS"_s;
    run.prepare();
    run.log.take_lines();
    connect(&run.frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall, &run.frame,
            &bluetooth_logs::pub_cancel_extraction);
    const QSignalSpy records(&run.frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall);
    run.frame.pub_extract_artifacts();
    QCOMPARE(records.count(), 1);
    QCOMPARE(run.take_messages(),
             QStringList{u"bluetooth_logs::pub_extract_artifacts: [pub_extract_artifacts] - START"_s});
}

void test_frame::second_list_is_ignored()
{
    bluetooth_logs frame;
    frame.pub_set_essential_for_kaldo_desk_extraction({}, {u"devices"_s});
    QCOMPARE(frame.selected_tabs_list, QStringList());
    frame.pub_set_essential_for_kaldo_desk_extraction({u"devices"_s}, {u"paired_devices"_s});
    QCOMPARE(frame.selected_tabs_list, QStringList{u"devices"_s});
}

void test_frame::operations_without_effect()
{
    plugin_run run;
    run.prepare();
    run.log.take_lines();
    run.frame.pub_set_clear_db(false);
    run.frame.pub_generate_chat_html_pages();
    run.frame.pub_set_extended_attributes_list({u"x"_s});
    run.frame.pub_set_ios_uid_backup_pointer(nullptr);
    QCOMPARE(run.log.take_lines(), QStringList());
}

void test_frame::main_class()
{
    const m_bluetooth_logs object;
    Q_UNUSED(object)
    static_assert(std::is_empty_v<m_bluetooth_logs>);
}

BLUETOOTH_LOGS_TEST(test_frame, QApplication)

#include "test_frame.moc"
