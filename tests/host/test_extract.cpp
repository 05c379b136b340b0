// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class test_extract : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void sample_gives_its_counts();
    void rows_carry_what_the_host_hands_in();
    void only_the_named_table_is_filled();
    void quiet_prints_nothing();
    void verbose_shows_the_log_on_standard_error();
    void windows_source_gives_no_rows();
    void option_for_ios_is_understood_for_other_kinds_data();
    void option_for_ios_is_understood_for_other_kinds();
    void an_older_report_is_named();
    void force_makes_the_result_anew();
    void force_follows_no_link();
    void part_that_cannot_be_read_is_told();
    void missing_database_is_told();
    void write_ahead_log_is_told();
    void changed_evidence_is_told_data();
    void changed_evidence_is_told();
    void works_in_a_plain_locale();

private:
    QString database_path(const host_program &host) const
    {
        return host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    }
    QString evidence_path(const host_program &host, const QString &kind) const
    {
        return host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices."_s + kind + u".db"_s);
    }
    QString summary(const host_program &host, const QStringList &counts, const QString &last_line) const
    {
        return u"Source  macOS: "_s + host.path(u"sample/macos"_s) + u"\nResult  "_s + database_path(host) + u'\n'
               + counts.join(QString()) + last_line + u", 12 host devices\n"_s;
    }

    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
    const QString devices_count = u"        devices             1,000 rows\n"_s;
    const QString paired_count = u"        paired_devices         20 rows\n"_s;
    const QString both_counts = u"Source1  done  1,000 devices, 20 paired_devices"_s;
};

