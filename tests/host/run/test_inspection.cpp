// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/inspection.h"

#include "host/files/file_hash.h"
#include "host/source/evidence_files.h"
#include "host/source/evidence_look.h"
#include "host/source/macos_databases.h"
#include "tests/support/file_content.h"
#include "tests/support/macos_source.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** A run that has come to its end: a source, and a case with what host and plug-in wrote. */
class made_run
{
public:
    made_run()
    {
        const sqlite_file other = evidence.make_other();
        const sqlite_file paired = evidence.make_paired();
        for (const QString &uuid : {u"U-1"_s, u"U-2"_s, u"U-3"_s})
            macos_source::add_device(other, u"OtherDevices"_s, {uuid});
        macos_source::add_device(paired, u"PairedDevices"_s, {u"U-4"_s});
        request.source.kind = &macos_kind;
        request.source.path = evidence.root().chopped(1);
        request.source.root = evidence.root();
        request.case_directory = folder.path();
    }

    QString evidence_file_of(const macos_database &database) const
    {
        return request.source.root + path_in_source(database);
    }
    QString working_copy_of(const macos_database &database) const
    {
        return request.layout().evidence_folder() + u'/' + path_in_source(database);
    }
    QString copy_of_plugin(const macos_database &database) const
    {
        return request.layout().result_folder() + u"/Logs/"_s + database.file_name;
    }
    sqlite_file result() const
    {
        return sqlite_file(request.layout().result_database());
    }

    /** What the program does before the plug-in. */
    void look()
    {
        looked = look_before(request.source, {request.layout().evidence_folder(), request.layout().ios_lines(), {}},
                             qint64(1) << 30, [](qint64) {});
    }

    /** What the plug-in leaves. */
    void run_plugin() const
    {
        write_file(request.layout().plugin_log(), "[t][e][Artifacts Extraction][f]:-- [pub_extract_artifacts] - END\n");
        QDir().mkpath(request.layout().result_folder() + u"/Logs"_s);
        for (const macos_database *database : macos_databases) {
            QFile::copy(evidence_file_of(*database), copy_of_plugin(*database));
            result().execute(u"CREATE TABLE "_s + database->result_table + u"(INT INTEGER PRIMARY KEY, uuid TEXT)"_s);
            result().execute(u"INSERT INTO "_s + database->result_table + u" VALUES(1, 'a'), (2, 'b')"_s);
        }
    }

    inspection inspected() const
    {
        return inspect(request, looked, [](qint64) {});
    }

    macos_source evidence;
    QTemporaryDir folder;
    source_request request;
    evidence_state looked;
};

/** "devices: found 3, stored 2; …". */
QString counts_in(const inspection &found)
{
    const auto number = [](const std::optional<qint64> &count) {
        return count ? QString::number(*count) : u"unknown"_s;
    };
    QStringList texts;
    for (const table_rows &rows : found.rows)
        texts.append(rows.table + u": found "_s + number(rows.found) + u", stored "_s + number(rows.stored)
                     + (rows.devices ? u", devices "_s + number(rows.devices) : QString()));
    return texts.join(u"; "_s);
}

/** All that is said, each with the list that it stands in. */
QStringList said_in(const inspection &found)
{
    QStringList texts;
    for (const auto &[list, name] :
         {std::pair(&found.changes, u"change: "_s), std::pair(&found.problems, u"problem: "_s),
          std::pair(&found.differences, u"difference: "_s), std::pair(&found.warnings, u"warning: "_s),
          std::pair(&found.notes, u"note: "_s)}) {
        for (const QString &text : *list)
            texts.append(name + text);
    }
    return texts;
}

void overwrite(const QString &path, qint64 place, const QByteArray &bytes)
{
    QByteArray content = content_of(path);
    write_file(path, content.replace(place, bytes.size(), bytes));
}

/** Takes every page but the first out of order; what is damaged is the evidence, and so the copies. */
void damage_rows(const QString &database)
{
    overwrite(database, 4096, QByteArray(4096, 'x'));
}

using change_of_run = void (*)(made_run &run);

const QString other_path = path_in_source(other_devices_database);
const QString counts = u"devices: found 3, stored 2; paired_devices: found 1, stored 2"_s;

} // namespace

Q_DECLARE_METATYPE(change_of_run)

/** What the host finds in a case after the plug-in has run. */
class test_inspection : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void nothing_went_wrong();
    void what_is_found_data();
    void what_is_found();
    void both_databases_are_damaged();
    void tables_that_are_not_read_data();
    void tables_that_are_not_read();
    void log_without_its_lines();
};

