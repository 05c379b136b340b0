// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/source/evidence_look.h"
#include "host/source/macos_databases.h"
#include "host/source/wal_changes.h"
#include "host/sqlite/sqlite.h"
#include "tests/support/file_content.h"
#include "tests/support/macos_source.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** A source whose database is still open with its last changes in the -wal, as on a system in use. */
class open_source
{
public:
    explicit open_source(const char *statements_before, const char *statements_in_log)
    {
        sqlite_database database(source.root() + u"open.db"_s, sqlite_database::access::create);
        database.execute(statements_before);
        database.execute("PRAGMA journal_mode=wal; PRAGMA wal_autocheckpoint=0");
        database.execute("PRAGMA wal_checkpoint(TRUNCATE)");
        database.execute(statements_in_log);
        QFile::copy(source.root() + u"open.db"_s, source.other_db());
        QFile::copy(source.root() + u"open.db-wal"_s, source.other_db() + u"-wal"_s);
    }

    wal_findings compare() const
    {
        const evidence_source found = find_source(source.root().chopped(1), &macos_kind,
                                                  {u"devices"_s, u"paired_devices"_s});
        const evidence_state evidence = look_before(found, {copies(), {}, {}}, qint64(1) << 30, [](qint64) {});
        const QByteArray before = content(copies());
        const wal_findings findings = write_wal_changes(evidence, copies(), source.root() + u"tmp"_s, output());
        if (content(copies()) != before)
            qFatal("the working copies were written");
        if (QFileInfo::exists(source.root() + u"tmp/wal"_s))
            qFatal("the scratch folder stays");
        return findings;
    }

    QByteArray written() const
    {
        return QFileInfo::exists(output()) ? content_of(output()) : QByteArray();
    }

    macos_source source;

private:
    QString copies() const
    {
        return source.root() + u"copies"_s;
    }

    QString output() const
    {
        return source.root() + u"wal_changes.jsonl"_s;
    }

    /** Names and bytes of the files in the folder of the databases. */
    static QByteArray content(const QString &folder)
    {
        const QDir databases(folder + u"/Library/Bluetooth"_s);
        QByteArray all;
        for (const QString &name : databases.entryList(QDir::Files))
            all += name.toUtf8() + content_of(databases.filePath(name));
        return all;
    }
};

/** With the table that every change names; the shorter form is read more easily. */
QByteArray in_table(QByteArray changes)
{
    return changes.replace(",\"rowid\":", ",\"result_table\":\"devices\",\"file\":\"Library/Bluetooth/"
                                          "com.apple.MobileBluetooth.ledevices.other.db\",\"table\":\"OtherDevices\","
                                          "\"rowid\":");
}

QByteArray problem_line(const QByteArray &problem)
{
    return "{\"result_table\":\"devices\",\"file\":\"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db\","
           "\"table\":\"OtherDevices\",\"problem\":"
           + problem + "}\n";
}

QJsonValue counts(int added, int changed, int deleted)
{
    const QJsonObject table{{u"added"_s, added}, {u"changed"_s, changed}, {u"deleted"_s, deleted}};
    return QJsonObject{{u"devices"_s, table}};
}

constexpr const char *two_rows = "CREATE TABLE OtherDevices(Uuid TEXT, Name TEXT, LastSeenTime INT);"
                                 "INSERT INTO OtherDevices VALUES('U1', 'one', 1), ('U2', x'00ff', 9007199254740993)";

} // namespace

class test_wal_changes : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void differences_data();
    void differences();
    void no_log();
    void empty_log();
    void log_is_a_folder();
    void file_that_is_no_log();
    void log_of_another_database_data();
    void log_of_another_database();
    void log_that_cannot_be_compared_data();
    void log_that_cannot_be_compared();
    void log_without_a_database();
    void log_of_a_database_that_is_not_read();
    void logs_of_both_databases();
    void copy_that_is_gone();
    void view_in_place_of_the_table();
};

