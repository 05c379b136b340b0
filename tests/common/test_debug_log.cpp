// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

class test_debug_log : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void function_field_data();
    void function_field();
    void engine_field_data();
    void engine_field();
    void time_is_local_and_complete();
    void debug_mode_off_writes_nothing();
    void a_missing_file_is_not_created();
    void a_file_that_cannot_be_opened_is_reported();
    void terminal_and_file_are_independent();
    void the_terminal_comes_first();
    void lines_are_appended();
    void message_is_written_unchanged();

private:
    debug_log_capture log;
};

void test_debug_log::init()
{
    strict_test::init();
    log.start();
    log.take_lines();
}

void test_debug_log::function_field_data()
{
    QTest::addColumn<QString>("function_info");
    QTest::addColumn<QString>("field");

    // clang-format off
    QTest::newRow("virtual operation") << u"virtual void bluetooth_logs::pub_extract_artifacts()"_s << u"bluetooth_logs::pub_extract_artifacts"_s;
    QTest::newRow("template result")   << u"QList<QJsonObject> bluetooth_logs_macos::read_other_devices()"_s << u"bluetooth_logs_macos::read_other_devices"_s;
    QTest::newRow("arguments")         << u"static bool a::b(QString, QSqlDatabase &, QString)"_s << u"a::b"_s;
    QTest::newRow("blanks around")     << u"  void a::b()  "_s << u"a::b"_s;
    QTest::newRow("no result type")    << u"a::b()"_s << u"a::b"_s;
    QTest::newRow("blank before (")    << u"void a::b ()"_s << u"a::b"_s;
    QTest::newRow("no parenthesis")    << u"void a::bc"_s << u"a::b"_s;
    QTest::newRow("one character")     << u"x"_s << u""_s;
    QTest::newRow("only (")            << u"()"_s << u""_s;
    QTest::newRow("empty")             << u""_s << u"FUNCTION INFO IS EMPTY ---FAILED--- debug!!!"_s;
    QTest::newRow("null")              << QString() << u"FUNCTION INFO IS EMPTY ---FAILED--- debug!!!"_s;
    QTest::newRow("all blank")         << u" \t\n "_s << u"FUNCTION INFO IS EMPTY ---FAILED--- debug!!!"_s;
    // clang-format on
}

void test_debug_log::function_field()
{
    QFETCH(QString, function_info);
    QFETCH(QString, field);

    plugin_static_function::app_debug(u"message"_s, function_info);
    QCOMPARE(log.take_lines(), QStringList{u"[time][KALDO_DESK][Artifacts Extraction]["_s + field + u"]:-- message"_s});
}

void test_debug_log::engine_field_data()
{
    QTest::addColumn<int>("engine_type");
    QTest::addColumn<QString>("field");

    // clang-format off
    QTest::newRow("desk")     <<  0 << u"[KALDO_DESK]"_s;
    QTest::newRow("field")    <<  1 << u"[KALDO_FIELD]"_s;
    QTest::newRow("boot")     <<  2 << u"[KALDO_BOOT]"_s;
    QTest::newRow("not set")  << -1 << u"[ -----FAILED----- to find Engine Type ][-1]"_s;
    QTest::newRow("unknown")  <<  3 << u"[ -----FAILED----- to find Engine Type ][3]"_s;
    // clang-format on
}

void test_debug_log::engine_field()
{
    QFETCH(int, engine_type);
    QFETCH(QString, field);

    plugin_static_function::set_engine_type(engine_type);
    plugin_static_function::app_debug(u"message"_s, u"void a::b()"_s);
    QCOMPARE(log.take_lines(), QStringList{u"[time]"_s + field + u"[Artifacts Extraction][a::b]:-- message"_s});
}

void test_debug_log::time_is_local_and_complete()
{
    const QDateTime before = QDateTime::currentDateTime();
    plugin_static_function::app_debug(u"m"_s, u"void a::b()"_s);
    QFile file(log.path());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString line = QString::fromUtf8(file.readAll());
    const QDateTime written = QLocale::c().toDateTime(line.mid(1, 20), u"yyyy-MMM-ddThh-mm-ss"_s);
    QVERIFY2(written.isValid(), qPrintable(line));
    QVERIFY(qAbs(before.secsTo(written)) < 10);
    QVERIFY(line.endsWith(u"\n"_s));
}