void test_inspection::nothing_went_wrong()
{
    made_run run;
    run.look();
    run.run_plugin();
    qint64 hashed = 0;
    const inspection found = inspect(run.request, run.looked, [&hashed](qint64 bytes) { hashed += bytes; });
    QCOMPARE(said_in(found), QStringList());
    QCOMPARE(counts_in(found), counts);
    QCOMPARE(found.result_sha256, hash_of_file(run.request.layout().result_database()).value_or(QString()));
    QCOMPARE(found.log.sha256, hash_of_file(run.request.layout().plugin_log()).value_or(QString()));
    QVERIFY(found.wal.isNull());
    QVERIFY(found.host_devices.isNull());
    QVERIFY(found.salvaged.isNull());
    QVERIFY(!found.is_out_of_memory);
    QCOMPARE(found.evidence.file_named(other_path)->after->sha256,
             found.evidence.file_named(other_path)->before->sha256);
    QCOMPARE(hashed, QFileInfo(run.evidence.other_db()).size() + QFileInfo(run.evidence.paired_db()).size());
}

void test_inspection::what_is_found_data()
{
    QTest::addColumn<change_of_run>("before"); // the host looks
    QTest::addColumn<change_of_run>("after");  // the plug-in has run
    QTest::addColumn<QString>("counts");
    QTest::addColumn<QStringList>("said");
    QTest::addColumn<QByteArray>("salvaged");

    const change_of_run nothing = [](made_run &) {};
    const QString unlike_plugin = u"change: "_s + other_path + u": what the plug-in copied is not what was hashed"_s;
    const QString unlike_host = u"change: "_s + other_path + u": its working copy is not what was hashed"_s;
    const QString uncounted = u"problem: the rows of "_s + other_path + u" cannot be counted: "_s;
    const QString result = u"Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s;
    // clang-format off
    QTest::newRow("evidence was written")
        << nothing << change_of_run([](made_run &run) { overwrite(run.evidence.other_db(), 5000, "y"); })
        << counts << QStringList() << QByteArray();
    QTest::newRow("plug-in's copy is another")
        << nothing << change_of_run([](made_run &run) { overwrite(run.copy_of_plugin(other_devices_database), 5000, "y"); })
        << counts << QStringList{unlike_plugin} << QByteArray();
    QTest::newRow("plug-in's copy is cut")
        << nothing << change_of_run([](made_run &run) { QFile::resize(run.copy_of_plugin(other_devices_database), 5000); })
        << counts << QStringList() << QByteArray();
    QTest::newRow("plug-in's copy is longer")
        << nothing << change_of_run([](made_run &run) { QFile::resize(run.copy_of_plugin(other_devices_database), 50000); })
        << counts << QStringList{unlike_plugin} << QByteArray();
    QTest::newRow("plug-in copied nothing")
        << nothing << change_of_run([](made_run &run) { QFile::remove(run.copy_of_plugin(other_devices_database)); })
        << counts << QStringList() << QByteArray();
    QTest::newRow("plug-in copied what was not there")
        << change_of_run([](made_run &run) { QFile::remove(run.evidence.other_db()); })
        << change_of_run([](made_run &run) { write_file(run.copy_of_plugin(other_devices_database), "x"); })
        << u"devices: found 0, stored 2; paired_devices: found 1, stored 2"_s << QStringList{unlike_plugin} << QByteArray();
    QTest::newRow("what was hashed is another than the working copy")
        << nothing << change_of_run([](made_run &run) { run.looked.files[0].copy_sha256 = u"other"_s; })
        << counts << QStringList{unlike_host} << QByteArray();
    QTest::newRow("no working copy")
        << nothing << change_of_run([](made_run &run) { run.looked.files[0].copy_sha256.clear(); })
        << u"devices: found unknown, stored 2; paired_devices: found 1, stored 2"_s << QStringList() << QByteArray();
    QTest::newRow("a view in place of the table")
        << change_of_run([](made_run &run) { const sqlite_file database(run.evidence.other_db()); database.execute(u"DROP TABLE OtherDevices"_s);
                                             database.execute(u"CREATE VIEW OtherDevices AS SELECT 1"_s); })
        << nothing << u"devices: found unknown, stored 2; paired_devices: found 1, stored 2"_s
        << QStringList{uncounted + u"OtherDevices is no ordinary table of it"_s} << QByteArray();
    QTest::newRow("damaged, and nothing is intact")
        << change_of_run([](made_run &run) { damage_rows(run.evidence.other_db()); })
        << nothing << u"devices: found unknown, stored 2; paired_devices: found 1, stored 2"_s
        << QStringList{uncounted + u"database disk image is malformed"_s} << QByteArray(R"({"devices":0})");
    QTest::newRow("damaged, and some rows are intact")
        << change_of_run([](made_run &run) { const sqlite_file database(run.evidence.other_db());
                                             database.execute_many(u"INSERT INTO OtherDevices(Name) VALUES(?)"_s, QList<QVariantList>(100, {QString(500, u'n')}));
                                             damage_rows(run.evidence.other_db()); })
        << nothing << u"devices: found unknown, stored 2; paired_devices: found 1, stored 2"_s
        << QStringList{uncounted + u"database disk image is malformed"_s,
                       u"warning: rows of the table devices on intact pages of its damaged database: 103; they are in salvage.jsonl and not in the result"_s}
        << QByteArray(R"({"devices":103})");
    QTest::newRow("damaged, and a folder stands where its rows go")
        << change_of_run([](made_run &run) { damage_rows(run.evidence.other_db()); QDir().mkpath(run.request.layout().salvage()); })
        << nothing << u"devices: found unknown, stored 2; paired_devices: found 1, stored 2"_s
        << QStringList{uncounted + u"database disk image is malformed"_s, u"problem: Source1/salvage.jsonl cannot be written: is a directory"_s} << QByteArray();
    QTest::newRow("no result")
        << nothing << change_of_run([](made_run &run) { QFile::remove(run.request.layout().result_database()); })
        << u"devices: found 3, stored unknown; paired_devices: found 1, stored unknown"_s
        << QStringList{u"problem: there is no result database "_s + result} << QByteArray();
    QTest::newRow("one table of the result is gone")
        << nothing << change_of_run([](made_run &run) { run.result().execute(u"DROP TABLE paired_devices"_s); })
        << u"devices: found 3, stored 2; paired_devices: found 1, stored unknown"_s
        << QStringList{u"problem: the table paired_devices of "_s + result + u" cannot be read: no such table: paired_devices"_s} << QByteArray();
    QTest::newRow("one table was asked for")
        << change_of_run([](made_run &run) { run.request.options.tables = {u"paired_devices"_s}; }) << nothing
        << u"paired_devices: found 1, stored 2"_s << QStringList() << QByteArray();
    QTest::newRow("Windows")
        << nothing << change_of_run([](made_run &run) { run.request.source.kind = &winos_kind; run.looked = {}; })
        << u"devices: found 0, stored 2; paired_devices: found 0, stored 2"_s << QStringList() << QByteArray();
    QTest::newRow("damaged list of devices")
        << change_of_run([](made_run &run) { write_file(run.request.source.root + macos_preferences_file, "x"); })
        << nothing << counts
        << QStringList{u"problem: the devices of Library/Preferences/com.apple.Bluetooth.plist: it is no property list with a dictionary at its top"_s} << QByteArray();
    QTest::newRow("container that is gone")
        << nothing << change_of_run([](made_run &run) { run.request.source.container = QJsonObject{{u"files"_s, QJsonArray{QJsonObject{{u"path"_s, u"/none"_s}}}}}; })
        << counts << QStringList{u"change: /none: it is gone"_s} << QByteArray();
    // clang-format on
}

