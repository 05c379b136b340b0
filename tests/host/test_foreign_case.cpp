// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/file_content.h"
#include "tests/support/sanitizer.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

#include <csignal>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int longest = 60000; // milliseconds; one that hangs takes for ever

/** Takes a part of a second a row, and gives a small number. */
const QString slow_column =
    u"length(hex(zeroblob(150000000 + length(uuid))))"_s; // of the row: a constant is reckoned once

/** The value of a line of /proc/PROCESS/status. */
QByteArray status_of(qint64 process, const QByteArray &name)
{
    for (const QByteArray &line : content_of(u"/proc/"_s + QString::number(process) + u"/status"_s).split('\n')) {
        if (line.startsWith(name) && line.at(name.size()) == ':')
            return line.sliced(name.size() + 1).trimmed();
    }
    return {};
}

} // namespace

/** A case that a stranger wrote is read in a process of its own, which limits, signals and faults end. */
class test_foreign_case : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() override;
    void memory_data();
    void memory();
    void time_data();
    void time();
    void file_that_is_none_data();
    void file_that_is_none();
    void socket_is_no_file();
    void forged_manifest();
    void closed_streams_data();
    void closed_streams();
    void hangup_that_is_ignored();
    void nobody_reads_the_output_data();
    void nobody_reads_the_output();
    void signal_data();
    void signal();
    void killed_program();
    void process_that_reads_data();
    void process_that_reads();

private:
    /** The rows of the table "devices" of the case are made by @p expression. */
    void make_rows(const QString &expression, int count) const;
    /** Starts a report that takes some seconds, and waits until it writes @p file. */
    void start_report(QProcess &process, const QString &format = u"jsonl"_s,
                      const QString &file = u"devices.jsonl.new"_s) const;
    QStringList unfinished_files() const;

    host_program host;
};

void test_foreign_case::initTestCase()
{
    host.set_variable(u"ASAN_OPTIONS"_s, u"handle_segv=0"_s); // a sanitizer reports crashes in words of its own
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"original"_s}).exit_code, 0);
}

void test_foreign_case::init()
{
    strict_test::init();
    QVERIFY(QDir(host.path(u"case"_s)).removeRecursively());
    QVERIFY(QDir(host.path(u"report"_s)).removeRecursively());
    QCOMPARE(QProcess::execute(u"cp"_s, {u"-r"_s, host.path(u"original"_s), host.path(u"case"_s)}), 0);
}

void test_foreign_case::make_rows(const QString &expression, int count) const
{
    const sqlite_file result(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s));
    result.execute(u"DELETE FROM devices"_s);
    result.execute(u"ALTER TABLE devices DROP COLUMN device_name"_s);
    result.execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?) "
                   "INSERT INTO devices(uuid) SELECT i FROM n"_s,
                   {count});
    result.execute(u"ALTER TABLE devices ADD COLUMN device_name AS ("_s + expression + u')');
}

void test_foreign_case::start_report(QProcess &process, const QString &format, const QString &file) const
{
    make_rows(slow_column, 3);
    host.start(process, {u"report"_s, u"case"_s, u"-f"_s, format, u"-o"_s, host.path(u"report"_s)});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"report/"_s + file)), longest);
}

QStringList test_foreign_case::unfinished_files() const
{
    QStringList names;
    QDirIterator files(host.path(QString()), {u"*.new"_s, u"*.parts"_s}, QDir::AllEntries,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        names.append(files.next());
    return names;
}

void test_foreign_case::memory_data()
{
    QTest::addColumn<QString>("command");

    QTest::newRow("show") << u"show case"_s;
    QTest::newRow("show for programs") << u"show case --table devices -f jsonl"_s;
    QTest::newRow("report for programs") << u"report case -f jsonl -o report"_s;
    QTest::newRow("pages") << u"report case -o report"_s;
    QTest::newRow("database") << u"report case -f sqlite -o report"_s;
}

void test_foreign_case::memory()
{
    QFETCH(QString, command);
    if (is_sanitized)
        QSKIP("a sanitizer needs all addresses");
    make_rows(u"hex(zeroblob(400000000))"_s, 3);
    const host_result result = host.run_in_shell(command + u" --memory-limit 512"_s);
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.contains(u"out of memory"_s), qPrintable(result.errors));
    QCOMPARE(unfinished_files(), QStringList());
}

void test_foreign_case::time_data()
{
    QTest::addColumn<QString>("command");

    QTest::newRow("show") << u"show case"_s;
    QTest::newRow("report for programs") << u"report case -f csv -o report"_s;
    QTest::newRow("pages") << u"report case -o report"_s;
}

