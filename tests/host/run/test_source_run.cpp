// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_run.h"

#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/run/interruption.h"
#include "host/run/worker_protocol.h"
#include "host/source/macos_databases.h"
#include "tests/host/run/account_of_run.h"
#include "tests/host/run/scripted_worker.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

using namespace Qt::StringLiterals;
using namespace worker_script;

namespace {

const QString files = u" | Source1/ Source1/.lock Source1/plugin.log Source1/source.json"_s;
const QString not_announced =
    u" | error: the rows of the table devices do not agree: 3 found in the evidence, an unknown number "
    "announced by the plug-in, 3 stored in the result | error: the rows of the table paired_devices do "
    "not agree: 0 found in the evidence, an unknown number announced by the plug-in, 0 stored in the "
    "result"_s;
QByteArray problem(error_kind kind, const QString &text)
{
    return saying(problem_line(host_error(kind, text)));
}

} // namespace

/** One source's run, with a worker that says and does what a script lets it. */
class test_source_run : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void account_data();
    void account();
    void record_of_a_run_that_goes_on();
    void source_of_a_container_data();
    void source_of_a_container();
    void failed_preparation();
    void log_that_is_there();
    void room_data();
    void room();

private:
    /** What became of it, and what stands in the case. */
    QString run(
        const QByteArray &script, const std::function<void()> &prepare = [] {});
    QString path(const QString &name) const
    {
        return folder->filePath(name);
    }

    std::unique_ptr<QTemporaryDir> folder;
    source_request request;
};

void test_source_run::init()
{
    strict_test::init();
    folder = std::make_unique<QTemporaryDir>();
    request = {};
    request.source.kind = &macos_kind;
    request.source.path = path(u"source"_s);
    request.source.root = path(u"source/"_s);
    request.case_directory = path(u"case"_s);
    request.options.plugin_file = path(u"plugin"_s);
    QVERIFY(QDir().mkpath(request.source.path));
}

QString test_source_run::run(const QByteArray &script, const std::function<void()> &prepare)
{
    write_file(request.options.plugin_file,
               QByteArray(script).replace("@", QFile::encodeName(path(u"case/Source1"_s))));
    const interruption signals;
    account_of_run observer;
    const case_facts facts{{{u"format"_s, u"a case"_s}}};
    QString end;
    QStringList said;
    try {
        const source_record record = run_source(request, facts, observer, prepare);
        end = status_name(record.status) + u", "_s + record.type + u" as "_s + record.driven_as;
        for (const run_message &message : record.messages) {
            if (message.importance == run_message::weight::error)
                said.append(u"error: "_s + message.text);
        }
    } catch (const host_error &error) {
        end = u"thrown "_s + QString::number(int(error.kind())) + u": "_s + error.message();
    }
    QStringList all{u"("_s + observer.words.join(u' ') + u')'};
    all += observer.lines;
    all.append(end);
    all += said;
    all.append(tree_of(path(u"case"_s)).join(u' '));
    return all.join(u" | "_s).remove(folder->path() + u'/');
}