void test_inspection::what_is_found()
{
    QFETCH(const change_of_run, before);
    QFETCH(const change_of_run, after);
    QFETCH(const QStringList, said);
    made_run run;
    before(run);
    run.look();
    run.run_plugin();
    after(run);
    inspection found = run.inspected();
    found.changes.removeIf(
        [](const QString &text) { return text.contains(u": its content was changed"_s); }); // on purpose
    QCOMPARE(said_in(found).replaceInStrings(run.folder.path() + u'/', QString()), said);
    QTEST(counts_in(found), "counts");
    QTEST(QJsonDocument(found.salvaged.toObject()).toJson(QJsonDocument::Compact).replace("{}", ""), "salvaged");
    QCOMPARE(found.salvaged.isNull(), !QFileInfo(run.request.layout().salvage()).isFile());
}

/** Their rows stand in the order of the tables. */
void test_inspection::both_databases_are_damaged()
{
    made_run run;
    for (const auto &[path, table] : {std::pair(run.evidence.other_db(), u"OtherDevices"_s),
                                      std::pair(run.evidence.paired_db(), u"PairedDevices"_s)}) {
        sqlite_file(path).execute_many(u"INSERT INTO "_s + table + u"(Name) VALUES(?)"_s,
                                       QList<QVariantList>(100, {QString(500, u'n')}));
        damage_rows(path);
    }
    run.look();
    run.run_plugin();
    const inspection found = run.inspected();
    QCOMPARE(QJsonDocument(found.salvaged.toObject()).toJson(QJsonDocument::Compact),
             R"({"devices":103,"paired_devices":101})");
    QStringList tables;
    for (const QByteArray &line : content_of(run.request.layout().salvage()).split('\n'))
        tables.append(QJsonDocument::fromJson(line)["result_table"_L1].toString());
    tables.removeDuplicates();
    QCOMPARE(tables, QStringList({u"devices"_s, u"paired_devices"_s, QString()}));
}

