// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/sanitizer.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QRegularExpression>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

/** Cases of several sources: what each gives, what a case is after a run that was cut short, and what never changes. */
class test_cases : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void five_sources_one_out_of_memory();
    void missing_source_fails_alone();
    void many_that_failed_are_told_as_a_range();
    void changed_bytes_are_found_data();
    void changed_bytes_are_found();
    void other_times_are_a_note();
    void evidence_that_moved_or_is_gone();
    void killed_run_is_continued_data();
    void killed_run_is_continued();
    void show_tells_of_sources_that_were_not_run();
    void caller_that_ignores_its_children();
    void stopped_worker_is_woken_to_be_cancelled();
    void worker_that_is_killed_while_it_loads_fails_alone();
    void workers_end_with_their_parent();
    void second_run_is_refused();
    void added_source_changes_no_other();
    void one_source_done_anew_changes_no_other();
    void sources_run_one_by_one_are_collected();
    void records_of_different_lists_are_refused();
    void continued_run_takes_the_same_options_data();
    void continued_run_takes_the_same_options();
    void wrong_list_is_refused();
    void one_of_many_looks_at_no_other();
    void progress_for_programs();
    void progress_for_programs_tells_all_that_goes_wrong();
};

namespace {

const QStringList three_sources{u"-i"_s, u"sample/macos"_s, u"-i"_s, u"copy"_s, u"-i"_s, u"sample/ios/system.log"_s};

QByteArray content(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("%s cannot be written", qPrintable(path));
}

/** Changes the byte in the middle of a file and leaves its times as they are. */
void flip_a_byte(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite))
        qFatal("%s cannot be changed", qPrintable(path));
    const QDateTime modified = file.fileTime(QFileDevice::FileModificationTime);
    file.seek(file.size() / 2);
    const char byte = file.read(1).at(0);
    file.seek(file.size() / 2);
    file.putChar(char(byte ^ 1));
    file.flush();
    file.setFileTime(modified, QFileDevice::FileModificationTime);
}

void copy_folder(const QString &from, const QString &to)
{
    QDirIterator files(from, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString target = to + files.next().sliced(from.size());
        if (!QDir().mkpath(QFileInfo(target).path()) || !QFile::copy(files.filePath(), target))
            qFatal("%s cannot be copied", qPrintable(files.filePath()));
    }
}

QMap<QString, QByteArray> contents(const QString &folder)
{
    QMap<QString, QByteArray> result;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!path.endsWith("/.lock"_L1))
            result.insert(path.sliced(folder.size()), content(path));
    }
    return result;
}

QJsonObject json(const QString &path)
{
    return QJsonDocument::fromJson(content(path)).object();
}

QStringList statuses(const host_program &host)
{
    QStringList result;
    for (const QJsonValue &source : json(host.path(u"case/manifest.json"_s)).value("sources"_L1).toArray())
        result.append(source.toObject().value("status"_L1).toString());
    return result;
}

/** A manifest without what differs from run to run: when the runs were, which log and record tell too, and how. */
QByteArray without_times(const QString &path)
{
    QString text = QString::fromUtf8(content(path));
    static const QRegularExpression run(u"\"(started|finished)\":\"[^\"]*\",?|\"options\":\\[[^\\]]*\\],?"_s);
    static const QRegularExpression file(
        u"(\"path\":\"Source[0-9]+/(plugin[.]log|source[.]json)\"),\"sha256\":\"[^\"]*\",\"size\":[0-9]+"_s);
    return text.remove(run).replace(file, u"\\1"_s).toUtf8();
}

/** Sample and a second macOS source. */
void write_sources(const host_program &host)
{
    host.write_sample();
    copy_folder(host.path(u"sample/macos"_s), host.path(u"copy"_s));
    sqlite_file(host.path(u"copy/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db"_s))
        .execute(u"DELETE FROM PairedDevices WHERE rowid > 3"_s);
}

