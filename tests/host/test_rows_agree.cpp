// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QJsonObject>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

using namespace Qt::StringLiterals;

/** Rows found in the evidence, announced by the plug-in and stored in the result are the same, or the numbers are told.
 */
class test_rows_agree : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void numbers_stand_in_the_record();
    void result_that_is_harmed_data();
    void result_that_is_harmed();
    void reader_during_the_commit();
    void evidence_that_is_no_table_data();
    void evidence_that_is_no_table();
    void index_with_fewer_entries();

private:
    static QString result(const host_program &host)
    {
        return host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    }
    static QString paired(const host_program &host)
    {
        return host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db"_s);
    }

    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
    const QStringList extract_paired = extract_sample + QStringList{u"--table"_s, u"paired_devices"_s};
};

void test_rows_agree::numbers_stand_in_the_record()
{
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run(extract_sample).exit_code, 0);
    const QJsonObject rows = host.source_record().value("rows"_L1).toObject();
    const QJsonObject devices{{u"found"_s, 1000}, {u"announced"_s, 1000}, {u"stored"_s, 1000}};
    const QJsonObject paired_devices{{u"found"_s, 20}, {u"announced"_s, 20}, {u"stored"_s, 20}};
    QCOMPARE(rows, QJsonObject({{u"devices"_s, devices}, {u"paired_devices"_s, paired_devices}}));
}

void test_rows_agree::result_that_is_harmed_data()
{
    QTest::addColumn<QString>("moment");
    QTest::addColumn<QString>("harm");
    QTest::addColumn<QString>("stored");

    // clang-format off
    QTest::newRow("removed before the rows")   << u"extraction"_s << u"remove"_s   << u"an unknown number"_s;
    QTest::newRow("removed after the rows")    << u"end"_s        << u"remove"_s   << u"an unknown number"_s;
    QTest::newRow("truncated")                 << u"end"_s        << u"truncate"_s << u"an unknown number"_s;
    QTest::newRow("overwritten")               << u"end"_s        << u"damage"_s   << u"an unknown number"_s;
    QTest::newRow("rows lost")                 << u"end"_s        << u"DELETE FROM paired_devices WHERE rowid <= 2"_s << u"18"_s;
    QTest::newRow("all rows lost")             << u"end"_s        << u"DELETE FROM paired_devices"_s << u"0"_s;
    QTest::newRow("row doubled")               << u"end"_s        << u"INSERT INTO paired_devices(device_name) VALUES(1)"_s << u"21"_s;
    QTest::newRow("table gone")                << u"end"_s        << u"DROP TABLE paired_devices"_s << u"an unknown number"_s;
    // clang-format on
}

void test_rows_agree::result_that_is_harmed()
{
    QFETCH(QString, moment);
    QFETCH(QString, harm);
    QFETCH(QString, stored);
    const host_program host;
    host.write_sample();
    const host_result run = host.run_meanwhile(extract_paired, moment, [&] {
        QFile file(result(host));
        if (harm == "remove"_L1)
            file.remove();
        else if (harm == "truncate"_L1)
            file.resize(0);
        else if (harm == "damage"_L1)
            QVERIFY(file.open(QIODevice::ReadWrite) && file.write(QByteArray(4096, 'x')) == 4096);
        else
            sqlite_file(result(host)).execute(harm);
    });
    QCOMPARE(run.exit_code, 4);
    const QString announced = moment == "end"_L1 ? u"20"_s : u"0"_s;
    const QString words = u"error: the rows of the table paired_devices do not agree: 20 found in the evidence, %1 "
                          "announced by the plug-in, %2 stored in the result\n"_s;
    QVERIFY2(run.errors.contains(words.arg(announced, stored)), qPrintable(run.errors));
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"partial"_s);
    QCOMPARE(host.source_record().value("exit_code"_L1).toInt(), 4);
}

