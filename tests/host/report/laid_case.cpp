// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/report/laid_case.h"

#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *manifest_heading = R"({
 "format": "bluetooth-logs manifest", "version": 2, "case_sources": {"numbers": "1,3-5"},
 "case_number": "2026/17", "examiner": "A. Nobody", "started": "2026-01-01T00:00:00Z", "finished": "2026-01-01T00:00:09Z"
})";

// What its run made of each source, without what every record has.
constexpr const char *source_records = R"([
{"number": 1, "name": "Laptop & <b>", "path": "/evidence/laptop", "type": "macOS", "driven_as": "macOS", "status": "done",
 "started": "2026-01-01T00:00:01Z", "finished": "2026-01-01T00:00:02Z",
 "rows": {"devices": {"found": 5, "announced": 4, "stored": 4}, "paired_devices": {"found": 1, "announced": 1, "stored": 1}},
 "messages": [{"weight": "note", "text": "/evidence/laptop/a.db leads out of the source, to /etc/x: --follow-links allows it"},
              {"weight": "warning", "text": "a second text"}],
 "evidence": [{"path": "Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db", "state": "present", "copy_sha256": "aa",
               "before": {"size": 12345, "sha256": "ab"}, "after": {"size": 12346, "sha256": "ac"}},
              {"path": "gone.db", "state": "unreadable", "reason": "/evidence/laptop/gone.db leads out of the source, to /etc/y"}],
 "wal": {"devices": {"added": 0, "changed": 1, "deleted": 1}, "paired_devices": null},
 "host_devices": 2, "result": {"path": "Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite", "sha256": "ad"}},
{"number": 3, "path": "/evidence/pc.img", "type": "winOS", "driven_as": "winOS", "status": "done", "rows": {},
 "container": {"kind": "image", "format": "raw",
  "files": [{"path": "/evidence/pc.img", "size": 2345678, "modified": "2026-03-04T05:06:07Z", "sha256": "ba"},
            {"path": "/evidence/pc.002", "size": 6}],
  "volume": {"number": 2, "offset": 1048576, "file_system": "ntfs", "name": "System"},
  "stored_hashes": {"md5": "bb", "sha1": "bc"}},
 "evidence": [{"path": "Windows/System32/config/SYSTEM", "state": "present", "before": {"size": 7, "sha256": "bd"},
               "after": {"size": 7, "sha256": "bd"}, "copy_sha256": "bd"}], "host_devices": 2},
{"number": 4, "name": "Phone", "path": "/evidence/system.log", "type": "iOS_UID", "driven_as": "iOS_UID", "status": "done",
 "rows": {"devices": {"announced": 4, "stored": 4, "devices": 3}, "paired_devices": {"announced": 1, "stored": 1, "devices": 1}},
 "evidence": [{"path": "system.log", "state": "present", "before": {"size": 99, "sha256": "ca"}, "after": {"size": 99, "sha256": "ca"}},
              {"path": "more.log", "state": "absent"}],
 "result": {"path": "Source4/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite", "sha256": "cb"}},
{"number": 5, "path": "/evidence/broken", "type": "macOS", "driven_as": "macOS", "status": "failed", "exit_code": 3,
 "messages": [{"weight": "error", "text": "there is no source at /evidence/broken"}], "evidence": [], "rows": {},
 "result": {"path": "Source5/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite", "sha256": null}}
])";

constexpr const char *notes =
    R"({"number":1,"time":"2026-04-05T06:07:08Z","by":"A. Nobody","device":"B4:C2:6A:7F:D3:7A","row":null,"flag":true,"text":"seen <again>"})"
    "\n"
    R"({"number":2,"time":"2026-04-05T06:07:09Z","by":"A. Nobody","device":null,"row":{"source":1,"table":"devices","row":2},"flag":false,"text":"=odd"})"
    "\n";