/** A source whose only row is made of more bytes than a small limit allows. */
void write_hungry_source(const host_program &host)
{
    QDir().mkpath(host.path(u"hungry/Library/Bluetooth"_s));
    const sqlite_file database(host.path(u"hungry/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s));
    database.execute(u"CREATE TABLE OtherDevices(Uuid TEXT, Name TEXT, Address TEXT, LastSeenTime INT, "
                     "LastConnectionTime INT, Tags TEXT GENERATED ALWAYS AS (hex(zeroblob(400000000))))"_s);
    database.execute(u"INSERT INTO OtherDevices(Uuid) VALUES('A')"_s);
}

host_result run_extract(const host_program &host, const QStringList &arguments)
{
    return host.run(QStringList{u"extract"_s, u"-o"_s, u"case"_s} + arguments);
}

/** Processes of this program that run a plug-in for the program that was started in @p folder. */
QStringList workers_in(const QString &folder)
{
    QStringList found;
    const QStringList processes = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &process : processes) {
        const QByteArray command = content(u"/proc/"_s + process + u"/cmdline"_s);
        const QByteArray variables = content(u"/proc/"_s + process + u"/environ"_s);
        if (command.endsWith(QByteArray("worker\0", 7)) && variables.contains(QFile::encodeName(folder)))
            found.append(process);
    }
    return found;
}

} // namespace

void test_cases::five_sources_one_out_of_memory()
{
    if (is_sanitized)
        QSKIP("the sanitizer takes more addresses than any limit allows");
    const host_program host;
    write_sources(host);
    write_hungry_source(host);
    const host_result result = run_extract(host, three_sources
                                                     + QStringList{u"-i"_s, u"sample/windows"_s, u"-i"_s, u"hungry"_s,
                                                                   u"--memory-limit"_s, u"256"_s});
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(statuses(host), QStringList({u"done"_s, u"done"_s, u"done"_s, u"done"_s, u"out of memory"_s}));
    QVERIFY2(result.errors.contains(u"error: not done: source 5\n"_s), qPrintable(result.errors));
    QVERIFY2(result.errors.contains(u"error: Source5: out of memory: the run needs more than the 256 MiB of "
                                    "--memory-limit\n"_s),
             qPrintable(result.errors));
    const QList<std::pair<int, QList<int>>> rows{{1, {1000, 20}}, {2, {1000, 3}}, {3, {50, 31}}, {4, {0, 0}}};
    for (const auto &[number, counts] : rows) {
        const sqlite_file database(
            host.path(u"case/Source%1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s.arg(number)));
        QCOMPARE(database.rows(u"SELECT (SELECT count(*) FROM devices), (SELECT count(*) FROM paired_devices)"_s),
                 QList<QVariantList>({{counts.at(0), counts.at(1)}}));
    }
    const host_result verified = host.run({u"verify"_s, u"case"_s});
    QVERIFY2(verified.errors.endsWith(u"\nerror: Source5: out of memory\n"_s), qPrintable(verified.errors));
    QVERIFY(verified.output.startsWith(u"INCOMPLETE "_s));
    QCOMPARE(verified.exit_code, 4);
}

void test_cases::missing_source_fails_alone()
{
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, {u"-i"_s, u"nothing"_s, u"-i"_s, u"copy"_s}).exit_code, 4);
    QCOMPARE(statuses(host), QStringList({u"failed"_s, u"done"_s}));
    const QJsonObject record = json(host.path(u"case/Source1/source.json"_s));
    QCOMPARE(record.value("exit_code"_L1).toInt(), 3);
    QCOMPARE(record["messages"_L1][0]["text"_L1].toString(),
             QString(u"there is no source at "_s + host.path(u"nothing"_s)));

    // What is missing can come.
    copy_folder(host.path(u"copy"_s), host.path(u"nothing"_s));
    QCOMPARE(run_extract(host, {u"-i"_s, u"nothing"_s, u"-i"_s, u"copy"_s, u"--resume"_s}).exit_code, 0);
    QCOMPARE(statuses(host), QStringList({u"done"_s, u"done"_s}));
}