void test_wal_changes::differences_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("in_log");
    QTest::addColumn<QJsonValue>("found");
    QTest::addColumn<QByteArray>("changes");

    // clang-format off
    QTest::newRow("added, changed, deleted") << QByteArray(two_rows)
        << QByteArray("INSERT INTO OtherDevices VALUES('U3', 'a\"\x1b', 0.5);"
                      "UPDATE OtherDevices SET Name = 'new' WHERE Uuid = 'U1'; DELETE FROM OtherDevices WHERE Uuid = 'U2'")
        << counts(1, 1, 1)
        << QByteArray("{\"change\":\"changed\",\"rowid\":1,\"before\":{\"Uuid\":\"U1\",\"Name\":\"one\",\"LastSeenTime\":1},\"after\":{\"Uuid\":\"U1\",\"Name\":\"new\",\"LastSeenTime\":1}}\n"
                      "{\"change\":\"deleted\",\"rowid\":2,\"before\":{\"Uuid\":\"U2\",\"Name\":{\"base64\":\"AP8=\"},\"LastSeenTime\":9007199254740993},\"after\":null}\n"
                      "{\"change\":\"added\",\"rowid\":3,\"before\":null,\"after\":{\"Uuid\":\"U3\",\"Name\":\"a\\\"\\u001b\",\"LastSeenTime\":0.5}}\n");
    QTest::newRow("table in the log alone") << QByteArray("CREATE TABLE x(a)") << QByteArray(two_rows)
        << counts(2, 0, 0)
        << QByteArray("{\"change\":\"added\",\"rowid\":1,\"before\":null,\"after\":{\"Uuid\":\"U1\",\"Name\":\"one\",\"LastSeenTime\":1}}\n"
                      "{\"change\":\"added\",\"rowid\":2,\"before\":null,\"after\":{\"Uuid\":\"U2\",\"Name\":{\"base64\":\"AP8=\"},\"LastSeenTime\":9007199254740993}}\n");
    QTest::newRow("all rows deleted") << QByteArray("CREATE TABLE OtherDevices(a); INSERT INTO OtherDevices VALUES(1), (NULL)")
        << QByteArray("DELETE FROM OtherDevices") << counts(0, 0, 2)
        << QByteArray("{\"change\":\"deleted\",\"rowid\":1,\"before\":{\"a\":1},\"after\":null}\n"
                      "{\"change\":\"deleted\",\"rowid\":2,\"before\":{\"a\":null},\"after\":null}\n");
    QTest::newRow("type alone") << QByteArray("CREATE TABLE OtherDevices(a); INSERT INTO OtherDevices VALUES(1), (2), (1.0)")
        << QByteArray("UPDATE OtherDevices SET a = '1' WHERE rowid = 1; UPDATE OtherDevices SET a = 2.0000000000000004 WHERE rowid = 2") << counts(0, 2, 0)
        << QByteArray("{\"change\":\"changed\",\"rowid\":1,\"before\":{\"a\":1},\"after\":{\"a\":\"1\"}}\n"
                      "{\"change\":\"changed\",\"rowid\":2,\"before\":{\"a\":2},\"after\":{\"a\":2.0000000000000004}}\n");
    QTest::newRow("last digit of a real") << QByteArray("CREATE TABLE OtherDevices(a); INSERT INTO OtherDevices VALUES(2.0)")
        << QByteArray("UPDATE OtherDevices SET a = 2.0000000000000004") << counts(0, 1, 0)
        << QByteArray("{\"change\":\"changed\",\"rowid\":1,\"before\":{\"a\":2.0},\"after\":{\"a\":2.0000000000000004}}\n");
    QTest::newRow("column more") << QByteArray("CREATE TABLE OtherDevices(a); INSERT INTO OtherDevices VALUES(1)")
        << QByteArray("ALTER TABLE OtherDevices ADD COLUMN b") << counts(0, 1, 0)
        << QByteArray("{\"change\":\"changed\",\"rowid\":1,\"before\":{\"a\":1},\"after\":{\"a\":1,\"b\":null}}\n");
    QTest::newRow("a column hides the row number") << QByteArray("CREATE TABLE OtherDevices(rowid, _rowid_); INSERT INTO OtherDevices VALUES(7, 7)")
        << QByteArray("INSERT INTO OtherDevices VALUES(7, 8)") << counts(1, 0, 0)
        << QByteArray("{\"change\":\"added\",\"rowid\":2,\"before\":null,\"after\":{\"rowid\":7,\"_rowid_\":8}}\n");
    QTest::newRow("in capitals too") << QByteArray("CREATE TABLE OtherDevices(ROWID, _RowId_, a); INSERT INTO OtherDevices VALUES(7, 7, 1)")
        << QByteArray("DELETE FROM OtherDevices") << counts(0, 0, 1)
        << QByteArray("{\"change\":\"deleted\",\"rowid\":1,\"before\":{\"ROWID\":7,\"_RowId_\":7,\"a\":1},\"after\":null}\n");
    QTest::newRow("another name of a column") << QByteArray("CREATE TABLE OtherDevices(a); INSERT INTO OtherDevices VALUES(1)")
        << QByteArray("ALTER TABLE OtherDevices RENAME COLUMN a TO b") << counts(0, 1, 0)
        << QByteArray("{\"change\":\"changed\",\"rowid\":1,\"before\":{\"a\":1},\"after\":{\"b\":1}}\n");
    QTest::newRow("the largest pages") << QByteArray("PRAGMA page_size=65536; CREATE TABLE OtherDevices(a); INSERT INTO OtherDevices VALUES(1)")
        << QByteArray("DELETE FROM OtherDevices") << counts(0, 0, 1)
        << QByteArray("{\"change\":\"deleted\",\"rowid\":1,\"before\":{\"a\":1},\"after\":null}\n");
    QTest::newRow("rows between, in front and behind") << QByteArray("CREATE TABLE OtherDevices(a); INSERT INTO OtherDevices(rowid, a) VALUES(-2, 'c'), (3, 'd'), (5, 'e')")
        << QByteArray("UPDATE OtherDevices SET rowid = rowid + 1 WHERE a <> 'd'") << counts(2, 0, 2)
        << QByteArray("{\"change\":\"deleted\",\"rowid\":-2,\"before\":{\"a\":\"c\"},\"after\":null}\n"
                      "{\"change\":\"added\",\"rowid\":-1,\"before\":null,\"after\":{\"a\":\"c\"}}\n"
                      "{\"change\":\"deleted\",\"rowid\":5,\"before\":{\"a\":\"e\"},\"after\":null}\n"
                      "{\"change\":\"added\",\"rowid\":6,\"before\":null,\"after\":{\"a\":\"e\"}}\n");
    QTest::newRow("nothing that matters") << QByteArray(two_rows) << QByteArray("CREATE TABLE x(a)") << counts(0, 0, 0) << QByteArray("");
    // clang-format on
}

