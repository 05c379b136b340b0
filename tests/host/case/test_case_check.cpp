// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_check.h"
#include "host/case/report_record.h"
#include "host/files/host_error.h"
#include "tests/host/case/made_case.h"
#include "tests/support/test_entry.h"

#include <functional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

using change = std::function<void(const made_case &)>;

const QString beside_alone = u"no hash was given by --manifest-sha256: manifest.json was compared with "
                             "manifest.json.sha256 beside it alone, and an edit of both would pass"_s;

check_outcome check(const made_case &the_case, const QString &noted = {})
{
    check_request request;
    request.directory = the_case.directory();
    request.manifest_sha256 = noted;
    request.leaves_out_evidence = true;
    return check_case(request);
}

QString path(const made_case &the_case, const QString &name)
{
    return the_case.directory() + u'/' + name;
}

change put(const QString &name, const QByteArray &content)
{
    return [=](const made_case &the_case) { made_case::write(path(the_case, name), content); };
}

change away(const QString &name)
{
    return [=](const made_case &the_case) { QVERIFY(QFile::remove(path(the_case, name))); };
}

/** A text of a file of the case in place of another one. */
change edit(const QString &name, const QByteArray &before, const QByteArray &after)
{
    return [=](const made_case &the_case) {
        QByteArray content = made_case::content(path(the_case, name));
        QVERIFY(content.contains(before));
        made_case::write(path(the_case, name), content.replace(before, after));
    };
}

/** The manifest edited, and the hash beside it with it. */
change forge(const QByteArray &before, const QByteArray &after)
{
    return [=](const made_case &the_case) {
        edit(u"manifest.json"_s, before, after)(the_case);
        const QString hash = sha256::of(made_case::content(the_case.layout().manifest()));
        made_case::write(the_case.layout().manifest_hash(), hash.toLatin1() + "  manifest.json\n");
    };
}

/** An entry of the list of a made case. */
named_source listed(int number, const source_kind *kind)
{
    named_source source;
    source.number = number;
    source.path = u"/evidence/"_s + QString::number(number);
    source.kind = kind;
    return source;
}

/** A source that ended otherwise. */
change ended(source_status status, int code)
{
    return [=](const made_case &the_case) {
        source_record record = the_case.finished(2);
        record.status = status;
        record.exit_code = code;
        the_case.write_record(record);
        collect_case(the_case.layout());
    };
}

} // namespace

class test_case_check : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void unchanged();
    void differences_data();
    void differences();
    void incomplete_data();
    void incomplete();
    void list_of_sources_that_is_unchanged();
    void hash_that_was_noted();
    void newer_record_is_said_once();
    void source_of_no_manifest();
    void version_1_is_compared_as_far_as_it_goes();
    void reports();
    void older_reports_are_named();
    void special_files_hang_nobody();
    void windows_is_not_called_compared();
};