void test_cases::many_that_failed_are_told_as_a_range()
{
    const host_program host;
    host.write_sample();
    QStringList sources;
    for (int number = 1; number <= 60; ++number)
        sources += {u"-i"_s, u"none/"_s + QString::number(number)};
    const host_result result = run_extract(host, sources + QStringList{u"-i"_s, u"sample/ios/system.log"_s});
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.endsWith(u"error: not done: sources 1-60\n"_s), qPrintable(result.errors));
}

void test_cases::changed_bytes_are_found_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("name");

    // clang-format off
    QTest::newRow("evidence")     << u"copy/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s << u"Source2: Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db was changed: "_s;
    QTest::newRow("log")          << u"sample/ios/system.log"_s                                               << u"Source3: system.log was changed: "_s;
    // clang-format on
}

void test_cases::changed_bytes_are_found()
{
    QFETCH(QString, file);
    QFETCH(QString, name);
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, three_sources).exit_code, 0);
    QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 0);

    flip_a_byte(host.path(file));
    const host_result verified = host.run({u"verify"_s, u"case"_s});
    QCOMPARE(verified.exit_code, 5);
    QVERIFY2(verified.errors.contains(u"error: "_s + name), qPrintable(verified.errors));
    QVERIFY(verified.output.startsWith(u"CHANGED "_s));
}

void test_cases::other_times_are_a_note()
{
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, three_sources).exit_code, 0);
    QFile log(host.path(u"sample/ios/system.log"_s));
    QVERIFY(log.open(QIODevice::ReadWrite)
            && log.setFileTime(QDateTime::fromSecsSinceEpoch(1), QFileDevice::FileModificationTime));
    const host_result verified = host.run({u"verify"_s, u"case"_s});
    QCOMPARE(verified.exit_code, 0);
    QVERIFY2(verified.errors.contains(u"note: Source3: system.log has other times, and the same content\n"_s),
             qPrintable(verified.errors));
}

void test_cases::evidence_that_moved_or_is_gone()
{
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, three_sources).exit_code, 0);
    const QString hash = QString::fromLatin1(content(host.path(u"case/manifest.json.sha256"_s)).first(64));
    QVERIFY(QDir().rename(host.path(u"copy"_s), host.path(u"moved"_s)));
    QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 3);
    QCOMPARE(host.run({u"verify"_s, u"case"_s, u"--results-only"_s}).exit_code, 0);
    QCOMPARE(host.run({u"verify"_s, u"case"_s, u"--evidence"_s, u"2=moved"_s, u"--manifest-sha256"_s, hash}).exit_code,
             0);
    QCOMPARE(host.run({u"verify"_s, u"case"_s, u"--results-only"_s, u"--manifest-sha256"_s,
                       hash.toUpper().replace(u'0', u'1')})
                 .exit_code,
             5);
    QCOMPARE(host.run({u"verify"_s, u"moved"_s}).exit_code, 4);
    QCOMPARE(host.run({u"verify"_s, u"nowhere"_s}).exit_code, 3);
}

void test_cases::killed_run_is_continued_data()
{
    QTest::addColumn<QString>("moment");

    for (const QString &moment : {u"loading"_s, u"creation"_s, u"extraction"_s, u"end"_s, u"removal"_s})
        QTest::newRow(qPrintable(moment)) << moment;
}