void test_extract::sample_gives_its_counts()
{
    const host_program host;
    host.write_sample();
    const host_result result = host.run(extract_sample);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(host_program::without_manifest(result.output), summary(host, {devices_count, paired_count}, both_counts));
    QCOMPARE(result.errors, QString());

    const sqlite_file database(database_path(host));
    const QString other = evidence_path(host, u"other"_s);
    const QString paired = evidence_path(host, u"paired"_s);
    QCOMPARE(database.rows(u"SELECT count(*), min(typeof(last_seen_time)), max(typeof(last_seen_time)), "
                           "min(source_file), max(source_file) FROM devices"_s),
             QList<QVariantList>({{1000, u"integer"_s, u"integer"_s, other, other}}));
    QCOMPARE(database.rows(u"SELECT count(*), count(last_seen_time), count(last_connection_time), min(source_file), "
                           "max(source_file) FROM paired_devices"_s),
             QList<QVariantList>({{20, 0, 0, paired, paired}}));
    QCOMPARE(database.quoted_rows(u"devices WHERE device_name LIKE '<b>%'"_s, {u"device_name"_s, u"bookmark"_s}),
             QStringList{u"'<b>bold</b><script>alert(1)</script>'|0"_s});
    QVERIFY(!QDir(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/tmp"_s)).exists());
}

void test_extract::rows_carry_what_the_host_hands_in()
{
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run(extract_sample
                      + QStringList{u"-t"_s, u"macOS"_s, u"--engine"_s, u"KALDO_BOOT"_s, u"--source-number"_s, u"7"_s,
                                    u"--os-name"_s, u"macOS 14 \"Ω\""_s, u"--timezone-offset"_s, u"-05:30"_s})
                 .exit_code,
             0);
    const sqlite_file database(host.path(u"case/Source7/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s));
    for (const QString &table : {u"devices"_s, u"paired_devices"_s}) {
        QCOMPARE(database.quoted_rows(u"(SELECT DISTINCT os_scheme_display, source_count_name FROM "_s + table + u')',
                                      {u"os_scheme_display"_s, u"source_count_name"_s}),
                 QStringList{u"'macOS 14 \"Ω\"'|'Source7'"_s});
    }
    QFile log(host.path(u"case/Source7/plugin.log"_s));
    QVERIFY(log.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(log.readAll());
    QCOMPARE(text.count(u"][KALDO_BOOT][Artifacts Extraction]["_s), text.count(u'\n'));
}

void test_extract::only_the_named_table_is_filled()
{
    const host_program host;
    host.write_sample();
    const host_result result = host.run(extract_sample + QStringList{u"--table"_s, u"paired_devices"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(host_program::without_manifest(result.output),
             summary(host, {paired_count}, u"Source1  done  20 paired_devices"_s));
    const sqlite_file database(database_path(host));
    QCOMPARE(database.rows(u"SELECT count(*) FROM devices"_s), QList<QVariantList>({{0}}));
    QCOMPARE(database.rows(u"SELECT count(*) FROM paired_devices"_s), QList<QVariantList>({{20}}));
}

void test_extract::quiet_prints_nothing()
{
    const host_program host;
    host.write_sample();
    const host_result result = host.run(extract_sample + QStringList{u"-q"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.errors, QString());
}

void test_extract::verbose_shows_the_log_on_standard_error()
{
    const host_program host;
    host.write_sample();
    const host_result result = host.run(extract_sample + QStringList{u"-v"_s});
    QCOMPARE(host_program::without_manifest(result.output), summary(host, {devices_count, paired_count}, both_counts));
    QFile log(host.path(u"case/Source1/plugin.log"_s));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QCOMPARE(result.errors, QString::fromUtf8(log.readAll()));
    QVERIFY(result.errors.contains(u"[bluetooth_logs::pub_extract_artifacts]:-- [pub_extract_artifacts] - END\n"_s));
}

void test_extract::windows_source_gives_no_rows()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().rename(host.path(u"sample/windows/Windows/System32"_s),
                          host.path(u"sample/windows/Windows/SYSTEM32"_s)));
    const host_result result = host.run({u"extract"_s, u"-i"_s, u"sample/windows"_s, u"-o"_s, u"case"_s});
    QCOMPARE(result.exit_code, 0);
    QVERIFY(result.output.startsWith(u"Source  Windows: "_s));
    QVERIFY(result.output.contains(u"        devices                 0 rows\n"_s));
    QCOMPARE(
        result.errors,
        u"note: nothing of this Windows source is read: it holds no registry hive Windows/System32/config/SYSTEM that can be read\n"_s);
}

void test_extract::option_for_ios_is_understood_for_other_kinds_data()
{
    QTest::addColumn<QString>("source");

    QTest::newRow("macOS") << u"sample/macos"_s;
    QTest::newRow("Windows") << u"sample/windows"_s;
}

void test_extract::option_for_ios_is_understood_for_other_kinds()
{
    QFETCH(QString, source);
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, source, u"-o"_s, u"case"_s, u"--suite-tables"_s}).exit_code, 0);
}

void test_extract::an_older_report_is_named()
{
    const host_program host;
    host.write_sample();
    const QStringList windows{u"extract"_s, u"-i"_s, u"sample/windows"_s, u"-o"_s, u"case"_s};
    const QString note = u"note: a report of the case as it was before is in "_s + host.path(u"case"_s)
                         + u"/Report: \"report --force\" makes it anew\n"_s;
    QVERIFY(!host.run(windows).errors.contains(note));
    QVERIFY(!host.run(windows + QStringList{u"--force"_s}).errors.contains(note));
    QCOMPARE(host.run({u"report"_s, u"case"_s}).exit_code, 0);
    QVERIFY(host.run(windows + QStringList{u"--force"_s}).errors.contains(note));
    QVERIFY(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s, u"--add"_s}).errors.contains(note));
    QVERIFY(!host.run({u"extract"_s, u"-o"_s, u"case"_s, u"--resume"_s}).errors.contains(note));
}

void test_extract::force_makes_the_result_anew()
{
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run(extract_sample).exit_code, 0);
    const host_result refused = host.run(extract_sample);
    QCOMPARE(refused.exit_code, 2);
    QCOMPARE(refused.errors, u"error: the case already holds a result, "_s + host.path(u"case/Source1"_s)
                                 + u": --resume runs what is not done, --force removes it first\n"_s);

    sqlite_file(evidence_path(host, u"paired"_s)).execute(u"DELETE FROM PairedDevices WHERE rowid > 3"_s);
    const host_result anew = host.run(extract_sample + QStringList{u"--force"_s});
    QCOMPARE(anew.exit_code, 0);
    QCOMPARE(host_program::without_manifest(anew.output),
             summary(host, {devices_count, u"        paired_devices          3 rows\n"_s},
                     u"Source1  done  1,000 devices, 3 paired_devices"_s));
}

