// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/collect_command.h"
#include "host/cli/command_line.h"
#include "host/cli/extract_command.h"
#include "host/cli/host_device_view.h"
#include "host/cli/inspect_command.h"
#include "host/cli/note_command.h"
#include "host/cli/sample_command.h"
#include "host/cli/verify_command.h"
#include "host/container/disk_image.h"
#include "host/files/host_error.h"
#include "host/sample/sample_parts.h"
#include "tests/host/case/made_case.h"
#include "tests/host/cli/stream_catcher.h"
#include "tests/support/file_content.h"
#include "tests/support/test_entry.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

/** What a command printed, and how it ended. */
struct printed
{
    int code = -1; ///< -1: with an error
    QString output;
    QString errors; ///< that of the end last, with its kind
};

printed printed_by(const std::function<exit_code(console &)> &command, bool quiet = false)
{
    printed result;
    stream_catcher output(stdout);
    stream_catcher errors(stderr);
    QString error;
    try {
        console_options options;
        options.quiet = quiet;
        console out(options);
        result.code = int(command(out));
    } catch (const host_error &failure) {
        error = QString::number(int(failure.kind())) + u' ' + failure.message();
    }
    result.output = output.text();
    result.errors = errors.text() + error;
    return result;
}

compared_file compared(compared_file::place kind)
{
    compared_file file;
    file.kind = kind;
    file.path = u"p"_s;
    file.expected = u"e"_s;
    return file;
}

check_outcome outcome_of(int evidence, int results, int reports)
{
    check_outcome outcome;
    outcome.files.append(compared(compared_file::place::manifest));
    outcome.files += QList<compared_file>(evidence, compared(compared_file::place::evidence));
    outcome.files += QList<compared_file>(results, compared(compared_file::place::result));
    outcome.files += QList<compared_file>(reports, compared(compared_file::place::report));
    return outcome;
}

QJsonObject volume_of(int number, const QJsonValue &file_system, const QJsonValue &name, bool is_encrypted,
                      const QJsonValue &type, const QJsonArray &evidence = {})
{
    return {{u"number"_s, number}, {u"offset"_s, 1048576 * number},
            {u"size"_s, 7340032},  {u"file_system"_s, file_system},
            {u"name"_s, name},     {u"is_encrypted"_s, is_encrypted},
            {u"type"_s, type},     {u"evidence"_s, evidence}};
}

} // namespace

/** What commands print of what they did, as a whole. */
class test_command_output : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void verdicts_data();
    void verdicts();
    void verification();
    void verified_case();
    void record_of_a_verification();
    void sources_of_a_run();
    void tallies_data();
    void tallies();
    void collected_case();
    void notes();
    void surveys_data();
    void surveys();
    void inspected_paths_data();
    void inspected_paths();
    void host_devices_data();
    void host_devices();
    void host_devices_of_no_case();
    void versions();
    void samples_data();
    void samples();
};

void test_command_output::verdicts_data()
{
    QTest::addColumn<check_outcome>("outcome");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("word");

    const auto with = [](check_outcome outcome, int differences, int incomplete, int missing) {
        outcome.differences = QStringList(differences, u"d"_s);
        outcome.incomplete = QStringList(incomplete, u"i"_s);
        outcome.missing = QStringList(missing, u"m"_s);
        return outcome;
    };
    // clang-format off
    QTest::newRow("nothing")         << check_outcome()         << u"UNCHANGED   nothing was compared, no evidence among them"_s << u"unchanged"_s;
    QTest::newRow("manifest alone")  << outcome_of(0, 0, 0)     << u"UNCHANGED   nothing was compared, no evidence among them"_s << u"unchanged"_s;
    QTest::newRow("one of each")     << outcome_of(1, 1, 1)     << u"UNCHANGED   1 file of the evidence, 1 file of the case, 1 file of the reports compared"_s << u"unchanged"_s;
    QTest::newRow("several")         << outcome_of(2, 3, 4)     << u"UNCHANGED   2 files of the evidence, 3 files of the case, 4 files of the reports compared"_s << u"unchanged"_s;
    QTest::newRow("no evidence")     << outcome_of(0, 2, 0)     << u"UNCHANGED   2 files of the case compared, no evidence among them"_s << u"unchanged"_s;
    QTest::newRow("one difference")  << with(outcome_of(1, 2, 0), 1, 1, 1) << u"CHANGED     1 difference, 1 file of the evidence, 2 files of the case compared"_s << u"changed"_s;
    QTest::newRow("two differences") << with(outcome_of(0, 1, 0), 2, 0, 0) << u"CHANGED     2 differences, 1 file of the case compared"_s << u"changed"_s;
    QTest::newRow("incomplete")      << with(outcome_of(0, 1, 0), 0, 1, 1) << u"INCOMPLETE  what is there is unchanged, 1 file of the case compared"_s << u"incomplete"_s;
    QTest::newRow("not checked")     << with(outcome_of(0, 1, 0), 0, 0, 1) << u"NOT CHECKED evidence is not there to be looked at; the case itself is unchanged, 1 file of the case compared"_s << u"not checked"_s;
    // clang-format on
}

