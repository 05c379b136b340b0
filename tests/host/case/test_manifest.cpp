// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/manifest.h"

#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "tests/host/case/made_case.h"
#include "tests/support/file_content.h"
#include "tests/support/test_entry.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

/** "2: …" of what is thrown, with its kind; the folder's path is left out. */
QString thrown_by(const made_case &the_case, const std::function<void()> &work)
{
    try {
        work();
    } catch (const host_error &error) {
        return QString(QString::number(int(error.kind())) + u": "_s + error.message())
            .remove(the_case.directory() + u'/');
    }
    return {};
}

QString record_of(const made_case &the_case, int number)
{
    return the_case.layout().source(number).record();
}

/** Gives members of a record other values; null takes one out. */
void edit(const made_case &the_case, int number, const QJsonObject &changes)
{
    QJsonObject members = read_json_file(record_of(the_case, number));
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        if (change.value().isNull())
            members.remove(change.key());
        else
            members.insert(change.key(), change.value());
    }
    write_json_file(record_of(the_case, number), members);
}

QByteArray compact_json(const QJsonValue &value)
{
    return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
}

using change_of_case = void (*)(const made_case &the_case);

} // namespace

/** The manifest as it is made of records, read, and compared with them. */
class test_manifest : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void heading_data();
    void heading();
    void sources_of_it_data();
    void sources_of_it();
    void hash_beside_it();
    void not_collected_data();
    void not_collected();
    void faults_data();
    void faults();
    void states_of_records_data();
    void states_of_records();
    void run_without_an_end();
};

void test_manifest::heading_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<bool>("has_notes");
    QTest::addColumn<QByteArray>("heading"); // %1: the hash of the list of sources

    const QByteArray sources = R"("case_sources":{"count":2,"numbers":"1-2","sha256":"%1"},)";
    const QByteArray end = R"("finished":"2026-01-31T12:00:01Z","format":"bluetooth-logs manifest",)";
    const QByteArray start = R"("options":{"x":true},"started":"2026-01-31T11:00:00Z","tool":{"version":"7"},)";
    const QByteArray notes = R"("notes":{"path":"notes.jsonl","sha256":")" + sha256::of("{}\n").toLatin1()
                             + R"(","size":3},)";
    // clang-format off
    QTest::newRow("plain")      << 2 << false << "{" + sources + end + R"("notes":null,)" + start + R"("version":2})";
    QTest::newRow("with notes") << 2 << true  << "{" + sources + end + notes + start + R"("version":2})";
    QTest::newRow("version 1")  << 1 << true  << "{" + sources + end + start + R"("version":1})";
    // clang-format on
}

void test_manifest::heading()
{
    QFETCH(const int, version);
    QFETCH(const bool, has_notes);
    QFETCH(QByteArray, heading);
    const made_case the_case;
    for (const int number : {1, 2})
        the_case.write_record(the_case.finished(number), version);
    edit(the_case, 1, {{u"tool"_s, QJsonObject{{u"version"_s, u"7"_s}}}, {u"options"_s, QJsonObject{{u"x"_s, true}}}});
    edit(the_case, 2,
         {{u"tool"_s, QJsonObject{{u"version"_s, u"8"_s}}},
          {u"examiner"_s, u"of the second alone"_s},
          {u"started"_s, u"2026-01-31T11:00:00Z"_s},
          {u"finished"_s, u"2026-01-31T11:30:00Z"_s}});
    if (has_notes)
        made_case::write(the_case.layout().notes(), "{}\n");
    collect_case(the_case.layout());
    QJsonObject members = manifest_members(read_manifest_file(the_case.layout()));
    members.remove(u"sources"_s);
    heading.replace("%1", read_json_file(record_of(the_case, 1))["case_sources"_L1]["sha256"_L1].toString().toLatin1());
    QCOMPARE(compact_json(members), heading);
}

void test_manifest::sources_of_it_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<QString>("files_not_run");

    QTest::newRow("plain") << 2 << u"[]"_s;
    QTest::newRow("version 1") << 1 << u"undefined"_s;
}

