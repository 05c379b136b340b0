// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/files/system_error.h"
#include "host/report/join/other_appearances.h"
#include "host/report/reading/kept_lines.h"
#include "host/report/reading/log_reading.h"
#include "host/report/reading/report_row.h"
#include "host/report/reading/wal_change.h"
#include "host/report/report_record.h"
#include "host/report/tables/case_lists.h"
#include "host/report/tables/timeline.h"
#include "tests/host/report/laid_case.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QTest>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

const QString result_of_laptop = u"Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s;
const QString other_database = u"Source1/Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;

QString failure_of(const std::function<void()> &what)
{
    try {
        what();
    } catch (const host_error &error) {
        return QString::number(int(error.kind())) + u' ' + error.message();
    }
    return u"none"_s;
}

/** "2 rows", and why there are no more. */
QString account_of(const table_reading &reading)
{
    return QString::number(reading.rows) + u" rows"_s
           + (reading.problem.isEmpty() ? QString() : QString(u": "_s + reading.problem));
}

QString reading_of(const laid_case &laid, const QString &table, int place = 0)
{
    const report_case the_case = read_report_case(laid.directory());
    return account_of(read_rows(the_case, the_case.sources.at(place), table, [](const report_row &) {}));
}

} // namespace

/** What of a case can be read, and what is said of the rest. */
class test_case_reading : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void kept_lines_data();
    void kept_lines();
    void members_of_a_kept_line();
    void kept_file_behind_a_link();
    void lines_of_a_log_data();
    void lines_of_a_log();
    void rows();
    void rows_of_a_damaged_table();
    void rows_with_damaged_changes();
    void notes_of_rows();
    void notes_of_changes();
    void columns_and_counts();
    void case_without_a_manifest();
    void shortcomings_data();
    void shortcomings();
    void source_at_work();
    void places_in_messages();
    void files_without_a_hash();
    void other_appearances();
    void appearances_of_a_log();
    void names_of_preferences_alone();
    void times_of_damaged_lists();
    void record_of_a_report();
};

void test_case_reading::kept_lines_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("account"); // the lines, and the problem

    // clang-format off
    QTest::newRow("nothing")          << QByteArray("")                         << u""_s;
    QTest::newRow("one")              << QByteArray("{\"a\":1}\n")              << u"{\"a\":1}"_s;
    QTest::newRow("no line end")      << QByteArray("{\"a\":1}\n{\"b\":2}")     << u"{\"a\":1} {\"b\":2}"_s;
    QTest::newRow("blanks around it") << QByteArray(" {\"a\":1}\t\r\n")         << u"{\"a\":1}"_s;
    QTest::newRow("a line of another kind") << QByteArray("{\"a\":1}\n[1]\n{\"b\":2}\n") << u"{\"a\":1} {\"b\":2} problem: kept.jsonl is damaged"_s;
    QTest::newRow("an empty line")    << QByteArray("\n{\"a\":1}\n")            << u"{\"a\":1} problem: kept.jsonl is damaged"_s;
    QTest::newRow("cut")              << QByteArray("{\"a\":1}\n{\"b\"")        << u"{\"a\":1} problem: kept.jsonl is damaged"_s;
    // clang-format on
}

void test_case_reading::kept_lines()
{
    QFETCH(const QByteArray, content);
    const QTemporaryDir folder;
    write_file(folder.filePath(u"kept.jsonl"_s), content);
    QStringList account;
    const QString problem = for_each_kept_line(folder.filePath(u"kept.jsonl"_s), [&account](const kept_line &line) {
        account.append(QString::fromUtf8(line.text));
    });
    if (!problem.isEmpty())
        account.append(u"problem: "_s + problem);
    QTEST(account.join(u' '), "account");
}