void test_foreign_case::time()
{
    QFETCH(QString, command);
    make_rows(slow_column, 8);
    QElapsedTimer clock;
    clock.start();
    const host_result result = host.run_in_shell(command + u" --timeout 1"_s);
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.endsWith(u"error: reading the case took longer than the 1 s of --timeout\n"_s),
             qPrintable(result.errors));
    QVERIFY2(clock.elapsed() < longest, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(unfinished_files(), QStringList());
}

void test_foreign_case::file_that_is_none_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("is_pipe"); // else it is a sparse file

    for (const char *file :
         {"manifest.json", "manifest.json.sha256", "notes.jsonl", "Source1/source.json", "Source1/plugin.log",
          "Source1/wal_changes.jsonl", "Source1/host_devices.jsonl",
          "Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite",
          "Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite-wal", "Source1/run.lock", "Report"}) {
        QTest::addRow("pipe %s", file) << QString::fromLatin1(file) << true;
    }
    for (const char *file : {"manifest.json", "notes.jsonl", "Source1/source.json",
                             "Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"})
        QTest::addRow("sparse %s", file) << QString::fromLatin1(file) << false;
}

/** Whatever they say of it: all commands end by themselves. */
void test_foreign_case::file_that_is_none()
{
    QFETCH(QString, file);
    QFETCH(bool, is_pipe);
    const QString path = host.path(u"case/"_s + file);
    QFile::remove(path);
    if (is_pipe)
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0644), 0);
    else
        QVERIFY(QFile(path).open(QIODevice::WriteOnly) && QFile::resize(path, qint64(1) << 33));
    for (const QString &command : {u"verify case --results-only"_s, u"show case"_s, u"report case -o report"_s,
                                   u"report case -f sqlite -o report"_s, u"collect case"_s}) {
        QElapsedTimer clock;
        clock.start();
        const host_result result = host.run_in_shell(command + u" --timeout 1"_s);
        QVERIFY2(clock.elapsed() < longest, qPrintable(command));
        QVERIFY2(result.exit_code >= 0 && result.exit_code <= 5, qPrintable(command + result.errors));
        QVERIFY2(result.exit_code == 0 || !result.errors.isEmpty(), qPrintable(command));
        QVERIFY2(!result.errors.contains(u"crashed"_s), qPrintable(command + result.errors));
    }
}

/** Where a socket of that name stands, nobody waits at it. */
void test_foreign_case::socket_is_no_file()
{
    const QString path = host.path(u"case/manifest.json"_s);
    QVERIFY(QFile::remove(path));
    QCOMPARE(::mknod(QFile::encodeName(path).constData(), S_IFSOCK | 0644, 0), 0);
    for (const QString &command : {u"verify case"_s, u"report case -o report"_s}) {
        const host_result result = host.run_in_shell(command);
        QVERIFY2(result.exit_code >= 1 && result.exit_code <= 5, qPrintable(command));
        QVERIFY2(result.errors.contains(u"manifest.json"_s), qPrintable(command + result.errors));
    }
}

/** Every command says the same of it, and reads nothing that it names: what lies outside waits for ever for a reader.
 */
void test_foreign_case::forged_manifest()
{
    const QByteArray before = "Source1/plugin.log";
    QFile::remove(host.path(u"secret"_s));
    QCOMPARE(::mkfifo(QFile::encodeName(host.path(u"secret"_s)).constData(), 0644), 0);
    const QString manifest = host.path(u"case/manifest.json"_s);
    QByteArray content = content_of(manifest);
    QVERIFY(content.contains(before));
    content.replace(content.indexOf(before), before.size(), "Source1/../../secret");
    write_file(manifest, content);
    write_file(manifest + u".sha256"_s,
               QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex() + "  manifest.json\n");
    for (const QString &command : {u"verify case"_s, u"report case -o report"_s}) {
        const host_result result = host.run_in_shell(command);
        QVERIFY2(result.exit_code >= 3 && result.exit_code <= 5, qPrintable(command + result.errors));
        QVERIFY2(result.errors.contains(
                     u"is forged: Source1: the path Source1/../../secret leads out of the source's folder"_s),
                 qPrintable(command + result.errors));
    }
    QVERIFY(!QFile::exists(host.path(u"report"_s)));
}

void test_foreign_case::closed_streams_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("redirection");
    QTest::addColumn<int>("exit_code");

    for (const QString &command :
         {u"show case"_s, u"verify case"_s, u"report case -o report -f csv"_s, u"collect case"_s}) {
        for (const QString &redirection : {u"<&-"_s, u"2>&-"_s, u">&-"_s, u">/dev/full"_s, u"<&- >&- 2>&-"_s})
            QTest::addRow("%s %s", qPrintable(command), qPrintable(redirection))
                << command << redirection << (redirection.contains(u" >"_s) || redirection.startsWith(u'>') ? 1 : 0);
    }
}