/** Each with its record, which lists itself there; one that was not run with what is said of it. */
void test_manifest::sources_of_it()
{
    QFETCH(const int, version);
    const made_case the_case({1, 3, 7});
    for (const int number : {1, 3, 7})
        the_case.write_record(the_case.finished(number), version);
    QVERIFY(QFile::remove(record_of(the_case, 3)));
    const case_tally tally = collect_case(the_case.layout());
    QCOMPARE(tally.sources, (QMap<source_status, int>{{source_status::done, 2}, {source_status::not_run, 1}}));
    QCOMPARE(tally.codes, (QMap<outcome_code, int>{{outcome_code::done, 2}, {outcome_code::partial, 1}}));
    QCOMPARE(tally.not_done, QList<int>{3});

    const QJsonArray sources = manifest_members(read_manifest_file(the_case.layout())).value("sources"_L1).toArray();
    QStringList statuses;
    for (const auto source : sources)
        statuses.append(QString::number(source["number"_L1].toInt()) + u' ' + source["status"_L1].toString());
    QCOMPARE(statuses, QStringList({u"1 done"_s, u"3 not run"_s, u"7 done"_s}));
    QCOMPARE(sources.at(1)["messages"_L1].toArray(),
             (QJsonArray{
                 QJsonObject{{u"weight"_s, u"error"_s}, {u"text"_s, u"this source of the case was not run"_s}}}));
    const QJsonValue files = sources.at(1)["files"_L1];
    QTEST(files.isArray() ? QString::fromUtf8(QJsonDocument(files.toArray()).toJson(QJsonDocument::Compact))
                          : QString(files.isUndefined() ? u"undefined"_s : u"null"_s),
          "files_not_run");
    const QJsonArray listed = sources.at(2)["files"_L1].toArray();
    QCOMPARE(listed.last(), (QJsonObject{{u"path"_s, u"Source7/source.json"_s},
                                         {u"sha256"_s, sha256::of(content_of(record_of(the_case, 7)))},
                                         {u"size"_s, content_of(record_of(the_case, 7)).size()}}));
    QCOMPARE(sources_unlike_manifest(the_case.layout(), manifest_members(read_manifest_file(the_case.layout()))),
             QList<int>());
}

void test_manifest::hash_beside_it()
{
    const made_case the_case;
    const case_tally tally = collect_case(the_case.layout());
    const QByteArray bytes = content_of(the_case.layout().manifest());
    QCOMPARE(bytes.count('\n'), 4); // a line for the heading, each source and the end
    QVERIFY(bytes.endsWith("\n]}\n"));
    QCOMPARE(tally.manifest_sha256, sha256::of(bytes));
    QCOMPARE(content_of(the_case.layout().manifest_hash()), tally.manifest_sha256.toLatin1() + "  manifest.json\n");
    QCOMPARE(read_manifest_file(the_case.layout()).sha256, tally.manifest_sha256);
}

void test_manifest::not_collected_data()
{
    QTest::addColumn<change_of_case>("change");
    QTest::addColumn<QString>("thrown");

    // clang-format off
    QTest::newRow("nothing is wrong") << change_of_case([](const made_case &) {}) << QString();
    QTest::newRow("no record") << change_of_case([](const made_case &a_case) { QFile::remove(record_of(a_case, 1)); QFile::remove(record_of(a_case, 2)); })
        << u"2: case holds no record of a source"_s;
    QTest::newRow("versions") << change_of_case([](const made_case &a_case) { edit(a_case, 2, {{u"version"_s, 1}}); })
        << u"1: the records of source 1 and source 2 are of different versions of the program"_s;
    QTest::newRow("lists") << change_of_case([](const made_case &a_case) { edit(a_case, 1, {{u"case_sources"_s, QJsonObject{{u"sha256"_s, u"ab"_s}}}}); edit(a_case, 2, {{u"case_sources"_s, QJsonObject{{u"sha256"_s, u"cd"_s}}}}); })
        << u"1: the records of source 1 and source 2 are of different lists of sources: ab and cd"_s;
    QTest::newRow("not listed") << change_of_case([](const made_case &a_case) { for (const int number : {1, 2}) edit(a_case, number, {{u"case_sources"_s, QJsonObject{{u"numbers"_s, u"1"_s}}}}); })
        << u"1: source 2 has a record and is not in the list of the case's sources"_s;
    QTest::newRow("no list") << change_of_case([](const made_case &a_case) { for (const int number : {1, 2}) edit(a_case, number, {{u"case_sources"_s, QJsonObject{{u"numbers"_s, u"x"_s}}}}); })
        << u"2: these are no numbers of sources: x"_s;
    QTest::newRow("format") << change_of_case([](const made_case &a_case) { edit(a_case, 2, {{u"format"_s, u"x"_s}}); })
        << u"2: Source2/source.json is no record of this version of the program"_s;
    for (const int version : {0, 3})
        QTest::addRow("version %d", version) << (version == 0 ? change_of_case([](const made_case &a_case) { edit(a_case, 2, {{u"version"_s, 0}}); })
                                                              : change_of_case([](const made_case &a_case) { edit(a_case, 2, {{u"version"_s, 3}}); }))
            << u"2: Source2/source.json is no record of this version of the program"_s;
    QTest::newRow("forged") << change_of_case([](const made_case &a_case) { edit(a_case, 2, {{u"status"_s, u"x"_s}}); })
        << u"2: Source2/source.json is forged: there is no status \"x\""_s;
    // clang-format on
}

void test_manifest::not_collected()
{
    QFETCH(const change_of_case, change);
    const made_case the_case;
    change(the_case);
    QString thrown = thrown_by(the_case, [&] { collect_case(the_case.layout()); });
    QTEST(thrown.replace(the_case.directory(), u"case"_s), "thrown");
    QCOMPARE(QFile::exists(the_case.layout().manifest()), thrown.isEmpty());
}

