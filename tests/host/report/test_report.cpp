// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/exit_code.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/report/report_files.h"
#include "host/sqlite/sqlite.h"
#include "tests/host/host_program.h"
#include "tests/host/pseudo_terminal.h"
#include "tests/host/report/page_data.h"
#include "tests/support/file_content.h"
#include "tests/support/macos_source.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <QTest>

#include <algorithm>
#include <filesystem>

using namespace Qt::StringLiterals;

namespace {

void extract_all(const host_program &host, const QStringList &inputs)
{
    QStringList arguments{u"extract"_s, u"-o"_s, u"case"_s, u"--jobs"_s, u"1"_s};
    for (const QString &input : inputs)
        arguments << u"-i"_s << input;
    const host_result result = host.run(arguments);
    if (result.exit_code != 0)
        qFatal("%s", qPrintable(result.errors));
}

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
        extract_all(host, {one.root(), two.root()});
    }

    macos_source one;
    macos_source two;
};

/** The case of two sources that nothing was added to. It is extracted once; a report reads the case alone. */
void lay_out_case(const host_program &host)
{
    static const host_program first;
    static const two_sources sources;
    static const bool is_extracted = [] {
        sources.extract(first);
        return true;
    }();
    if (is_extracted)
        std::filesystem::copy(to_std_path(first.path(u"case"_s)), to_std_path(host.path(u"case"_s)),
                              std::filesystem::copy_options::recursive);
}

QString absolute(const host_program &host, const QString &path)
{
    return QDir::cleanPath(QDir(host.path(QString())).absoluteFilePath(path));
}

report_options options_from(const host_program &host, QStringList arguments)
{
    static const QMap<QString, report_format> formats{{u"html"_s, report_format::html},
                                                      {u"csv"_s, report_format::csv},
                                                      {u"tsv"_s, report_format::tsv},
                                                      {u"jsonl"_s, report_format::jsonl},
                                                      {u"timeline"_s, report_format::timeline},
                                                      {u"sqlite"_s, report_format::sqlite},
                                                      {u"xlsx"_s, report_format::xlsx}};
    report_options options;
    options.case_directory = absolute(host, arguments.takeFirst());
    options.output = options.case_directory + u"/Report"_s;
    while (!arguments.isEmpty()) {
        const QString word = arguments.takeFirst();
        if (word == "-f"_L1)
            options.formats.append(formats.value(arguments.takeFirst()));
        else if (word == "-o"_L1)
            options.output = absolute(host, arguments.takeFirst());
        else if (word == "--vendors"_L1)
            options.vendors = absolute(host, arguments.takeFirst());
        else if (word == "--force"_L1)
            options.force = true;
        else if (word == "--split"_L1)
            options.split = true;
        else if (word == "--raw-cells"_L1)
            options.cells.is_raw = true;
        else if (word == "--csv-bom"_L1)
            options.cells.has_mark = true;
        else
            qFatal("no option of these tests: %s", qPrintable(word));
    }
    if (options.formats.isEmpty())
        options.formats = {report_format::html};
    return options;
}

/** What "report" would do with the arguments, and print on standard error, without a process. */
host_result reported(const host_program &host, const QStringList &arguments)
{
    host_result result;
    try {
        const report_outcome outcome = write_report(options_from(host, arguments));
        for (const QString &text : outcome.notes)
            result.errors += u"note: "_s + text + u'\n';
        for (const QString &text : outcome.shortcomings)
            result.errors += u"warning: "_s + text + u'\n';
        result.exit_code = outcome.shortcomings.isEmpty() ? 0 : 4;
    } catch (const host_error &error) {
        result.errors = u"error: "_s + error.message() + u'\n';
        result.exit_code = int(exit_code_of(error.kind()));
    }
    return result;
}

QList<QJsonObject> cards_of(const QString &page)
{
    return page_rows(content_of(page), u"cards"_s);
}

/** A line of a source's host_devices.jsonl. */
constexpr const char *headset_line =
    R"({"source":1,"list":"preferences","address":"b4-c2-6a-7f-d3-7a","address_normal":"b4:c2:6a:7f:d3:7a",)"
    R"("names":["=Headset","Anna"],"kind":"classic","is_paired":true,"class_of_device":{"value":2360340},)"
    R"("vendor":{"id":76,"source":"SIG"},"product":8194,"bluetooth_version":"5.0",)"
    R"("times":[{"name":"LastNameUpdate","raw":"2024-05-17T10:11:05Z","utc":"2024-05-17T10:11:05Z","clock":"utc",)"
    R"("meaning":"LastNameUpdate of the preferences"},{"name":"LastSeenTime","raw":1715940665,"utc":null,)"
    R"("clock":"unknown","meaning":"LastSeenTime of the mobile list"}],"raw":{"Name":"=Headset"},)"
    R"("locator":{"file":"Library/Preferences/com.apple.Bluetooth.plist","path":"DeviceCache/b4-c2-6a-7f-d3-7a"},)"
    R"("is_current":null,"listed_in":["HIDDevices"]})"
    "\n";

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

class test_report : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void rows_for_programs();
    void shared_devices();
    void what_joins_nothing();
    void card_for_each_device();
    void names_of_the_preferences();
    void leftovers_are_named();
    void columns_of_several_kinds_of_sources();
    void show_gives_the_files();
    void show_for_programs_refuses_data();
    void show_for_programs_refuses();
    void no_separated_values_on_a_terminal();
    void no_absolute_paths();
    void cells_of_separated_values();
    void page_holds_evidence_as_text();
    void page_tells_hash_and_limitations();
    void lines_of_an_ios_log();
    void rows_of_a_write_ahead_log();
    void json_lines_follow_their_schema();
    void cells_are_read_back();
    void same_case_same_bytes();
    void earlier_files_are_replaced_on_request_only();
    void vendors_by_a_list();
    void page_for_each_source();
    void evidence_is_not_needed();
    void large_case_has_a_page_for_each_source();
    void names_that_the_examiner_gave();
    void values_are_exact();
    void disagreement_is_told();
    void custom_properties_that_cannot_be_read();
    void targets_of_links_are_left_out();
    void case_with_a_partial_source();
    void source_that_is_not_there();
    void result_that_is_gone();
    void rows_that_are_gone();
    void what_a_write_ahead_log_makes_of_rows();
    void record_of_the_report();
    void source_at_work();
    void no_case();
    void case_that_was_not_collected();
    void folder_in_the_evidence();
};

