// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/evidence_names.h"
#include "tests/host/host_program.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

} // namespace

/** What stands beside a database and is not read is told, each with what it means for the rows. */
class test_write_ahead_log : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void rows_are_those_of_the_main_file_data();
    void rows_are_those_of_the_main_file();
    void other_companions_data();
    void other_companions();
    void file_that_is_no_log();

private:
    /** Runs statements on the paired database in WAL mode, and leaves what a crash would leave of it. */
    static void leave_a_log(const host_program &host, const QStringList &statements);

    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
};

void test_write_ahead_log::leave_a_log(const host_program &host, const QStringList &statements)
{
    const QString name = u"writer"_s;
    const QString evidence = host.path(u"sample/macos/"_s + database_folder + paired_name);
    const QString work = host.path(u"work.db"_s);
    QVERIFY(QFile::copy(evidence, work));
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        database.setDatabaseName(work);
        QVERIFY(database.open());
        QSqlQuery query(database);
        QVERIFY(query.exec(u"PRAGMA journal_mode=WAL"_s) && query.exec(u"PRAGMA wal_autocheckpoint=0"_s));
        query.finish();
        for (const QString &statement : statements)
            QVERIFY2(query.exec(statement), qPrintable(statement));
        query.finish();
        for (const QString &ending : {u""_s, u"-wal"_s}) {
            QFile::remove(evidence + ending);
            QVERIFY(QFile::copy(work + ending, evidence + ending));
        }
        database.close();
    }
    QSqlDatabase::removeDatabase(name);
}

void test_write_ahead_log::rows_are_those_of_the_main_file_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("counts");

    // clang-format off
    QTest::newRow("rows only in the log")    << u"INSERT INTO PairedDevices(Uuid, Name) VALUES('new', 'new')"_s << u"1 added, 0 changed, 0 deleted"_s;
    QTest::newRow("rows changed by the log") << u"UPDATE PairedDevices SET Name = 'new'"_s                      << u"0 added, 20 changed, 0 deleted"_s;
    QTest::newRow("rows deleted by the log") << u"DELETE FROM PairedDevices"_s                                  << u"0 added, 0 changed, 20 deleted"_s;
    // clang-format on
}

void test_write_ahead_log::rows_are_those_of_the_main_file()
{
    QFETCH(QString, statement);
    QFETCH(QString, counts);
    const host_program host;
    host.write_sample();
    leave_a_log(host, {statement});
    const host_result result = host.run(extract_sample);
    const QString line =
        u"warning: the plug-in's rows are those of the main file; the host compared it with its log: "_s + counts
        + u'\n';
    QCOMPARE(result.errors, line);
    QCOMPARE(host.run({u"show"_s, u"case"_s}).errors, line);
    QCOMPARE(result.exit_code, 0);
    const sqlite_file rows(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s));
    QCOMPARE(rows.rows(u"SELECT count(*), sum(device_name = 'new') FROM paired_devices"_s).at(0).at(0).toInt(), 20);
    QCOMPARE(rows.rows(u"SELECT count(*) FROM paired_devices WHERE device_name = 'new'"_s).at(0).at(0).toInt(), 0);
    QVERIFY(QFile::exists(host.path(u"case/Source1/Evidence/"_s + database_folder + paired_name + u"-wal"_s)));
}

void test_write_ahead_log::other_companions_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("database_is_there");
    QTest::addColumn<QString>("message"); // $ stands for the file

    const QString no_database = u"note: the source holds no database for the table paired_devices\n"_s;
    const QByteArray log = QByteArray::fromHex("377f0682") + QByteArray(28, '\0');
    // clang-format off
    QTest::newRow("log without database") << paired_name + u"-wal"_s << log << false
        << u"warning: $ cannot be compared with its database: the database that it belongs to is not there\n"_s + no_database;
    QTest::newRow("empty log")            << paired_name + u"-wal"_s << QByteArray() << true << QString();
    QTest::newRow("rollback journal")     << paired_name + u"-journal"_s << QByteArray(512, 'j') << true
        << u"warning: the rollback journal $ belongs to a change that was not finished: the result has the rows of the database as it stands, half changed\n"_s;
    QTest::newRow("empty journal")        << paired_name + u"-journal"_s << QByteArray() << true << QString();
    QTest::newRow("leftover")             << other_name + u".12:00:00_01-31-2026.corrupt"_s << QByteArray("x") << true
        << u"note: the leftover of a damaged database is not read: $\n"_s;
    // clang-format on
}

void test_write_ahead_log::other_companions()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(bool, database_is_there);
    QFETCH(QString, message);
    const host_program host;
    host.write_sample();
    const QString bluetooth = host.path(u"sample/macos/"_s + database_folder);
    write_file(bluetooth + file, content);
    QVERIFY(database_is_there || QFile::remove(bluetooth + paired_name));
    const host_result result = host.run(extract_sample);
    QCOMPARE(result.errors, message.replace(u'$', database_folder + file));
    QCOMPARE(result.exit_code, 0);
    // Nothing of it came into being beside the evidence, and nothing went.
    QFile evidence(bluetooth + file);
    QVERIFY(evidence.open(QIODevice::ReadOnly));
    QCOMPARE(evidence.readAll(), content);
}

void test_write_ahead_log::file_that_is_no_log()
{
    const host_program host;
    host.write_sample();
    write_file(host.path(u"sample/macos/"_s + database_folder + paired_name + u"-wal"_s), "no log");
    const host_result result = host.run(extract_sample);
    QVERIFY2(result.errors.startsWith(u"warning: "_s + database_folder + paired_name
                                      + u"-wal: it is no write-ahead log\n"_s),
             qPrintable(result.errors));
}

BLUETOOTH_LOGS_TEST(test_write_ahead_log, QCoreApplication)

#include "test_write_ahead_log.moc"