void test_cases::killed_run_is_continued()
{
    QFETCH(QString, moment);
    static host_program host; // where the run of all moments was not disturbed
    const QStringList options{u"--jobs"_s, u"2"_s, u"--no-confinement"_s, u"--plugin"_s,
                              host_program::faulty_plugin_file()};
    const QStringList arguments = three_sources + options;
    static const auto [whole, files] = [&arguments] {
        write_sources(host);
        if (run_extract(host, arguments).exit_code != 0)
            qFatal("no case to compare with");
        return std::pair(without_times(host.path(u"case/manifest.json"_s)), contents(host.path(u"case"_s)).keys());
    }();
    QVERIFY(QDir(host.path(u"case"_s)).removeRecursively());
    QFile::remove(host.path(u"started"_s));

    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, moment + u" wait"_s);
    QProcess process;
    host.start(process, QStringList{u"extract"_s, u"-o"_s, u"case"_s} + arguments);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    process.kill();
    process.waitForFinished();
    QTRY_COMPARE_WITH_TIMEOUT(workers_in(host.path(QString())), QStringList(), 20000);
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, QString());

    // Not all sources began, and none is named again, unless the plug-in was not even there and the case neither.
    const bool is_begun = QFile::exists(host.path(u"case/sources.json"_s));
    QCOMPARE(is_begun, moment != u"loading"_s && moment != u"creation"_s);
    QCOMPARE(run_extract(host, (is_begun ? options : arguments) + QStringList{u"--resume"_s}).exit_code, 0);
    QCOMPARE(without_times(host.path(u"case/manifest.json"_s)), whole);
    QCOMPARE(contents(host.path(u"case"_s)).keys(), files);
    QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 0);
}

void test_cases::show_tells_of_sources_that_were_not_run()
{
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, three_sources + QStringList{u"--only"_s, u"1"_s}).exit_code, 0);
    const host_result shown = host.run({u"show"_s, u"case"_s});
    QCOMPARE(shown.errors, u"warning: the case is incomplete: no run of sources 2-3 began\n"_s);
    QCOMPARE(shown.exit_code, 4);
}

void test_cases::caller_that_ignores_its_children()
{
    const host_program host;
    write_sources(host);
    const host_result result = host.run_in_shell(u"extract -i copy -o case"_s, u"trap '' CHLD"_s);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exit_code, 0);
}

void test_cases::stopped_worker_is_woken_to_be_cancelled()
{
    const host_program host;
    write_sources(host);
    QProcess process;
    host.start(process, {u"extract"_s, u"-o"_s, u"case"_s, u"-i"_s, u"copy"_s, u"--plugin"_s,
                         host_program::waiting_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    const QStringList workers = workers_in(host.path(QString()));
    QCOMPARE(workers.size(), 1);
    QCOMPARE(::kill(workers.first().toInt(), SIGSTOP), 0);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    QVERIFY(process.waitForFinished(5000 * (is_sanitized ? 4 : 1)));
    QCOMPARE(process.exitCode(), 130);
}

void test_cases::worker_that_is_killed_while_it_loads_fails_alone()
{
    host_program host;
    write_sources(host);
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, u"loading wait"_s);
    QProcess process;
    host.start(process, QStringList{u"extract"_s, u"-o"_s, u"case"_s, u"--jobs"_s, u"1"_s, u"--plugin"_s,
                                    host_program::faulty_plugin_file()}
                            + three_sources);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    const QStringList workers = workers_in(host.path(QString()));
    QCOMPARE(workers.size(), 1);
    write(host.path(u"go"_s), {});
    QCOMPARE(::kill(workers.first().toInt(), SIGKILL), 0);
    QCOMPARE(host_program::finish(process).exit_code, 4);
    QCOMPARE(statuses(host), QStringList({u"crashed"_s, u"done"_s, u"done"_s}));
}

void test_cases::workers_end_with_their_parent()
{
    if (!QFile::exists(u"/proc/self/environ"_s))
        QSKIP("no /proc");
    const host_program host;
    write_sources(host);
    QProcess process;
    host.start(process, QStringList{u"extract"_s, u"-o"_s, u"case"_s, u"--jobs"_s, u"3"_s, u"--plugin"_s,
                                    host_program::waiting_plugin_file()}
                            + three_sources);
    QTRY_COMPARE_WITH_TIMEOUT(workers_in(host.path(QString())).size(), 3, 60000);
    for (const QString &number : {u"1"_s, u"2"_s, u"3"_s})
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"case/Source"_s + number + u"/source.json"_s)), 60000);
    process.kill();
    process.waitForFinished();
    QTRY_COMPARE_WITH_TIMEOUT(workers_in(host.path(QString())), QStringList(), 20000);

    // Whose parent is gone without a word was interrupted.
    const host_result collected = host.run({u"collect"_s, u"case"_s});
    QCOMPARE(collected.exit_code, 130);
    QCOMPARE(statuses(host), QStringList({u"interrupted"_s, u"interrupted"_s, u"interrupted"_s}));
    QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 4);
}