void test_command_output::verdicts()
{
    QFETCH(const check_outcome, outcome);
    QTEST(verdict(outcome), "text");
    QTEST(verification_record({}, outcome, {}).value("verdict"_L1).toString(), "word");
}

void test_command_output::verification()
{
    check_request request;
    request.directory = u"/case"_s;
    request.manifest_sha256 = u"ABC"_s;
    request.leaves_out_evidence = true;
    QJsonObject record = verification_record(request, outcome_of(0, 0, 0), u"2026-01-31T12:00:00Z"_s);
    QVERIFY(record.take("tool_version"_L1).toString().count(u'.') == 2);
    QCOMPARE(
        QJsonDocument(record).toJson(QJsonDocument::Compact),
        R"({"case":"/case","differences":[],"evidence_left_out":true,"exit_code":0,"files":[{"expected_sha256":"e",)"
        R"("found_sha256":null,"kind":"manifest","outcome":"unchanged","path":"p"}],)"
        R"("format":"bluetooth-logs verification","incomplete":[],"manifest_sha256":null,"missing":[],)"
        R"("noted_manifest_sha256":"abc","notes":[],"verdict":"unchanged","verified":"2026-01-31T12:00:00Z","version":1})");
    QVERIFY(verification_record({}, {}, {}).value("noted_manifest_sha256"_L1).isNull());
    QVERIFY(!verification_record({}, {}, {}).value("evidence_left_out"_L1).toBool());
}

void test_command_output::verified_case()
{
    const made_case the_case;
    const QString hash = collect_case(the_case.layout()).manifest_sha256;
    verify_options options;
    options.request.directory = the_case.directory();
    options.request.leaves_out_evidence = true;
    options.request.manifest_sha256 = hash;
    const auto verify = [&options](console &out) { return run_verify(options, out); };
    const printed unchanged = printed_by(verify);
    QCOMPARE(unchanged.errors, QString());
    QCOMPARE(unchanged.output, u"UNCHANGED   6 files of the case compared, no evidence among them\n"_s);
    QCOMPARE(unchanged.code, 0);
    QCOMPARE(printed_by(verify, true).output, QString());

    the_case.write(the_case.layout().source(1).plugin_log(), "x");
    QVERIFY(QFile::remove(the_case.layout().source(2).plugin_log()));
    options.request.manifest_sha256.clear();
    const printed changed = printed_by(verify);
    QCOMPARE(changed.errors,
             u"note: no hash was given by --manifest-sha256: manifest.json was compared with manifest.json.sha256 "
             "beside it alone, and an edit of both would pass\n"
             "error: Source1/plugin.log was changed: it had 5 bytes and has 1\n"
             "error: Source2/plugin.log is gone\n"_s);
    QCOMPARE(changed.output, u"CHANGED     2 differences, 6 files of the case compared\n"_s);
    QCOMPARE(changed.code, 5);

    options.json = true;
    const printed as_json = printed_by(verify, true);
    const QJsonObject record = QJsonDocument::fromJson(as_json.output.toUtf8()).object();
    QCOMPARE(record.value("verdict"_L1).toString(), u"changed"_s);
    QCOMPARE(record.value("case"_L1).toString(), the_case.directory());
    QVERIFY(record.value("verified"_L1).toString().endsWith(u'Z'));
    QCOMPARE(as_json.code, 5);
}