// Of a row that is added, of one that is changed, and of one that is deleted.
constexpr const char *changes_by_the_log =
    R"({"change":"added","result_table":"paired_devices","file":"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db","table":"PairedDevices","rowid":9,"before":null,"after":{"Uuid":" u-9 ","Name":"Keys","Address":"Public B4:C2:6A:7F:D3:7B","LastSeenTime":6,"LastConnectionTime":1}})"
    "\n"
    R"({"change":"changed","result_table":"devices","file":"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db","table":"OtherDevices","rowid":2,"before":{"Uuid":"U-2","Name":null,"LastSeenTime":null},"after":{"Uuid":"U-2","Name":"Later","LastSeenTime":500}})"
    "\n"
    R"({"change":"deleted","result_table":"devices","file":"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db","table":"OtherDevices","rowid":5,"before":{"Uuid":"U-4","Name":{"base64":"/w=="}},"after":null})"
    "\n";

constexpr const char *lists_of_the_laptop =
    R"({"source":1,"list":"preferences","address":"b4-c2-6a-7f-d3-7a","address_normal":"b4:c2:6a:7f:d3:7a","names":["=Headset","Anna"],)"
    R"("kind":"classic","is_paired":true,"class_of_device":{"value":2360340},"vendor":{"id":76,"source":"SIG"},"product":8194,)"
    R"("bluetooth_version":"5.0","times":[{"name":"LastNameUpdate","raw":"x","utc":"2024-05-17T10:11:05Z","clock":"utc",)"
    R"("meaning":"LastNameUpdate of the preferences"},{"name":"LastInquiryUpdate","raw":0,"utc":null,"clock":"utc",)"
    R"("meaning":"LastInquiryUpdate of the preferences"}],"raw":{"b":1,"a":2},)"
    R"("locator":{"file":"Library/Preferences/com.apple.Bluetooth.plist","path":"DeviceCache/b4-c2-6a-7f-d3-7a"},)"
    R"("is_current":null,"listed_in":["HIDDevices"]})"
    "\n"
    R"({"source":1,"list":"mobile_devices","address":"B4:C2:6A:00:00:01","address_normal":"b4:c2:6a:00:00:01","names":[],)"
    R"("kind":"classic","is_paired":null,"class_of_device":null,"vendor":null,"product":null,"bluetooth_version":null,)"
    R"("times":[{"name":"LastSeenTime","raw":737633465,"utc":"2024-05-17T10:11:05Z","clock":"unknown",)"
    R"("meaning":"LastSeenTime of the mobile list, if it is seconds since 2001"}],"raw":{},)"
    R"("locator":{"file":"devices.plist","path":"B4:C2:6A:00:00:01"},"is_current":null,"listed_in":null})"
    "\n";

constexpr const char *list_of_the_pc =
    R"({"source":3,"list":"registry","address":"b4c26a7fd37b","address_normal":"b4:c2:6a:7f:d3:7b","names":["Keys & <i>"],)"
    R"("kind":"both","is_paired":true,"class_of_device":null,"vendor":null,"product":null,"bluetooth_version":null,)"
    R"("times":[{"name":"LastSeen","raw":"1","utc":"2024-05-18T10:11:05.25Z","clock":"utc","meaning":"LastSeen of the registry"},)"
    R"({"name":"LastConnected","raw":"2","utc":"2024-05-16T10:11:05Z","clock":"utc","meaning":"LastConnected of the registry"}],)"
    R"("raw":{"size":9},"locator":{"file":"Windows/System32/config/SYSTEM","path":"ControlSet001\\x"},"is_current":true,)"
    R"("listed_in":["Keys"]})"
    "\n"
    R"({"source":3,"list":"registry","address":"c00000000001","address_normal":"c0:00:00:00:00:01","names":["Ring"],)"
    R"("kind":"le","is_paired":false,"class_of_device":null,"vendor":null,"product":null,"bluetooth_version":null,"times":[],)"
    R"("raw":{},"locator":{"file":"Windows/System32/config/SYSTEM","path":"ControlSet001\\y"},"is_current":false,"listed_in":null})"
    "\n"
    R"({"source":3,"list":"another","address":"nothing known","address_normal":null,"names":["?"],"kind":null,)"
    R"("is_paired":null,"class_of_device":null,"vendor":null,"product":null,"bluetooth_version":null,"times":[],"raw":{},)"
    R"("locator":{"file":"x","path":"y"},"is_current":null,"listed_in":null})"
    "\n";

