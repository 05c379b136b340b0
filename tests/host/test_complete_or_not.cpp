// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

/** However a run ends, its record says whether it came to its end, and one that did not may be begun anew. */
class test_complete_or_not : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void signal_cancels_data();
    void signal_cancels();
    void hangup_that_is_ignored();
    void reader_of_the_output_is_gone();
    void record_says_running_from_the_start();
    void earlier_run_data();
    void earlier_run();
    void record_of_others_is_no_leave();

private:
    static QString status(const host_program &host)
    {
        return host.source_record().value("status"_L1).toString();
    }

    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
};

void test_complete_or_not::signal_cancels_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGHUP") << SIGHUP;
}

void test_complete_or_not::signal_cancels()
{
    QFETCH(int, signal);
    const host_program host;
    host.write_sample();
    QProcess process;
    host.start(process, extract_sample + QStringList{u"--plugin"_s, host_program::waiting_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    QCOMPARE(::kill(pid_t(process.processId()), signal), 0);
    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.errors, u"note: finishing what is being written; again to stop at once\n"
                            "error: interrupted: the result is incomplete\n"_s);
    QCOMPARE(status(host), u"interrupted"_s);
    const QString result_folder = host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs"_s);
    QVERIFY(!QFile::exists(host.path(u"case/Source1/tmp"_s)));
    QVERIFY(!QFile::exists(result_folder + u"/tmp"_s));
    QCOMPARE(QDir(result_folder).entryList({u"*-journal"_s}), QStringList());

    const host_result shown = host.run({u"show"_s, u"case"_s});
    QCOMPARE(shown.errors, u"warning: Source1 is incomplete: its run ended as \"interrupted\"\n"_s);
    QCOMPARE(shown.exit_code, 4);
    const host_result anew = host.run(extract_sample);
    QCOMPARE(anew.errors, QString());
    QCOMPARE(anew.exit_code, 0);
    QCOMPARE(status(host), u"done"_s);
}

void test_complete_or_not::hangup_that_is_ignored()
{
    const host_program host;
    host.write_sample();
    QProcess process;
    // As nohup does it.
    process.setProgram(u"sh"_s);
    process.setWorkingDirectory(host.path(QString()));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"BLUETOOTH_LOGS_WAITING_PLUGIN_FOLDER"_s, host.path(QString()));
    process.setProcessEnvironment(environment);
    process.setArguments(QStringList{u"-c"_s, u"trap '' HUP; exec \"$@\""_s, u"sh"_s, host_program::program_file()}
                         + extract_sample
                         + QStringList{u"--no-confinement"_s, u"--plugin"_s, host_program::waiting_plugin_file()});
    process.start();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    QCOMPARE(::kill(pid_t(process.processId()), SIGHUP), 0);
    QVERIFY(!process.waitForFinished(200));
    QVERIFY(QFile(host.path(u"go"_s)).open(QIODevice::WriteOnly));
    QCOMPARE(host_program::finish(process).exit_code, 0);
    QCOMPARE(status(host), u"done"_s);
}

void test_complete_or_not::reader_of_the_output_is_gone()
{
    const host_program host;
    host.write_sample();
    const host_result result = host.run_through({u"sh"_s, u"-c"_s, u"(\"$@\"; echo $? > code) | true"_s, u"sh"_s},
                                                extract_sample);
    QCOMPARE(result.errors, u"error: standard output cannot be written\n"_s);
    QFile code(host.path(u"code"_s));
    QVERIFY(code.open(QIODevice::ReadOnly));
    QCOMPARE(code.readAll(), "1\n");
    QCOMPARE(status(host), u"done"_s); // nobody read of it, but the extraction came to its end
}

void test_complete_or_not::record_says_running_from_the_start()
{
    const host_program host;
    host.write_sample();
    QString meanwhile;
    host_result shown;
    QCOMPARE(host.run_meanwhile(extract_sample, u"extraction"_s,
                                [&] {
                                    meanwhile = status(host);
                                    shown = host.run({u"show"_s, u"case"_s});
                                })
                 .exit_code,
             0);
    QCOMPARE(meanwhile, u"running"_s);
    QVERIFY2(shown.errors.contains(u"warning: Source1 is incomplete: a run works on it\n"_s), qPrintable(shown.errors));
    QCOMPARE(status(host), u"done"_s);
    QVERIFY(!QFile::exists(host.path(u"case/Source1/source.json.new"_s)));
    QCOMPARE(host.run({u"show"_s, u"case"_s}).errors, QString());
}

void test_complete_or_not::earlier_run_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<bool>("is_complete");
    QTest::addColumn<QString>("words"); // of show

    // clang-format off
    QTest::newRow("killed")        << u"running"_s          << false << u"Source1 is incomplete: its run ended as \"interrupted\""_s;
    QTest::newRow("failed")        << u"failed"_s           << false << u"Source1 is incomplete: its run ended as \"failed\""_s;
    QTest::newRow("crashed")       << u"crashed"_s          << false << u"Source1 is incomplete: its run ended as \"crashed\""_s;
    QTest::newRow("timed out")     << u"timed out"_s        << false << u"Source1 is incomplete: its run ended as \"timed out\""_s;
    QTest::newRow("out of memory") << u"out of memory"_s    << false << u"Source1 is incomplete: its run ended as \"out of memory\""_s;
    QTest::newRow("interrupted")   << u"interrupted"_s      << false << u"Source1 is incomplete: its run ended as \"interrupted\""_s;
    QTest::newRow("done")          << u"done"_s             << true  << QString();
    QTest::newRow("partial")       << u"partial"_s          << true  << u"Source1 is partial: its source.json says what could not be read or written"_s;
    QTest::newRow("changed")       << u"evidence changed"_s << true  << u"the evidence of Source1 changed during its run: its source.json says how"_s;
    // clang-format on
}

void test_complete_or_not::earlier_run()
{
    QFETCH(QString, status);
    QFETCH(bool, is_complete);
    QFETCH(QString, words);
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run(extract_sample).exit_code, 0);
    QJsonObject record = host.source_record();
    record.insert(u"status"_s, status);
    QFile file(host.path(u"case/Source1/source.json"_s));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(QJsonDocument(record).toJson()) > 0);
    file.close();

    QCOMPARE(host.run({u"show"_s, u"case"_s}).errors,
             words.isEmpty() ? QString()
                             : QString(u"warning: the manifest is older than source 1: \"collect\" makes it anew\n"
                                       "warning: "_s
                                       + words + u'\n'));
    const host_result anew = host.run(extract_sample);
    QCOMPARE(anew.exit_code, is_complete ? 2 : 0);
    QCOMPARE(anew.errors, is_complete ? u"error: the case already holds a result, "_s + host.path(u"case/Source1"_s)
                                            + u": --resume runs what is not done, --force removes it first\n"_s
                                      : QString());
}

void test_complete_or_not::record_of_others_is_no_leave()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().mkpath(host.path(u"case/Source1"_s)));
    QFile file(host.path(u"case/Source1/source.json"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("{\"status\": \"running\"}") > 0);
    file.close();
    QCOMPARE(host.run(extract_sample).exit_code, 2);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), "{\"status\": \"running\"}");
}

BLUETOOTH_LOGS_TEST(test_complete_or_not, QCoreApplication)

#include "test_complete_or_not.moc"
