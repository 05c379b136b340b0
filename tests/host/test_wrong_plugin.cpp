// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/sanitizer.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QTest>

#include <csignal>

#include <dlfcn.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

/** No plug-in ends the program, and nothing that one does is taken for success. */
class test_wrong_plugin : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() override;
    void file_that_is_none_data();
    void file_that_is_none();
    void fault_while_it_is_loaded_data();
    void fault_while_it_is_loaded();
    void hanging_load_can_be_cancelled_data();
    void hanging_load_can_be_cancelled();
    void fault_during_the_extraction_data();
    void fault_during_the_extraction();
    void its_output_is_no_report();
    void process_that_it_leaves_behind_does_not_hold_the_run();

private:
    host_result extract_with(const QString &fault, const QStringList &more = {});
    QStringList evidence_states() const;

    host_program host;
    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
};

void test_wrong_plugin::initTestCase()
{
    host.set_variable(u"LSAN_OPTIONS"_s,
                      u"detect_leaks=0"_s); // a process that is confined cannot look for them at its end
    host.write_sample();
    QCOMPARE(::mkfifo(QFile::encodeName(host.path(u"fifo.so"_s)).constData(), 0600), 0);
}

void test_wrong_plugin::init()
{
    strict_test::init();
    QVERIFY(QDir(host.path(u"case"_s)).removeRecursively());
}

host_result test_wrong_plugin::extract_with(const QString &fault, const QStringList &more)
{
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, fault);
    return host.run(extract_sample + QStringList{u"--plugin"_s, host_program::faulty_plugin_file()} + more);
}

/** For each file of the record whether its hash before and after the run are there and the same. */
QStringList test_wrong_plugin::evidence_states() const
{
    QStringList states;
    const QJsonArray files = host.source_record().value("evidence"_L1).toArray();
    for (const QJsonValue &file : files) {
        const QString before = file["before"_L1]["sha256"_L1].toString();
        if (!before.isEmpty())
            states.append(before == file["after"_L1]["sha256"_L1].toString() ? u"same"_s : u"not checked"_s);
    }
    return states;
}

void test_wrong_plugin::file_that_is_none_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("message"); // what follows a final ": " is the system's

    Dl_info library = {};
    QVERIFY(::dladdr(reinterpret_cast<const void *>(&qVersion), &library) != 0);
    const QString foreign = QFile::decodeName(library.dli_fname);
    const QString data_symbol = host_program::data_symbol_plugin_file();
    const QString text = host.path(u"sample/README.txt"_s);
    const QString folder = host.path(u"sample"_s);

    // clang-format off
    QTest::newRow("nothing there")      << host.path(u"x.so"_s) << u"there is no plug-in file "_s + host.path(u"x.so"_s);
    QTest::newRow("folder")             << folder      << u"there is no plug-in file "_s + folder;
    QTest::newRow("FIFO")               << host.path(u"fifo.so"_s) << u"there is no plug-in file "_s + host.path(u"fifo.so"_s);
    QTest::newRow("text")               << text        << u"the plug-in file "_s + text + u" cannot be loaded: "_s;
    QTest::newRow("foreign library")    << foreign     << u"the plug-in file "_s + foreign + u" cannot be used: it has no function create_object"_s;
    QTest::newRow("datum of that name") << data_symbol << u"the plug-in file "_s + data_symbol + u" cannot be used: "_s;
    // clang-format on
}

void test_wrong_plugin::file_that_is_none()
{
    QFETCH(QString, file);
    QFETCH(QString, message);

    const host_result result = host.run(extract_sample + QStringList{u"--plugin"_s, file});
    QCOMPARE(result.exit_code, 1);
    QCOMPARE(result.output, QString());
    QVERIFY2(result.errors.startsWith(u"error: "_s + message), qPrintable(result.errors));
    QVERIFY2(message.endsWith(u": "_s) || result.errors == u"error: "_s + message + u'\n', qPrintable(result.errors));
    QCOMPARE(result.errors.count(u'\n'), 1);
    QVERIFY2(!QFile::exists(host.path(u"case"_s)), "a refused run made the case's folder");
}

