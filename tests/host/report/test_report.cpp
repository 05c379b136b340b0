// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/file_content.h"
#include "tests/support/macos_source.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** Two macOS sources that know a device in common, by way of a third row. */
class two_sources
{
public:
    two_sources()
    {
        // clang-format off
        macos_source::add_device(one.make_other(), u"OtherDevices"_s,
                                 {u"U-1"_s, u"=cmd|'/c'!A1"_s, 2, u"Random C0:00:00:00:00:01"_s, u"Public B4:C2:6A:7F:D3:7A"_s, 395626, 0, 0, u"Tag"_s, u""_s});
        macos_source::add_device(two.make_other(), u"OtherDevices"_s,
                                 {u"U-2"_s, u"<script>alert(1)</script>\x1b]0;x"_s, 1, u"Public b4:c2:6a:7f:d3:7a"_s, QVariant(), 5, 7, 0, QVariant(), u""_s});
        macos_source::add_device(two.make_paired(), u"PairedDevices"_s,
                                 {u"U-2"_s, u"a,\"b\"\r\nc"_s, 1, u"Public B4:C2:6A:7F:D3:7A"_s, QVariant(), 9, 8, 1, u"Connected"_s, u"ic-1"_s});
        // clang-format on
    }

    void extract(const host_program &host) const
    {
        const host_result result = host.run(
            {u"extract"_s, u"-i"_s, one.root(), u"-i"_s, two.root(), u"-o"_s, u"case"_s, u"--jobs"_s, u"1"_s});
        if (result.exit_code != 0)
            qFatal("%s", qPrintable(result.errors));
    }

    macos_source one;
    macos_source two;
};

QList<QJsonObject> json_lines_of(const QString &path)
{
    QList<QJsonObject> lines;
    for (const QByteArray &line : content_of(path).split('\n')) {
        if (!line.isEmpty())
            lines.append(QJsonDocument::fromJson(line).object());
    }
    return lines;
}

} // namespace

class test_report : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void rows_for_programs();
    void shared_devices();
    void cells_of_separated_values();
    void page_holds_evidence_as_text();
    void lines_of_an_ios_log();
    void rows_of_a_write_ahead_log();
    void json_lines_follow_their_schema();
    void cells_are_read_back();
    void same_case_same_bytes();
    void earlier_files_are_replaced_on_request_only();
    void vendors_by_a_list();
    void page_for_each_source();
    void no_case();
    void case_that_was_not_collected();
    void folder_in_the_evidence();
};

void test_report::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

void test_report::rows_for_programs()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    const host_result result = host.run({u"-q"_s, u"report"_s, u"case"_s, u"-f"_s, u"jsonl"_s});
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exit_code, 0);

    const QList<QJsonObject> devices = json_lines_of(host.path(u"case/Report/devices.jsonl"_s));
    QCOMPARE(devices.size(), 2);
    QJsonObject first = devices.first();
    QCOMPARE(first.take(u"plugin"_s).toObject().value("device_name"_L1).toString(), u"=cmd|'/c'!A1"_s);
    const QJsonObject expected{
        {u"source"_s, 1},
        {u"source_name"_s, u"Source1"_s},
        {u"table"_s, u"devices"_s},
        {u"locator"_s, QJsonObject{{u"file"_s, u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s},
                                   {u"table"_s, u"OtherDevices"_s},
                                   {u"rowid"_s, 1}}},
        {u"host"_s, QJsonObject{{u"resolved_address"_s, u"Public B4:C2:6A:7F:D3:7A"_s},
                                {u"last_seen_time"_s, 395626},
                                {u"last_connection_time"_s, 0},
                                {u"name_origin"_s, 2},
                                {u"gatt_service_change_config"_s, 0},
                                {u"custom_properties"_s, QJsonValue()},
                                {u"tags"_s, u"Tag"_s},
                                {u"icloud_identifier"_s, u""_s},
                                {u"address_kind"_s, u"static"_s},
                                {u"name"_s, u"=cmd|'/c'!A1"_s},
                                {u"rssi"_s, QJsonValue()},
                                {u"aid"_s, QJsonValue()},
                                {u"line_text"_s, QJsonValue()},
                                {u"vendor"_s, QJsonValue()},
                                {u"differs"_s, QJsonValue()}}},
    };
    QCOMPARE(QJsonDocument(first).toJson(), QJsonDocument(expected).toJson());

    // The plug-in leaves integer times of paired devices out.
    const QList<QJsonObject> paired = json_lines_of(host.path(u"case/Report/paired_devices.jsonl"_s));
    QCOMPARE(paired.size(), 1);
    const QJsonObject host_fields = paired.first().value("host"_L1).toObject();
    QCOMPARE(host_fields.value("differs"_L1).toString(), u"last_seen_time, last_connection_time"_s);
    QCOMPARE(host_fields.value("last_seen_time"_L1).toInt(), 9);
}