void test_report::rows_for_programs()
{
    const host_program host;
    const two_sources sources;
    const sqlite_file other(sources.one.other_db());
    other.execute(u"CREATE TABLE CustomProperties(Uuid TEXT, JSON TEXT, UNIQUE(Uuid))"_s);
    other.execute(u"INSERT INTO CustomProperties VALUES('U-1', '{\"a\": [1, \"<b>\"]}'), ('U-9', '{}')"_s);
    sources.extract(host);
    const host_result result = reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s});
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
                                {u"custom_properties"_s, u"{\"a\": [1, \"<b>\"]}"_s},
                                {u"tags"_s, u"Tag"_s},
                                {u"icloud_identifier"_s, u""_s},
                                {u"address_kind"_s, u"static"_s},
                                {u"name"_s, u"=cmd|'/c'!A1"_s},
                                {u"rssi"_s, QJsonValue()},
                                {u"aid"_s, QJsonValue()},
                                {u"line_text"_s, QJsonValue()},
                                {u"preferences_name"_s, QJsonValue()},
                                {u"vendor"_s, QJsonValue()},
                                {u"differs"_s, QJsonValue()},
                                {u"left_out"_s, QJsonValue()},
                                {u"wal"_s, QJsonValue()},
                                {u"wal_values"_s, QJsonValue()},
                                {u"date"_s, QJsonValue()}}},
        {u"rank_last_seen"_s, 1},
        {u"rank_last_connection"_s, QJsonValue()},
        {u"last_seen_readings"_s, QJsonArray()},
        {u"note"_s, QJsonArray()},
        {u"flag"_s, false},
    };
    QCOMPARE(QJsonDocument(first).toJson(), QJsonDocument(expected).toJson());

    // The plug-in leaves integer times of paired devices out.
    const QList<QJsonObject> paired = json_lines_of(host.path(u"case/Report/paired_devices.jsonl"_s));
    QCOMPARE(paired.size(), 1);
    const QJsonObject host_fields = paired.first().value("host"_L1).toObject();
    QCOMPARE(host_fields.value("differs"_L1), QJsonValue());
    QCOMPARE(host_fields.value("left_out"_L1).toString(), u"last_seen_time, last_connection_time"_s);
    QCOMPARE(host_fields.value("last_seen_time"_L1).toInt(), 9);
}

void test_report::shared_devices()
{
    const host_program host;
    lay_out_case(host);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"html"_s}).exit_code, 0);
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

void test_report::what_joins_nothing()
{
    const host_program host;
    const macos_source a;
    const macos_source b;
    // clang-format off
    const QList<QVariantList> devices = {
        {u"U-1"_s, u"random"_s,     1, u"Random C0:00:00:00:00:01"_s, QVariant(), 1, 1, 0, QVariant(), u""_s},
        {u"U-2"_s, u"zeros"_s,      1, u"Public 00:00:00:00:00:00"_s, QVariant(), 1, 1, 0, QVariant(), u"00000000-0000"_s},
        {u"U-3"_s, u"no address"_s, 1, u""_s,                         QVariant(), 1, 1, 0, QVariant(), QVariant()},
        {u"U-4"_s, u"odd"_s,        1, u"Public 12"_s,                QVariant(), 1, 1, 0, QVariant(), QVariant()},
    };
    // clang-format on
    for (const macos_source *source : {&a, &b}) {
        const sqlite_file database = source->make_other();
        for (const QVariantList &device : devices)
            macos_source::add_device(database, u"OtherDevices"_s, device);
    }
    macos_source::add_device(sqlite_file(b.other_db()), u"OtherDevices"_s,
                             {u"U-5"_s, u"alone"_s, 1, u"Public B4:C2:6A:7F:D3:7A"_s});
    extract_all(host, {a.root(), b.root()});
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"html"_s}).exit_code, 0);
    QCOMPARE(content_of(host.path(u"case/Report/shared.jsonl"_s)), QByteArray());

    QStringList reasons;
    for (const QJsonObject &card : cards_of(host.path(u"case/Report/report.html"_s)))
        reasons.append(card.value("device_name"_L1).toString() + u": "_s
                       + card.value("not_joined_because"_L1).toString());
    const QStringList of_each{
        u"random: its address is random, and it has no iCloud identifier"_s,
        u"zeros: its address is all zeros, and its iCloud identifier is all zeros"_s,
        u"no address: it has no address, and it has no iCloud identifier"_s,
        u"odd: its address is not of a form that is known, and it has no iCloud identifier"_s,
    };
    const QString last = u"alone: no other source has its public address or its iCloud identifier"_s;
    QCOMPARE(reasons, of_each + of_each + QStringList{last});
}

void test_report::card_for_each_device()
{
    const host_program host;
    const two_sources sources;
    macos_source::add_device(sqlite_file(sources.one.other_db()), u"OtherDevices"_s,
                             {u"U-3"_s, QVariant(), 1, u"Random 40:00:00:00:00:01"_s});
    sources.extract(host);
    QCOMPARE(reported(host, {u"case"_s}).exit_code, 0);
    const QJsonArray cards{
        QJsonObject{{u"device_name"_s, u"=cmd|'/c'!A1 | <script>alert(1)</script>\\u{1b}]0;x | a,\"b\"\\u{d}\\u{a}c"_s},
                    {u"address"_s, u"Random C0:00:00:00:00:01 | Public b4:c2:6a:7f:d3:7a | Public B4:C2:6A:7F:D3:7A"_s},
                    {u"host_name"_s, u"=cmd|'/c'!A1 | <script>alert(1)</script>\\u{1b}]0;x | a,\"b\"\\u{d}\\u{a}c"_s},
                    {u"host_address_kind"_s, u"static | public"_s},
                    {u"host_resolved_address"_s, u"Public B4:C2:6A:7F:D3:7A"_s},
                    {u"icloud_identifier"_s, u"ic-1"_s},
                    {u"uuid"_s, u"U-1 | U-2"_s},
                    {u"sources"_s, u"1, 2"_s},
                    {u"device"_s, u"1"_s},
                    {u"known_as"_s, u"paired or in use, seen"_s},
                    {u"link"_s, u"paired and seen"_s},
                    {u"rows"_s, u"3"_s},
                    {u"shared_device"_s, u"1"_s},
                    {u"joined_across_sources_by"_s, u"public address b4:c2:6a:7f:d3:7a"_s},
                    {u"not_joined_because"_s, QJsonValue()}},
        QJsonObject{{u"device_name"_s, QJsonValue()},
                    {u"host_name"_s, QJsonValue()},
                    {u"host_address_kind"_s, u"resolvable"_s},
                    {u"address"_s, u"Random 40:00:00:00:00:01"_s},
                    {u"host_resolved_address"_s, QJsonValue()},
                    {u"icloud_identifier"_s, QJsonValue()},
                    {u"uuid"_s, u"U-3"_s},
                    {u"sources"_s, u"1"_s},
                    {u"device"_s, u"2"_s},
                    {u"known_as"_s, u"seen"_s},
                    {u"link"_s, QJsonValue()},
                    {u"rows"_s, u"1"_s},
                    {u"shared_device"_s, QJsonValue()},
                    {u"joined_across_sources_by"_s, QJsonValue()},
                    {u"not_joined_because"_s, u"its address is random, and it has no iCloud identifier"_s}}};
    QJsonArray found;
    for (const QJsonObject &card : cards_of(host.path(u"case/Report/report.html"_s)))
        found.append(card);
    QCOMPARE(QJsonDocument(found).toJson(), QJsonDocument(cards).toJson());

    QCOMPARE(reported(host, {u"case"_s, u"--split"_s, u"-o"_s, u"split"_s}).exit_code, 0);
    const QList<QJsonObject> of_second = cards_of(host.path(u"split/report-source2.html"_s));
    QCOMPARE(of_second.size(), 1);
    QCOMPARE(of_second.first().value("rows"_L1).toString(), u"2"_s);
    QCOMPARE(of_second.first().value("device"_L1).toString(), u"1"_s); // the number of the whole case
    QCOMPARE(of_second.first().value("shared_device"_L1).toString(), u"1"_s);
    QCOMPARE(of_second.first().value("not_joined_because"_L1).toString(), QString());
}