void test_command_output::record_of_a_verification()
{
    const made_case the_case;
    const QTemporaryDir folder;
    source_record of_folder = the_case.finished(2);
    of_folder.path = folder.filePath(u"evidence"_s);
    QVERIFY(QDir().mkpath(of_folder.path));
    evidence_file absent;
    absent.path = u"a.db"_s;
    of_folder.evidence.files.append(absent);
    the_case.write_record(of_folder);
    collect_case(the_case.layout());
    verify_options options;
    options.request.directory = the_case.directory();
    const auto verify = [&options](console &out) { return run_verify(options, out); };
    const QString refused = QString::number(int(error_kind::refused)) + u' ';

    options.record_file = folder.filePath(u"there.json"_s);
    write_file(options.record_file, "mine");
    QCOMPARE(printed_by(verify).errors,
             refused + options.record_file + u" is there already: --record takes a new name"_s);
    QCOMPARE(content_of(options.record_file), "mine");

    options.record_file = of_folder.path + u"/r.json"_s;
    QCOMPARE(printed_by(verify).errors,
             QString(refused + u"--record: nothing is written into the evidence: "_s + options.record_file));

    options.record_file = folder.filePath(u"r.json"_s);
    QCOMPARE(printed_by(verify).code, 0);
    const QJsonObject record = QJsonDocument::fromJson(content_of(options.record_file)).object();
    QCOMPARE(record.value("format"_L1).toString(), u"bluetooth-logs verification"_s);
    QCOMPARE(record.value("files"_L1).toArray().size(), 7);
}

/** Of one source more is shown than of each of several. */
void test_command_output::sources_of_a_run()
{
    const made_case the_case({2, 5, 6});
    case_request request;
    request.directory = the_case.directory();
    QCOMPARE(source_count(request), 3);
    request.sources = {named_source(), named_source()};
    QCOMPARE(source_count(request), 2);
    request.only = 2;
    QCOMPARE(source_count(request), 1);
}

void test_command_output::tallies_data()
{
    QTest::addColumn<case_tally>("tally");
    QTest::addColumn<bool>("has_several");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors");

    const auto tally = [](const QMap<source_status, int> &sources, const QList<int> &not_done = {}) {
        case_tally made;
        made.sources = sources;
        made.not_done = not_done;
        made.manifest_sha256 = u"abc"_s;
        return made;
    };
    const QString manifest = u"Manifest  SHA-256 abc\n"_s;
    QList<int> every_second;
    for (int i = 41; i > 0; i -= 2)
        every_second.append(i);
    const QString twenty = u"1, 3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29, 31, 33, 35, 37, 39"_s;
    using status = source_status;
    // clang-format off
    QTest::newRow("one source")   << tally({{status::done, 1}}, {1}) << false << manifest << QString();
    QTest::newRow("one of a list") << tally({{status::done, 1}})     << true  << u"Case      1 source done\n"_s + manifest << QString();
    QTest::newRow("two")          << tally({{status::done, 2}})      << true  << u"Case      2 sources done\n"_s + manifest << QString();
    QTest::newRow("several")      << tally({{status::not_run, 1}, {status::done, 3}, {status::timed_out, 2}}, {7, 3, 2})
                                  << true << u"Case      3 sources done, 2 sources timed out, 1 source not run\n"_s + manifest << u"error: not done: sources 2-3, 7\n"_s;
    QTest::newRow("one not done") << tally({{status::failed, 1}}, {5}) << true << u"Case      1 source failed\n"_s + manifest << u"error: not done: source 5\n"_s;
    QTest::newRow("20 ranges")    << tally({{status::failed, 20}}, every_second.sliced(1)) << true << u"Case      20 sources failed\n"_s + manifest << u"error: not done: sources "_s + twenty + u'\n';
    QTest::newRow("21 ranges")    << tally({{status::failed, 21}}, every_second) << true << u"Case      21 sources failed\n"_s + manifest << u"error: not done: sources "_s + twenty + u", …\n"_s;
    // clang-format on
}