void test_case_check::unchanged()
{
    const made_case the_case;
    const QString hash = collect_case(the_case.layout()).manifest_sha256;
    const check_outcome outcome = check(the_case);
    QCOMPARE(outcome.differences + outcome.incomplete + outcome.missing, QStringList());
    QCOMPARE(outcome.notes, QStringList({beside_alone}));
    QCOMPARE(outcome.code(), outcome_code::done);
    QCOMPARE(outcome.manifest_sha256, hash);
    QCOMPARE(outcome.count(compared_file::place::result), 6);
    QCOMPARE(outcome.count(compared_file::place::evidence), 0);
    const QJsonArray files = outcome.to_json().value("files"_L1).toArray();
    QCOMPARE(files.size(), 7);
    const QString log_hash = sha256::of("log 1");
    const QJsonObject log{{u"kind"_s, u"case"_s},
                          {u"path"_s, u"Source1/plugin.log"_s},
                          {u"outcome"_s, u"unchanged"_s},
                          {u"expected_sha256"_s, log_hash},
                          {u"found_sha256"_s, log_hash}};
    QVERIFY(files.contains(log));
    QStringList paths;
    for (const auto &file : files)
        paths.append(file["path"_L1].toString());
    QCOMPARE(paths.join(u' ').replace(u"Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s, u"result"_s),
             u"manifest.json Source1/result Source1/plugin.log Source1/source.json "
             "Source2/result Source2/plugin.log Source2/source.json"_s);
}

void test_case_check::differences_data()
{
    QTest::addColumn<change>("make_change");
    QTest::addColumn<QString>("start");

    const QByteArray number_2 = "\"number\":2,";
    // clang-format off
    QTest::newRow("log edited")       << put(u"Source1/plugin.log"_s, "lag 1")      << u"Source1/plugin.log was changed: its SHA-256 was "_s;
    QTest::newRow("log longer")       << put(u"Source1/plugin.log"_s, "log 12")     << u"Source1/plugin.log was changed: it had 5 bytes and has 6"_s;
    QTest::newRow("log gone")         << away(u"Source1/plugin.log"_s)              << u"Source1/plugin.log is gone"_s;
    QTest::newRow("changes planted")  << put(u"Source1/wal_changes.jsonl"_s, "{}")  << u"Source1/wal_changes.jsonl is new: nothing lists it"_s;
    QTest::newRow("result's log")     << put(u"Source2/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite-wal"_s, "x") << u"Source2/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite-wal is new: nothing lists it"_s;
    QTest::newRow("record, a blank")  << edit(u"Source1/source.json"_s, "{\n", "{ \n") << u"Source1/source.json was changed: "_s;
    QTest::newRow("record, a value")  << edit(u"Source1/source.json"_s, "/evidence/1", "/evidence/2") << u"Source1/source.json is not what the manifest says"_s;
    QTest::newRow("record gone")      << away(u"Source1/source.json"_s)             << u"Source1/source.json is gone"_s;
    QTest::newRow("record, no JSON")  << put(u"Source1/source.json"_s, "{")         << u"Source1/source.json cannot be read as a record of this program"_s;
    QTest::newRow("manifest edited")  << edit(u"manifest.json"_s, "/evidence/1", "/evidence/2") << u"manifest.json and manifest.json.sha256 disagree: "_s;
    QTest::newRow("manifest, broken") << put(u"manifest.json"_s, "{")               << u"manifest.json is no manifest of this program"_s;
    QTest::newRow("no source")        << forge("\"sources\":[\n{", "\"sources\":[],\"x\":[{")    << u"manifest.json is forged: it names no source"_s;
    QTest::newRow("a number twice")   << forge(number_2, "\"number\":1,")          << u"manifest.json is forged: source 1 is there twice, or out of order"_s;
    QTest::newRow("other numbers")    << forge("\"numbers\":\"1-2\"", "\"numbers\":\"1-3\"") << u"manifest.json is forged: its sources are not those that it lists, 1-3"_s;
    QTest::newRow("absurd numbers")   << forge("\"numbers\":\"1-2\"", "\"numbers\":\"2147483647-2147483647\"") << u"these are no numbers of sources: 2147483647-2147483647"_s;
    QTest::newRow("a path upwards")   << forge("Source1/plugin.log", "Source1/../../secret") << u"manifest.json is forged: Source1: the path Source1/../../secret leads out"_s;
    QTest::newRow("another's file")   << forge("Source1/plugin.log", "Source2/plugin.log") << u"manifest.json is forged: Source1: the path Source2/plugin.log leads out"_s;
    QTest::newRow("unknown status")   << forge("\"status\":\"done\"", "\"status\":\"fine\"") << u"manifest.json is forged: Source1: there is no status \"fine\""_s;
    QTest::newRow("unknown code")     << forge("\"exit_code\":0", "\"exit_code\":42") << u"manifest.json is forged: Source1: no run ends with the exit code 42"_s;
    QTest::newRow("another version")  << forge("\"version\":2", "\"version\":3")    << u"manifest.json is of another version of this program"_s;
    QTest::newRow("a member twice")   << forge("\"status\":\"done\"", "\"status\":\"failed\",\"status\":\"done\"") << u"manifest.json is forged: it gives the member \"status\" twice"_s;
    QTest::newRow("record, a member twice") << edit(u"Source1/source.json"_s, "{\n", "{ \"number\": 1,\n") << u"Source1/source.json cannot be read as a record of this program"_s;
    QTest::newRow("another list")     << put(u"sources.json"_s, R"({"sources": [{"path": "/evidence/1"}]})") << u"sources.json lists other sources than the manifest"_s;
    QTest::newRow("list, other form") << put(u"sources.json"_s, R"({"sources": [{"path": "/evidence/1", "number": 1}, {"path": "/evidence/2", "number": 2}]})") << u"sources.json was changed: this program writes it otherwise"_s;
    QTest::newRow("list, other kind") << change([](const made_case &the_case) {
        write_source_list(path(the_case, u"sources.json"_s), {listed(1, nullptr), listed(2, &ios_uid_kind)});
    }) << u"sources.json lists other sources than the manifest"_s;
    QTest::newRow("list, same path")  << put(u"sources.json"_s, "{\n    \"sources\": [\n        {\n            \"number\": 1,\n            \"path\": \"/evidence//1\"\n        },\n        {\n            \"number\": 2,\n            \"path\": \"/evidence/2\"\n        }\n    ]\n}\n") << u"sources.json was changed: this program writes it otherwise"_s;
    QTest::newRow("list, no JSON")    << put(u"sources.json"_s, "{")                << u"sources.json is no list of sources: "_s;
    QTest::newRow("hash emptied")     << put(u"manifest.json.sha256"_s, "")         << u"manifest.json.sha256 holds no hash of manifest.json"_s;
    QTest::newRow("hash, gigabytes")  << put(u"manifest.json.sha256"_s, QByteArray(5000, 'a')) << u"manifest.json.sha256 holds no hash of manifest.json"_s;
    QTest::newRow("another source")   << put(u"Source3/x"_s, "x")                   << u"Source3 is not in the manifest"_s;
    // clang-format on
}

void test_case_check::differences()
{
    QFETCH(change, make_change);
    QFETCH(QString, start);
    const made_case the_case;
    collect_case(the_case.layout());
    make_change(the_case);
    const check_outcome outcome = check(the_case);
    QCOMPARE(outcome.code(), outcome_code::evidence_changed);
    const bool is_named = std::any_of(outcome.differences.cbegin(), outcome.differences.cend(),
                                      [&start](const QString &text) { return text.startsWith(start); });
    QVERIFY2(is_named, qPrintable(outcome.differences.join(u'\n')));
}

void test_case_check::incomplete_data()
{
    QTest::addColumn<change>("make_change");
    QTest::addColumn<QString>("text");

    // clang-format off
    QTest::newRow("partial")     << ended(source_status::partial, 4)       << u"Source2: partial"_s;
    QTest::newRow("crashed")     << ended(source_status::crashed, 4)       << u"Source2: crashed"_s;
    QTest::newRow("failed")      << ended(source_status::failed, 3)        << u"Source2: failed"_s;
    QTest::newRow("timed out")   << ended(source_status::timed_out, 4)     << u"Source2: timed out"_s;
    QTest::newRow("no memory")   << ended(source_status::out_of_memory, 4) << u"Source2: out of memory"_s;
    QTest::newRow("interrupted") << ended(source_status::interrupted, 130) << u"Source2: interrupted"_s;
    QTest::newRow("unfinished")  << away(u"manifest.json.sha256"_s)
                                 << u"unfinished: manifest.json.sha256 is not there; a \"collect\" that was stopped leaves a case so, and \"collect\" makes both anew"_s;
    QTest::newRow("no manifest") << away(u"manifest.json"_s)               << u"the case has no manifest.json: \"collect\" makes it"_s;
    // clang-format on
}

void test_case_check::incomplete()
{
    QFETCH(change, make_change);
    QFETCH(QString, text);
    const made_case the_case;
    collect_case(the_case.layout());
    make_change(the_case);
    const check_outcome outcome = check(the_case);
    QCOMPARE(outcome.differences, QStringList());
    QCOMPARE(outcome.incomplete, QStringList({text}));
    QCOMPARE(outcome.code(), outcome_code::partial);
}

void test_case_check::list_of_sources_that_is_unchanged()
{
    const made_case the_case;
    collect_case(the_case.layout());
    write_source_list(path(the_case, u"sources.json"_s), {listed(1, &macos_kind), listed(2, nullptr)});
    QCOMPARE(check(the_case).differences, QStringList());
}

/** Of three hashes two agree, and the third one is named. */
void test_case_check::hash_that_was_noted()
{
    const made_case the_case;
    const QString hash = collect_case(the_case.layout()).manifest_sha256;
    QCOMPARE(check(the_case, hash.toUpper()).notes, QStringList());
    QCOMPARE(check(the_case, hash.toUpper()).code(), outcome_code::done);

    const QString other = sha256::of("other");
    made_case::write(the_case.layout().manifest_hash(), other.toLatin1() + "  manifest.json\n");
    QVERIFY(check(the_case, hash)
                .differences.first()
                .endsWith(u"; manifest.json is the one that was noted, manifest.json.sha256 was changed"_s));
    QVERIFY(check(the_case, other)
                .differences.last()
                .endsWith(u"; manifest.json.sha256 says what was noted, manifest.json was changed"_s));
    QVERIFY(check(the_case).differences.first().endsWith(u"; one of the two was changed"_s));
    made_case::write(the_case.layout().manifest_hash(), hash.toLatin1() + "  manifest.json\n");
    QCOMPARE(check(the_case, other).differences,
             QStringList({u"manifest.json is not the one that was noted: its SHA-256 is "_s + hash + u", and "_s + other
                          + u" was noted"_s}));
}

void test_case_check::newer_record_is_said_once()
{
    const made_case the_case;
    collect_case(the_case.layout());
    source_record record = the_case.finished(2);
    record.finished = u"2026-01-31T13:00:00Z"_s;
    the_case.write_record(record);
    made_case::write(the_case.layout().source(2).plugin_log(), "another");
    QCOMPARE(check(the_case).differences,
             QStringList({u"Source2/source.json is newer than the manifest: \"collect\" makes it anew"_s}));
    const QJsonObject manifest = manifest_members(read_manifest_file(the_case.layout()));
    QCOMPARE(sources_unlike_manifest(the_case.layout(), manifest), QList<int>{2});
}

void test_case_check::source_of_no_manifest()
{
    const made_case the_case;
    collect_case(the_case.layout());
    check_request request;
    request.directory = the_case.directory();
    request.moved_to.insert(3, u"/x"_s);
    try {
        check_case(request);
        QFAIL("a source that is not there was taken");
    } catch (const host_error &error) {
        QCOMPARE(error.kind(), error_kind::refused);
        QCOMPARE(error.message(), u"--evidence names a source that the manifest has not, 3"_s);
    }
}

void test_case_check::version_1_is_compared_as_far_as_it_goes()
{
    const made_case the_case({1});
    source_record record = the_case.finished(1);
    record.files.reset();
    the_case.write_record(record, 1);
    collect_case(the_case.layout());
    QVERIFY(!made_case::content(the_case.layout().manifest()).contains("\"files\""));

    check_outcome outcome = check(the_case);
    QCOMPARE(outcome.code(), outcome_code::done);
    QCOMPARE(outcome.count(compared_file::place::result), 1);
    QVERIFY(outcome.notes.last().contains(u"its other files were not compared"_s));
    put(u"Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s, "raws")(the_case);
    put(u"Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite-journal"_s, "x")(the_case);
    QCOMPARE(check(the_case).differences.size(), 2);
}

void test_case_check::reports()
{
    const made_case the_case;
    const QString hash = collect_case(the_case.layout()).manifest_sha256;
    const QString folder = path(the_case, u"Report"_s);
    const QTemporaryDir elsewhere;
    for (const QString &place : {folder, elsewhere.path()}) {
        made_case::write(place + u"/a.csv"_s, "a");
        write_json_file(place + u"/report.json"_s,
                        {{u"format"_s, u"bluetooth-logs report"_s},
                         {u"version"_s, 1},
                         {u"manifest_sha256"_s, hash},
                         {u"files"_s, kept_files_to_json({{u"a.csv"_s, 1, sha256::of("a")}})}});
    }
    QCOMPARE(check(the_case, hash).code(), outcome_code::done);
    QCOMPARE(check(the_case, hash).count(compared_file::place::report), 1);
    QCOMPARE(check(the_case, hash).notes, QStringList());

    check_request request;
    request.directory = the_case.directory();
    request.leaves_out_evidence = true;
    request.report_folders = {elsewhere.path()};
    made_case::write(elsewhere.filePath(u"a.csv"_s), "b");
    made_case::write(folder + u"/b.csv"_s, "b");
    const QStringList differences = check_case(request).differences;
    QCOMPARE(differences.size(), 2);
    QCOMPARE(differences.at(0), u"Report/b.csv is new: nothing lists it"_s);
    QVERIFY(differences.at(1).startsWith(QString(elsewhere.filePath(u"a.csv"_s) + u" was changed: "_s)));

    QVERIFY(QFile::remove(folder + u"/a.csv"_s) && QFile::remove(folder + u"/b.csv"_s));
    QCOMPARE(check(the_case, hash).differences, QStringList({u"Report/a.csv is gone"_s}));
    made_case::write(folder + u"/report.json"_s, "{}");
    QVERIFY(check(the_case, hash).differences.first().endsWith(u"is no list of a report's files of this program"_s));
}

void test_case_check::older_reports_are_named()
{
    const made_case the_case;
    const QString hash = collect_case(the_case.layout()).manifest_sha256;
    write_json_file(
        [&] {
            made_case::write(path(the_case, u"Report/x"_s), {});
            return path(the_case, u"Report/report.json"_s);
        }(),
        {{u"format"_s, u"bluetooth-logs report"_s},
         {u"version"_s, 1},
         {u"manifest_sha256"_s, sha256::of("another")},
         {u"files"_s, kept_files_to_json({{u"x"_s, 0, sha256::of("")}})}});
    QCOMPARE(outdated_reports(the_case.layout(), hash), QStringList({u"Report"_s}));
    const check_outcome outcome = check(the_case, hash);
    QCOMPARE(outcome.code(), outcome_code::done);
    QCOMPARE(outcome.notes, QStringList({u"the report in Report is older than the manifest, or of another case: "
                                         "\"report --force\" makes it anew"_s}));
}

void test_case_check::special_files_hang_nobody()
{
    const made_case the_case;
    collect_case(the_case.layout());
    const QByteArray log = QFile::encodeName(the_case.layout().source(1).plugin_log());
    QVERIFY(::unlink(log.constData()) == 0 && ::mkfifo(log.constData(), 0600) == 0);
    const QString other = the_case.layout().source(2).plugin_log();
    QVERIFY(QFile::remove(other) && QFile::link(the_case.layout().source(2).result_database(), other));
    const QStringList differences = check(the_case).differences;
    QCOMPARE(differences.size(), 2);
    QCOMPARE(differences.at(0), u"Source1/plugin.log cannot be read"_s);
    QVERIFY(differences.at(1).startsWith(u"Source2/plugin.log "_s));
}

void test_case_check::windows_is_not_called_compared()
{
    const made_case the_case({1});
    source_record record = the_case.finished(1);
    record.type = u"winOS"_s;
    the_case.write_record(record);
    collect_case(the_case.layout());
    QCOMPARE(check(the_case).notes.last(),
             u"Source1: nothing of a Windows source is read by this version, and none of it was compared"_s);
}

BLUETOOTH_LOGS_TEST(test_case_check, QCoreApplication)

#include "test_case_check.moc"