void test_inspection::tables_that_are_not_read_data()
{
    using presence = evidence_file::presence;
    QTest::addColumn<int>("other");
    QTest::addColumn<int>("paired");
    QTest::addColumn<QStringList>("unread");
    QTest::addColumn<bool>("is_nothing_readable");

    const QStringList both{u"devices"_s, u"paired_devices"_s};
    // clang-format off
    QTest::newRow("both are there") << int(presence::present)    << int(presence::present)    << QStringList()    << false;
    QTest::newRow("one is absent")  << int(presence::absent)     << int(presence::present)    << QStringList()    << false;
    QTest::newRow("both are absent") << int(presence::absent)    << int(presence::absent)     << QStringList()    << true;
    QTest::newRow("one unreadable") << int(presence::unreadable) << int(presence::present)    << both.first(1)    << false;
    QTest::newRow("one refused")    << int(presence::present)    << int(presence::refused)    << both.last(1)     << false;
    QTest::newRow("unreadable, refused") << int(presence::unreadable) << int(presence::refused) << both           << true;
    // clang-format on
}

void test_inspection::tables_that_are_not_read()
{
    QFETCH(const int, other);
    QFETCH(const int, paired);
    made_run run;
    run.look();
    run.looked.files.first().state = evidence_file::presence(other);
    for (evidence_file &file : run.looked.files) {
        if (file.path == path_in_source(paired_devices_database))
            file.state = evidence_file::presence(paired);
    }
    QTEST(unread_tables(run.request, run.looked), "unread");
    QTEST(is_nothing_readable(run.request, run.looked), "is_nothing_readable");
    run.request.source.kind = &winos_kind;
    QCOMPARE(unread_tables(run.request, run.looked), QStringList());
    QVERIFY(!is_nothing_readable(run.request, run.looked));
}

/** Of a log the devices are counted, by identifier, else by address; without its kept lines nothing is compared. */
void test_inspection::log_without_its_lines()
{
    made_run run;
    const QString log = run.request.source.root + u"system.log"_s;
    write_file(log, "May 17 12:11:05 p s[1] <Notice>: nothing\n");
    run.request.source.kind = &ios_uid_kind;
    run.request.source.log_file = log;
    QDir().mkpath(run.request.layout().folder());
    run.look();
    QVERIFY(QFile::remove(run.request.layout().ios_lines()));
    QDir().mkpath(run.request.layout().result_folder());
    run.result().execute(u"CREATE TABLE devices(INT INTEGER PRIMARY KEY, sf_device_id TEXT, address TEXT)"_s);
    run.result().execute(u"CREATE TABLE paired_devices(INT INTEGER PRIMARY KEY)"_s);
    run.result().execute(
        u"INSERT INTO devices(sf_device_id, address) VALUES('a', 'x'), ('a', 'y'), ('', 'x'), ('b', ''), ('', '')"_s);
    const inspection found = run.inspected();
    QCOMPARE(counts_in(found),
             u"devices: found unknown, stored 5, devices 3; paired_devices: found unknown, stored 0"_s);
    QCOMPARE(said_in(found), QStringList{u"problem: "_s + run.request.layout().ios_lines()
                                         + u" cannot be read: no such file or directory"_s});
    run.request.options.suite_tables = true;
    QCOMPARE(counts_in(run.inspected()),
             u"devices: found unknown, stored 5; paired_devices: found unknown, stored 0"_s);
    QCOMPARE(said_in(run.inspected()), QStringList());
}

BLUETOOTH_LOGS_TEST(test_inspection, QCoreApplication)

#include "test_inspection.moc"