void test_report::names_of_the_preferences()
{
    const host_program host;
    const two_sources sources;
    write_file(sources.one.root() + u"Library/Preferences/com.apple.Bluetooth.plist"_s,
               "<plist version='1.0'><dict><key>DeviceCache</key><dict><key>b4-c2-6a-7f-d3-7a</key><dict>"
               "<key>Name</key><string>Anna&#8217;s car</string></dict></dict></dict></plist>");
    sources.extract(host);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"html"_s}).exit_code, 0);
    // By the resolved address. The other source has the same device, and no preferences.
    QStringList names;
    for (const QJsonObject &row : json_lines_of(host.path(u"case/Report/devices.jsonl"_s)))
        names.append(row.value("host"_L1).toObject().value("preferences_name"_L1).toString());
    QCOMPARE(names, (QStringList{u"Anna’s car"_s, QString()}));
    QCOMPARE(cards_of(host.path(u"case/Report/report.html"_s)).first().value("host_preferences_name"_L1).toString(),
             u"Anna’s car"_s);

    write_file(host.path(u"case/Source1/Evidence/Library/Preferences/com.apple.Bluetooth.plist"_s), "bplist00 no more");
    const host_result damaged = reported(host, {u"case"_s, u"--force"_s});
    QCOMPARE(damaged.exit_code, 4);
    QCOMPARE(damaged.errors,
             u"warning: source 1: Library/Preferences/com.apple.Bluetooth.plist: it is no property list "
             "with a dictionary at its top\n"_s);
}

void test_report::leftovers_are_named()
{
    const host_program host;
    const two_sources sources;
    const QString name =
        u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db.12:00:00_01-31-2026.corrupt"_s;
    write_file(sources.one.root() + name, "half a database");
    sources.extract(host);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"html"_s}).exit_code, 0);
    const QString hash = QString::fromLatin1(
        QCryptographicHash::hash("half a database", QCryptographicHash::Sha256).toHex());
    const QList<QJsonObject> files = json_lines_of(host.path(u"case/Report/evidence_files.jsonl"_s));
    const auto leftover = std::find_if(files.cbegin(), files.cend(), [&name](const QJsonObject &file) {
        return file.value("path"_L1).toString() == name;
    });
    QVERIFY(leftover != files.cend());
    QCOMPARE(*leftover, (QJsonObject{{u"source"_s, 1},
                                     {u"source_name"_s, u"Source1"_s},
                                     {u"path"_s, name},
                                     {u"state"_s, u"present"_s},
                                     {u"reason"_s, QJsonValue()},
                                     {u"size"_s, 15},
                                     {u"sha256_before"_s, hash},
                                     {u"sha256_after"_s, hash},
                                     {u"sha256_copy"_s, hash}}));
    const QByteArray line = "\r\n1,Source1," + name.toUtf8() + ",present,,15," + hash.toLatin1() + ',';
    QVERIFY(content_of(host.path(u"case/Report/evidence_files.csv"_s)).contains(line));
    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    const QByteArray path = "<bdi>" + name.toUtf8().replace('/', "/<wbr>") + "</bdi>";
    const QByteArray state = "</td><td>present<br>a leftover of a damaged database; its content is not parsed</td>"
                             "<td>15</td><td><span class=\"hash\">"
                             + hash.toLatin1() + "</span><br>the same before and after</td>";
    QVERIFY(page.contains(path));
    QVERIFY(page.contains(state));
}

/** Columns that only some sources have stand behind the others, and are empty where a source has none. */
void test_report::columns_of_several_kinds_of_sources()
{
    const host_program host;
    const two_sources sources;
    write_file(host.path(u"system.log"_s),
               "May 17 12:11:06 p s[1] <Notice>: BLE device found: SFDevice ID 1A, RSSI -60, Nm 'Car', Md 'a1'\n");
    extract_all(host, {sources.one.root(), u"system.log"_s});
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"csv"_s}).exit_code, 0);
    const QList<QByteArray> lines = content_of(host.path(u"case/Report/devices.csv"_s)).split('\n');
    const QByteArray header = lines.value(0).trimmed();
    QCOMPARE(header, "source,source_name,bookmark,INT,system_account,uuid,device_name,address,last_seen_time,"
                     "last_connection_time,apple_tags,icloud_identifier,kaldo_tag_value,notes_icon,tags_icon,"
                     "os_scheme_display,source_count_name,source_file,artifacts_relation_source_file,notes,model,"
                     "sf_device_id,date,host_file,host_table,host_rowid,host_line,host_offset,host_resolved_address,"
                     "host_last_seen_time,host_last_connection_time,host_name_origin,host_gatt_service_change_config,"
                     "host_custom_properties,host_tags,host_icloud_identifier,host_address_kind,host_name,host_rssi,"
                     "host_aid,host_line_text,host_preferences_name,host_vendor,host_differs,host_left_out,host_wal,"
                     "host_wal_values,host_date,rank_last_seen,rank_last_connection,last_seen_readings,note,flag");
    const auto cell = [&](qsizetype line, const QByteArray &column) {
        return lines.value(line).trimmed().split(',').value(header.split(',').indexOf(column));
    };
    QCOMPARE(cell(1, "uuid"), "U-1");
    QCOMPARE(cell(1, "sf_device_id"), "");
    QCOMPARE(cell(2, "uuid"), "");
    QCOMPARE(cell(2, "sf_device_id"), "1A");
    QCOMPARE(cell(2, "host_line"), "1");
}

