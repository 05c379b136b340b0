// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sample/sample_parts.h"
#include "tests/host/host_program.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

/** A log that takes a part of a second to read and hardly any room. */
constexpr qint64 log_bytes = qint64(1) << 29;

void write_long_log(const QString &path)
{
    write_file(path, "May 17 12:11:05 p s[1] <Notice>: BLE device found: SFDevice ID 1A\n");
    if (!QFile::resize(path, log_bytes))
        qFatal("%s cannot be made longer", qPrintable(path));
}

/** A run that is watched by what it says for programs, line by line. */
class watched_run
{
public:
    watched_run(const host_program &host, const QStringList &arguments)
    {
        process.setReadChannel(QProcess::StandardError);
        host.start(process, arguments + QStringList{u"--progress"_s, u"json"_s});
    }

    /** Waits until the run has said the event, and so many bytes are hashed. False when it ends before. */
    bool reaches(const QString &event, qint64 hashed = 0)
    {
        for (;;) {
            while (process.canReadLine()) {
                const QJsonObject line = QJsonDocument::fromJson(process.readLine()).object();
                lines.append(line);
                bytes_hashed += line.value("event"_L1) == u"hashed"_s ? line.value("bytes"_L1).toInteger() : 0;
                if (line.value("event"_L1) == event && bytes_hashed >= hashed)
                    return true;
            }
            if (!process.waitForReadyRead(60000))
                return false;
        }
    }

    bool send(int signal) const
    {
        return ::kill(pid_t(process.processId()), signal) == 0;
    }

    /** To the only process that the program has made. */
    bool send_to_worker(int signal) const
    {
        const QList<qint64> workers = host_program::children_of(process);
        return workers.size() == 1 && workers.first() > 1 && ::kill(pid_t(workers.first()), signal) == 0;
    }

    int exit_code()
    {
        while (reaches(u"none"_s)) {
        }
        process.waitForFinished();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }

    /** The errors that were said, in their order. */
    QStringList errors() const
    {
        QStringList texts;
        for (const QJsonObject &line : lines) {
            if (line.value("weight"_L1) == u"error"_s)
                texts.append(line.value("text"_L1).toString());
        }
        return texts;
    }

private:
    QProcess process;
    QList<QJsonObject> lines;
    qint64 bytes_hashed = 0;
};

QJsonValue log_after_the_run(const host_program &host)
{
    return host.source_record().value("evidence"_L1)[0]["after"_L1];
}

const QStringList extract_log{u"extract"_s, u"-i"_s, u"system.log"_s, u"-o"_s, u"case"_s, u"--no-confinement"_s};

} // namespace

class test_interrupt : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void first_one_ends_the_extraction();
    void second_one_ends_the_program();
    void table_that_is_being_written_is_finished();
    void reading_of_the_evidence_ends();
    void look_after_the_run_goes_on_to_its_end_data();
    void look_after_the_run_goes_on_to_its_end();
    void second_one_ends_the_look_after_the_run();
    void look_into_a_container_ends();
    void sources_to_come_are_not_begun();

private:
    const QString finishing = u"note: finishing what is being written; again to stop at once\n"_s;
};

void test_interrupt::first_one_ends_the_extraction()
{
    const host_program host;
    host.write_sample();
    QProcess process;
    host.start(process, {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s, u"--plugin"_s,
                         host_program::waiting_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);

    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.errors, finishing + u"error: interrupted: the result is incomplete\n"_s);
    QVERIFY(host_program::without_manifest(result.output).contains(u"        paired_devices          0 rows\n"_s));
    QVERIFY(!QDir(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/tmp"_s)).exists());
}

void test_interrupt::second_one_ends_the_program()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QFile(host.path(u"stubborn"_s)).open(QIODevice::WriteOnly));
    QProcess process;
    host.start(process, {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s, u"--plugin"_s,
                         host_program::waiting_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    QVERIFY(!process.waitForFinished(300));
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);

    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.errors, finishing
                                + u"error: interrupted: the result is incomplete\n"
                                  "error: the evidence could not be looked at again after the run\n"_s);
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"interrupted"_s);
    QVERIFY(!QFile::exists(host.path(u"case/Source1/tmp"_s)));
    QVERIFY(!QFile::exists(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/tmp"_s)));
}

void test_interrupt::table_that_is_being_written_is_finished()
{
    constexpr int rows = 100000;
    const host_program host;
    host.write_sample();
    const sqlite_file other(
        host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s));
    other.execute(u"DELETE FROM OtherDevices"_s);
    other.execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?) "
                  "INSERT INTO OtherDevices(Uuid, LastSeenTime) SELECT i, i FROM n"_s,
                  {rows});

    QProcess process;
    host.start(process, {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s});
    const QString result_folder = host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/"_s);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(result_folder + u"Logs/com.apple.MobileBluetooth.ledevices.other.db"_s),
                             60000);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);

    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.errors, finishing + u"error: interrupted: the result is incomplete\n"_s);
    const qint64 written = sqlite_file(result_folder + u"Bluetooth_Logs.sqlite"_s)
                               .rows(u"SELECT count(*) FROM devices"_s)
                               .at(0)
                               .at(0)
                               .toLongLong();
    QVERIFY2(written == rows || written == 0, qPrintable(QString::number(written))); // 0: it came before the writer
    QVERIFY(host_program::without_manifest(result.output).contains(u"        paired_devices          0 rows\n"_s));
}