constexpr const char *lines_of_the_log =
    R"({"line":2,"offset":30,"table":"devices","text":"May 17 12:11:05 p s[1] <Notice>: BLE device found: SFDevice ID 1a, RSSI -60, Nm 'Car, front', Md 'a1', AID 7F"})"
    "\n"
    R"({"line":3,"offset":150,"table":"paired_devices","text":"May 17 12:11:06 p s[1] <Notice>: active device: PI B4:C2:6A:7F:D3:7A, Nm 'Pods', PairedBT"})"
    "\n"
    R"({"line":4,"offset":250,"table":"devices","text":"2024-05-17 12:21:05+0200 BLE device found: SFDevice ID 1A, RSSI x, Nm 'Car', Md 'a1'"})"
    "\n"
    R"({"line":5,"offset":350,"table":"devices","text":{"base64":"TWF5IDE4IDEyOjMxOjA1IEJMRSBkZXZpY2UgZm91bmQ6IFNGRGV2aWNlIElEIDJCLCBSU1NJIC0wNywgTm0gJ/8n"}})"
    "\n"
    R"({"line":6,"offset":450,"table":"devices","text":"May 18 12:31:06 p BLE device found: SFDevice ID 3C"})"
    "\n";

constexpr const char *lines_without_a_row =
    R"({"line":7,"offset":500,"table":"paired_devices","text":"2024-05-17 12:11:05+0200 active device <x>"})"
    "\n"
    R"({"line":8,"offset":600,"table":"devices","text":"BLE device found"})"
    "\n";

constexpr const char *salvaged =
    R"({"result_table":"devices","file":"Library/x.db","table":"OtherDevices","page":7,"rowid":31,"row":{"Uuid":"U-31"}})"
    "\n";

constexpr const char *preferences =
    "<plist version='1.0'><dict><key>DeviceCache</key><dict><key>b4-c2-6a-7f-d3-7a</key>"
    "<dict><key>Name</key><string>Anna&#8217;s car</string></dict></dict></dict></plist>";

QJsonDocument document(const char *text)
{
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        qFatal("no JSON: %s", qPrintable(error.errorString()));
    return json;
}

const QString database_folder = u"Source1/Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices."_s;
const QString result_file = u"/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s;

/** Makes a table of a database of the case and fills it. */
void add_table(const QString &file, const QString &table, const QString &columns, const QStringList &rows)
{
    QDir().mkpath(QFileInfo(file).path());
    const sqlite_file database(file);
    database.execute(u"CREATE TABLE "_s + table + u'(' + columns + u')');
    for (const QString &row : rows)
        database.execute(u"INSERT INTO "_s + table + u" VALUES("_s + row + u')');
}

void lay_records(const laid_case &the_case)
{
    QJsonObject manifest = document(manifest_heading).object();
    const QJsonArray sources = document(source_records).array();
    manifest.insert("sources"_L1, sources);
    write_file(the_case.path(u"manifest.json"_s), QJsonDocument(manifest).toJson());
    for (const QJsonValue source : sources) {
        QJsonObject record = source.toObject();
        record.insert("format"_L1, u"bluetooth-logs source"_s);
        record.insert("version"_L1, 2);
        write_file(the_case.path(u"Source%1/source.json"_s.arg(record.value("number"_L1).toInt())),
                   QJsonDocument(record).toJson());
    }
}