void test_report::show_gives_the_files()
{
    const host_program host;
    lay_out_case(host);
    write_file(host.path(u"case/Source1/host_devices.jsonl"_s), headset_line);
    const QStringList formats{u"csv"_s, u"tsv"_s, u"jsonl"_s};
    QStringList arguments{u"report"_s, u"case"_s};
    for (const QString &format : formats)
        arguments << u"-f"_s << format;
    QCOMPARE(host.run(arguments).exit_code, 0);
    for (const QString &table : {u"devices"_s, u"paired_devices"_s, u"host_devices"_s}) {
        for (const QString &format : formats) {
            const QByteArray file = content_of(host.path(u"case/Report/"_s + table + u'.' + format));
            const host_result shown = host.run({u"show"_s, u"case"_s, u"--table"_s, table, u"-f"_s, format});
            QCOMPARE(shown.exit_code, 0);
            QCOMPARE(shown.errors, QString());
            QCOMPARE(shown.output, QString::fromUtf8(file));
        }
    }
    const host_result second = host.run(
        {u"show"_s, u"case"_s, u"--source"_s, u"2"_s, u"--table"_s, u"devices"_s, u"-f"_s, u"csv"_s});
    QVERIFY(second.output.contains(u"U-2"_s) && !second.output.contains(u"U-1"_s));
}

void test_report::show_for_programs_refuses_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("error");

    // clang-format off
    QTest::newRow("no table")    << QStringList{u"case"_s, u"-f"_s, u"csv"_s} << 2 << u"error: --format: it needs --table\n"_s;
    QTest::newRow("first rows")  << QStringList{u"case"_s, u"--table"_s, u"devices"_s, u"-f"_s, u"csv"_s, u"--rows"_s, u"1"_s} << 2 << u"error: --format: a program gets all rows: --rows and --layout are for readers\n"_s;
    QTest::newRow("html")        << QStringList{u"case"_s, u"--table"_s, u"devices"_s, u"-f"_s, u"html"_s} << 2 << u"error: --format: html is none of csv, tsv, jsonl\n"_s;
    QTest::newRow("no source")   << QStringList{u"case"_s, u"--table"_s, u"devices"_s, u"-f"_s, u"csv"_s, u"--source"_s, u"9"_s} << 2 << u"error: the case has no source 9\n"_s;
    QTest::newRow("no case")     << QStringList{u"nowhere"_s, u"--table"_s, u"devices"_s, u"-f"_s, u"csv"_s} << 3 << QString();
    // clang-format on
}

void test_report::show_for_programs_refuses()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QString, error);
    const host_program host;
    lay_out_case(host);
    const host_result result = host.run(QStringList{u"show"_s} + arguments);
    QCOMPARE(result.exit_code, code);
    QCOMPARE(result.output, QString());
    if (error.isEmpty())
        QVERIFY(result.errors.startsWith(u"error: there is no case in "_s));
    else
        QCOMPARE(result.errors, error);
}

/** What a device calls itself could act on the terminal there; JSON Lines escape it. */
void test_report::no_separated_values_on_a_terminal()
{
    const host_program host;
    lay_out_case(host);
    pseudo_terminal terminal(80);
    const QStringList arguments{u"show"_s, u"case"_s, u"--table"_s, u"devices"_s, u"-f"_s};
    QCOMPARE(terminal.run(host, arguments + QStringList{u"csv"_s}, 1).exit_code, 2);
    QCOMPARE(terminal.text(), QByteArray());
    pseudo_terminal other(80);
    QCOMPARE(other.run(host, arguments + QStringList{u"jsonl"_s, u"--source"_s, u"2"_s}, 1).exit_code, 0);
    const QByteArray text = other.text();
    QVERIFY(text.startsWith("{\"source\":2,"));
    QVERIFY(!text.contains('\x1b'));
}

/** Neither of the case nor of the evidence, but in the plug-in's own columns. */
void test_report::no_absolute_paths()
{
    const host_program host;
    const two_sources sources;
    sources.extract(host);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"html"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"csv"_s}).exit_code, 0);
    const QString folder = host.path(u"case/Report/"_s);
    const QDir report(folder);
    for (const QString &name : report.entryList(QDir::Files)) {
        QByteArray content = content_of(folder + name);
        for (const macos_source *source : {&sources.one, &sources.two}) {
            for (const QString &database : {source->other_db(), source->paired_db()})
                content.replace(database.toUtf8(), ""); // plugin: source_file
            const qsizetype provenance = content.indexOf("<section id=\"provenance\"");
            if (provenance >= 0) // tells the command line
                content.remove(provenance, content.indexOf("</section>", provenance) - provenance);
            QVERIFY2(!content.contains(source->root().chopped(1).toUtf8()), qPrintable(name));
        }
        QVERIFY2(!content.contains(host.path(u"case"_s).toUtf8()), qPrintable(name));
    }
}

void test_report::cells_of_separated_values()
{
    const host_program host;
    lay_out_case(host);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"tsv"_s}).exit_code, 0);
    const QByteArray devices = content_of(host.path(u"case/Report/devices.csv"_s));
    QVERIFY(devices.startsWith("source,source_name,bookmark,INT,"));
    QVERIFY(devices.contains(",'=cmd|'/c'!A1,Random C0:00:00:00:00:01,"));
    QVERIFY(devices.endsWith("\r\n"));
    QCOMPARE(devices.count("\r\n"), 3);
    QVERIFY(content_of(host.path(u"case/Report/paired_devices.csv"_s)).contains(",\"a,\"\"b\"\"\r\nc\","));
    QVERIFY(content_of(host.path(u"case/Report/paired_devices.tsv"_s)).contains("\t\"a,\"\"b\"\"\r\nc\"\t"));
    const QByteArray readme = content_of(host.path(u"case/Report/README.txt"_s));
    QVERIFY(readme.contains("devices.csv, row 2, device_name: apostrophe\n"));

    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"csv"_s, u"--raw-cells"_s, u"--csv-bom"_s, u"-o"_s, u"raw"_s})
                 .exit_code,
             0);
    const QByteArray raw = content_of(host.path(u"raw/devices.csv"_s));
    QVERIFY(raw.startsWith("\xEF\xBB\xBFsource,"));
    QVERIFY(raw.contains(",=cmd|'/c'!A1,Random"));
}