void test_report::shared_devices()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"html"_s}).exit_code, 0);
    const QList<QJsonObject> shared = json_lines_of(host.path(u"case/Report/shared.jsonl"_s));
    QCOMPARE(shared.size(), 1);
    QCOMPARE(shared.first().value("sources"_L1).toArray(), (QJsonArray{1, 2}));
    QCOMPARE(shared.first().value("joined_by"_L1).toArray(),
             (QJsonArray{QJsonObject{{u"kind"_s, u"public_address"_s}, {u"value"_s, u"b4:c2:6a:7f:d3:7a"_s}}}));
    QStringList names;
    for (const QJsonValue &appearance : shared.first().value("appearances"_L1).toArray())
        names.append(appearance.toObject().value("uuid"_L1).toString());
    QCOMPARE(names, (QStringList{u"U-1"_s, u"U-2"_s, u"U-2"_s}));
    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    QVERIFY(page.contains("<section id=\"more-than-one-source\""));
    QVERIFY(page.contains("Devices that more than one source knows: 1."));
}

void test_report::cells_of_separated_values()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"tsv"_s}).exit_code, 0);
    const QByteArray devices = content_of(host.path(u"case/Report/devices.csv"_s));
    QVERIFY(devices.startsWith("source,source_name,bookmark,INT,"));
    QVERIFY(devices.contains(",'=cmd|'/c'!A1,Random C0:00:00:00:00:01,"));
    QVERIFY(devices.endsWith("\r\n"));
    QCOMPARE(devices.count("\r\n"), 3);
    QVERIFY(content_of(host.path(u"case/Report/paired_devices.csv"_s)).contains(",\"a,\"\"b\"\"\r\nc\","));
    QVERIFY(content_of(host.path(u"case/Report/paired_devices.tsv"_s)).contains("\t\"a,\"\"b\"\"\r\nc\"\t"));
    const QByteArray readme = content_of(host.path(u"case/Report/README.txt"_s));
    QVERIFY(readme.contains("devices.csv, row 2, device_name: apostrophe\n"));

    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"csv"_s, u"--raw-cells"_s, u"--csv-bom"_s, u"-o"_s, u"raw"_s})
                 .exit_code,
             0);
    const QByteArray raw = content_of(host.path(u"raw/devices.csv"_s));
    QVERIFY(raw.startsWith("\xEF\xBB\xBFsource,"));
    QVERIFY(raw.contains(",=cmd|'/c'!A1,Random"));
}

void test_report::page_holds_evidence_as_text()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    QCOMPARE(host.run({u"report"_s, u"case"_s}).exit_code, 0);
    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    QVERIFY(page.contains("<bdi>&lt;script&gt;alert(1)&lt;/script&gt;\\u{1b}]0;x</bdi>"));
    QVERIFY(!page.contains("<script>alert"));
    QVERIFY(!page.contains('\x1b'));
    QCOMPARE(page.count("<script"), 2);
    for (const QByteArray part : {"style", "script"}) {
        const QByteArray start = '<' + part + '>';
        const QByteArray end = "</" + part + '>';
        const qsizetype begin = page.lastIndexOf(start) + start.size();
        const QByteArray content = page.sliced(begin, page.indexOf(end, begin) - begin);
        const QByteArray hash = QCryptographicHash::hash(content, QCryptographicHash::Sha256).toBase64();
        const QByteArray source = part + "-src 'sha256-" + hash + '\'';
        QVERIFY(page.contains(source));
    }
    // No absolute path but those of the plug-in's own column.
    QVERIFY(!QByteArray(page).replace("plugin_source_file", "").contains("case/Source1"));
}

void test_report::lines_of_an_ios_log()
{
    const host_program host;
    write_file(host.path(u"ios/system.log"_s),
               "May 17 12:11:05 p x: nothing\n"
               "May 17 12:11:06 p s[1] <Notice>: BLE device found: SFDevice ID 1A, RSSI -60, Nm 'Car, "
               "\\M-p\\M^_\\M^N\\M-'', Md 'a1,1', AID 7F\n");
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"ios/system.log"_s, u"-o"_s, u"case"_s}).exit_code, 0);
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"jsonl"_s}).exit_code, 0);
    const QList<QJsonObject> devices = json_lines_of(host.path(u"case/Report/devices.jsonl"_s));
    QCOMPARE(devices.size(), 1);
    QCOMPARE(devices.first().value("locator"_L1).toObject(),
             (QJsonObject{{u"file"_s, u"system.log"_s}, {u"line"_s, 2}, {u"offset"_s, 29}}));
    const QJsonObject fields = devices.first().value("host"_L1).toObject();
    QCOMPARE(fields.value("name"_L1).toString(), u"Car, 🎧"_s);
    QCOMPARE(fields.value("rssi"_L1).toString(), u"-60"_s);
    QCOMPARE(fields.value("aid"_L1).toString(), u"7F"_s);
    QCOMPARE(fields.value("differs"_L1).toString(), u"device_name"_s);
    QCOMPARE(devices.first().value("plugin"_L1).toObject().value("device_name"_L1).toString(), u"Car"_s);
}

