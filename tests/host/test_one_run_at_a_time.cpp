// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/file_lock.h"
#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

/** Two runs never write into one case. */
class test_one_run_at_a_time : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void lock_of_somebody_else_data();
    void lock_of_somebody_else();
    void second_run_is_refused_data();
    void second_run_is_refused();
    void lock_goes_with_the_run();
    void lock_file_of_others_is_not_written();

private:
    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
};

void test_one_run_at_a_time::lock_of_somebody_else_data()
{
    QTest::addColumn<QString>("lock");
    QTest::addColumn<bool>("force");

    // clang-format off
    QTest::newRow("case")           << u"case/.lock"_s         << false;
    QTest::newRow("case, force")    << u"case/.lock"_s         << true;
    QTest::newRow("source")         << u"case/Source1/.lock"_s << false;
    QTest::newRow("source, force")  << u"case/Source1/.lock"_s << true;
    // clang-format on
}

void test_one_run_at_a_time::lock_of_somebody_else()
{
    QFETCH(QString, lock);
    QFETCH(bool, force);
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().mkpath(QFileInfo(host.path(lock)).path()));
    const file_lock held(host.path(lock));
    const host_result result = host.run(extract_sample + (force ? QStringList{u"--force"_s} : QStringList()));
    QCOMPARE(result.exit_code, 2);
    const QString start = u"error: another run works here, process %1 on "_s.arg(QCoreApplication::applicationPid());
    QVERIFY2(result.errors.startsWith(start), qPrintable(result.errors));
    QVERIFY2(result.errors.endsWith(u": "_s + host.path(lock) + u'\n'), qPrintable(result.errors));
    QVERIFY(!QFile::exists(host.path(u"case/Source1/source.json"_s)));
}

void test_one_run_at_a_time::second_run_is_refused_data()
{
    QTest::addColumn<QStringList>("options");

    QTest::newRow("plain") << QStringList();
    QTest::newRow("force") << QStringList{u"--force"_s};
    QTest::newRow("another source") << QStringList{u"--source-number"_s, u"2"_s, u"--force"_s};
}

void test_one_run_at_a_time::second_run_is_refused()
{
    QFETCH(QStringList, options);
    const host_program host;
    host.write_sample();
    host_result second;
    const host_result first = host.run_meanwhile(extract_sample + QStringList{u"--force"_s}, u"extraction"_s,
                                                 [&] { second = host.run(extract_sample + options); });
    QCOMPARE(second.exit_code, 2);
    QVERIFY2(second.errors.startsWith(u"error: another run works here, process "_s), qPrintable(second.errors));
    QVERIFY2(second.errors.endsWith(u": "_s + host.path(u"case/.lock"_s) + u'\n'), qPrintable(second.errors));
    QCOMPARE(first.errors, QString());
    QCOMPARE(first.exit_code, 0);
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"done"_s);
}

void test_one_run_at_a_time::lock_goes_with_the_run()
{
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run(extract_sample).exit_code, 0);
    QVERIFY(!file_lock::is_held(host.path(u"case/.lock"_s)));
    QCOMPARE(host.run(extract_sample + QStringList{u"--force"_s}).exit_code, 0);
}

void test_one_run_at_a_time::lock_file_of_others_is_not_written()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().mkpath(host.path(u"case"_s)));
    QFile notes(host.path(u"case/.lock"_s));
    QVERIFY(notes.open(QIODevice::WriteOnly) && notes.write("the examiner's") > 0);
    notes.close();
    QCOMPARE(host.run(extract_sample + QStringList{u"--force"_s}).exit_code, 0);
    QVERIFY(notes.open(QIODevice::ReadOnly));
    QCOMPARE(notes.readAll(), "the examiner's");
}

BLUETOOTH_LOGS_TEST(test_one_run_at_a_time, QCoreApplication)

#include "test_one_run_at_a_time.moc"