void test_report::page_holds_evidence_as_text()
{
    const host_program host;
    lay_out_case(host);
    QCOMPARE(reported(host, {u"case"_s}).exit_code, 0);
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

void test_report::page_tells_hash_and_limitations()
{
    const host_program host;
    two_sources().extract(host);
    QCOMPARE(reported(host, {u"case"_s}).exit_code, 0);
    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    QVERIFY(page.contains("<dt>SHA-256 of manifest.json</dt>"));
    const QByteArray hash = content_of(host.path(u"case/manifest.json.sha256"_s)).first(64);
    QVERIFY(page.contains(hash));
    const qsizetype limitations = page.indexOf("<section id=\"limitations\"");
    QVERIFY(limitations > 0);
    for (const char *text : {"main file", "about 1,000 rows", "no dates", "paired"})
        QVERIFY2(page.indexOf(text, limitations) > 0, text);
}

void test_report::lines_of_an_ios_log()
{
    const host_program host;
    write_file(host.path(u"ios/system.log"_s),
               "May 17 12:11:05 p x: nothing\n"
               "May 17 12:11:06 p s[1] <Notice>: BLE device found: SFDevice ID 1A, RSSI -60, Nm 'Car, "
               "\\M-p\\M^_\\M^N\\M-'', Md 'a1,1', AID 7F\n");
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"ios/system.log"_s, u"-o"_s, u"case"_s}).exit_code, 0);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s}).exit_code, 0);
    const QList<QJsonObject> devices = json_lines_of(host.path(u"case/Report/devices.jsonl"_s));
    QCOMPARE(devices.size(), 1);
    QCOMPARE(devices.first().value("locator"_L1).toObject(),
             (QJsonObject{{u"file"_s, u"system.log"_s}, {u"line"_s, 2}, {u"offset"_s, 29}}));
    const QJsonObject fields = devices.first().value("host"_L1).toObject();
    QCOMPARE(fields.value("name"_L1).toString(), u"Car, 🎧"_s);
    QCOMPARE(fields.value("rssi"_L1), QJsonValue(-60));
    QCOMPARE(fields.value("aid"_L1).toString(), u"7F"_s);
    QCOMPARE(fields.value("differs"_L1).toString(), u"device_name"_s);
    QCOMPARE(devices.first().value("plugin"_L1).toObject().value("device_name"_L1).toString(), u"Car"_s);
}

void test_report::rows_of_a_write_ahead_log()
{
    const host_program host;
    lay_out_case(host);
    write_file(host.path(u"case/Source1/wal_changes.json"_s),
               "{\"format\":\"bluetooth-logs wal changes\",\"version\":1,\"tables\":[\n"
               "{\"result_table\":\"devices\",\"file\":\"Library/x.db\",\"table\":\"OtherDevices\",\"changes\":[\n"
               "{\"change\":\"added\",\"rowid\":7,\"before\":null,\"after\":{\"a\":9007199254740993}},\n"
               "{\"change\":\"deleted\",\"rowid\":8,\"before\":{\"a\":\",\\\"before\\\":\"},\"after\":null}\n"
               "],\"problem\":null}\n]}\n");
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s}).exit_code, 0);
    QCOMPARE(content_of(host.path(u"case/Report/wal_changes.jsonl"_s)),
             "{\"source\":1,\"source_name\":\"Source1\",\"table\":\"devices\",\"locator\":{\"file\":\"Library/x.db\","
             "\"table\":\"OtherDevices\",\"rowid\":7},\"change\":\"added\",\"before\":null,\"after\":{\"a\":"
             "9007199254740993},\"note\":[],\"flag\":false}\n"
             "{\"source\":1,\"source_name\":\"Source1\",\"table\":\"devices\",\"locator\":{\"file\":\"Library/x.db\","
             "\"table\":\"OtherDevices\",\"rowid\":8},\"change\":\"deleted\",\"before\":{\"a\":\",\\\"before\\\":\"},"
             "\"after\":null,\"note\":[],\"flag\":false}\n");
}

void test_report::json_lines_follow_their_schema()
{
    const QString python = QStandardPaths::findExecutable(u"python3"_s);
    if (python.isEmpty() || QProcess::execute(python, {u"-c"_s, u"import jsonschema"_s}) != 0)
        QSKIP("python3 with jsonschema is not there");
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"sample"_s, u"other"_s, u"--hostile"_s}).exit_code, 0);
    extract_all(host, {u"sample/macos"_s, u"sample/ios/system.log"_s, u"other/macos"_s});
    write_file(
        host.path(u"case/Source1/wal_changes.jsonl"_s),
        "{\"change\":\"added\",\"result_table\":\"devices\",\"file\":\"Library/x.db\",\"table\":\"OtherDevices\","
        "\"rowid\":7,\"before\":null,\"after\":{\"a\":{\"base64\":\"AP8=\"}}}\n");
    write_file(host.path(u"case/Source1/host_devices.jsonl"_s), headset_line);
    write_file(host.path(u"case/Source1/unparsed_lines.jsonl"_s),
               "{\"line\":3,\"offset\":99,\"table\":\"paired_devices\",\"text\":\"2024-05-17 12:11:05+0200 active "
               "device\"}\n");
    write_file(host.path(u"case/Source1/salvage.jsonl"_s), "{\"table\":\"OtherDevices\",\"page\":4,\"values\":[1]}\n");
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s}).exit_code, 0);
    const QString script = u"import json, sys, jsonschema\n"
                           "check = jsonschema.Draft202012Validator(json.load(open(sys.argv[1])))\n"
                           "for name in sys.argv[2:]:\n"
                           "    lines = open(name, encoding='utf-8').readlines()\n"
                           "    print(name, len(lines))\n"
                           "    for line in lines: check.validate(json.loads(line))\n"
                           "    if not lines: sys.exit(1)\n"_s;
    QStringList arguments{u"-c"_s, script, REPORT_SCHEMA_FILE};
    for (const QString &name : QDir(host.path(u"case/Report"_s)).entryList({u"*.jsonl"_s}, QDir::Files))
        arguments.append(host.path(u"case/Report/"_s + name));
    QCOMPARE(arguments.size(), 3 + 8);
    QCOMPARE(QProcess::execute(python, arguments), 0);
}

void test_report::cells_are_read_back()
{
    const QString python = QStandardPaths::findExecutable(u"python3"_s);
    if (python.isEmpty())
        QSKIP("python3 is not there");
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s}).exit_code, 0);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"tsv"_s, u"--raw-cells"_s}).exit_code, 0);
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
    lay_out_case(host);
    write_file(host.path(u"case/Source2/host_devices.jsonl"_s), headset_line);
    QStringList formats;
    for (const QString &format : {u"html"_s, u"csv"_s, u"tsv"_s, u"jsonl"_s, u"timeline"_s, u"sqlite"_s})
        formats << u"-f"_s << format;
    QCOMPARE(reported(host, QStringList{u"case"_s, u"-o"_s, u"one"_s} + formats).exit_code, 0);
    QCOMPARE(reported(host, QStringList{u"case"_s, u"-o"_s, u"two"_s} + formats).exit_code, 0);
    const QStringList names = QDir(host.path(u"one"_s)).entryList(QDir::Files, QDir::Name);
    QStringList wanted{u"README.txt"_s,   u"report.html"_s,    u"report.json"_s,      u"report.sqlite"_s,
                       u"timeline.csv"_s, u"timeline.jsonl"_s, u"wal_changes.jsonl"_s};
    for (const QString &list : {u"devices"_s, u"evidence_files"_s, u"host_devices"_s, u"paired_devices"_s, u"salvage"_s,
                                u"shared"_s, u"unparsed_lines"_s})
        wanted << list + u".csv"_s << list + u".jsonl"_s << list + u".tsv"_s;
    wanted.sort();
    QCOMPARE(names, wanted);
    for (const QString &name : names)
        QCOMPARE(content_of(host.path(u"two/"_s + name)), content_of(host.path(u"one/"_s + name)));
}