void test_debug_log::debug_mode_off_writes_nothing()
{
    plugin_static_function::debug_mode_status_bool = false;
    plugin_static_function::debug_print_on_terminal_bool = true;
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    static int messages;
    messages = 0;
    const QtMessageHandler earlier = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &) { ++messages; });
    plugin_static_function::app_debug(u"message"_s, u"void a::b()"_s);
    qInstallMessageHandler(earlier);
    QCOMPARE(messages, 0);
    QCOMPARE(log.take_lines(), QStringList());
}

void test_debug_log::a_missing_file_is_not_created()
{
    const QString missing = log.path() + u".missing"_s;
    plugin_static_function::debug_file_path = missing;
    plugin_static_function::app_debug(u"message"_s, u"void a::b()"_s);
    QVERIFY(!QFile::exists(missing));
}

void test_debug_log::a_file_that_cannot_be_opened_is_reported()
{
    plugin_static_function::debug_file_path = QFileInfo(log.path()).path(); // a directory
    QTest::ignoreMessage(QtDebugMsg,
                         QRegularExpression(u"^Debug File Open ----- FAILED-------   Error - .*directory.*$"_s));
    plugin_static_function::app_debug(u"message"_s, u"void a::b()"_s);
}

void test_debug_log::terminal_and_file_are_independent()
{
    const QRegularExpression line(uR"(^\[[^\]]{20}\]\[KALDO_DESK\]\[Artifacts Extraction\]\[a::b\]:-- "message"$)"_s);
    plugin_static_function::debug_print_on_terminal_bool = true;
    QTest::ignoreMessage(QtDebugMsg, line);
    plugin_static_function::app_debug(u"\"message\""_s, u"void a::b()"_s);
    QCOMPARE(log.take_lines().size(), 1);

    plugin_static_function::debug_print_in_file_bool = false;
    QTest::ignoreMessage(QtDebugMsg, line);
    plugin_static_function::app_debug(u"\"message\""_s, u"void a::b()"_s);
    QCOMPARE(log.take_lines(), QStringList());
}

void test_debug_log::the_terminal_comes_first()
{
    static QString path;
    static QByteArray file_before;
    path = log.path();
    file_before = "not printed";
    plugin_static_function::debug_print_on_terminal_bool = true;
    const QtMessageHandler earlier = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {
        QFile file(path);
        file_before = file.open(QIODevice::ReadOnly) ? file.readAll() : "unreadable";
    });
    plugin_static_function::app_debug(u"message"_s, u"void a::b()"_s);
    qInstallMessageHandler(earlier);
    QCOMPARE(file_before, "");
    QCOMPARE(log.take_lines().size(), 1);
}

void test_debug_log::lines_are_appended()
{
    QFile file(log.path());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("the host's own first line\n");
    file.close();
    plugin_static_function::app_debug(u"first"_s, u"void a::b()"_s);
    plugin_static_function::app_debug(u"second"_s, u"void a::b()"_s);
    const QString fields = u"[time][KALDO_DESK][Artifacts Extraction][a::b]:-- "_s;
    QCOMPARE(log.take_lines(),
             QStringList({u"the host's own first line"_s, fields + u"first"_s, fields + u"second"_s}));
}

void test_debug_log::message_is_written_unchanged()
{
    plugin_static_function::app_debug(u"  größe 日本 🎧 %s %1 "_s, u"void a::b()"_s);
    plugin_static_function::app_debug(QString(), u"void a::b()"_s);
    QCOMPARE(log.take_messages(), QStringList({u"a::b:   größe 日本 🎧 %s %1 "_s, u"a::b: "_s}));
}

BLUETOOTH_LOGS_TEST(test_debug_log, QCoreApplication)

#include "test_debug_log.moc"
