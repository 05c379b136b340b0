// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

/** A system in use: the case lies on it, and its evidence changes while it is read. */
class test_live : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void case_within_the_source_data();
    void case_within_the_source();
    void changes_are_notes();

private:
    const QStringList extract_live = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"--live"_s};
};

void test_live::case_within_the_source_data()
{
    QTest::addColumn<QString>("directory"); // below the source
    QTest::addColumn<int>("exit_code");

    // clang-format off
    QTest::newRow("root itself")           << u""_s                                 << 0;
    QTest::newRow("home folder")           << u"/Users/examiner/case"_s             << 0;
    QTest::newRow("beside the evidence")   << u"/Library/case"_s                    << 0;
    QTest::newRow("a similar name")        << u"/Library/Bluetooth 2"_s             << 0;
    QTest::newRow("databases")             << u"/Library/Bluetooth"_s               << 2;
    QTest::newRow("below the databases")   << u"/Library/Bluetooth/case"_s          << 2;
    QTest::newRow("preferences")           << u"/Library/Preferences/a/case"_s      << 2;
    QTest::newRow("databases, by a way round") << u"/Users/../Library/Bluetooth/case"_s << 2;
    QTest::newRow("databases, by a link")  << u"/link/case"_s                       << 2;
    // clang-format on
}

void test_live::case_within_the_source()
{
    QFETCH(QString, directory);
    QFETCH(int, exit_code);
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().mkpath(host.path(u"sample/macos/Users"_s)));
    QVERIFY(QFile::link(host.path(u"sample/macos/Library/Bluetooth"_s), host.path(u"sample/macos/link"_s)));
    const QString folder = host.path(u"sample/macos"_s + directory);
    const host_result result = host.run(extract_live + QStringList{u"-o"_s, folder});
    QVERIFY2(result.exit_code == exit_code, qPrintable(result.errors));
    QCOMPARE(QFile::exists(folder + u"/Source1/source.json"_s), exit_code == 0);
    if (exit_code == 0)
        QCOMPARE(result.errors, QString());
    else
        QVERIFY(result.errors.startsWith(u"error: the case lies inside the source, where nothing may be written: "_s));
    QCOMPARE(QDir(host.path(u"sample/macos/Library/Bluetooth"_s))
                 .entryList(QDir::AllEntries | QDir::NoDotAndDotDot)
                 .size(),
             2);
}

void test_live::changes_are_notes()
{
    const host_program host;
    host.write_sample();
    const QString name = u"com.apple.MobileBluetooth.ledevices.other.db"_s;
    const host_result result = host.run_meanwhile(extract_live + QStringList{u"-o"_s, u"case"_s}, u"end"_s, [&] {
        QFile evidence(host.path(u"sample/macos/Library/Bluetooth/"_s + name));
        QVERIFY(evidence.open(QIODevice::Append) && evidence.write("x") == 1);
        evidence.close();
        QVERIFY(QFile(host.path(u"sample/macos/Library/Bluetooth/new"_s)).open(QIODevice::WriteOnly));
    });
    const QString start = u"note: the live evidence changed during the run: Library/Bluetooth/"_s;
    QCOMPARE(result.errors, start + name + u": its size was 106496 bytes and is 106497\n"_s + start
                                + u"new: it was not there before\n"_s);
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"done"_s);
}

BLUETOOTH_LOGS_TEST(test_live, QCoreApplication)

#include "test_live.moc"