void test_report::earlier_files_are_replaced_on_request_only()
{
    const host_program host;
    lay_out_case(host);
    write_file(host.path(u"case/Report/shared.csv"_s), "mine");
    write_file(host.path(u"case/Report/notes.txt"_s), "notes");
    const host_result refused = reported(host, {u"case"_s, u"-f"_s, u"csv"_s});
    QCOMPARE(refused.exit_code, 2);
    QVERIFY(refused.errors.contains(u"case/Report/shared.csv"_s));
    QCOMPARE(tree_of(host.path(u"case/Report"_s)), (QStringList{u"notes.txt"_s, u"shared.csv"_s}));
    QCOMPARE(content_of(host.path(u"case/Report/shared.csv"_s)), "mine");

    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"csv"_s, u"--force"_s}).exit_code, 0);
    QVERIFY(content_of(host.path(u"case/Report/shared.csv"_s)).startsWith("device,joined_by,"));
    QCOMPARE(content_of(host.path(u"case/Report/notes.txt"_s)), "notes");
}

void test_report::vendors_by_a_list()
{
    const host_program host;
    lay_out_case(host);
    write_file(host.path(u"oui.txt"_s), "OUI\nB4-C2-6A   (hex)\t\tSome & Sons\nB4C26A     (base 16)\t\tSome & Sons\n"
                                        "B4-C2-6A   (hex)\t\tOthers\n");
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"html"_s, u"--vendors"_s, u"oui.txt"_s})
                 .exit_code,
             0);
    for (const QJsonObject &row : json_lines_of(host.path(u"case/Report/devices.jsonl"_s)))
        QCOMPARE(row.value("host"_L1).toObject().value("vendor"_L1).toString(), u"Some & Sons or Others"_s);
    const QByteArray list =
        "oui.txt, SHA-256 "
        + QCryptographicHash::hash(content_of(host.path(u"oui.txt"_s)), QCryptographicHash::Sha256).toHex() + ", of "
        + QFileInfo(host.path(u"oui.txt"_s)).lastModified().toUTC().date().toString(Qt::ISODate).toLatin1();
    QVERIFY(content_of(host.path(u"case/Report/report.html"_s))
                .contains(QByteArray("<dt>Vendors by</dt><dd>" + list + "</dd>")));
    QVERIFY(content_of(host.path(u"case/Report/README.txt"_s)).contains(QByteArray("by the list " + list + '\n')));

    write_file(host.path(u"empty.txt"_s), "nobody\n");
    QCOMPARE(reported(host, {u"case"_s, u"-o"_s, u"other"_s, u"--vendors"_s, u"empty.txt"_s}).exit_code, 2);
    QVERIFY(!QFile::exists(host.path(u"other"_s)));
}

void test_report::page_for_each_source()
{
    const host_program host;
    lay_out_case(host);
    QCOMPARE(reported(host, {u"case"_s, u"--split"_s}).exit_code, 0);
    QCOMPARE(tree_of(host.path(u"case/Report"_s)),
             (QStringList{u"report-source1.html"_s, u"report-source2.html"_s, u"report.html"_s, u"report.json"_s}));
    const QByteArray index = content_of(host.path(u"case/Report/report.html"_s));
    QVERIFY(index.contains("<a href=\"report-source2.html\">Source 2: <bdi>Source2</bdi></a>"));
    QVERIFY(index.contains("Devices that more than one source knows: 1."));
    QVERIFY(!index.contains("<section id=\"devices\""));
    const QByteArray first = content_of(host.path(u"case/Report/report-source1.html"_s));
    QVERIFY(first.contains("<section id=\"devices\""));
    QVERIFY(first.contains("U-1") && !first.contains("U-2"));
    QVERIFY(content_of(host.path(u"case/Report/report-source2.html"_s)).contains("U-2"));

    // Beside another report these pages would pass for its own.
    write_file(host.path(u"case/Report/report-source2.html.mine"_s), "mine");
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"csv"_s, u"--force"_s}).exit_code, 0);
    QVERIFY(QFile::exists(host.path(u"case/Report/report-source2.html"_s)));
    QCOMPARE(reported(host, {u"case"_s, u"--force"_s}).exit_code, 0);
    QCOMPARE(QDir(host.path(u"case/Report"_s)).entryList({u"*.html*"_s}, QDir::Files),
             (QStringList{u"report-source2.html.mine"_s, u"report.html"_s}));
}

/** A report reads the case alone. */
void test_report::evidence_is_not_needed()
{
    const host_program host;
    const QStringList formats{u"-f"_s, u"html"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"jsonl"_s};
    {
        const two_sources sources;
        sources.extract(host);
        QCOMPARE(reported(host, QStringList{u"case"_s, u"-o"_s, u"before"_s} + formats).exit_code, 0);
    }
    QVERIFY(QFile::rename(host.path(u"case"_s), host.path(u"moved"_s)));
    QCOMPARE(reported(host, QStringList{u"moved"_s, u"-o"_s, u"after"_s} + formats).exit_code, 0);
    for (const QString &name : tree_of(host.path(u"before"_s)))
        QCOMPARE(content_of(host.path(u"after/"_s + name)), content_of(host.path(u"before/"_s + name)));
}

void test_report::large_case_has_a_page_for_each_source()
{
    const host_program host;
    lay_out_case(host);
    const sqlite_file result(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s));
    const QString add_rows = u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
                             "INSERT INTO devices(uuid) SELECT 'U' || i FROM n"_s;
    // The files that are in the way tell which would be written.
    write_file(host.path(u"case/Report/report.html"_s), "mine");
    write_file(host.path(u"case/Report/report-source2.html"_s), "mine");
    const QString start = u"error: these files are there already, --force replaces them: "_s;
    result.execute(add_rows.arg(200000 - 3)); // two_sources has three rows
    const QString page = host.path(u"case/Report/report.html"_s);
    QCOMPARE(reported(host, {u"case"_s}).errors, start + page + u'\n');

    result.execute(add_rows.arg(1));
    const QString source_page = host.path(u"case/Report/report-source2.html"_s);
    QCOMPARE(reported(host, {u"case"_s}).errors, start + page + u", "_s + source_page + u'\n');
}

