// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

using namespace Qt::StringLiterals;

class test_extract_ios : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void tables_without_room_are_told();
    void widened_tables_hold_every_device();
    void case_beside_the_log();

private:
    qint64 lines_with(const host_program &host, QByteArrayView marker) const;
    qint64 sighted(const host_program &host) const; ///< devices by their identifiers
    QString summary(const host_program &host, qint64 devices, qint64 paired) const;

    const QString widened_note =
        u"note: the result tables get the columns that rows of iOS sources fill; --suite-tables "
        "leaves them as the suite makes them\n"_s;
    const QStringList extract_log = {u"extract"_s, u"-i"_s, u"sample/ios/system.log"_s, u"-o"_s, u"case"_s};
};

qint64 test_extract_ios::lines_with(const host_program &host, QByteArrayView marker) const
{
    QFile log(host.path(u"sample/ios/system.log"_s));
    return log.open(QIODevice::ReadOnly) ? log.readAll().count(marker) : -1;
}

qint64 test_extract_ios::sighted(const host_program &host) const
{
    QFile log(host.path(u"sample/ios/system.log"_s));
    QSet<QString> identifiers;
    static const QRegularExpression form(u"BLE device found: SFDevice ID ([^,]*)"_s);
    const QString text = log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()) : QString();
    for (const QRegularExpressionMatch &match : form.globalMatch(text))
        identifiers.insert(match.captured(1).trimmed());
    return identifiers.size();
}

QString test_extract_ios::summary(const host_program &host, qint64 devices, qint64 paired) const
{
    return u"Source  iOS: "_s + host.path(u"sample/ios/system.log"_s) + u"\nResult  "_s
           + host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s)
           + u"\n        devices         %1 rows%3\n        paired_devices  %2 rows\n"_s.arg(devices, 9)
                 .arg(paired, 9)
                 .arg(devices == 0 ? QString() : u", 50 sightings of %1 devices"_s.arg(sighted(host)));
}

void test_extract_ios::tables_without_room_are_told()
{
    const host_program host;
    host.write_sample();
    const qint64 found = lines_with(host, "BLE device found:") + lines_with(host, "active device:");
    const host_result result = host.run(extract_log + QStringList{u"--suite-tables"_s});
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(host_program::without_manifest(result.output), summary(host, 0, 0));
    QCOMPARE(result.errors, u"warning: "_s + QString::number(found)
                                + u" rows found and not written: the suite's result tables have no columns for iOS "
                                  "rows; without --suite-tables the program adds them\n"_s);
}

void test_extract_ios::widened_tables_hold_every_device()
{
    const host_program host;
    host.write_sample();
    const qint64 devices = lines_with(host, "BLE device found:");
    const qint64 paired = lines_with(host, "active device:");
    const host_result result = host.run(extract_log);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(host_program::without_manifest(result.output), summary(host, devices, paired));
    QCOMPARE(result.errors, widened_note);

    const sqlite_file database(host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s));
    QCOMPARE(database.rows(u"SELECT count(*), count(sf_device_id), count(date), min(os_scheme_display), "
                           "min(source_count_name) FROM devices"_s),
             QList<QVariantList>({{devices, devices, devices, u"iOS"_s, u"Source1"_s}}));
    QCOMPARE(database.rows(u"SELECT count(*), count(device_address), count(status), count(date) FROM paired_devices"_s),
             QList<QVariantList>({{paired, paired, paired, paired}}));
    QVERIFY(!database.rows(u"SELECT 1 FROM devices WHERE device_name = 'Desk''s Phone' AND model <> ''"_s).isEmpty());
    QVERIFY(!database.rows(u"SELECT 1 FROM paired_devices WHERE status = 'Route changed to'"_s).isEmpty());
}

void test_extract_ios::case_beside_the_log()
{
    // The log text is the evidence, not the folder that somebody put it into.
    const host_program host;
    host.write_sample();
    const host_result result = host.run(
        {u"extract"_s, u"-i"_s, u"sample/ios/system.log"_s, u"-o"_s, u"sample/ios/case"_s});
    QCOMPARE(result.errors, widened_note);
    QCOMPARE(result.exit_code, 0);
    QVERIFY(
        QFile::exists(host.path(u"sample/ios/case/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s)));
}

BLUETOOTH_LOGS_TEST(test_extract_ios, QCoreApplication)

#include "test_extract_ios.moc"