void test_wrong_plugin::fault_while_it_is_loaded_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("message");

    // clang-format off
    QTest::newRow("null object")                << u"null"_s              << u"its function create_object gives no object"_s;
    QTest::newRow("another artifact")           << u"name"_s              << u"it is the plug-in of another artifact, Wi-Fi Logs"_s;
    QTest::newRow("constructor exits")          << u"loading exit"_s      << u"it ended the process while it was loaded, with exit code 0"_s;
    QTest::newRow("constructor aborts")         << u"loading abort"_s     << u"it crashed while it was loaded, with SIGABRT"_s;
    QTest::newRow("constructor terminates")     << u"loading terminate"_s << u"it crashed while it was loaded, with SIGABRT"_s;
    QTest::newRow("constructor throws")         << u"loading throw"_s     << u"it crashed while it was loaded, with SIGABRT"_s;
    QTest::newRow("constructor crashes")        << u"loading crash"_s     << u"it crashed while it was loaded, with SIGSEGV"_s;
    QTest::newRow("create_object exits")        << u"creation exit"_s     << u"it ended the process while it was loaded, with exit code 0"_s;
    QTest::newRow("create_object throws")       << u"creation throw"_s    << u"it crashed while it was loaded, with SIGABRT"_s;
    // clang-format on
}

void test_wrong_plugin::fault_while_it_is_loaded()
{
    QFETCH(QString, fault);
    QFETCH(QString, message);

    const host_result result = extract_with(fault);
    QCOMPARE(result.exit_code, 1);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors, u"error: the plug-in file "_s + host_program::faulty_plugin_file() + u" cannot be used: "_s
                                + message + u'\n');
    QVERIFY2(!QFile::exists(host.path(u"case"_s)), "a refused run made the case's folder");
}

void test_wrong_plugin::hanging_load_can_be_cancelled_data()
{
    QTest::addColumn<QString>("fault");

    QTest::newRow("constructor") << u"loading wait"_s;
    QTest::newRow("create_object") << u"creation wait"_s;
}

void test_wrong_plugin::hanging_load_can_be_cancelled()
{
    QFETCH(QString, fault);
    QFile::remove(host.path(u"started"_s));
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, fault);
    QProcess process;
    host.start(process, extract_sample + QStringList{u"--plugin"_s, host_program::faulty_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.errors, u"error: interrupted before anything was written\n"_s);
    QVERIFY(!QFile::exists(host.path(u"case"_s)));
}

void test_wrong_plugin::fault_during_the_extraction_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("status");
    QTest::addColumn<QString>("message");

    const QString ended = u"the process that runs the plug-in ended before the extraction did, with exit code 0"_s;
    const QString crashed = u"crashed: the process that runs the plug-in ended with "_s;
    // clang-format off
    QTest::newRow("crashes")          << u"extraction crash"_s     << u"crashed"_s << crashed + u"SIGSEGV"_s;
    QTest::newRow("crashes at its end") << u"end crash"_s          << u"crashed"_s << crashed + u"SIGSEGV"_s;
    QTest::newRow("crashes when it cleans up") << u"removal crash"_s << u"crashed"_s << crashed + u"SIGSEGV"_s;
    QTest::newRow("aborts")           << u"extraction abort"_s     << u"crashed"_s << crashed + u"SIGABRT"_s;
    QTest::newRow("terminates")       << u"extraction terminate"_s << u"crashed"_s << crashed + u"SIGABRT"_s;
    QTest::newRow("throws")           << u"extraction throw"_s     << u"crashed"_s << crashed + u"SIGABRT"_s;
    QTest::newRow("exits")            << u"extraction exit"_s      << u"failed"_s  << ended;
    QTest::newRow("exits at its end") << u"end exit"_s             << u"failed"_s  << ended;
    // clang-format on
}

void test_wrong_plugin::fault_during_the_extraction()
{
    QFETCH(QString, fault);
    QFETCH(QString, status);
    QFETCH(QString, message);

    const host_result result = extract_with(fault);
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.startsWith(u"error: "_s + message + u'\n'), qPrintable(result.errors));
    const QJsonObject record = host.source_record();
    QCOMPARE(record.value("status"_L1).toString(), status);
    QCOMPARE(record.value("exit_code"_L1).toInt(), 4);
    QCOMPARE(evidence_states(), QStringList({u"same"_s, u"same"_s, u"same"_s}));
    QVERIFY(!QFile::exists(host.path(u"case/Source1/tmp"_s)));
}

void test_wrong_plugin::its_output_is_no_report()
{
    // What the plug-in prints on standard output must not be taken for a word of the program itself.
    const host_result result = extract_with(u"extraction print"_s);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.errors, QString());
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"done"_s);
}

void test_wrong_plugin::process_that_it_leaves_behind_does_not_hold_the_run()
{
    QElapsedTimer clock;
    clock.start();
    const host_result result = extract_with(u"extraction fork"_s, {u"--no-confinement"_s});
    QCOMPARE(result.exit_code, 0);
    QVERIFY2(is_sanitized || clock.elapsed() < 4000, qPrintable(QString::number(clock.elapsed())));
}

BLUETOOTH_LOGS_TEST(test_wrong_plugin, QCoreApplication)

#include "test_wrong_plugin.moc"
