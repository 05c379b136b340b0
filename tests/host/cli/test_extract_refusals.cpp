// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class test_extract_refusals : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void refusal_data();
    void refusal();
    void case_reached_by_a_link();
    void source_that_may_not_be_read();

private:
    host_program host;
};

void test_extract_refusals::initTestCase()
{
    host.write_sample();
    QVERIFY(QDir().mkpath(host.path(u"bare/Library/Bluetooth"_s)));
    QVERIFY(QDir().mkpath(host.path(u"folder_as_database/Library/Bluetooth"_s)
                          + u"/com.apple.MobileBluetooth.ledevices.paired.db"_s));
    QVERIFY(QDir().mkpath(host.path(u"only_other/Library/Bluetooth"_s)));
    QVERIFY(QFile::copy(host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s),
                        host.path(u"only_other/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s)));
    QVERIFY(QDir().mkpath(host.path(u"old_case/Source1/Artifacts_Result/Bluetooth_Logs/source/Windows/System32"_s)));
    QCOMPARE(::mkfifo(QFile::encodeName(host.path(u"fifo"_s)).constData(), 0600), 0);
    QVERIFY(QFile(host.path(u"taken.log"_s)).open(QIODevice::WriteOnly));
}

void test_extract_refusals::refusal_data()
{
    QTest::addColumn<QString>("arguments"); // as in a shell
    QTest::addColumn<int>("exit_code");
    QTest::addColumn<QString>("message"); // $ stands for the working directory

    // clang-format off
    QTest::newRow("iOS, other engine")   << u"extract -i sample/ios/system.log -o c --engine KALDO_FIELD"_s << 2 << u"iOS sources are extracted with the engine KALDO_DESK only"_s;
    QTest::newRow("case is the source")  << u"extract -i sample/macos -o sample/macos"_s      << 2 << u"the case lies inside the source, where nothing may be written: $/sample/macos"_s;
    QTest::newRow("case in the source")  << u"extract -i sample/macos -o sample/macos/new/case"_s << 2 << u"the case lies inside the source, where nothing may be written: $/sample/macos/new/case"_s;
    QTest::newRow("source in the case's result") << u"extract -i old_case/Source1/Artifacts_Result/Bluetooth_Logs/source -o old_case --force"_s << 2 << u"the source lies inside the case's folder for it, which is made anew: $/old_case/Source1/Artifacts_Result/Bluetooth_Logs/source"_s;

    QTest::newRow("no source")           << u"extract -i nothing -o c"_s                      << 3 << u"there is no source at $/nothing"_s;
    QTest::newRow("not recognized")      << u"extract -i bare -o c"_s                         << 3 << u"this is no source that can be recognized: $/bare (a macOS source holds one of the LE device databases in Library/Bluetooth, a Windows source the folder Windows/System32, an iOS source is a log text file; --type says which it is)"_s;
    QTest::newRow("FIFO")                << u"extract -i fifo -o c -t iOS_UID"_s              << 3 << u"the log text cannot be read: $/fifo: it is not a regular file"_s;
    QTest::newRow("folder as log")       << u"extract -i sample/ios -o c -t iOS_UID"_s        << 3 << u"the log text cannot be read: $/sample/ios: it is not a regular file"_s;
    QTest::newRow("file as macOS")       << u"extract -i sample/ios/system.log -o c -t macOS"_s << 3 << u"a macOS source is a folder, and this is none: $/sample/ios/system.log"_s;
    QTest::newRow("no databases")        << u"extract -i bare -o c -t macOS"_s                << 3 << u"the source holds no LE device database for devices or paired_devices in $/bare/Library/Bluetooth/"_s;
    QTest::newRow("not this table")      << u"extract -i only_other -o c --table paired_devices"_s << 3 << u"the source holds no LE device database for paired_devices in $/only_other/Library/Bluetooth/"_s;
    QTest::newRow("folder as database")  << u"extract -i folder_as_database -o c"_s           << 3 << u"the evidence cannot be read: $/folder_as_database/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db: it is not a regular file"_s;
    QTest::newRow("no case to show")     << u"show c"_s                                       << 3 << u"there is no case and no result database at $/c"_s;

    QTest::newRow("no plug-in")          << u"extract -i sample/macos -o c --plugin x.so"_s   << 1 << u"there is no plug-in file $/x.so"_s;
    QTest::newRow("not a plug-in")       << u"extract -i sample/macos -o c --plugin taken.log"_s << 1 << u"the plug-in file $/taken.log cannot be loaded: "_s;
    QTest::newRow("case is a file")      << u"extract -i sample/macos -o taken.log"_s         << 1 << u"$/taken.log cannot be written: not a directory"_s;
    // clang-format on
}

void test_extract_refusals::refusal()
{
    QFETCH(QString, arguments);
    QFETCH(int, exit_code);
    QFETCH(QString, message);

    const host_result result = host.run(arguments.split(u' ', Qt::SkipEmptyParts));
    QCOMPARE(result.exit_code, exit_code);
    QCOMPARE(result.output, QString());
    const QString expected = u"error: "_s + message.replace(u'$', host.path(QString()));
    if (expected.endsWith(u": "_s)) // what follows is the system's
        QVERIFY2(result.errors.startsWith(expected) && result.errors.count(u'\n') == 1, qPrintable(result.errors));
    else
        QCOMPARE(result.errors, expected + u'\n');
    QVERIFY2(!QDir(host.path(u"c"_s)).exists(), "a refused run made the case's folder");
    QVERIFY(!QDir(host.path(u"sample/macos/new"_s)).exists());
}

void test_extract_refusals::case_reached_by_a_link()
{
    QVERIFY(QDir().mkpath(host.path(u"linked_case"_s)));
    QVERIFY(QFile::link(host.path(u"sample/macos/Library"_s), host.path(u"linked_case/Source1"_s)));
    QVERIFY(QFile::link(host.path(u"sample/macos"_s), host.path(u"link"_s)));
    for (const QString &directory : {u"link/case"_s, u"linked_case"_s}) {
        const host_result result = host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, directory});
        QCOMPARE(result.exit_code, 2);
        QVERIFY(result.errors.startsWith(u"error: the case lies inside the source, where nothing may be written: "_s));
    }
    QCOMPARE(QDir(host.path(u"sample/macos"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{u"Library"_s});
    QCOMPARE(QDir(host.path(u"sample/macos/Library"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList({u"Bluetooth"_s, u"Preferences"_s}));
}

void test_extract_refusals::source_that_may_not_be_read()
{
    if (::geteuid() == 0)
        QSKIP("root may read everything");
    QFile log(host.path(u"closed.log"_s));
    QVERIFY(log.open(QIODevice::WriteOnly) && log.setPermissions(QFileDevice::WriteOwner));
    const host_result result = host.run({u"extract"_s, u"-i"_s, u"closed.log"_s, u"-o"_s, u"c"_s});
    QCOMPARE(result.exit_code, 3);
    QCOMPARE(result.errors,
             u"error: the log text cannot be read: "_s + host.path(u"closed.log"_s) + u": permission denied\n"_s);
}

BLUETOOTH_LOGS_TEST(test_extract_refusals, QCoreApplication)

#include "test_extract_refusals.moc"