void test_command_output::tallies()
{
    QFETCH(const case_tally, tally);
    QFETCH(const bool, has_several);
    const auto print = [&](console &out) {
        print_tally(tally, has_several, out);
        return exit_code::done;
    };
    const printed loud = printed_by(print);
    QTEST(loud.output, "output");
    QTEST(loud.errors, "errors");
    const printed quiet = printed_by(print, true);
    QCOMPARE(quiet.output, QString());
    QTEST(quiet.errors, "errors");
}

void test_command_output::collected_case()
{
    const made_case the_case;
    const auto collect = [](const QString &directory) {
        return printed_by([&directory](console &out) { return run_collect(directory, out); });
    };
    const printed whole = collect(the_case.directory());
    QCOMPARE(whole.errors, QString());
    QCOMPARE(whole.output, QString(u"Case      2 sources done\nManifest  SHA-256 "_s
                                   + sha256::of(made_case::content(the_case.layout().manifest())) + u'\n'));
    QCOMPARE(whole.code, 0);

    source_record record = the_case.finished(2);
    record.status = source_status::partial;
    record.exit_code = 4;
    the_case.write_record(record);
    const printed partial = collect(the_case.directory());
    QVERIFY2(partial.output.startsWith(u"Case      1 source done, 1 source partial\n"_s), qPrintable(partial.output));
    QCOMPARE(partial.code, 4);

    const QString nowhere = the_case.directory() + u"/none"_s;
    QCOMPARE(collect(nowhere).errors,
             QString(QString::number(int(error_kind::not_found)) + u" there is no case "_s + nowhere));
}

void test_command_output::notes()
{
    const made_case the_case;
    note_options options;
    options.directory = the_case.directory();
    const auto note = [&options](bool quiet = false) {
        return printed_by([&options](console &out) { return run_note(options, out); }, quiet);
    };
    options.note.device = u"B4:C2:6A:7F:D3:7A"_s;
    options.note.text = u"t"_s;
    options.note.author = u"A"_s;
    QCOMPARE(note().output, u"Note 1 on B4:C2:6A:7F:D3:7A\n"_s);
    options.note.device.clear();
    options.note.row = noted_row{2, u"devices"_s, 17};
    options.note.is_flag = true;
    QCOMPARE(note().output, u"Note 2 on 2:devices:17\n"_s);
    options.note.text.clear();
    options.note.author.clear();
    QCOMPARE(note(true).output, QString());

    made_case::write(
        the_case.layout().notes(),
        R"({"number":1,"time":"T1","by":"A","device":"B4:C2:6A:7F:D3:7A","text":"t"})"
        "\n"
        R"({"number":2,"time":"T2","by":"B","row":{"source":2,"table":"devices","row":17},"flag":true})"
        "\n"
        R"({"number":3,"time":"T3","by":"C","row":{"source":1,"table":"devices","row":1},"flag":true,"text":"u\u001b"})"
        "\n");
    options.lists = true;
    const printed listed = note(true);
    QCOMPARE(listed.output, u"1  T1  A  B4:C2:6A:7F:D3:7A  t\n"
                            "2  T2  B  2:devices:17  flagged\n"
                            "3  T3  C  1:devices:1  flagged  u\\u{1b}\n"_s);
    QCOMPARE(listed.errors, QString());
    QCOMPARE(listed.code, 0);

    options.lists = false;
    options.remove = 2;
    QCOMPARE(note().output, u"Note 2 removed\n"_s);
    QCOMPARE(note().code, -1); // it is gone
    options.directory += u"/none"_s;
    QCOMPARE(note().errors,
             QString(QString::number(int(error_kind::not_found)) + u" there is no case in "_s + options.directory));
}