void test_extract::force_follows_no_link()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().mkpath(host.path(u"elsewhere"_s)) && QDir().mkpath(host.path(u"case/Source1/Artifacts_Result"_s)));
    QFile precious(host.path(u"elsewhere/precious"_s));
    QVERIFY(precious.open(QIODevice::WriteOnly));
    QVERIFY(QFile::link(host.path(u"elsewhere"_s), host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs"_s)));

    QCOMPARE(host.run(extract_sample).exit_code, 2);
    QCOMPARE(host.run(extract_sample + QStringList{u"--force"_s}).exit_code, 0);
    QVERIFY(!QFileInfo(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs"_s)).isSymLink());
    QCOMPARE(QDir(host.path(u"elsewhere"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{u"precious"_s});
}

void test_extract::part_that_cannot_be_read_is_told()
{
    const host_program host;
    host.write_sample();
    QFile other(evidence_path(host, u"other"_s));
    QVERIFY(other.open(QIODevice::WriteOnly) && other.write("no database, this") > 0);
    other.close();

    const host_result result = host.run(extract_sample);
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(host_program::without_manifest(result.output),
             summary(host, {u"        devices                 0 rows\n"_s, paired_count},
                     u"Source1  partial  0 devices, 20 paired_devices"_s));
    const QString path = u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;
    QCOMPARE(result.errors, u"error: "_s + path + u" was not read: it is no SQLite database\n"_s);
}

void test_extract::missing_database_is_told()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QFile::remove(evidence_path(host, u"other"_s)));
    const host_result result = host.run(extract_sample);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.errors, u"note: the source holds no database for the table devices\n"_s);
}

void test_extract::write_ahead_log_is_told()
{
    const host_program host;
    host.write_sample();
    QFile log(evidence_path(host, u"paired"_s) + u"-wal"_s);
    QVERIFY(log.open(QIODevice::WriteOnly) && log.write("x") == 1);
    log.close();
    const host_result result = host.run(extract_sample);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.errors,
             u"warning: Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db-wal: it is no write-ahead "
             "log\n"_s);
}

void test_extract::changed_evidence_is_told_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("message");

    // clang-format off
    QTest::newRow("grown")     << u"append"_s  << u".other.db"_s      << u"its size was 106496 bytes and is 106497"_s;
    QTest::newRow("touched")   << u"touch"_s   << u".paired.db"_s     << u"it was modified"_s;
    QTest::newRow("gone")      << u"remove"_s  << u".paired.db"_s     << u"it is gone"_s;
    QTest::newRow("replaced")  << u"replace"_s << u".other.db"_s      << u"it is another file than before"_s;
    QTest::newRow("companion") << u"append"_s  << u".other.db-wal"_s  << u"it was not there before"_s;
    // clang-format on
}

void test_extract::changed_evidence_is_told()
{
    QFETCH(QString, change);
    QFETCH(QString, file);
    QFETCH(QString, message);
    const host_program host;
    host.write_sample();

    QProcess process;
    host.start(process, extract_sample + QStringList{u"--plugin"_s, host_program::waiting_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    QFile evidence(host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices"_s + file));
    if (change == "append"_L1) {
        QVERIFY(evidence.open(QIODevice::Append) && evidence.write("x") == 1);
    } else if (change == "touch"_L1) {
        QVERIFY(evidence.open(QIODevice::Append)
                && evidence.setFileTime(QDateTime::fromSecsSinceEpoch(1), QFileDevice::FileModificationTime));
    } else {
        QVERIFY(change != "replace"_L1 || QFile::copy(evidence.fileName(), host.path(u"twin"_s)));
        QVERIFY(QFile::remove(evidence.fileName()));
        QVERIFY(change != "replace"_L1 || QFile::rename(host.path(u"twin"_s), evidence.fileName()));
    }
    evidence.close();
    QVERIFY(QFile(host.path(u"go"_s)).open(QIODevice::WriteOnly));

    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 5);
    const QString path = evidence.fileName().sliced(host.path(u"sample/macos/"_s).size());
    QVERIFY2(result.errors.startsWith(u"error: the evidence changed during the run: "_s + path + u": "_s + message
                                      + u'\n'),
             qPrintable(result.errors));
}

void test_extract::works_in_a_plain_locale()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().rename(host.path(u"sample"_s), host.path(u"größe"_s)));
    QProcess process;
    qputenv("LC_ALL", "C");
    host.start(process, {u"extract"_s, u"-i"_s, u"größe/macos"_s, u"-o"_s, u"case"_s});
    const host_result result = host_program::finish(process);
    qputenv("LC_ALL", "C.UTF-8");
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.errors, QString());
    QVERIFY(result.output.startsWith(u"Source  macOS: "_s + host.path(u"größe/macos"_s) + u'\n'));
}

BLUETOOTH_LOGS_TEST(test_extract, QCoreApplication)

#include "test_extract.moc"