void test_cases::second_run_is_refused()
{
    const host_program host;
    write_sources(host);
    QProcess process;
    host.start(process, {u"extract"_s, u"-o"_s, u"case"_s, u"-i"_s, u"copy"_s, u"--plugin"_s,
                         host_program::waiting_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    for (const QString &way : {u"--force"_s, u"--resume"_s}) {
        const host_result refused = run_extract(host, {u"-i"_s, u"copy"_s, way});
        QCOMPARE(refused.exit_code, 2);
        QVERIFY2(refused.errors.startsWith(u"error: another run works here, process "_s
                                           + QString::number(process.processId()) + u" on "_s),
                 qPrintable(refused.errors));
    }
    write(host.path(u"go"_s), {});
    QCOMPARE(host_program::finish(process).exit_code, 0);
}

void test_cases::added_source_changes_no_other()
{
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, three_sources).exit_code, 0);
    QMap<QString, QByteArray> before = contents(host.path(u"case"_s));
    copy_folder(host.path(u"copy"_s), host.path(u"new"_s));

    QCOMPARE(run_extract(host, {u"-i"_s, u"copy"_s, u"--add"_s}).exit_code, 2);
    QCOMPARE(contents(host.path(u"case"_s)), before);
    QCOMPARE(run_extract(host, {u"-i"_s, u"new"_s, u"--add"_s}).exit_code, 0);
    QCOMPARE(statuses(host), QStringList({u"done"_s, u"done"_s, u"done"_s, u"done"_s}));
    QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 0);

    QMap<QString, QByteArray> after = contents(host.path(u"case"_s));
    for (const QString &name : {u"/manifest.json"_s, u"/manifest.json.sha256"_s, u"/sources.json"_s}) {
        before.remove(name);
        after.remove(name);
    }
    after.removeIf([](const auto &file) { return file.key().startsWith("/Source4/"_L1); });
    for (const QString &name : before.keys()) {
        if (!name.endsWith("/source.json"_L1))
            QVERIFY2(before.value(name) == after.value(name), qPrintable(name));
        QJsonObject old_record = QJsonDocument::fromJson(before.value(name)).object();
        QJsonObject new_record = QJsonDocument::fromJson(after.value(name)).object();
        if (old_record.contains("case_sources"_L1)) {
            QCOMPARE(new_record.value("case_sources"_L1).toObject().value("count"_L1).toInt(), 4);
            old_record.remove("case_sources"_L1);
            new_record.remove("case_sources"_L1);
        }
        QCOMPARE(new_record, old_record);
    }
    QCOMPARE(after.keys(), before.keys());
}