void test_command_output::surveys_data()
{
    QTest::addColumn<QJsonObject>("survey");
    QTest::addColumn<QString>("text");

    const QJsonObject database{{u"path"_s, u"L/\x1b.db"_s}, {u"size"_s, qint64(5368709120)}};
    const QJsonObject log{{u"path"_s, u"a.log"_s}, {u"size"_s, 0}};
    // clang-format off
    QTest::newRow("nothing") << QJsonObject{{u"path"_s, u"/p"_s}, {u"type"_s, QJsonValue()}, {u"container"_s, QJsonValue()}}
        << u"/p\n  type       not recognized\n"_s;
    QTest::newRow("a folder") << QJsonObject{{u"path"_s, u"/p\x1b"_s}, {u"type"_s, u"macOS"_s}, {u"evidence"_s, QJsonArray{database, log}}}
        << u"/p\\u{1b}\n  type       macOS\n    L/\\u{1b}.db  5368709120 bytes\n    a.log  0 bytes\n"_s;
    QTest::newRow("an archive") << QJsonObject{{u"path"_s, u"/p"_s}, {u"type"_s, u"iOS_UID"_s}, {u"container"_s, QJsonObject{{u"kind"_s, u"archive"_s}, {u"format"_s, u"tar"_s}}}, {u"evidence"_s, QJsonArray{log}}}
        << u"/p\n  type       iOS_UID\n  container  archive, tar\n    a.log  0 bytes\n"_s;
    QTest::newRow("an image") << QJsonObject{{u"path"_s, u"/p"_s}, {u"type"_s, u"macOS"_s}, {u"container"_s, QJsonObject{{u"kind"_s, u"image"_s}, {u"format"_s, u"ewf"_s}}},
            {u"volumes"_s, QJsonArray{volume_of(1, u"apfs"_s, u"Data\x1b"_s, false, u"macOS"_s, {log, database}), volume_of(2, QJsonValue(), QJsonValue(), true, QJsonValue())}}, {u"evidence"_s, QJsonArray{log, database}}}
        << u"/p\n  type       macOS\n  container  image, ewf\n"
           "  volume 1  offset 1048576, 7340032 bytes, apfs, Data\\u{1b}: macOS\n    a.log  0 bytes\n    L/\\u{1b}.db  5368709120 bytes\n"
           "  volume 2  offset 2097152, 7340032 bytes, no file system that is known, encrypted: no evidence\n"_s;
    // clang-format on
}

void test_command_output::surveys()
{
    QFETCH(const QJsonObject, survey);
    const printed shown = printed_by([&survey](console &out) {
        print_survey(survey, out);
        return exit_code::done;
    });
    QTEST(shown.output, "text");
}

void test_command_output::inspected_paths_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("errors"); // % stands for the folder

    const QString none = u"%/none\n  type       not recognized\n"_s;
    const QString log = u"%/a.log\n  type       iOS_UID\n    a.log  35 bytes\n"_s;
    const QString error = u"error: %/none: there is no source at %/none\n"_s;
    // clang-format off
    QTest::newRow("a log")           << QStringList{u"a.log"_s}             << 0 << log          << QString();
    QTest::newRow("nothing")         << QStringList{u"none"_s}              << 3 << none         << error;
    QTest::newRow("twice nothing")   << QStringList{u"none"_s, u"none"_s}   << 3 << none + none  << error + error;
    QTest::newRow("two logs")        << QStringList{u"a.log"_s, u"a.log"_s} << 0 << log + log    << QString();
    QTest::newRow("log and nothing") << QStringList{u"a.log"_s, u"none"_s}  << 4 << log + none   << error;
    QTest::newRow("nothing and log") << QStringList{u"none"_s, u"a.log"_s}  << 4 << none + log   << error;
    // clang-format on
}