void test_report::names_that_the_examiner_gave()
{
    const host_program host;
    const two_sources sources;
    const QJsonArray list{QJsonObject{{u"path"_s, sources.one.root()},
                                      {u"name"_s, u"=Anna, <b>Mac"_s},
                                      {u"number"_s, 7}},
                          QJsonObject{{u"path"_s, sources.two.root()}}};
    write_file(host.path(u"list.json"_s), QJsonDocument(QJsonObject{{u"sources"_s, list}}).toJson());
    QCOMPARE(host.run({u"extract"_s, u"--sources"_s, u"list.json"_s, u"-o"_s, u"case"_s}).exit_code, 0);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"html"_s}).exit_code, 0);
    const QByteArray cells = content_of(host.path(u"case/Report/devices.csv"_s));
    QVERIFY(cells.contains("\r\n7,\"'=Anna, <b>Mac\","));
    QVERIFY(cells.contains("\r\n1,Source1,"));
    QVERIFY(content_of(host.path(u"case/Report/devices.jsonl"_s))
                .contains("{\"source\":7,\"source_name\":\"=Anna, <b>Mac\",\"table\":\"devices\","));
    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    QVERIFY(page.contains("<bdi>=Anna, &lt;b&gt;Mac</bdi>"));
    QVERIFY(!page.contains("<b>Mac"));
}

void test_report::values_are_exact()
{
    const host_program host;
    lay_out_case(host);
    // As a hostile result and a hostile working copy could be.
    sqlite_file(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s))
        .execute(u"UPDATE devices SET last_seen_time = 9007199254740993, notes = x'00ff', last_connection_time = 0.1, "
                 "os_scheme_display = CAST(x'61eda080' AS TEXT), tags_icon = 'a' || char(0) || 'b' || char(8232)"_s);
    sqlite_file(host.path(u"case/Source1/Evidence/Library/Bluetooth/"
                          "com.apple.MobileBluetooth.ledevices.other.db"_s))
        .execute(u"UPDATE OtherDevices SET LastSeenTime = -9223372036854775808, Tags = x'00ff', NameOrigin = 1e300, "
                 "Name = CAST(x'61eda080' AS TEXT)"_s);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"csv"_s}).exit_code, 0);
    const QByteArray line = content_of(host.path(u"case/Report/devices.jsonl"_s)).split('\n').first();
    for (const QByteArray &member :
         {R"("last_seen_time":9007199254740993)"_ba, R"("notes":{"base64":"AP8="})"_ba,
          R"("last_connection_time":0.1)"_ba, R"("os_scheme_display":{"base64":"Ye2ggA=="})"_ba,
          R"("tags_icon":"a\u0000b\u2028")"_ba, R"("last_seen_time":-9223372036854775808)"_ba,
          R"("tags":{"base64":"AP8="})"_ba, R"("name_origin":1e+300)"_ba, R"("name":{"base64":"Ye2ggA=="})"_ba})
        QVERIFY2(line.contains(member), QByteArray(member + " in " + line).constData());
    const QByteArray cells = content_of(host.path(u"case/Report/devices.csv"_s));
    for (const QByteArray &cell : {",9007199254740993,"_ba, ",x'00ff',"_ba, ",0.1,"_ba, ",x'61eda080',"_ba,
                                   QByteArray(",a\0b\u2028,", 8), ",-9223372036854775808,"_ba, ",1e+300,"_ba})
        QVERIFY2(cells.contains(cell), cell.constData());
    QVERIFY(content_of(host.path(u"case/Report/README.txt"_s)).contains("devices.csv, row 2, notes: hexadecimal\n"));
}

void test_report::disagreement_is_told()
{
    const host_program host;
    lay_out_case(host);
    sqlite_file(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s))
        .execute(u"UPDATE devices SET device_name = 'another'"_s);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s, u"-f"_s, u"html"_s}).exit_code, 0);
    const QJsonObject row = json_lines_of(host.path(u"case/Report/devices.jsonl"_s)).first();
    QCOMPARE(row.value("plugin"_L1).toObject().value("device_name"_L1).toString(), u"another"_s);
    QCOMPARE(row.value("host"_L1).toObject().value("name"_L1).toString(), u"=cmd|'/c'!A1"_s);
    QCOMPARE(row.value("host"_L1).toObject().value("differs"_L1).toString(), u"device_name"_s);
    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    // What the plug-in leaves out by design is none.
    QCOMPARE(page.count("Rows with a contradiction: 1; host_differs names the columns."), 1);
    QCOMPARE(page.count("Rows with a contradiction: 0; host_differs names the columns."), 1);
}

void test_report::custom_properties_that_cannot_be_read()
{
    const host_program host;
    const two_sources sources;
    sqlite_file(sources.one.other_db()).execute(u"CREATE TABLE CustomProperties(Name TEXT)"_s);
    sources.extract(host);
    const host_result result = reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s});
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(result.errors, u"warning: source 1: CustomProperties: no such column: Uuid\n"_s);
    QCOMPARE(json_lines_of(host.path(u"case/Report/devices.jsonl"_s)).size(), 2);
}

/** They are names of the examiner's machine; one may hold anything. */
void test_report::targets_of_links_are_left_out()
{
    const host_program host;
    const two_sources sources;
    write_file(host.path(u"a\nsecret"_s), "elsewhere");
    QVERIFY(QFile::remove(sources.one.other_db()));
    QVERIFY(QFile::link(host.path(u"a\nsecret"_s), sources.one.other_db()));
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, sources.one.root(), u"-i"_s, sources.two.root(), u"-o"_s, u"case"_s})
                 .exit_code,
             4);
    QCOMPARE(reported(host, {u"case"_s}).exit_code, 4);
    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    QVERIFY(page.contains("leads out of the source"));
    QVERIFY(!page.contains("secret"));
}

/** The record's message says where it looked; the report is read elsewhere. */
void test_report::source_that_is_not_there()
{
    const host_program host;
    const two_sources sources;
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, sources.one.root(), u"-i"_s, u"nowhere"_s, u"-o"_s, u"case"_s}).exit_code,
             4);
    const host_result result = reported(host, {u"case"_s});
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(result.errors, u"warning: source 2: failed\n"_s);
    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    QVERIFY(page.contains("<li>there is no source at (source)</li>"));
    QVERIFY(!page.contains(host.path(u"nowhere"_s).toUtf8()));
}