void test_source_run::account_data()
{
    QTest::addColumn<QByteArray>("script"); // "@": the folder of the source
    QTest::addColumn<QString>("account");

    const QByteArray make_temporary = "mkdir -p @/tmp/a @/Artifacts_Result/Bluetooth_Logs/tmp; >@/tmp/a/b\n"
                                      ">@/Artifacts_Result/Bluetooth_Logs/tmp/c\n";
    // clang-format off
    QTest::newRow("done") << tell_task + saying(loaded_line()) + "read -r word; echo $word >&2\n" + saying(hashed_line(10)) + saying(read_line(20))
            + "echo what a library prints\n" + saying(records_line(3)) + say_looked + say_extracted + say_inspected
        << u"(extract start) | started | hashed 10 | read 20 | 3 records, tables: 0 | 3 records, tables: 1 | 3 records, tables: 2 | done, macOS as macOS"_s + files;
    QTest::newRow("what was left for a while") << whole + make_temporary + ">@/host_devices.jsonl.new; >@/of_another.new\n"
        << u"() | started | 0 records, tables: 1 | 0 records, tables: 2 | done, macOS as macOS | Source1/ Source1/.lock Source1/Artifacts_Result/ Source1/Artifacts_Result/Bluetooth_Logs/ Source1/of_another.new Source1/plugin.log Source1/source.json"_s;
    QTest::newRow("left beside the result") << whole + "mkdir -p @/Artifacts_Result/Bluetooth_Logs; >@/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite-journal\n"
        << u"() | started | 0 records, tables: 1 | 0 records, tables: 2 | partial, macOS as macOS | error: Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite-journal was left beside its database | Source1/ Source1/.lock Source1/Artifacts_Result/ Source1/Artifacts_Result/Bluetooth_Logs/ Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite-journal Source1/plugin.log Source1/source.json"_s;
    QTest::newRow("log is gone") << whole + "rm @/plugin.log\n"
        << u"() | started | 0 records, tables: 1 | 0 records, tables: 2 | done, macOS as macOS | Source1/ Source1/.lock Source1/source.json"_s;
    QTest::newRow("log is a link") << whole + "rm @/plugin.log; ln -s source.json @/plugin.log\n"
        << u"() | started | 0 records, tables: 1 | 0 records, tables: 2 | partial, macOS as macOS | error: plugin.log is not on the disk: too many levels of symbolic links | error: Source1/plugin.log cannot be listed with its hash: it is no regular file, or cannot be read | Source1/ Source1/.lock Source1/plugin.log@ Source1/source.json"_s;
    QTest::newRow("files cannot be listed") << whole + "ln -s / @/Evidence\n"
        << u"() | started | 0 records, tables: 1 | 0 records, tables: 2 | partial, macOS as macOS | error: Source1/Evidence cannot be listed with its hash: it is no regular file, or cannot be read | Source1/ Source1/.lock Source1/Evidence@ Source1/plugin.log Source1/source.json"_s;
    QTest::newRow("crash while it works") << others_inspect + say_loaded + say_looked + make_temporary + "kill -SEGV $$\n"
        << u"(extract inspect) | started | crashed, macOS as macOS | error: crashed: the process that runs the plug-in ended with SIGSEGV"_s + not_announced + u" | Source1/ Source1/.lock Source1/Artifacts_Result/ Source1/Artifacts_Result/Bluetooth_Logs/ Source1/plugin.log Source1/source.json"_s;
    QTest::newRow("crash before it looked") << others_inspect + say_loaded + "kill -SEGV $$\n"
        << u"(extract settle) | started | crashed, macOS as macOS | error: crashed: the process that runs the plug-in ended with SIGSEGV | error: the evidence could not be looked at again after the run"_s + files;
    QTest::newRow("crash of the inspection too") << tell_task + "[ $1 = settle ] && exit\n[ $1 = inspect ] && kill -ABRT $$\n" + say_loaded + say_looked + "exit 9\n"
        << u"(extract inspect settle) | started | failed, macOS as macOS | error: the process that runs the plug-in ended before the extraction did, with exit code 9 | error: the evidence could not be looked at again after the run"_s + files;
    QTest::newRow("no memory") << others_inspect + say_loaded + say_looked + saying(no_memory_line) + "exit 4\n"
        << u"(extract inspect) | started | out of memory, macOS as macOS | error: out of memory: the run needs more than the 2048 MiB of --memory-limit"_s + not_announced + files;
    QTest::newRow("no memory to load it") << others_inspect + saying(no_memory_line) + "exit 4\n"
        << u"(extract settle) | started | out of memory, macOS as macOS | error: out of memory while the plug-in was loaded: the run needs more than the 2048 MiB of --memory-limit | error: the evidence could not be looked at again after the run"_s + files;
    QTest::newRow("ends while it is loaded") << tell_task + "exit 7\n"
        << u"(extract) | thrown 0: the plug-in file plugin cannot be used: it ended the process while it was loaded, with exit code 7 | "_s;
    QTest::newRow("crash while it is loaded") << tell_task + "kill -SEGV $$\n"
        << u"(extract) | thrown 0: the plug-in file plugin cannot be used: it crashed while it was loaded, with SIGSEGV | "_s;
    QTest::newRow("cannot be loaded") << tell_task + problem(error_kind::io, u"there is no such plug-in"_s) + problem(error_kind::io, u"more"_s) + "exit 1\n"
        << u"(extract) | thrown 0: there is no such plug-in | "_s;
    for (const char *signal : {"KILL", "TERM", "HUP", "INT"})
        QTest::newRow(signal) << others_inspect + "kill -" + signal + " $$\n"
            << u"(extract settle) | started | crashed, macOS as macOS | error: crashed while the plug-in was loaded: the process that runs the plug-in ended with SIG"_s + QLatin1StringView(signal) + u" | error: the evidence could not be looked at again after the run"_s + files;
    QTest::newRow("interrupted before it began") << tell_task + "kill -INT $PPID; exec sleep 60\n"
        << u"(extract) | thrown 5: interrupted before anything was written | "_s;
    QTest::newRow("interrupted") << others_inspect + "trap 'echo asked >&2; exit' INT\n" + say_loaded + say_looked + "kill -INT $PPID; sleep 60 & wait\n"
        << u"(extract asked inspect) | started | cancelling | interrupted, macOS as macOS | error: interrupted: the result is incomplete"_s + files;
    QTest::newRow("interrupted twice") << others_inspect + "trap 'kill -TERM $PPID' INT\n" + say_loaded + say_looked + "kill -INT $PPID; sleep 60 & wait; wait\n"
        << u"(extract settle) | started | cancelling | interrupted, macOS as macOS | error: interrupted: the result is incomplete | error: the evidence could not be looked at again after the run"_s + files;
    // clang-format on
}