void test_command_output::inspected_paths()
{
    QFETCH(const QStringList, names);
    QFETCH(const int, code);
    QFETCH(QString, output);
    QFETCH(QString, errors);
    const QTemporaryDir folder;
    write_file(folder.filePath(u"a.log"_s), "May 17 12:11:05 p s[1] <Notice>: x\n");
    inspect_options options;
    QJsonArray sources;
    for (const QString &name : names) {
        const QString path = folder.filePath(name);
        options.paths.append(path);
        const bool is_log = name == "a.log"_L1;
        const QJsonArray evidence{QJsonObject{{u"path"_s, name}, {u"size"_s, 35}}};
        sources.append(
            QJsonObject{{u"path"_s, path},
                        {u"type"_s, is_log ? QJsonValue(u"iOS_UID"_s) : QJsonValue()},
                        {u"container"_s, QJsonValue()},
                        {u"problem"_s, is_log ? QJsonValue() : QJsonValue(QString(u"there is no source at "_s + path))},
                        {u"volumes"_s, QJsonArray()},
                        {u"evidence"_s, is_log ? evidence : QJsonArray()}});
    }
    const auto inspect = [&options](console &out) { return run_inspect(options, out); };
    const printed shown = printed_by(inspect);
    QCOMPARE(shown.output, output.replace(u'%', folder.path()));
    QCOMPARE(shown.errors, errors.replace(u'%', folder.path()));
    QCOMPARE(shown.code, code);
    options.json = true;
    const printed as_json = printed_by(inspect, true);
    QCOMPARE(QJsonDocument::fromJson(as_json.output.toUtf8()).object(),
             QJsonObject({{u"format"_s, u"bluetooth-logs inspection"_s}, {u"version"_s, 1}, {u"sources"_s, sources}}));
    QCOMPARE(as_json.errors, shown.errors);
    QCOMPARE(as_json.code, code);
}

void test_command_output::host_devices_data()
{
    QTest::addColumn<std::optional<qint64>>("source");
    QTest::addColumn<std::optional<qint64>>("rows");
    QTest::addColumn<QString>("output");

    const QString first = u"row 1\n"
                          "  source:             1\n"
                          "  source_name:        Source1\n"
                          "  list:               registry\n"
                          "  address:            b4c26a7fd37a\n"
                          "  address_normal:     b4:c2:6a:7f:d3:7a\n"
                          "  names:              a\\u{1b} | b\n"
                          "  kind:               classic\n"
                          "  is_paired:          true\n"
                          "  is_current:         false\n"
                          "  listed_in:          [\"Keys\\\\\\\\1\"]\n"
                          "  host_file:          SYSTEM\n"
                          "  host_path:          k\\\\l\n"
                          "\n"_s;
    const QString second = u"row 2\n"
                           "  source:             1\n"
                           "  source_name:        Source1\n"
                           "  list:               preferences\n"
                           "  address:            00\n"
                           "\n"_s;
    const QString other = u"row 1\n"
                          "  source:             2\n"
                          "  source_name:        Source2\n"
                          "  list:               preferences\n"
                          "  address:            00\n"
                          "\n"_s;
    const std::optional<qint64> all;
    // clang-format off
    QTest::newRow("all")       << all << all << first + second + other + u"Source1  host_devices  2 rows\nSource2  host_devices  1 row\n"_s;
    QTest::newRow("one row")   << all << std::optional<qint64>(1) << first + other + u"Source1  host_devices  2 rows, 1 shown\nSource2  host_devices  1 row\n"_s;
    QTest::newRow("no rows")   << all << std::optional<qint64>(0) << u"Source1  host_devices  2 rows, 0 shown\nSource2  host_devices  1 row, 0 shown\n"_s;
    QTest::newRow("two rows")  << std::optional<qint64>(1) << std::optional<qint64>(2) << first + second + u"Source1  host_devices  2 rows\n"_s;
    QTest::newRow("one source") << std::optional<qint64>(2) << all << other + u"Source2  host_devices  1 row\n"_s;
    QTest::newRow("no source") << std::optional<qint64>(3) << all << QString();
    // clang-format on
}

void test_command_output::host_devices()
{
    QFETCH(const std::optional<qint64>, source);
    QFETCH(const std::optional<qint64>, rows);
    const made_case the_case;
    const QByteArray first =
        R"({"source":1,"list":"registry","address":"b4c26a7fd37a","address_normal":"b4:c2:6a:7f:d3:7a",)"
        R"("names":["a\u001b","b"],"kind":"classic","is_paired":true,"raw":{"x":1},)"
        R"("locator":{"file":"SYSTEM","path":"k\\l"},"is_current":false,"listed_in":["Keys\\1"]})"
        "\n";
    const QByteArray second = R"({"source":1,"list":"preferences","address":"00","names":[]})"
                              "\n";
    made_case::write(the_case.layout().source(1).host_devices(), first + second);
    made_case::write(the_case.layout().source(2).host_devices(), second);
    for (const int number : {1, 2})
        the_case.write_record(the_case.finished(number));
    collect_case(the_case.layout());
    show_options options;
    options.place = the_case.directory();
    options.source = source;
    options.most_rows = rows;
    const printed shown = printed_by([&options](console &out) { return show_host_devices(options, out); });
    QCOMPARE(shown.errors, QString());
    QCOMPARE(shown.code, 0);
    QTEST(shown.output, "output");
}