void test_wal_changes::differences()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, in_log);
    QFETCH(QJsonValue, found);
    QFETCH(QByteArray, changes);

    const open_source source(before.constData(), in_log.constData());
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems, QStringList());
    QCOMPARE(findings.counts, found);
    QCOMPARE(source.written(), in_table(changes));
    for (const QByteArray &line : source.written().split('\n'))
        QVERIFY(line.isEmpty() || QJsonDocument::fromJson(line).isObject());
}

void test_wal_changes::no_log()
{
    const open_source source(two_rows, "DELETE FROM OtherDevices");
    QFile::remove(source.source.other_db() + u"-wal"_s);
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems, QStringList());
    QCOMPARE(findings.counts, QJsonValue());
    QCOMPARE(source.written(), QByteArray());
}

void test_wal_changes::empty_log()
{
    const open_source source(two_rows, "DELETE FROM OtherDevices");
    QFile::resize(source.source.other_db() + u"-wal"_s, 0);
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems, QStringList());
    QCOMPARE(findings.counts, counts(0, 0, 0));
    QCOMPARE(source.written(), QByteArray());
}

void test_wal_changes::log_is_a_folder()
{
    const open_source source(two_rows, "DELETE FROM OtherDevices");
    QFile::remove(source.source.other_db() + u"-wal"_s);
    QDir().mkpath(source.source.other_db() + u"-wal"_s);
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems, QStringList()); // the file's own reason says it
    QCOMPARE(findings.counts, QJsonValue(QJsonObject{{u"devices"_s, QJsonValue()}}));
    QCOMPARE(source.written(), problem_line("\"it is not a regular file\""));
}