void test_cases::one_source_done_anew_changes_no_other()
{
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, three_sources).exit_code, 0);
    const auto of_others = [&host] {
        QMap<QString, QByteArray> files = contents(host.path(u"case"_s));
        files.removeIf([](const auto &file) { return file.key().startsWith("/Source2/"_L1); });
        return files;
    };
    const QMap<QString, QByteArray> before = of_others();

    const QStringList second = three_sources + QStringList{u"--only"_s, u"2"_s};
    QCOMPARE(run_extract(host, second).exit_code, 2);
    const qint64 now = QDateTime::currentSecsSinceEpoch(); // records have times in whole seconds
    QTRY_VERIFY(QDateTime::currentSecsSinceEpoch() > now);
    QCOMPARE(run_extract(host, second + QStringList{u"--force"_s}).exit_code, 0);
    QCOMPARE(of_others(), before);

    const host_result verified = host.run({u"verify"_s, u"case"_s});
    QCOMPARE(verified.exit_code, 5);
    QVERIFY2(verified.errors.endsWith(
                 u"\nerror: Source2/source.json is newer than the manifest: \"collect\" makes it anew\n"_s),
             qPrintable(verified.errors));
    QCOMPARE(host.run({u"collect"_s, u"case"_s}).exit_code, 0);
    QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 0);
}

void test_cases::sources_run_one_by_one_are_collected()
{
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, three_sources).exit_code, 0);
    const QByteArray together = without_times(host.path(u"case/manifest.json"_s));
    QVERIFY(QDir(host.path(u"case"_s)).removeRecursively());

    for (const QString &number : {u"3"_s, u"1"_s}) {
        QCOMPARE(run_extract(host, three_sources + QStringList{u"--only"_s, number}).exit_code, 0);
        QVERIFY(!QFile::exists(host.path(u"case/.lock"_s)));
    }
    QCOMPARE(host.run({u"collect"_s, u"case"_s}).exit_code, 4);
    QCOMPARE(statuses(host), QStringList({u"done"_s, u"not run"_s, u"done"_s}));
    QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 4);

    QCOMPARE(run_extract(host, three_sources + QStringList{u"--only"_s, u"2"_s}).exit_code, 0);
    QCOMPARE(host.run({u"collect"_s, u"case"_s}).exit_code, 0);
    QCOMPARE(without_times(host.path(u"case/manifest.json"_s)), together);
}

void test_cases::records_of_different_lists_are_refused()
{
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, three_sources + QStringList{u"--only"_s, u"1"_s}).exit_code, 0);
    QCOMPARE(run_extract(host, three_sources + QStringList{u"-i"_s, u"sample/windows"_s, u"--only"_s, u"2"_s})
                 .exit_code,
             0);
    const host_result refused = host.run({u"collect"_s, u"case"_s});
    QCOMPARE(refused.exit_code, 2);
    QVERIFY2(refused.errors.startsWith(
                 u"error: the records of source 1 and source 2 are of different lists of sources: "_s),
             qPrintable(refused.errors));
    QVERIFY(!QFile::exists(host.path(u"case/manifest.json"_s)));
}

void test_cases::continued_run_takes_the_same_options_data()
{
    QTest::addColumn<QStringList>("more");
    QTest::addColumn<int>("exit_code");
    QTest::addColumn<QString>("named");

    // clang-format off
    QTest::newRow("same")           << QStringList{}                                      << 0 << QString();
    QTest::newRow("two")            << QStringList{u"--suite-tables"_s, u"--table"_s, u"devices"_s} << 2 << u"suite_tables, tables"_s;
    // clang-format on
}

void test_cases::continued_run_takes_the_same_options()
{
    QFETCH(QStringList, more);
    QFETCH(int, exit_code);
    QFETCH(QString, named);
    const host_program host;
    write_sources(host);
    QCOMPARE(run_extract(host, three_sources).exit_code, 0);
    const QMap<QString, QByteArray> before = contents(host.path(u"case/Source1"_s));
    const host_result result = run_extract(host, three_sources + QStringList{u"--resume"_s} + more);
    QCOMPARE(result.exit_code, exit_code);
    QVERIFY2(result.errors.contains(named), qPrintable(result.errors));
    QCOMPARE(contents(host.path(u"case/Source1"_s)), before);
}

