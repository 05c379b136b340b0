// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

class test_interrupt : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void first_one_ends_the_extraction();
    void second_one_ends_the_program();
    void table_that_is_being_written_is_finished();

private:
    const QString finishing = u"note: finishing what is being written; again to stop at once\n"_s;
};

void test_interrupt::first_one_ends_the_extraction()
{
    const host_program host;
    host.write_sample();
    QProcess process;
    host.start(process, {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s, u"--plugin"_s,
                         host_program::waiting_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);

    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.errors, finishing + u"error: interrupted: the result is incomplete\n"_s);
    QVERIFY(host_program::without_manifest(result.output).contains(u"        paired_devices          0 rows\n"_s));
    QVERIFY(!QDir(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/tmp"_s)).exists());
}

void test_interrupt::second_one_ends_the_program()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QFile(host.path(u"stubborn"_s)).open(QIODevice::WriteOnly));
    QProcess process;
    host.start(process, {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s, u"--plugin"_s,
                         host_program::waiting_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);
    QVERIFY(!process.waitForFinished(300));
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);

    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.errors, finishing
                                + u"error: interrupted: the result is incomplete\n"
                                  "error: the evidence could not be looked at again after the run\n"_s);
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"interrupted"_s);
    QVERIFY(!QFile::exists(host.path(u"case/Source1/tmp"_s)));
    QVERIFY(!QFile::exists(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/tmp"_s)));
}

void test_interrupt::table_that_is_being_written_is_finished()
{
    constexpr int rows = 100000;
    const host_program host;
    host.write_sample();
    const sqlite_file other(
        host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s));
    other.execute(u"DELETE FROM OtherDevices"_s);
    other.execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < ?) "
                  "INSERT INTO OtherDevices(Uuid, LastSeenTime) SELECT i, i FROM n"_s,
                  {rows});

    QProcess process;
    host.start(process, {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s});
    const QString result_folder = host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/"_s);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(result_folder + u"Logs/com.apple.MobileBluetooth.ledevices.other.db"_s),
                             60000);
    QCOMPARE(::kill(pid_t(process.processId()), SIGINT), 0);

    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 130);
    QCOMPARE(result.errors, finishing + u"error: interrupted: the result is incomplete\n"_s);
    const qint64 written = sqlite_file(result_folder + u"Bluetooth_Logs.sqlite"_s)
                               .rows(u"SELECT count(*) FROM devices"_s)
                               .at(0)
                               .at(0)
                               .toLongLong();
    QVERIFY2(written == rows || written == 0, qPrintable(QString::number(written))); // 0: it came before the writer
    QVERIFY(host_program::without_manifest(result.output).contains(u"        paired_devices          0 rows\n"_s));
}

BLUETOOTH_LOGS_TEST(test_interrupt, QCoreApplication)

#include "test_interrupt.moc"