void test_command_output::host_devices_of_no_case()
{
    const QTemporaryDir folder;
    show_options options;
    options.place = folder.filePath(u"a.sqlite"_s);
    write_file(options.place, "x");
    QCOMPARE(printed_by([&options](console &out) { return show_host_devices(options, out); }).errors,
             QString(QString::number(int(error_kind::refused))
                     + u" --table: host_devices are of a case, not of a result database"_s));
}

void test_command_output::versions()
{
    QByteArray program = "bluetooth-logs";
    QByteArray option = "--version";
    char *words[] = {program.data(), option.data()};
    const printed shown = printed_by(parse_command_line(2, words).command);
    const auto or_none = [](const QString &library) { return library.isEmpty() ? u"not in this build"_s : library; };
    const QStringList lines = shown.output.split(u'\n');
    QCOMPARE(lines.size(), 4);
    QVERIFY2(lines.at(0).startsWith(u"bluetooth-logs 0."_s), qPrintable(lines.at(0)));
    QCOMPARE(lines.at(1), QString(u"archives: "_s + or_none(archive_library())));
    QCOMPARE(lines.at(2), QString(u"images: "_s + or_none(image_library())));
    QCOMPARE(shown.code, 0);
}

void test_command_output::samples_data()
{
    QTest::addColumn<bool>("has_containers");
    QTest::addColumn<QStringList>("commands"); // % stands for the folder

    const QStringList extracts{u"extract -i %/macos -o %/case-macos"_s, u"extract -i %/ios/system.log -o %/case-ios"_s,
                               u"extract -i %/windows -o %/case-windows"_s};
    const QStringList of_containers{u"extract -i %/sample.tar.gz -o %/case-archive"_s,
                                    u"extract -i %/ios_backup -o %/case-backup"_s,
                                    u"extract -i %/ios_files -o %/case-ios-files"_s};
    const QStringList shows{u"show %/case-macos"_s, u"show %/case-ios"_s};
    QTest::newRow("usual") << false << extracts + shows;
    QTest::newRow("with containers") << true << extracts + of_containers + shows;
}

void test_command_output::samples()
{
    QFETCH(const bool, has_containers);
    QFETCH(const QStringList, commands);
    const QTemporaryDir folder;
    sample_options options;
    options.directory = folder.filePath(u"s"_s);
    options.has_containers = has_containers;
    const auto sample = [&options](console &out) { return run_sample(options, out); };
    const printed written = printed_by(sample);
    QCOMPARE(written.errors, QString());
    QCOMPARE(written.code, 0);
    QStringList lines = written.output.split(u'\n');
    QCOMPARE(lines.takeFirst(), QString(u"A synthetic sample is in "_s + options.directory));
    QCOMPARE(lines.takeFirst(), QString());
    QCOMPARE(lines.takeFirst(), u"To extract it and to see its rows:"_s);
    QCOMPARE(lines.takeLast(), QString());
    QStringList expected = commands;
    const QString program = u"  "_s + QCoreApplication::applicationFilePath() + u' ';
    for (QString &command : expected)
        command = program + command.replace(u'%', options.directory);
    QCOMPARE(lines, expected);
    QCOMPARE(QFile::exists(options.directory + u"/sample.tar.gz"_s), has_containers);

    options.force = true;
    options.is_hostile = true;
    const printed quiet = printed_by(sample, true);
    QCOMPARE(quiet.output, QString());
    QCOMPARE(quiet.code, 0);
}

BLUETOOTH_LOGS_TEST(test_command_output, QCoreApplication)

#include "test_command_output.moc"