void test_rows_agree::reader_during_the_commit()
{
    const host_program host;
    host.write_sample();
    QSqlDatabase reader = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"reader"_s);
    QSqlQuery query;
    // It lets go only after the run: the plug-in waits for some seconds and gives up.
    const host_result run = host.run_meanwhile(extract_paired, u"extraction"_s, [&] {
        reader.setDatabaseName(result(host));
        QVERIFY(reader.open() && reader.transaction());
        query = QSqlQuery(reader);
        QVERIFY(query.exec(u"SELECT count(*) FROM devices"_s) && query.next());
    });
    query = QSqlQuery();
    reader.close();
    reader = QSqlDatabase();
    QSqlDatabase::removeDatabase(u"reader"_s);
    QCOMPARE(run.exit_code, 4);
    QVERIFY2(run.errors.contains(u"20 found in the evidence, 20 announced by the plug-in, 0 stored in the result\n"_s),
             qPrintable(run.errors));
    QVERIFY(!QFile::exists(result(host) + u"-journal"_s));
}

void test_rows_agree::evidence_that_is_no_table_data()
{
    QTest::addColumn<QStringList>("statements");

    // clang-format off
    QTest::newRow("view")          << QStringList{u"CREATE TABLE other AS SELECT * FROM PairedDevices"_s, u"DROP TABLE PairedDevices"_s,
                                                  u"CREATE VIEW PairedDevices AS SELECT * FROM other"_s};
    QTest::newRow("endless view")  << QStringList{u"DROP TABLE PairedDevices"_s,
                                                  u"CREATE VIEW PairedDevices AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i FROM n) "
                                                  "SELECT i AS Uuid FROM n"_s};
    QTest::newRow("virtual table") << QStringList{u"DROP TABLE PairedDevices"_s,
                                                  u"CREATE VIRTUAL TABLE PairedDevices USING fts5(Uuid, Name)"_s};
    QTest::newRow("no table")      << QStringList{u"DROP TABLE PairedDevices"_s};
    // clang-format on
}

void test_rows_agree::evidence_that_is_no_table()
{
    QFETCH(QStringList, statements);
    const host_program host;
    host.write_sample();
    for (const QString &statement : statements)
        sqlite_file(paired(host)).execute(statement);
    const host_result run = host.run(extract_sample);
    QCOMPARE(run.exit_code, 4);
    QVERIFY2(run.output.contains(u"        devices             1,000 rows\n        paired_devices          0 rows\n"_s),
             qPrintable(run.output));
    QVERIFY2(run.errors.contains(
                 u"error: the rows of Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db cannot be "
                 "counted: PairedDevices is no ordinary table of it\n"_s),
             qPrintable(run.errors));
    QVERIFY2(run.errors.count(u'\n') <= 2, qPrintable(run.errors));
}

void test_rows_agree::index_with_fewer_entries()
{
    const host_program host;
    host.write_sample();
    // An index that covers the count, and then loses what it knows of most rows.
    const sqlite_file evidence(paired(host));
    evidence.execute(u"CREATE INDEX small ON PairedDevices(Uuid)"_s);
    evidence.execute(u"CREATE TABLE few(Uuid TEXT)"_s);
    evidence.execute(u"CREATE INDEX few_index ON few(Uuid)"_s);
    const int page = evidence.rows(u"SELECT rootpage FROM sqlite_master WHERE name = 'small'"_s).at(0).at(0).toInt();
    const int empty =
        evidence.rows(u"SELECT rootpage FROM sqlite_master WHERE name = 'few_index'"_s).at(0).at(0).toInt();
    const int size = evidence.rows(u"PRAGMA page_size"_s).at(0).at(0).toInt();
    QFile file(paired(host));
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(qint64(empty - 1) * size));
    const QByteArray nothing = file.read(size);
    QVERIFY(file.seek(qint64(page - 1) * size) && file.write(nothing) == size);
    file.close();
    QCOMPARE(evidence.rows(u"SELECT count(*) FROM PairedDevices INDEXED BY small WHERE Uuid >= ''"_s)
                 .at(0)
                 .at(0)
                 .toInt(),
             0);

    const host_result run = host.run(extract_sample);
    QCOMPARE(run.errors, QString());
    QCOMPARE(run.exit_code, 0);
}

BLUETOOTH_LOGS_TEST(test_rows_agree, QCoreApplication)

#include "test_rows_agree.moc"