void test_wal_changes::file_that_is_no_log()
{
    const open_source source(two_rows, "DELETE FROM OtherDevices");
    write_file(source.source.other_db() + u"-wal"_s, QByteArray(5000, 'x'));
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems, QStringList());
    QCOMPARE(findings.counts, QJsonValue(QJsonObject{{u"devices"_s, QJsonValue()}}));
    QCOMPARE(source.written(), problem_line("\"it is no write-ahead log\""));
}

void test_wal_changes::log_of_another_database_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("in_log");
    QTest::addColumn<QString>("problem");

    // clang-format off
    QTest::newRow("pages of another size") << QByteArray("PRAGMA page_size=512; CREATE TABLE a(b)") << QByteArray("INSERT INTO a VALUES(1)")
                                           << u"its pages have another size: it belongs to another database"_s;
    QTest::newRow("without the table")     << QByteArray("CREATE TABLE a(b)") << QByteArray("CREATE TABLE c(d)")
                                           << u"with it the table OtherDevices is gone: it may belong to another database"_s;
    QTest::newRow("pages that do not fit") << QByteArray("CREATE TABLE a(b PRIMARY KEY) WITHOUT ROWID; INSERT INTO a VALUES(1)") << QByteArray("DELETE FROM a")
                                           << u"database disk image is malformed"_s;
    // clang-format on
}

void test_wal_changes::log_of_another_database()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, in_log);
    QFETCH(QString, problem);

    const open_source source(two_rows, "DELETE FROM OtherDevices");
    const open_source other(before.constData(), in_log.constData());
    QFile::remove(source.source.other_db() + u"-wal"_s);
    QFile::copy(other.source.other_db() + u"-wal"_s, source.source.other_db() + u"-wal"_s);
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems,
             QStringList{
                 u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db-wal cannot be compared with its "
                 "database: "_s
                 + problem});
    QCOMPARE(findings.counts, QJsonValue(QJsonObject{{u"devices"_s, QJsonValue()}}));
    QCOMPARE(source.written(), problem_line('"' + problem.toUtf8() + '"'));
}

void test_wal_changes::log_that_cannot_be_compared_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<char>("version"); // the last byte of the log's
    QTest::addColumn<QString>("problem");

    // clang-format off
    QTest::newRow("another version")      << QByteArray(two_rows) << char(0x19) << u"it is of another version of the format"_s;
    QTest::newRow("every name is hidden") << QByteArray("CREATE TABLE OtherDevices(rowid, _rowid_, oid)") << char(0x18) << u"its columns hide the row numbers"_s;
    // clang-format on
}

void test_wal_changes::log_that_cannot_be_compared()
{
    QFETCH(const QByteArray, before);
    QFETCH(const char, version);
    QFETCH(const QString, problem);

    const open_source source(before.constData(), "DELETE FROM OtherDevices; CREATE TABLE x(a)");
    QFile log(source.source.other_db() + u"-wal"_s);
    QVERIFY(log.open(QIODevice::ReadWrite) && log.seek(7) && log.write(&version, 1) == 1);
    log.close();
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems, QStringList{log.fileName().sliced(source.source.root().size())
                                            + u" cannot be compared with its database: "_s + problem});
    QCOMPARE(findings.failures, QStringList());
    QVERIFY(!findings.is_out_of_memory);
    QCOMPARE(findings.counts, QJsonValue(QJsonObject{{u"devices"_s, QJsonValue()}}));
    QCOMPARE(source.written(), problem_line('"' + problem.toUtf8() + '"'));
}