void test_source_run::account()
{
    QFETCH(const QByteArray, script);
    QTEST(run(script), "account");
}

/** Whatever stops the program from then on, the record says that the run did not end. */
void test_source_run::record_of_a_run_that_goes_on()
{
    const QByteArray script = say_loaded + "cp @/source.json @/../while.json\n" + say_inspected;
    run(script);
    const source_record record = source_record::from_json(read_json_file(path(u"case/while.json"_s)));
    QCOMPARE(record.status, source_status::running);
    QCOMPARE(record.type, u"macOS"_s);
    QVERIFY(record.files && record.files->isEmpty());
    QVERIFY(!record.exit_code);
    QVERIFY(record.finished.isEmpty());
    QCOMPARE(record.log_zone, u"UTC"_s);
    QVERIFY(QDateTime::fromString(record.started, Qt::ISODate).isValid());
}

void test_source_run::source_of_a_container_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("account");

    evidence_source source;
    source.type = &ios_backup_kind;
    source.kind = &macos_kind;
    source.path = u"/evidence/a.zip"_s;
    source.is_taken_out = true;
    source.container = u"a zip"_s;
    const QByteArray say_taken = saying(taken_out_line({source, {}, {}}));
    // clang-format off
    QTest::newRow("taken out")   << others_inspect + say_loaded + say_taken + say_looked + say_extracted + say_inspected
        << u"(extract) | started | 0 records, tables: 1 | 0 records, tables: 2 | done, iOS_backup as macOS"_s + files;
    QTest::newRow("not found")   << others_inspect + say_loaded + problem(error_kind::not_found, u"nothing in it"_s) + "mkdir @/tmp/a\n"
        << u"(extract) | started | thrown 2: nothing in it | Source1/ Source1/.lock"_s;
    QTest::newRow("refused")     << others_inspect + say_loaded + problem(error_kind::io, u"first"_s) + problem(error_kind::refused, u"two volumes"_s)
        << u"(extract) | started | thrown 1: two volumes | Source1/ Source1/.lock"_s;
    QTest::newRow("damaged")     << others_inspect + say_loaded + problem(error_kind::incomplete, u"damaged"_s)
        << u"(extract settle) | started | failed,  as  | error: damaged | error: the evidence could not be looked at again after the run"_s + files;
    QTest::newRow("later")       << others_inspect + say_loaded + say_taken + problem(error_kind::not_found, u"nothing there"_s)
        << u"(extract settle) | started | failed, iOS_backup as macOS | error: nothing there | error: the evidence could not be looked at again after the run"_s + files;
    // clang-format on
}