void test_case_reading::members_of_a_kept_line()
{
    const QTemporaryDir folder;
    write_file(folder.filePath(u"kept.jsonl"_s),
               R"({"text":"Käfer","bytes":{"base64":"AP8="},"number":9007199254740993,"none":null,"list":[ 1, 2 ]})");
    int count = 0;
    const QString problem = for_each_kept_line(folder.filePath(u"kept.jsonl"_s), [&count](const kept_line &line) {
        ++count;
        QCOMPARE(line.bytes("text"_L1), "Käfer"_ba);
        QCOMPARE(line.bytes("bytes"_L1), QByteArray("\0\xff", 2));
        QCOMPARE(line.bytes("number"_L1), QByteArray());
        QCOMPARE(line.number("number"_L1), std::optional<qint64>(9007199254740993));
        QCOMPARE(line.number("text"_L1), std::optional<qint64>());
        QCOMPARE(line.number("not there"_L1), std::optional<qint64>());
        QCOMPARE(line.raw_value("list"), "[ 1, 2 ]"_ba);
        QCOMPARE(line.raw_value("text"), "\"Käfer\""_ba);
        QVERIFY(line.raw_value("none").isNull());
        QVERIFY(line.raw_value("not there").isNull());
    });
    QCOMPARE(problem, QString());
    QCOMPARE(count, 1);
    QCOMPARE(for_each_kept_line(folder.filePath(u"none.jsonl"_s), [](const kept_line &) { QFAIL("there is no line"); }),
             QString());
}

void test_case_reading::kept_file_behind_a_link()
{
    const laid_case laid;
    const auto put_behind_a_link = [&laid](const QString &name) {
        QVERIFY(QFile::rename(laid.path(name), laid.path(u"elsewhere"_s)));
        QVERIFY(QFile::link(laid.path(u"elsewhere"_s), laid.path(name)));
    };
    const QString reason = u" cannot be read: "_s + system_error_text(ELOOP);
    put_behind_a_link(u"Source4/ios_lines.jsonl"_s);
    QCOMPARE(reading_of(laid, u"devices"_s, 2), QString(u"4 rows: ios_lines.jsonl"_s + reason));
    QVERIFY(QFile::remove(laid.path(u"elsewhere"_s)));
    put_behind_a_link(u"Source1/salvage.jsonl"_s);
    const report_case the_case = read_report_case(laid.directory());
    QCOMPARE(case_lists(the_case).last().read([](const line_cells &) {}),
             QStringList{u"source 1: salvage.jsonl"_s + reason});
}

void test_case_reading::lines_of_a_log_data()
{
    QTest::addColumn<QByteArray>("kept");
    QTest::addColumn<QStringList>("account"); // of three rows with the name "Car": date a, b and c

    const auto line = [](int number, const QByteArray &text, const QByteArray &table = "devices") -> QByteArray {
        return "{\"line\":" + QByteArray::number(number) + ",\"offset\":9,\"table\":\"" + table + "\",\"text\":\""
               + text + "\"}\n";
    };
    // clang-format off
    QTest::newRow("alike") << line(1, "a, Nm 'Car'") + line(2, "b, Nm 'Car'") + line(3, "c, Nm 'Car'")
                           << QStringList{u"1 date"_s, u"2 date"_s, u"3 date"_s};
    QTest::newRow("of the other table") << line(1, "a, Nm 'Car'") + line(2, "x", "paired_devices") + line(3, "b, Nm 'Car'")
                           << QStringList{u"1 date"_s, u"3 date"_s, u"nothing"_s};
    QTest::newRow("the whole date") << line(1, "a") + line(2, "b, RSSI 5") + line(3, "")
                           << QStringList{u"1 device_name"_s, u"2 date, device_name"_s, u"3 date, device_name"_s};
    QTest::newRow("damaged") << line(1, "a, Nm 'Car'") + "{\n" + line(3, "c, Nm 'Car'")
                           << QStringList{u"1 date"_s, u"nothing"_s, u"3 date"_s, u"problem: ios_lines.jsonl is damaged: unterminated object"_s};
    QTest::newRow("nothing") << QByteArray() << QStringList{u"nothing"_s, u"nothing"_s, u"nothing"_s};
    // clang-format on
}