void test_wal_changes::log_without_a_database()
{
    const open_source source(two_rows, "DELETE FROM OtherDevices");
    QFile::remove(source.source.other_db());
    const sqlite_file paired = source.source.make_paired(); // without any database it would be no source
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems,
             QStringList{
                 u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db-wal cannot be compared with its "
                 "database: the database that it belongs to is not there"_s});
}

void test_wal_changes::log_of_a_database_that_is_not_read()
{
    const open_source source(two_rows, "DELETE FROM OtherDevices");
    QFile::remove(source.source.other_db());
    QDir().mkpath(source.source.other_db());
    const sqlite_file paired = source.source.make_paired();
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems,
             QStringList{
                 u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db-wal cannot be compared with its "
                 "database: its database was not read: it is not a regular file"_s});
    QCOMPARE(findings.counts, QJsonValue(QJsonObject{{u"devices"_s, QJsonValue()}}));
    QCOMPARE(source.written(), problem_line("\"its database was not read: it is not a regular file\""));
}

/** In one file, each with its own table. */
void test_wal_changes::logs_of_both_databases()
{
    const open_source source("CREATE TABLE OtherDevices(a); CREATE TABLE PairedDevices(b)",
                             "INSERT INTO OtherDevices VALUES(1); INSERT INTO PairedDevices VALUES(2), (3)");
    const QString paired = source.source.root() + path_in_source(paired_devices_database);
    QVERIFY(QFile::copy(source.source.other_db(), paired));
    QVERIFY(QFile::copy(source.source.other_db() + u"-wal"_s, paired + u"-wal"_s));
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems, QStringList());
    const auto added = [](int count) { return QJsonObject{{u"added"_s, count}, {u"changed"_s, 0}, {u"deleted"_s, 0}}; };
    QCOMPARE(findings.counts, QJsonValue(QJsonObject{{u"devices"_s, added(1)}, {u"paired_devices"_s, added(2)}}));
    const QByteArray in_paired = ",\"result_table\":\"paired_devices\",\"file\":\"Library/Bluetooth/"
                                 "com.apple.MobileBluetooth.ledevices.paired.db\",\"table\":\"PairedDevices\",";
    QCOMPARE(source.written(), in_table("{\"change\":\"added\",\"rowid\":1,\"before\":null,\"after\":{\"a\":1}}\n")
                                   + "{\"change\":\"added\"" + in_paired
                                   + "\"rowid\":1,\"before\":null,\"after\":{\"b\":2}}\n" + "{\"change\":\"added\""
                                   + in_paired + "\"rowid\":2,\"before\":null,\"after\":{\"b\":3}}\n");
}

void test_wal_changes::copy_that_is_gone()
{
    const QTemporaryDir folder;
    evidence_state evidence;
    for (const QString &ending : {u""_s, u"-wal"_s}) {
        evidence_file file;
        file.path = path_in_source(other_devices_database) + ending;
        file.state = evidence_file::presence::present;
        file.copy_sha256 = u"abc"_s;
        evidence.files.append(file);
    }
    try {
        write_wal_changes(evidence, folder.path(), folder.filePath(u"tmp"_s), folder.filePath(u"changes"_s));
        QFAIL("they were compared");
    } catch (const host_error &error) {
        QCOMPARE(error.message(), QString(folder.path() + u'/' + path_in_source(other_devices_database)
                                          + u" cannot be copied: no such file or directory"_s));
        QCOMPARE(error.kind(), error_kind::io);
    }
    QVERIFY(!QFile::exists(folder.filePath(u"changes"_s)));
}

void test_wal_changes::view_in_place_of_the_table()
{
    const open_source
        source("CREATE VIEW OtherDevices AS WITH RECURSIVE endless(n) AS (SELECT 1 UNION ALL SELECT n + 1 "
               "FROM endless) SELECT n FROM endless",
               "CREATE TABLE x(a)");
    const wal_findings findings = source.compare();
    QCOMPARE(findings.problems, QStringList());
    QCOMPARE(findings.counts, counts(0, 0, 0));
}

BLUETOOTH_LOGS_TEST(test_wal_changes, QCoreApplication)

#include "test_wal_changes.moc"