void test_manifest::faults_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("thrown");

    const QByteArray start =
        R"({"format": "bluetooth-logs manifest", "version": 2, "case_sources": {"numbers": "1"}, )";
    // clang-format off
    QTest::newRow("whole")     << start + R"("sources": [{"number": 1, "status": "done"}]})" << QString();
    QTest::newRow("version 1") << R"({"format": "bluetooth-logs manifest", "version": 1, "case_sources": {"numbers": "1"}, "sources": [{"number": 1, "status": "done"}]})"_ba << QString();
    QTest::newRow("no JSON")   << "{"_ba << u"2: manifest.json is no manifest of this program"_s;
    QTest::newRow("a record")  << R"({"format": "bluetooth-logs source", "version": 2})"_ba << u"2: manifest.json is no manifest of this program"_s;
    QTest::newRow("version 3") << R"({"format": "bluetooth-logs manifest", "version": 3})"_ba << u"2: manifest.json is of another version of this program"_s;
    QTest::newRow("version 0") << R"({"format": "bluetooth-logs manifest", "version": 0})"_ba << u"2: manifest.json is of another version of this program"_s;
    QTest::newRow("doubled")   << start + R"("sources": [{"number": 1, "status": "done", "number": 1}]})" << u"2: manifest.json is forged: it gives the member \"number\" twice"_s;
    QTest::newRow("forged")    << start + R"("sources": [{"number": 1, "status": "x"}]})" << u"2: manifest.json is forged: Source1: there is no status \"x\""_s;
    // clang-format on
}

void test_manifest::faults()
{
    QFETCH(const QByteArray, bytes);
    const made_case the_case;
    QTEST(thrown_by(the_case, [&bytes] { manifest_members({bytes, {}}); }), "thrown");
}

void test_manifest::states_of_records_data()
{
    QTest::addColumn<change_of_case>("change");
    QTest::addColumn<int>("state");

    const auto row = [](const char *name, record_state state, change_of_case change) {
        QTest::newRow(name) << change << int(state);
    };
    // clang-format off
    row("as it was",     record_state::alike,     [](const made_case &) {});
    row("what the program does not know", record_state::alike, [](const made_case &a_case) { edit(a_case, 2, {{u"x"_s, 1}}); });
    row("gone",          record_state::gone,      [](const made_case &a_case) { QFile::remove(record_of(a_case, 2)); });
    row("another path",  record_state::different, [](const made_case &a_case) { edit(a_case, 2, {{u"source"_s, u"x"_s}, {u"path"_s, u"x"_s}}); });
    row("another end",   record_state::different, [](const made_case &a_case) { edit(a_case, 2, {{u"finished"_s, u"2026-01-31T12:00:00Z"_s}}); });
    row("a later end",   record_state::newer,     [](const made_case &a_case) { edit(a_case, 2, {{u"finished"_s, u"2026-01-31T12:00:02Z"_s}}); });
    row("another status", record_state::different, [](const made_case &a_case) { edit(a_case, 2, {{u"status"_s, u"partial"_s}}); });
    row("forged",        record_state::forged,    [](const made_case &a_case) { edit(a_case, 2, {{u"number"_s, 1}}); });
    row("not run, and is now", record_state::newer, [](const made_case &a_case) { QFile::remove(record_of(a_case, 2)); collect_case(a_case.layout()); a_case.write_record(a_case.finished(2)); });
    row("not run, as before",  record_state::alike, [](const made_case &a_case) { QFile::remove(record_of(a_case, 2)); collect_case(a_case.layout()); });
    // clang-format on
}

void test_manifest::states_of_records()
{
    QFETCH(const change_of_case, change);
    QFETCH(const int, state);
    const made_case the_case;
    collect_case(the_case.layout());
    change(the_case);
    const QJsonObject manifest = manifest_members(read_manifest_file(the_case.layout()));
    QCOMPARE(int(compare_record(the_case.layout(), manifest, manifest["sources"_L1][1].toObject())), state);
    QCOMPARE(sources_unlike_manifest(the_case.layout(), manifest),
             state == int(record_state::alike) ? QList<int>() : QList<int>{2});
}

void test_manifest::run_without_an_end()
{
    const made_case the_case;
    edit(the_case, 2, {{u"status"_s, u"running"_s}, {u"exit_code"_s, QJsonValue()}});
    {
        const file_lock works_here(the_case.layout().source(2).lock());
        QCOMPARE(thrown_by(the_case, [&] { collect_case(the_case.layout()); }), u"1: source 2 still runs"_s);
        QCOMPARE(read_source_record(the_case.layout(), 2).source.status, source_status::running);
    }
    const source_record record = read_source_record(the_case.layout(), 2).source;
    QCOMPARE(record.status, source_status::interrupted);
    QCOMPARE(record.exit_code, std::optional<int>(130));
    QCOMPARE(record.messages.size(), 1);
    QCOMPARE(record.messages.first().importance, run_message::weight::error);
    QCOMPARE(record.messages.first().text, u"interrupted: the run ended without a word, the result is incomplete"_s);
}

BLUETOOTH_LOGS_TEST(test_manifest, QCoreApplication)
#include "test_manifest.moc"