void test_foreign_case::closed_streams()
{
    QFETCH(QString, command);
    QFETCH(QString, redirection);
    QFETCH(int, exit_code);
    const host_result result = host.run_in_shell(command, u"exec "_s + redirection);
    QCOMPARE(result.exit_code, exit_code);
    if (exit_code == 1 && !redirection.contains(u"2>"_s))
        QVERIFY2(result.errors.endsWith(u"error: standard output cannot be written\n"_s), qPrintable(result.errors));
}

/** As nohup does it. */
void test_foreign_case::hangup_that_is_ignored()
{
    make_rows(slow_column, 2);
    QProcess process;
    process.setProgram(u"sh"_s);
    process.setWorkingDirectory(host.path(QString()));
    process.setArguments({u"-c"_s, u"trap '' HUP; exec \"$@\""_s, u"sh"_s, host_program::program_file(), u"report"_s,
                          u"case"_s, u"-f"_s, u"jsonl"_s, u"-o"_s, u"report"_s});
    process.start();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"report/devices.jsonl.new"_s)), longest);
    for (const qint64 child : host_program::children_of(process))
        QCOMPARE(::kill(pid_t(child), SIGHUP), 0);
    QCOMPARE(::kill(pid_t(process.processId()), SIGHUP), 0);
    host_program::finish(process);
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QVERIFY(QFile::exists(host.path(u"report/report.json"_s)));
    QCOMPARE(unfinished_files(), QStringList());
}

void test_foreign_case::nobody_reads_the_output_data()
{
    QTest::addColumn<QString>("command");

    for (const char *command :
         {"show case", "verify case", "verify case --json", "report case -o report -f csv", "collect case"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

void test_foreign_case::nobody_reads_the_output()
{
    QFETCH(QString, command);
    QFile::remove(host.path(u"closed"_s));
    const QString script = u"{ while [ ! -e closed ]; do sleep 0.01; done; \"$0\" "_s + command
                           + u"; echo $? >code; } | { exec <&-; : >closed; }"_s;
    const host_result result = host.run_through({u"sh"_s, u"-c"_s, script}, {});
    QVERIFY2(!result.errors.contains(u"error"_s), qPrintable(result.errors));
    QCOMPARE(content_of(host.path(u"code"_s)), "141\n"); // of a shell for what SIGPIPE ended
    QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 0);
}

void test_foreign_case::signal_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("file");

    QTest::newRow("SIGINT") << SIGINT << u"jsonl"_s << u"devices.jsonl.new"_s;
    QTest::newRow("SIGTERM, a database") << SIGTERM << u"sqlite"_s << u"report.sqlite.new"_s;
    QTest::newRow("SIGHUP, a workbook") << SIGHUP << u"xlsx"_s << u"report.xlsx.new"_s;
}

void test_foreign_case::signal()
{
    QFETCH(int, signal);
    QFETCH(QString, format);
    QFETCH(QString, file);
    QProcess process;
    start_report(process, format, file);
    const QList<qint64> children = host_program::children_of(process);
    QCOMPARE(::kill(pid_t(process.processId()), signal), 0);
    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.errors, u"error: interrupted\n"_s);
    QCOMPARE(unfinished_files(), QStringList());
    QCOMPARE(children.size(), 1);
    QVERIFY(::kill(pid_t(children.first()), 0) == -1);
}

void test_foreign_case::killed_program()
{
    QProcess process;
    start_report(process);
    const QList<qint64> children = host_program::children_of(process);
    QCOMPARE(children.size(), 1);
    process.kill();
    QVERIFY(process.waitForFinished(longest));
    QTRY_COMPARE_WITH_TIMEOUT(unfinished_files(), QStringList(), longest);
    QTRY_VERIFY_WITH_TIMEOUT(status_of(children.first(), "State").isEmpty()
                                 || status_of(children.first(), "State").startsWith('Z'),
                             longest);
}

void test_foreign_case::process_that_reads_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<QString>("message");

    QTest::newRow("crash") << SIGSEGV << u"error: the process that read the case crashed with SIGSEGV\n"_s;
    QTest::newRow("killed") << SIGKILL << u"error: the process that read the case crashed with SIGKILL\n"_s;
}

void test_foreign_case::process_that_reads()
{
    QFETCH(int, signal);
    QFETCH(QString, message);
    QProcess process;
    start_report(process);
    const QList<qint64> children = host_program::children_of(process);
    QCOMPARE(children.size(), 1);
    QCOMPARE(status_of(children.first(), "NoNewPrivs"), "1");
    QCOMPARE(status_of(children.first(), "Seccomp"), "2");
    QCOMPARE(::kill(pid_t(children.first()), signal), 0);
    const host_result result = host_program::finish(process);
    QCOMPARE(result.errors, message);
    QCOMPARE(result.exit_code, 4);
}

BLUETOOTH_LOGS_TEST(test_foreign_case, QCoreApplication)
#include "test_foreign_case.moc"