void test_cases::wrong_list_is_refused()
{
    const host_program host;
    write_sources(host);
    write(host.path(u"list.json"_s), R"({"sources": [{"path": "sample"}, {"path": "sample/ios/system.log"}]})");
    const host_result refused = run_extract(host, {u"--sources"_s, u"list.json"_s});
    QCOMPARE(refused.errors, u"error: a source lies inside another: "_s + host.path(u"sample/ios/system.log"_s)
                                 + u" (list.json: sources[1]) inside "_s + host.path(u"sample"_s)
                                 + u" (list.json: sources[0])\n"_s);
    QCOMPARE(refused.exit_code, 2);
    QVERIFY(!QFile::exists(host.path(u"case"_s)));
}

void test_cases::one_of_many_looks_at_no_other()
{
    const host_program host;
    write_sources(host);
    QVERIFY(QFile::link(host.path(u"copy"_s), host.path(u"link"_s)));
    const QStringList only_one{u"--only"_s, u"1"_s};
    const QStringList linked{u"-i"_s, u"copy"_s, u"-i"_s, u"link"_s};
    QCOMPARE(run_extract(host, linked).exit_code, 2);
    QCOMPARE(run_extract(host, linked + only_one).exit_code, 0);

    // What their paths alone tell is refused all the same.
    for (const QString &other : {u"copy/"_s, u"copy/Library"_s})
        QCOMPARE(run_extract(host, QStringList{u"-i"_s, u"copy"_s, u"-i"_s, other, u"--force"_s} + only_one).exit_code,
                 2);
}

void test_cases::progress_for_programs()
{
    const host_program host;
    write_sources(host);
    write(host.path(u"list.json"_s), R"({"sources": [{"path": "copy", "name": "Laptop of the hallway", "number": 3},
                                                     {"path": "sample/macos", "type": "macos"}]})");
    const host_result result = run_extract(host, {u"--sources"_s, u"list.json"_s, u"--progress"_s, u"json"_s});
    QCOMPARE(result.exit_code, 0);
    QMap<int, QString> ended;
    const QStringList lines = result.errors.split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        const QJsonObject event = QJsonDocument::fromJson(line.toUtf8()).object();
        QVERIFY2(event.contains("event"_L1), qPrintable(line));
        if (event.value("event"_L1) == u"finished"_s)
            ended.insert(event.value("source"_L1).toInt(), event.value("status"_L1).toString());
    }
    QCOMPARE(ended, (QMap<int, QString>{{1, u"done"_s}, {3, u"done"_s}}));
    QCOMPARE(json(host.path(u"case/Source3/source.json"_s)).value("name"_L1).toString(), u"Laptop of the hallway"_s);
    QCOMPARE(content(host.path(u"case/manifest.json.sha256"_s)).size(), 64 + qstrlen("  manifest.json\n"));
}

void test_cases::progress_for_programs_tells_all_that_goes_wrong()
{
    const host_program host;
    write_sources(host);
    const QStringList arguments{u"-i"_s, u"sample/macos"_s, u"-i"_s, u"none"_s, u"--progress"_s, u"json"_s};
    const host_result failed = run_extract(host, arguments);
    QCOMPARE(failed.exit_code, 4);
    QVERIFY(failed.errors.startsWith(u"{"_s));
    QVERIFY2(failed.errors.endsWith(
                 u"\n{\"event\":\"message\",\"text\":\"not done: source 2\",\"weight\":\"error\"}\n"_s),
             qPrintable(failed.errors));
    const host_result refused = run_extract(host, arguments);
    QCOMPARE(refused.exit_code, 2);
    QVERIFY2(refused.errors.startsWith(u"{\"event\":\"message\",\"text\":\"the case already holds a result, "_s),
             qPrintable(refused.errors));
    QCOMPARE(refused.errors.count(u'\n'), 1);
}

BLUETOOTH_LOGS_TEST(test_cases, QCoreApplication)

#include "test_cases.moc"