void test_source_run::source_of_a_container()
{
    QFETCH(const QByteArray, script);
    request.source.kind = nullptr;
    request.source.is_taken_out = true;
    QTEST(run(script), "account");
}

/** What it throws ends the run, and the worker, which waits for a word. */
void test_source_run::failed_preparation()
{
    QCOMPARE(run(tell_task + saying(loaded_line()) + "read -r word; exec sleep 60\n",
                 [] { throw host_error(error_kind::refused, u"another case stands there"_s); }),
             u"(extract) | thrown 1: another case stands there | "_s);
    int times = 0;
    run(whole, [&times] { ++times; });
    QCOMPARE(times, 1);
    run("kill -KILL $$", [&times] { ++times; });
    QCOMPARE(times, 2);
}

void test_source_run::log_that_is_there()
{
    write_file(path(u"case/Source1/plugin.log"_s), "of another");
    QCOMPARE(
        run(tell_task + whole),
        u"(extract) | thrown 0: case/Source1/plugin.log cannot be written: file exists | Source1/ Source1/.lock Source1/plugin.log Source1/source.json Source1/tmp/"_s);
    QCOMPARE(content_of(path(u"case/Source1/plugin.log"_s)), "of another");
}

void test_source_run::room_data()
{
    QTest::addColumn<const source_kind *>("kind");
    QTest::addColumn<qint64>("max_database");
    QTest::addColumn<QString>("needed"); // in the message; empty: enough is there

    // clang-format off
    QTest::newRow("database twice, its log once") << &macos_kind   << (qint64(1) << 30)       << u"26388279066624"_s;
    QTest::newRow("just allowed")                 << &macos_kind   << (qint64(1) << 23)       << u"26388279066624"_s;
    QTest::newRow("larger than allowed")          << &macos_kind   << (qint64(1) << 23) - 1   << QString();
    QTest::newRow("log, which is not copied")     << &ios_uid_kind << (qint64(1) << 30)       << QString();
    // clang-format on
}

void test_source_run::room()
{
    QFETCH(const source_kind *, kind);
    QFETCH(const qint64, max_database);
    QFETCH(const QString, needed);
    request.source.kind = kind;
    request.options.max_database = max_database;
    const QString database = request.source.root + path_in_source(*macos_databases[0]);
    for (const QString &end : {u""_s, u"-wal"_s}) {
        write_file(database + end, "x");
        QVERIFY(QFile::resize(database + end, qint64(1) << 43)); // takes no room
    }
    request.source.log_file = database;
    const QString account = run(whole);
    if (needed.isEmpty())
        QVERIFY2(account.startsWith("() | started"_L1), qPrintable(account));
    else
        QVERIFY2(account.startsWith(u"() | thrown 3: there is no room in the case to copy the evidence: "_s + needed
                                    + u" bytes are needed and "_s)
                     && account.endsWith(" are free | Source1/ Source1/.lock"_L1),
                 qPrintable(account));
}

BLUETOOTH_LOGS_TEST(test_source_run, QCoreApplication)
#include "test_source_run.moc"