void test_case_reading::lines_of_a_log()
{
    QFETCH(const QByteArray, kept);
    const QTemporaryDir folder;
    write_file(folder.filePath(u"ios_lines.jsonl"_s), kept);
    const sqlite_database database(folder.filePath(u"result"_s), sqlite_database::access::create);
    sqlite_statement row(database, "SELECT column1 AS date, 'Car' AS device_name FROM (VALUES ('a'), ('b'), ('c'))");
    const vendor_list vendors;
    log_reading reading(folder.filePath(u"ios_lines.jsonl"_s), u"system.log"_s, u"devices"_s, row, vendors);
    QStringList account;
    while (row.next()) {
        reading.next(row);
        const host_values &values = reading.values();
        if (!values.place.line) {
            account.append(u"nothing"_s);
            continue;
        }
        QCOMPARE(values.place.file, "system.log"_ba);
        QCOMPARE(values.place.offset, std::optional<qint64>(9));
        account.append(QString::number(*values.place.line)
                       + (values.differs.is_null() ? QString() : u' ' + QString::fromUtf8(text_of(values.differs))));
    }
    if (!reading.problem().isEmpty())
        account.append(u"problem: "_s + reading.problem());
    QTEST(account, "account");
}

void test_case_reading::rows()
{
    const laid_case laid;
    const QString result = laid.path(result_of_laptop);
    QCOMPARE(reading_of(laid, u"devices"_s), u"4 rows"_s);
    QCOMPARE(reading_of(laid, u"devices"_s, 1), u"0 rows"_s); // it has no result
    QCOMPARE(reading_of(laid, u"devices"_s, 3), u"0 rows: its result database is missing: "
                                                "Source5/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    sqlite_file(result).execute(u"DELETE FROM devices WHERE INT = 1"_s);
    QCOMPARE(reading_of(laid, u"devices"_s), u"3 rows: 3 rows of devices could be read, the case's record says 4"_s);
    sqlite_file(result).execute(u"DROP TABLE paired_devices"_s);
    QCOMPARE(reading_of(laid, u"paired_devices"_s),
             u"0 rows: 0 rows of paired_devices could be read, the case's record says 1"_s);
    sqlite_file(result).execute(u"DROP TABLE devices"_s);
    QCOMPARE(reading_of(laid, u"devices"_s),
             u"0 rows: the result database "_s + result_of_laptop + u" holds no result table"_s);
    write_file(laid.path(other_database), "no database");
    sqlite_file(result).execute(u"CREATE TABLE devices(uuid)"_s);
    QCOMPARE(reading_of(laid, u"devices"_s), u"0 rows: Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db: "
                                             "file is not a database"_s);
    write_file(result, "no database");
    QCOMPARE(reading_of(laid, u"devices"_s),
             u"0 rows: the result database "_s + result_of_laptop + u" cannot be read: file is not a database"_s);
}

/** What comes before the damage was given. */
void test_case_reading::rows_of_a_damaged_table()
{
    const laid_case laid;
    const QString result = laid.path(u"Source4/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    sqlite_file(result).execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1000) "
                                "INSERT INTO devices(device_name) SELECT printf('%100d', i) FROM n"_s);
    QByteArray content = content_of(result);
    write_file(result, content.replace(content.size() - 4096, 4096, QByteArray(4096, '\xff')));
    const QString account = reading_of(laid, u"devices"_s, 2);
    QVERIFY2(account.endsWith(
                 u": the result table devices cannot be read to its end: database disk image is malformed"_s),
             qPrintable(account));
    QVERIFY2(account.section(u' ', 0, 0).toInt() > 4, qPrintable(account));
}

void test_case_reading::rows_with_damaged_changes()
{
    const laid_case laid;
    laid.replace(u"Source1/wal_changes.jsonl"_s, "{\"change\"", "{change");
    QCOMPARE(reading_of(laid, u"devices"_s), u"4 rows: wal_changes.jsonl is damaged"_s);
    QCOMPARE(reading_of(laid, u"paired_devices"_s), u"1 rows: wal_changes.jsonl is damaged"_s);
}

/** A row has the notes on whatever it calls its device, and its own. */
void test_case_reading::notes_of_rows()
{
    const laid_case laid;
    const QString result = laid.path(u"Source4/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    sqlite_file(result).execute(u"DROP TABLE devices"_s);
    sqlite_file(result).execute(u"CREATE TABLE devices(INT, uuid, sf_device_id, address, device_address)"_s);
    sqlite_file(result).execute(u"INSERT INTO devices VALUES(7, '01234567-89ab-cdef-0123-456789abcdef', "
                                "'11234567-89ab-cdef-0123-456789abcdef', 'Public 00:00:00:00:00:03', '000000000004'), "
                                "(8, '', '', '', '')"_s);
    const QByteArray none = R"("row":null,"flag":false,"text":"x"})"
                            "\n";
    const auto note = [](int number, const QByteArray &rest) -> QByteArray {
        return "{\"number\":" + QByteArray::number(number) + ",\"time\":\"t\",\"by\":\"b\"," + rest;
    };
    write_file(laid.path(u"notes.jsonl"_s),
               note(1, R"("device":"01234567-89AB-CDEF-0123-456789ABCDEF",)" + none)
                   + note(2, R"("device":"11234567-89AB-CDEF-0123-456789ABCDEF",)" + none)
                   + note(3, R"("device":"00:00:00:00:00:03",)" + none)
                   + note(4, R"("device":"00:00:00:00:00:04",)" + none)
                   + note(5, R"("device":"00:00:00:00:00:05",)" + none)
                   + note(6, R"("device":null,"row":{"source":4,"table":"devices","row":7},"text":"x"})"
                             "\n")
                   + note(7, R"("device":null,"row":{"source":4,"table":"devices","row":8},"flag":true})"
                             "\n"));
    const report_case the_case = read_report_case(laid.directory());
    QStringList notes;
    read_rows(the_case, the_case.sources.at(2), u"devices"_s, [&notes](const report_row &row) {
        for (const case_note *one : row.notes)
            notes.append(QString::number(one->number));
        notes.append(QString::fromUtf8(row.marks.text) + u' ' + QString::fromUtf8(text_of(row.marks.flag())));
    });
    QCOMPARE(notes.join(u' '), u"1 2 3 4 6 x | x | x | x | x false 7  true"_s);
}

/** A change has the notes on whatever either side of it calls the device. */
void test_case_reading::notes_of_changes()
{
    const laid_case laid;
    QByteArray notes;
    for (const char number : {'1', '2', '3', '4', '5', '6', '7'})
        notes += QByteArray(R"({"number":#,"time":"t","device":"00:00:00:00:00:0#"})"
                            "\n")
                     .replace('#', number);
    write_file(laid.path(u"notes.jsonl"_s), notes);
    write_file(laid.path(u"Source1/wal_changes.jsonl"_s),
               R"({"change":"changed","result_table":"devices","before":{"Uuid":"00:00:00:00:00:01",)"
               R"("Address":"00:00:00:00:00:02","ResolvedAddress":"00:00:00:00:00:03"},"after":{)"
               R"("Uuid":"00:00:00:00:00:04","Address":"00:00:00:00:00:05","ResolvedAddress":"00:00:00:00:00:06"}})"
               "\n");
    const report_case the_case = read_report_case(laid.directory());
    QStringList numbers;
    QCOMPARE(for_each_wal_change(the_case, the_case.sources.first(),
                                 [&numbers](const wal_change &change) {
                                     for (const case_note *note : change.notes)
                                         numbers.append(QString::number(note->number));
                                 }),
             QString());
    QCOMPARE(numbers.join(u' '), u"1 2 3 4 5 6"_s);
}

void test_case_reading::columns_and_counts()
{
    const laid_case laid;
    const QString result = laid.path(result_of_laptop);
    const report_case the_case = read_report_case(laid.directory());
    QCOMPARE(result_columns(the_case, u"devices"_s).names.join(u' '),
             u"INT uuid device_name address last_seen_time last_connection_time sf_device_id date model"_s);
    QCOMPARE(result_columns(the_case, u"paired_devices"_s).names.join(u' '),
             u"INT uuid device_name address last_seen_time last_connection_time apple_tags icloud_identifier "
             "device_address date status"_s);
    QCOMPARE(row_count(the_case).rows, 4 + 1 + 4 + 1);
    QCOMPARE(row_count(the_case).problems, QStringList());
    sqlite_file(result).execute(u"DROP TABLE devices"_s);
    QCOMPARE(result_columns(the_case, u"devices"_s).names.join(u' '),
             u"INT device_name address sf_device_id date model"_s);
    QCOMPARE(result_columns(the_case, u"devices"_s).problems, QStringList());
    write_file(result, "no database");
    const QStringList problems{u"source 1: the result database "_s + result_of_laptop
                               + u" cannot be read: file is not a database"_s};
    QCOMPARE(result_columns(the_case, u"devices"_s).problems, problems);
    QCOMPARE(row_count(the_case).rows, 4 + 1);
    QCOMPARE(row_count(the_case).problems, problems);
    QVERIFY(QFile::remove(result)); // which is said with the rows
    QCOMPARE(result_columns(the_case, u"devices"_s).problems, QStringList());
}

void test_case_reading::case_without_a_manifest()
{
    const laid_case laid;
    const report_case collected = read_report_case(laid.directory());
    QCOMPARE(collected.manifest_sha256.size(), 64);
    QCOMPARE(collected.heading.value("case_number"_L1), u"2026/17"_s);
    QVERIFY(!collected.heading.contains("sources"_L1));
    QVERIFY(QFile::remove(laid.path(u"manifest.json"_s)));
    const report_case not_collected = read_report_case(laid.directory());
    QCOMPARE(not_collected.manifest_sha256, QString());
    QVERIFY(not_collected.heading.isEmpty());
    QCOMPARE(not_collected.shortcomings,
             QStringList({u"the case was not collected: it has no manifest"_s, u"source 5: failed"_s}));
    for (const report_case &the_case : {collected, not_collected}) {
        QStringList names;
        for (const report_source &source : the_case.sources)
            names.append(QString::number(source.record.number) + u' ' + source.name);
        QCOMPARE(names, QStringList({u"1 Laptop & <b>"_s, u"3 Source3"_s, u"4 Phone"_s, u"5 Source5"_s}));
    }
    const QTemporaryDir nothing;
    QCOMPARE(failure_of([&] { read_report_case(nothing.path()); }),
             QString(QString::number(int(error_kind::not_found)) + u" there is no case in "_s + nothing.path()));
}

void test_case_reading::shortcomings_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("other");
    QTest::addColumn<QStringList>("shortcomings");

    const QString of_last = u"source 5: failed"_s;
    // clang-format off
    QTest::newRow("none besides")    << u"oui.txt"_s << QByteArray() << QByteArray() << QStringList{of_last};
    QTest::newRow("other record")    << u"Source1/source.json"_s << QByteArray("a second text") << QByteArray("another text")
                                     << QStringList{of_last, u"source 1 is not what the manifest says: it was done anew and not yet collected"_s};
    QTest::newRow("notes")           << u"notes.jsonl"_s << QByteArray("\"number\":2") << QByteArray("\"number\":3")
                                     << QStringList{of_last, u"notes.jsonl: line 2 is no note of this program"_s};
    QTest::newRow("preferences")     << u"Source1/Evidence/Library/Preferences/com.apple.Bluetooth.plist"_s << QByteArray("<plist") << QByteArray("<x")
                                     << QStringList{u"source 1: Library/Preferences/com.apple.Bluetooth.plist: it is no property list with a dictionary at its top"_s, of_last};
    // clang-format on
}

void test_case_reading::shortcomings()
{
    QFETCH(const QString, file);
    QFETCH(const QByteArray, text);
    QFETCH(const QByteArray, other);
    const laid_case laid;
    write_file(laid.path(u"oui.txt"_s), {});
    laid.replace(file, text, other);
    QTEST(read_report_case(laid.directory()).shortcomings, "shortcomings");
}

/** Nothing of it is read: a reader could keep the run from writing, and what it writes is not whole. */
void test_case_reading::source_at_work()
{
    const laid_case laid;
    QVERIFY(QFile::remove(laid.path(u"Source1/host_devices.jsonl"_s))); // then names of the preferences would be taken
    const file_lock lock(laid.path(u"Source1/.lock"_s));
    const report_case the_case = read_report_case(laid.directory());
    QCOMPARE(the_case.shortcomings,
             QStringList({u"source 1: a run works on it, and its rows are left out"_s, u"source 5: failed"_s}));
    const report_source &source = the_case.sources.first();
    QVERIFY(source.is_locked);
    QVERIFY(!the_case.sources.at(1).is_locked);
    QCOMPARE(reading_of(laid, u"devices"_s), u"0 rows"_s);
    QCOMPARE(row_count(the_case).rows, 4 + 1);
    QCOMPARE(result_columns(the_case, u"devices"_s).names.first(2), QStringList({u"INT"_s, u"device_name"_s}));
    int appearances = 0;
    QCOMPARE(for_each_other_appearance(the_case, 0, [&appearances](const device_appearance &) { ++appearances; }),
             QString());
    QCOMPARE(appearances, 0);
    QList<qint64> sources;
    for (const case_list &list : case_lists(the_case)) {
        if (list.name != "evidence_files"_L1)
            QCOMPARE(list.read([&sources](const line_cells &cells) { sources.append(cells.front().integer); }),
                     QStringList());
    }
    QCOMPARE(sources, QList<qint64>({3, 3, 3, 3, 3, 4, 4})); // two files of a container, three devices, two lines
}

/** A report is read elsewhere: the places of case and source say nothing there. Of a system in use the source is "/".
 */
void test_case_reading::places_in_messages()
{
    const laid_case laid;
    const auto messages = [&laid] {
        const report_case the_case = read_report_case(laid.directory());
        QStringList texts;
        for (const run_message &message : the_case.sources.first().record.messages)
            texts.append(message.text);
        return texts;
    };
    QCOMPARE(messages(),
             QStringList({u"(source)/a.db leads out of the source: --follow-links allows it"_s, u"a second text"_s}));
    laid.replace(u"manifest.json"_s, "a second text", laid.path(u"Source1/x is in the way"_s).toUtf8());
    laid.replace(u"manifest.json"_s, "/evidence/laptop\"", "/\"");
    QCOMPARE(messages(), QStringList({u"/evidence/laptop/a.db leads out of the source: --follow-links allows it"_s,
                                      u"(case)/Source1/x is in the way"_s}));
    QCOMPARE(read_report_case(laid.directory()).sources.first().record.evidence.files.at(1).reason,
             u"/evidence/laptop/gone.db leads out of the source"_s);
}

void test_case_reading::files_without_a_hash()
{
    report_source source;
    source.record.messages = {{run_message::weight::error, u"the file cannot be hashed: /a.E01: it is damaged"_s}};
    QCOMPARE(source.why_no_hash(u"/a.E01"_s), "not made: the file could not be read to its end");
    QCOMPARE(source.why_no_hash(u"/a.E0"_s), "not made (--no-container-hash)");
    QCOMPARE(source.why_no_hash(u"/b.E01"_s), "not made (--no-container-hash)");
}

void test_case_reading::other_appearances()
{
    const laid_case laid;
    laid.replace(u"Source1/host_devices.jsonl"_s, "mobile_devices\",\"address\":\"B4:C2",
                 "mobile_devices\",\"address\":\"Public B4:C2");
    laid.replace(u"Source1/host_devices.jsonl"_s, "\"kind\":\"classic\",\"is_paired\":null",
                 "\"kind\":\"le\",\"is_paired\":true");
    report_case the_case = read_report_case(laid.directory());
    write_file(laid.path(u"oui.txt"_s), "B4-C2-6A   (hex)\t\tSome & Sons\n");
    the_case.vendors = vendor_list(laid.path(u"oui.txt"_s));
    QStringList account;
    for (const int source : {0, 1, 2}) {
        const QString problem = for_each_other_appearance(the_case, source, [&account](const device_appearance &one) {
            QByteArrayList texts{QByteArray(one.found_in.data()),
                                 QByteArray::number(one.source),
                                 one.table.toUtf8(),
                                 QByteArray::number(one.line),
                                 one.place.file.mid(one.place.file.lastIndexOf('/') + 1),
                                 one.uuid,
                                 one.name,
                                 one.address,
                                 one.vendor,
                                 one.local_name};
            for (const join_key &key : one.keys)
                texts.append(key.value);
            texts.append(one.is_paired ? "paired" : "");
            texts.append(QByteArray::number(one.notes.size()));
            account.append(QString::fromUtf8(texts.join('|')));
        });
        QCOMPARE(problem, QString());
    }
    const QString other = u"com.apple.MobileBluetooth.ledevices.other.db"_s;
    // clang-format off
    QCOMPARE(account.join(u'\n'), (QStringList{
        u"wal_added|0|paired_devices|0|com.apple.MobileBluetooth.ledevices.paired.db|U-9|Keys|Public B4:C2:6A:7F:D3:7B|||b4:c2:6a:7f:d3:7b|paired|0"_s,
        u"wal_changed_before|0|devices|1|"_s + other + u"|U-2||||||0"_s,
        u"wal_changed_after|0|devices|1|"_s + other + u"|U-2|Later|||||0"_s,
        u"wal_deleted|0|devices|2|"_s + other + u"|U-4|\ufffd|||||0"_s,
        u"preferences|0||0|com.apple.Bluetooth.plist||=Headset | Anna|b4-c2-6a-7f-d3-7a|Some & Sons||b4:c2:6a:7f:d3:7a|paired|1"_s,
        u"mobile_devices|0||1|devices.plist|||Public B4:C2:6A:00:00:01|Some & Sons||b4:c2:6a:00:00:01|paired|0"_s,
        u"registry|1||0|SYSTEM||Keys & <i>|b4c26a7fd37b|Some & Sons||b4:c2:6a:7f:d3:7b|paired|0"_s,
        u"registry|1||1|SYSTEM||Ring|c00000000001||c0:00:00:00:00:01||0"_s,
        u"list|1||2|x||?|nothing known||||0"_s,
    }.join(u'\n')));
    // clang-format on
}

void test_case_reading::appearances_of_a_log()
{
    const laid_case laid;
    laid.replace(u"Source1/wal_changes.jsonl"_s, "\"Name\":\"Keys\"",
                 "\"Name\":\"Keys\",\"iCloudIdentifier\":\"I-1\",\"ResolvedAddress\":\"R-1\"");
    write_file(laid.path(u"notes.jsonl"_s), R"({"number":1,"time":"t","device":"B4:C2:6A:7F:D3:7B"})"
                                            "\n");
    const report_case the_case = read_report_case(laid.directory());
    QStringList account;
    QCOMPARE(for_each_other_appearance(the_case, 0,
                                       [&account](const device_appearance &one) {
                                           if (one.found_in == "wal_added"_L1)
                                               account = {QString::fromUtf8(one.icloud_identifier),
                                                          QString::fromUtf8(one.resolved_address),
                                                          QString::number(one.notes.size())};
                                       }),
             QString());
    QCOMPARE(account, QStringList({u"I-1"_s, u"R-1"_s, u"1"_s}));
}

/** In cases of earlier versions, which kept no list of devices. */
void test_case_reading::names_of_preferences_alone()
{
    const laid_case laid;
    QVERIFY(QFile::remove(laid.path(u"Source1/host_devices.jsonl"_s)));
    QVERIFY(QFile::remove(laid.path(u"Source1/wal_changes.jsonl"_s)));
    const report_case the_case = read_report_case(laid.directory());
    int count = 0;
    const QString problem = for_each_other_appearance(the_case, 0, [&count](const device_appearance &one) {
        ++count;
        QCOMPARE(one.found_in, "preferences"_L1);
        QCOMPARE(one.source, 0);
        QCOMPARE(one.line, -1);
        QCOMPARE(one.place.file, "Library/Preferences/com.apple.Bluetooth.plist"_ba);
        QCOMPARE(one.address, "b4:c2:6a:7f:d3:7a"_ba);
        QCOMPARE(one.preferences_name, "Anna’s car"_ba);
        QCOMPARE(one.keys.size(), 1);
        QCOMPARE(one.notes.size(), 1);
    });
    QCOMPARE(problem, QString());
    QCOMPARE(count, 1);
}

void test_case_reading::times_of_damaged_lists()
{
    const laid_case laid;
    for (const QString &name : {u"Source4/unparsed_lines.jsonl"_s, u"Source4/ios_lines.jsonl"_s,
                                u"Source3/host_devices.jsonl"_s, u"Source1/host_devices.jsonl"_s})
        laid.replace(name, "\n", "\nno JSON\n");
    QCOMPARE(read_timeline(read_report_case(laid.directory()), {}).problems,
             QStringList({u"source 1: host_devices.jsonl is damaged"_s, u"source 3: host_devices.jsonl is damaged"_s,
                          u"source 4: ios_lines.jsonl is damaged"_s, u"source 4: unparsed_lines.jsonl is damaged"_s}));
}

void test_case_reading::record_of_a_report()
{
    const QTemporaryDir folder;
    const auto record_after = [&folder](const QString &manifest, const QStringList &files) {
        write_report_record(folder.path(), manifest, files);
        const QJsonObject record = QJsonDocument::fromJson(content_of(folder.filePath(u"report.json"_s))).object();
        QStringList texts{record.value("manifest_sha256"_L1).toString(u"none"_s)};
        for (const QJsonValue &file : record.value("files"_L1).toArray())
            texts.append(file.toObject().value("path"_L1).toString() + u' '
                         + QString::number(file.toObject().value("size"_L1).toInt()) + u' '
                         + file.toObject().value("sha256"_L1).toString().left(4));
        return texts.join(u", "_s);
    };
    write_file(folder.filePath(u"b"_s), "bb");
    write_file(folder.filePath(u"a"_s), "a");
    QCOMPARE(record_after(u"m1"_s, {u"b"_s}), u"m1, b 2 3b64"_s);
    QCOMPARE(record_after(u"m1"_s, {u"a"_s}), u"m1, a 1 ca97, b 2 3b64"_s); // of the same manifest
    write_file(folder.filePath(u"a"_s), "");
    QCOMPARE(record_after(u"m1"_s, {u"a"_s}), u"m1, a 0 e3b0, b 2 3b64"_s);
    QVERIFY(QFile::remove(folder.filePath(u"b"_s)));
    QCOMPARE(record_after(u"m1"_s, {}), u"m1, a 0 e3b0"_s); // the other one is gone
    QCOMPARE(record_after(u"m2"_s, {}), u"m2"_s);
    QCOMPARE(record_after({}, {u"a"_s}), u"none, a 0 e3b0"_s);
    write_file(folder.filePath(u"report.json"_s),
               R"({"manifest_sha256":"m3","files":[{"path":"a"},{"path":""},{"path":"../a"},{"path":"c"}]})");
    QCOMPARE(record_after(u"m3"_s, {}), u"m3, a 0 "_s);
    write_file(folder.filePath(u"report.json"_s), "no record");
    QCOMPARE(record_after(u"m1"_s, {}), u"m1"_s);
    QCOMPARE(failure_of([&folder] { write_report_record(folder.path(), {}, {u"none"_s}); }),
             QString(QString::number(int(error_kind::io)) + u' ' + folder.filePath(u"none"_s)
                     + u" cannot be read again"_s));
}

BLUETOOTH_LOGS_TEST(test_case_reading, QCoreApplication)

#include "test_case_reading.moc"