void test_report::rows_of_a_write_ahead_log()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    write_file(host.path(u"case/Source1/wal_changes.json"_s),
               "{\"format\":\"bluetooth-logs wal changes\",\"version\":1,\"tables\":[\n"
               "{\"result_table\":\"devices\",\"file\":\"Library/x.db\",\"table\":\"OtherDevices\",\"changes\":[\n"
               "{\"change\":\"added\",\"rowid\":7,\"before\":null,\"after\":{\"a\":9007199254740993}},\n"
               "{\"change\":\"deleted\",\"rowid\":8,\"before\":{\"a\":\",\\\"before\\\":\"},\"after\":null}\n"
               "],\"problem\":null}\n]}\n");
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"jsonl"_s}).exit_code, 0);
    QCOMPARE(content_of(host.path(u"case/Report/wal_changes.jsonl"_s)),
             "{\"source\":1,\"source_name\":\"Source1\",\"table\":\"devices\",\"locator\":{\"file\":\"Library/x.db\","
             "\"table\":\"OtherDevices\",\"rowid\":7},\"change\":\"added\",\"before\":null,\"after\":{\"a\":"
             "9007199254740993}}\n"
             "{\"source\":1,\"source_name\":\"Source1\",\"table\":\"devices\",\"locator\":{\"file\":\"Library/x.db\","
             "\"table\":\"OtherDevices\",\"rowid\":8},\"change\":\"deleted\",\"before\":{\"a\":\",\\\"before\\\":\"},"
             "\"after\":null}\n");
}

void test_report::json_lines_follow_their_schema()
{
    const QString python = QStandardPaths::findExecutable(u"python3"_s);
    if (python.isEmpty() || QProcess::execute(python, {u"-c"_s, u"import jsonschema"_s}) != 0)
        QSKIP("python3 with jsonschema is not there");
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-i"_s, u"sample/ios/system.log"_s, u"-o"_s,
                       u"case"_s})
                 .exit_code,
             0);
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"jsonl"_s}).exit_code, 0);
    const QString script = u"import json, sys, jsonschema\n"
                           "check = jsonschema.Draft202012Validator(json.load(open(sys.argv[1])))\n"
                           "count = 0\n"
                           "for name in sys.argv[2:]:\n"
                           "    for line in open(name, encoding='utf-8'):\n"
                           "        check.validate(json.loads(line)); count += 1\n"
                           "sys.exit(0 if count == 1101 else 1)\n"_s;
    QCOMPARE(QProcess::execute(python, {u"-c"_s, script, REPORT_SCHEMA_FILE, host.path(u"case/Report/devices.jsonl"_s),
                                        host.path(u"case/Report/paired_devices.jsonl"_s),
                                        host.path(u"case/Report/shared.jsonl"_s),
                                        host.path(u"case/Report/wal_changes.jsonl"_s)}),
             0);
}

void test_report::cells_are_read_back()
{
    const QString python = QStandardPaths::findExecutable(u"python3"_s);
    if (python.isEmpty())
        QSKIP("python3 is not there");
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s}).exit_code, 0);
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"tsv"_s, u"--raw-cells"_s}).exit_code, 0);
    const QString script =
        u"import csv, sqlite3, sys\n"
        "rows = sqlite3.connect(sys.argv[1]).execute('SELECT * FROM devices ORDER BY rowid').fetchall()\n"
        "for name, separator in ((sys.argv[2], ','), (sys.argv[3], '\\t')):\n"
        "    with open(name, encoding='utf-8', newline='') as file:\n"
        "        read = list(csv.reader(file, delimiter=separator))[1:]\n"
        "    wanted = [['' if v is None else str(v) for v in row] for row in rows]\n"
        "    if [row[2:2 + len(rows[0])] for row in read] != wanted: sys.exit(1)\n"_s;
    QCOMPARE(QProcess::execute(python,
                               {u"-c"_s, script,
                                host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s),
                                host.path(u"case/Report/devices.csv"_s), host.path(u"case/Report/devices.tsv"_s)}),
             0);
}