/** Before the plug-in runs: nothing was found yet, and nothing half written stays. */
void test_interrupt::reading_of_the_evidence_ends()
{
    const host_program host;
    write_long_log(host.path(u"system.log"_s));
    watched_run run(host, extract_log);
    QVERIFY(run.reaches(u"hashed"_s));
    QVERIFY(run.send(SIGINT));
    QCOMPARE(run.exit_code(), 130);
    QCOMPARE(run.errors(), QStringList({u"interrupted: the result is incomplete"_s,
                                        u"the evidence could not be looked at again after the run"_s}));
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"interrupted"_s);
    QCOMPARE(tree_of(host.path(u"case"_s)),
             QStringList({u".lock"_s, u"Source1/"_s, u"Source1/.lock"_s, u"Source1/plugin.log"_s,
                          u"Source1/source.json"_s, u"manifest.json"_s, u"manifest.json.sha256"_s}));
}

void test_interrupt::look_after_the_run_goes_on_to_its_end_data()
{
    QTest::addColumn<QString>("fault");

    QTest::newRow("in the process of the plug-in") << QString();
    QTest::newRow("in another, since the plug-in crashed") << u"extraction crash"_s;
}

/** What was done is looked at, however the plug-in ended. */
void test_interrupt::look_after_the_run_goes_on_to_its_end()
{
    QFETCH(const QString, fault);
    host_program host;
    write_long_log(host.path(u"system.log"_s));
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, fault);
    watched_run run(host, extract_log + QStringList{u"--plugin"_s, host_program::faulty_plugin_file()});
    QVERIFY(run.reaches(u"hashed"_s, log_bytes + 1));
    QVERIFY(run.send_to_worker(SIGSTOP));
    QVERIFY(run.send(SIGINT));
    QVERIFY(run.reaches(u"cancelling"_s));
    run.send_to_worker(SIGCONT); // unless the program did, and it is done
    QCOMPARE(run.exit_code(), 130);
    QCOMPARE(run.errors(), QStringList{u"interrupted: the result is incomplete"_s});
    QVERIFY(log_after_the_run(host)["sha256"_L1].isString());
}

void test_interrupt::second_one_ends_the_look_after_the_run()
{
    host_program host;
    write_long_log(host.path(u"system.log"_s));
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, u"extraction crash"_s);
    watched_run run(host, extract_log + QStringList{u"--plugin"_s, host_program::faulty_plugin_file()});
    QVERIFY(run.reaches(u"hashed"_s, log_bytes + 1));
    QVERIFY(run.send_to_worker(SIGSTOP));
    QVERIFY(run.send(SIGINT));
    QVERIFY(run.reaches(u"cancelling"_s));
    QVERIFY(run.send(SIGINT));
    QCOMPARE(run.exit_code(), 130);
    QCOMPARE(run.errors(), QStringList({u"interrupted: the result is incomplete"_s,
                                        u"the evidence could not be looked at again after the run"_s}));
    QVERIFY(log_after_the_run(host).isNull());
}

/** The process that looks into it is stopped before it can have answered. */
void test_interrupt::look_into_a_container_ends()
{
    const host_program host;
    QByteArray lines; // each of them might be the one that makes a log of it
    for (int line = 0; line < 1000000; ++line)
        lines += QByteArray::number(line) + '\n';
    write_file(host.path(u"system.log"_s), lines);
    write_packed_sample(host.path(u"packed.tar.gz"_s), host.path(u"./"_s), {u"system.log"_s});
    QProcess process;
    host.start(process, {u"inspect"_s, u"packed.tar.gz"_s});
    QTRY_VERIFY_WITH_TIMEOUT(host_program::children_of(process).value(0) > 1, 60000);
    QCOMPARE(::kill(pid_t(host_program::children_of(process).first()), SIGSTOP), 0);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.output + result.errors, QString());
}

/** With the first of two sources the run ends; the case says which one was not run. */
void test_interrupt::sources_to_come_are_not_begun()
{
    const host_program host;
    host.write_sample();
    write_long_log(host.path(u"system.log"_s));
    watched_run run(host, extract_log + QStringList{u"-i"_s, u"sample/macos"_s, u"--jobs"_s, u"1"_s});
    QVERIFY(run.reaches(u"hashed"_s));
    QVERIFY(run.send(SIGINT));
    QCOMPARE(run.exit_code(), 130);
    QVERIFY(!QFile::exists(host.path(u"case/Source2"_s)));
    const QJsonValue sources = QJsonDocument::fromJson(content_of(host.path(u"case/manifest.json"_s)))["sources"_L1];
    QCOMPARE(sources[0]["status"_L1].toString(), u"interrupted"_s);
    QCOMPARE(sources[1]["status"_L1].toString(), u"not run"_s);
}

BLUETOOTH_LOGS_TEST(test_interrupt, QCoreApplication)

#include "test_interrupt.moc"