void lay_laptop(const laid_case &the_case)
{
    // clang-format off
    const QString evidence_columns = u"Uuid, Name, NameOrigin, Address, ResolvedAddress, LastSeenTime, LastConnectionTime, "
                                     "GATTServiceChangeConfig, Tags, iCloudIdentifier"_s;
    add_table(the_case.path(database_folder + u"other.db"_s), u"OtherDevices"_s, evidence_columns,
              {u"'U-1', 'Car, <front>', 2, 'Random C0:00:00:00:00:01', 'Public B4:C2:6A:7F:D3:7A', 300, 150, 1, 't', 'ic-1'"_s,
               u"'U-2', NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL"_s,
               u"'U-5', 'lost', 1, NULL, NULL, 1, 1, NULL, NULL, NULL"_s,
               u"'U-3', '=1+1', 3, 'Random 40:00:00:00:00:01', NULL, 700000000, 200, NULL, x'00ff', ''"_s,
               u"'U-4', 'a name', 1.5, 'Public 00:00:00:00:00:00', NULL, 0, 100, NULL, NULL, '0000'"_s});
    add_table(the_case.path(database_folder + u"other.db"_s), u"CustomProperties"_s, u"Uuid, JSON"_s, {u"'U-1', '{\"a\": 1}'"_s});
    add_table(the_case.path(database_folder + u"paired.db"_s), u"PairedDevices"_s, evidence_columns,
              {u"'U-1', 'Car', 1, 'Public B4:C2:6A:7F:D3:7A', NULL, 5, 7, NULL, 'Connected', 'IC-1'"_s});
    const QString result = the_case.path(u"Source1"_s + result_file);
    const QString columns = u"INT INTEGER, uuid, device_name, address, last_seen_time, last_connection_time"_s;
    add_table(result, u"devices"_s, columns,
              {u"1, 'U-1', 'Car, <front>', 'Random C0:00:00:00:00:01', '300', '150'"_s,
               u"2, 'U-2', '', '', '', ''"_s,
               u"3, 'U-3', '=1+1', 'Random 40:00:00:00:00:01', '700000000', '200'"_s,
               u"4, 'U-4', 'another', 'Public 00:00:00:00:00:00', '0', '100'"_s});
    add_table(result, u"paired_devices"_s, columns + u", apple_tags, icloud_identifier"_s,
              {u"1, 'U-1', 'Car', 'Public B4:C2:6A:7F:D3:7A', NULL, NULL, 'Connected', 'IC-1'"_s});
    // clang-format on
    write_file(the_case.path(u"Source1/Evidence/Library/Preferences/com.apple.Bluetooth.plist"_s), preferences);
    write_file(the_case.path(u"Source1/wal_changes.jsonl"_s), changes_by_the_log);
    write_file(the_case.path(u"Source1/host_devices.jsonl"_s), lists_of_the_laptop);
    write_file(the_case.path(u"Source1/salvage.jsonl"_s), salvaged);
}

void lay_phone(const laid_case &the_case)
{
    const QString result = the_case.path(u"Source4"_s + result_file);
    add_table(result, u"devices"_s, u"INT INTEGER, device_name, address, sf_device_id, date, model"_s,
              {u"1, 'Car', NULL, '1a', 'May 17 12:11:05', 'a1'"_s, u"2, 'Car', NULL, '1A', '2024-05-17 12:2', 'a1'"_s,
               u"3, CAST(x'ff' AS TEXT), NULL, '2B', 'May 18 12:31:05', NULL"_s,
               u"4, '', '5A:1B:2C:3D:4E:5F', NULL, 'May 18 12:31:07', NULL"_s});
    add_table(result, u"paired_devices"_s, u"INT INTEGER, device_name, device_address, date, status"_s,
              {u"1, 'Pods', 'B4:C2:6A:7F:D3:7A', 'May 17 12:11:06', 'PairedBT'"_s});
    write_file(the_case.path(u"Source4/ios_lines.jsonl"_s), lines_of_the_log);
    write_file(the_case.path(u"Source4/unparsed_lines.jsonl"_s), lines_without_a_row);
}

} // namespace

laid_case::laid_case()
{
    lay_records(*this);
    lay_laptop(*this);
    write_file(path(u"Source3/host_devices.jsonl"_s), list_of_the_pc);
    lay_phone(*this);
    write_file(path(u"notes.jsonl"_s), notes);
}

void laid_case::replace(const QString &name, const QByteArray &text, const QByteArray &other) const
{
    QByteArray content = content_of(path(name));
    const qsizetype place = content.indexOf(text);
    if (place < 0)
        qFatal("%s has no %s", qPrintable(name), text.constData());
    write_file(path(name), content.replace(place, text.size(), other));
}
