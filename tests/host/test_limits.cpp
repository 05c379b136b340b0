// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/sanitizer.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

/** In which a run has begun, so that --timeout meets the plug-in. */
static const QString seconds = is_sanitized ? u"4"_s : u"1"_s;

/** Memory, size and time have limits, each told by its name. */
class test_limits : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void want_of_memory_is_told_data();
    void want_of_memory_is_told();
    void database_that_takes_gigabytes_data();
    void database_that_takes_gigabytes();
    void large_database_is_not_staged();
    void nothing_but_a_large_database();
    void hanging_plugin_is_ended_data();
    void hanging_plugin_is_ended();
    void hanging_load_is_ended();

private:
    host_result extract_with(host_program &host, const QString &fault, const QStringList &options) const;
    static QString evidence(const host_program &host, const QString &kind)
    {
        return host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices."_s + kind + u".db"_s);
    }
    static QString status(const host_program &host)
    {
        return host.source_record().value("status"_L1).toString();
    }

    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
};

host_result test_limits::extract_with(host_program &host, const QString &fault, const QStringList &options) const
{
    host.write_sample();
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, fault);
    return host.run(extract_sample + QStringList{u"--plugin"_s, host_program::faulty_plugin_file()} + options);
}

void test_limits::want_of_memory_is_told_data()
{
    QTest::addColumn<QString>("fault");
    QTest::addColumn<QString>("phase");

    // clang-format off
    QTest::newRow("std::bad_alloc")    << u"extraction want-memory"_s << QString();
    QTest::newRow("all of it is taken") << u"extraction take-memory"_s << QString();
    QTest::newRow("in the end")        << u"removal take-memory"_s    << QString();
    QTest::newRow("while it is loaded") << u"loading take-memory"_s   << u" while the plug-in was loaded"_s;
    // clang-format on
}

void test_limits::want_of_memory_is_told()
{
    QFETCH(QString, fault);
    QFETCH(QString, phase);
    if (is_sanitized)
        QSKIP("a sanitizer needs all addresses");
    host_program host;
    const host_result result = extract_with(host, fault, {u"--memory-limit"_s, u"256"_s});
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.startsWith(u"error: out of memory"_s + phase
                                      + u": the run needs more than the 256 MiB of --memory-limit\n"_s),
             qPrintable(result.errors));
    QCOMPARE(status(host), u"out of memory"_s);
}

void test_limits::database_that_takes_gigabytes_data()
{
    QTest::addColumn<QString>("column");

    // clang-format off
    QTest::newRow("zeros")         << u"Name TEXT AS (zeroblob(900000000))"_s;
    QTest::newRow("hexadecimal")   << u"Name TEXT AS (hex(zeroblob(400000000)))"_s;
    QTest::newRow("quoted")        << u"Name TEXT AS (quote(zeroblob(200000000)))"_s;
    // clang-format on
}

void test_limits::database_that_takes_gigabytes()
{
    QFETCH(QString, column);
    if (is_sanitized)
        QSKIP("a sanitizer needs all addresses");
    const host_program host;
    host.write_sample();
    const sqlite_file other(evidence(host, u"other"_s));
    other.execute(u"DROP TABLE OtherDevices"_s);
    other.execute(u"CREATE TABLE OtherDevices(Uuid TEXT, NameOrigin INT, Address TEXT, ResolvedAddress TEXT, "
                  "LastSeenTime INT, LastConnectionTime INT, "_s
                  + column + u')');
    other.execute(u"INSERT INTO OtherDevices(Uuid) VALUES('a'), ('b')"_s);
    const host_result result = host.run(extract_sample + QStringList{u"--memory-limit"_s, u"256"_s});
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.contains(u"error: out of memory: the run needs more than the 256 MiB of --memory-limit\n"_s),
             qPrintable(result.errors));
    QCOMPARE(status(host), u"out of memory"_s);
}

void test_limits::large_database_is_not_staged()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QFile::resize(evidence(host, u"other"_s), qint64(3) << 30)); // sparse
    const host_result result = host.run(extract_sample);
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(result.errors, u"error: Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db was not read: it "
                            "has 3221225472 bytes (3072 MiB), more than the 1024 MiB that --max-database allows\n"_s);
    QVERIFY2(result.output.contains(
                 u"        devices                 0 rows\n        paired_devices         20 rows\n"_s),
             qPrintable(result.output));
    QCOMPARE(status(host), u"partial"_s);
    QDirIterator copies(host.path(u"case"_s), {u"*other.db*"_s}, QDir::Files, QDirIterator::Subdirectories);
    QVERIFY(!copies.hasNext());
}

void test_limits::nothing_but_a_large_database()
{
    const host_program host;
    host.write_sample();
    const host_result result = host.run(extract_sample
                                        + QStringList{u"--table"_s, u"devices"_s, u"--max-database"_s, u"1"_s});
    QCOMPARE(result.exit_code, 0); // 104 KiB
    QVERIFY(QFile::resize(evidence(host, u"other"_s), (1 << 20) + 1));
    const host_result refused = host.run(
        extract_sample + QStringList{u"--force"_s, u"--table"_s, u"devices"_s, u"--max-database"_s, u"1"_s});
    QCOMPARE(refused.exit_code, 3);
    QVERIFY2(refused.errors.contains(u"more than the 1 MiB that --max-database allows\n"_s),
             qPrintable(refused.errors));
}

void test_limits::hanging_plugin_is_ended_data()
{
    QTest::addColumn<QString>("fault");

    for (const char *fault : {"extraction hang", "end hang", "removal hang"})
        QTest::newRow(fault) << QString::fromLatin1(fault);
}

void test_limits::hanging_plugin_is_ended()
{
    QFETCH(QString, fault);
    host_program host;
    QElapsedTimer clock;
    clock.start();
    const host_result result = extract_with(host, fault, {u"--timeout"_s, seconds});
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.startsWith(u"error: timed out: the run took longer than the "_s + seconds
                                      + u" seconds of --timeout\n"_s),
             qPrintable(result.errors));
    QCOMPARE(status(host), u"timed out"_s);
    QVERIFY(host.source_record().value("result"_L1)["sha256"_L1].isString());
    QVERIFY(!QFile::exists(host.path(u"case/Source1/tmp"_s)));
    QVERIFY2(clock.elapsed() < 20000, qPrintable(QString::number(clock.elapsed())));
}

void test_limits::hanging_load_is_ended()
{
    host_program host;
    const host_result result = extract_with(host, u"loading hang"_s, {u"--timeout"_s, u"1"_s});
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.startsWith(u"error: timed out while the plug-in was loaded: the run took longer than the 1 "
                                      "seconds of --timeout\n"_s),
             qPrintable(result.errors));
    QCOMPARE(status(host), u"timed out"_s);
}

BLUETOOTH_LOGS_TEST(test_limits, QCoreApplication)

#include "test_limits.moc"