void test_report::same_case_same_bytes()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    const QStringList formats{u"-f"_s, u"html"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"tsv"_s, u"-f"_s, u"jsonl"_s};
    QCOMPARE(host.run(QStringList{u"report"_s, u"case"_s, u"-o"_s, u"one"_s} + formats).exit_code, 0);
    QCOMPARE(host.run(QStringList{u"report"_s, u"case"_s, u"-o"_s, u"two"_s} + formats).exit_code, 0);
    const QStringList names = QDir(host.path(u"one"_s)).entryList(QDir::Files, QDir::Name);
    QCOMPARE(names,
             (QStringList{u"README.txt"_s, u"devices.csv"_s, u"devices.jsonl"_s, u"devices.tsv"_s,
                          u"paired_devices.csv"_s, u"paired_devices.jsonl"_s, u"paired_devices.tsv"_s, u"report.html"_s,
                          u"shared.csv"_s, u"shared.jsonl"_s, u"shared.tsv"_s, u"wal_changes.jsonl"_s}));
    for (const QString &name : names)
        QCOMPARE(content_of(host.path(u"two/"_s + name)), content_of(host.path(u"one/"_s + name)));
}

void test_report::earlier_files_are_replaced_on_request_only()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    write_file(host.path(u"case/Report/shared.csv"_s), "mine");
    write_file(host.path(u"case/Report/notes.txt"_s), "notes");
    const host_result refused = host.run({u"report"_s, u"case"_s, u"-f"_s, u"csv"_s});
    QCOMPARE(refused.exit_code, 2);
    QVERIFY(refused.errors.contains(u"case/Report/shared.csv"_s));
    QCOMPARE(tree_of(host.path(u"case/Report"_s)), (QStringList{u"notes.txt"_s, u"shared.csv"_s}));
    QCOMPARE(content_of(host.path(u"case/Report/shared.csv"_s)), "mine");

    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"csv"_s, u"--force"_s}).exit_code, 0);
    QVERIFY(content_of(host.path(u"case/Report/shared.csv"_s)).startsWith("device,joined_by,"));
    QCOMPARE(content_of(host.path(u"case/Report/notes.txt"_s)), "notes");
}

void test_report::vendors_by_a_list()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    write_file(host.path(u"oui.txt"_s), "OUI\nB4-C2-6A   (hex)\t\tSome & Sons\nB4C26A     (base 16)\t\tSome & Sons\n");
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"html"_s, u"--vendors"_s, u"oui.txt"_s})
                 .exit_code,
             0);
    for (const QJsonObject &row : json_lines_of(host.path(u"case/Report/devices.jsonl"_s)))
        QCOMPARE(row.value("host"_L1).toObject().value("vendor"_L1).toString(), u"Some & Sons"_s);
    QVERIFY(content_of(host.path(u"case/Report/report.html"_s)).contains("<dt>Vendors by</dt><dd>oui.txt, SHA-256 "));

    write_file(host.path(u"empty.txt"_s), "nobody\n");
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-o"_s, u"other"_s, u"--vendors"_s, u"empty.txt"_s}).exit_code, 2);
    QVERIFY(!QFile::exists(host.path(u"other"_s)));
}

void test_report::page_for_each_source()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"--split"_s}).exit_code, 0);
    QCOMPARE(tree_of(host.path(u"case/Report"_s)),
             (QStringList{u"report-source1.html"_s, u"report-source2.html"_s, u"report.html"_s}));
    const QByteArray index = content_of(host.path(u"case/Report/report.html"_s));
    QVERIFY(index.contains("<a href=\"report-source2.html\">Source 2: <bdi>Source2</bdi></a>"));
    QVERIFY(index.contains("Devices that more than one source knows: 1."));
    QVERIFY(!index.contains("<section id=\"devices\""));
    const QByteArray first = content_of(host.path(u"case/Report/report-source1.html"_s));
    QVERIFY(first.contains("<section id=\"devices\""));
    QVERIFY(first.contains("U-1") && !first.contains("U-2"));
    QVERIFY(content_of(host.path(u"case/Report/report-source2.html"_s)).contains("U-2"));
}

void test_report::no_case()
{
    const host_program host;
    const host_result result = host.run({u"report"_s, u"nowhere"_s});
    QCOMPARE(result.exit_code, 3);
    QVERIFY(result.errors.contains(u"there is no case in "_s));
    QVERIFY(!QFile::exists(host.path(u"nowhere"_s)));
}

void test_report::case_that_was_not_collected()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    QVERIFY(QFile::remove(host.path(u"case/manifest.json"_s)));
    const host_result result = host.run({u"report"_s, u"case"_s});
    QCOMPARE(result.exit_code, 4);
    QVERIFY(result.errors.contains(u"the case was not collected: it has no manifest"_s));
    QVERIFY(content_of(host.path(u"case/Report/report.html"_s))
                .contains("<li>the case was not collected: it has no manifest</li>"));
}

void test_report::folder_in_the_evidence()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    const QStringList before = tree_of(sources.one.root());
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-o"_s, sources.one.root() + u"report"_s}).exit_code, 2);
    QCOMPARE(tree_of(sources.one.root()), before);
}

QTEST_GUILESS_MAIN(test_report)

#include "test_report.moc"