void test_report::case_with_a_partial_source()
{
    const host_program host;
    const two_sources sources;
    write_file(sources.one.paired_db(), "no database");
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, sources.one.root(), u"-i"_s, sources.two.root(), u"-o"_s, u"case"_s})
                 .exit_code,
             4);
    const host_result result = reported(host, {u"case"_s, u"-f"_s, u"html"_s, u"-f"_s, u"csv"_s});
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(result.errors,
             u"warning: source 1: partial\n"
             "warning: source 1: Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db: file is not a "
             "database\n"_s);
    const QByteArray page = content_of(host.path(u"case/Report/report.html"_s));
    const qsizetype told = page.indexOf(
        "<strong>This case is not complete.</strong></p><ul><li>source 1: partial</li>");
    QVERIFY(told > 0 && told < page.indexOf("<nav"));
    QVERIFY(page.contains("paired.db was not read: it is no SQLite database"));
    QVERIFY(
        content_of(host.path(u"case/Report/README.txt"_s)).contains("This case is not complete: source 1: partial\n"));
}

void test_report::result_that_is_gone()
{
    const host_program host;
    lay_out_case(host);
    QVERIFY(QFile::remove(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s)));
    const host_result result = reported(host, {u"case"_s});
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(result.errors, u"warning: source 1: its result database is missing: "
                            "Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite\n"_s);
}

/** The manifest says how many there were. */
void test_report::rows_that_are_gone()
{
    const host_program host;
    lay_out_case(host);
    sqlite_file(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s))
        .execute(u"DELETE FROM devices"_s);
    const host_result result = reported(host, {u"case"_s, u"-f"_s, u"csv"_s});
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(result.errors, u"warning: source 1: 0 rows of devices could be read, the case's record says 1\n"_s);
}

/** A row that only the log has joins the device of another source, and is named as what it is. */
void test_report::what_a_write_ahead_log_makes_of_rows()
{
    const host_program host;
    const macos_source one;
    const macos_source two;
    const QString open_file = host.path(u"open.db"_s);
    {
        sqlite_database database(open_file, sqlite_database::access::create);
        database.execute("CREATE TABLE OtherDevices(Uuid TEXT, Name TEXT, Address TEXT, LastSeenTime INT);"
                         "INSERT INTO OtherDevices VALUES('U-1', 'a', '', 1), ('U-2', 'b', '', 2), ('U-3', 'c', '', 3);"
                         "PRAGMA journal_mode=wal; PRAGMA wal_autocheckpoint=0; PRAGMA wal_checkpoint(TRUNCATE);"
                         "UPDATE OtherDevices SET LastSeenTime = 9 WHERE Uuid = 'U-1';"
                         "DELETE FROM OtherDevices WHERE Uuid = 'U-2';"
                         "INSERT INTO OtherDevices VALUES('U-4', 'd', 'Public B4:C2:6A:7F:D3:7A', 4)");
        write_file(one.other_db(), content_of(open_file));
        write_file(one.other_db() + u"-wal"_s, content_of(open_file + u"-wal"_s));
    }
    macos_source::add_device(two.make_other(), u"OtherDevices"_s, {u"U-5"_s, u"e"_s, 1, u"Public B4:C2:6A:7F:D3:7A"_s});
    extract_all(host, {one.root(), two.root()});
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s}).exit_code, 0);
    QStringList found;
    for (const QJsonObject &row : json_lines_of(host.path(u"case/Report/devices.jsonl"_s)))
        found.append(row.value("host"_L1).toObject().value("wal"_L1).toString(u"none"_s));
    QCOMPARE(found, (QStringList{u"changed"_s, u"deleted"_s, u"unchanged"_s, u"none"_s}));
    QStringList appearances;
    for (const QJsonValue &one_of :
         json_lines_of(host.path(u"case/Report/shared.jsonl"_s)).value(0).value("appearances"_L1).toArray())
        appearances.append(one_of.toObject().value("source_name"_L1).toString() + u' '
                           + one_of.toObject().value("found_in"_L1).toString());
    appearances.sort();
    QCOMPARE(appearances, (QStringList{u"Source1 wal_added"_s, u"Source2 row"_s}));
}

void test_report::record_of_the_report()
{
    const host_program host;
    lay_out_case(host);
    QCOMPARE(reported(host, {u"case"_s, u"-f"_s, u"csv"_s}).exit_code, 0);
    QCOMPARE(reported(host, {u"case"_s}).exit_code, 0); // of the same manifest: both stand in the record
    const QJsonObject record = QJsonDocument::fromJson(content_of(host.path(u"case/Report/report.json"_s))).object();
    QCOMPARE(record.value("format"_L1).toString(), u"bluetooth-logs report"_s);
    QCOMPARE(record.value("version"_L1).toInt(), 1);
    QCOMPARE(record.value("manifest_sha256"_L1).toString().toLatin1(),
             content_of(host.path(u"case/manifest.json.sha256"_s)).first(64));
    QStringList named{u"report.json"_s};
    for (const QJsonValue &value : record.value("files"_L1).toArray()) {
        const QJsonObject file = value.toObject();
        named.append(file.value("path"_L1).toString());
        const QByteArray content = content_of(host.path(u"case/Report/"_s + named.last()));
        QCOMPARE(file.value("size"_L1).toInteger(), content.size());
        QCOMPARE(file.value("sha256"_L1).toString().toLatin1(),
                 QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
    }
    named.sort();
    QCOMPARE(named, QDir(host.path(u"case/Report"_s)).entryList(QDir::Files, QDir::Name));
}

/** A reader could keep the plug-in from writing: the rows are left out, and the report says so. */
void test_report::source_at_work()
{
    const host_program host;
    const two_sources sources;
    host_result meanwhile;
    host.run_meanwhile({u"extract"_s, u"-i"_s, sources.one.root(), u"-o"_s, u"case"_s}, u"extraction"_s, [&] {
        meanwhile = reported(host, {u"case"_s, u"-f"_s, u"jsonl"_s, u"-o"_s, u"early"_s});
    });
    QCOMPARE(meanwhile.exit_code, 4);
    QVERIFY(meanwhile.errors.contains(u"source 1: a run works on it, and its rows are left out"_s));
    QCOMPARE(content_of(host.path(u"early/devices.jsonl"_s)), QByteArray());
}

void test_report::no_case()
{
    const host_program host;
    const host_result result = reported(host, {u"nowhere"_s});
    QCOMPARE(result.exit_code, 3);
    QVERIFY(result.errors.contains(u"there is no case in "_s));
    QVERIFY(!QFile::exists(host.path(u"nowhere"_s)));
}

void test_report::case_that_was_not_collected()
{
    const host_program host;
    lay_out_case(host);
    QVERIFY(QFile::remove(host.path(u"case/manifest.json"_s)));
    const host_result result = reported(host, {u"case"_s});
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
    QCOMPARE(reported(host, {u"case"_s, u"-o"_s, sources.one.root() + u"report"_s}).exit_code, 2);
    QCOMPARE(tree_of(sources.one.root()), before);
}

BLUETOOTH_LOGS_TEST(test_report, QCoreApplication)

#include "test_report.moc"
