// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/host/private_mount.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

/** Where the case cannot hold all of it, nothing is lost without a word. */
class test_full_disk : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void no_room_for_the_copies_is_told_before_the_run();
    void full_disk_is_told_data();
    void full_disk_is_told();
    void disk_that_fills_during_the_run_is_told();
    void limit_of_file_size_is_told_data();
    void limit_of_file_size_is_told();
    void limit_of_file_size_leaves_nothing_unfinished_data();
    void limit_of_file_size_leaves_nothing_unfinished();

private:
    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
};

void test_full_disk::no_room_for_the_copies_is_told_before_the_run()
{
    const host_program host;
    host.write_sample();
    const private_mount disk(host.path(u"case"_s), 100);
    if (!disk.is_there())
        QSKIP("no file system can be mounted here");
    const host_result result = host.run(extract_sample);
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(result.output, QString());
    static const QRegularExpression words(
        u"^error: there is no room in the case to copy the evidence: ([0-9]+) bytes are needed and ([0-9]+) are free\n$"_s);
    const QRegularExpressionMatch match = words.match(result.errors);
    QVERIFY2(match.hasMatch(), qPrintable(result.errors));
    QVERIFY(match.captured(1).toInt() > match.captured(2).toInt());
    QVERIFY(!QFile::exists(host.path(u"case/Source1/source.json"_s)));
    QVERIFY(!QFile::exists(host.path(u"case/Source1/Evidence"_s)));
}

void test_full_disk::full_disk_is_told_data()
{
    QTest::addColumn<int>("kibibytes");

    // Room for the copies (about 230 KiB), but not for the rest: the host fails first, or the plug-in does.
    for (const int kibibytes : {260, 280, 300, 340, 380, 420, 460})
        QTest::addRow("%d KiB", kibibytes) << kibibytes;
}

void test_full_disk::full_disk_is_told()
{
    QFETCH(int, kibibytes);
    const host_program host;
    host.write_sample();
    const private_mount disk(host.path(u"case"_s), kibibytes);
    if (!disk.is_there())
        QSKIP("no file system can be mounted here");
    const host_result result = host.run(extract_sample);
    QVERIFY2(result.exit_code == 4, qPrintable(result.errors));
    QVERIFY2(result.errors.contains(u"error: "_s), qPrintable(result.errors));
    QVERIFY(host.source_record().value("status"_L1).toString() != "done"_L1);
}

void test_full_disk::disk_that_fills_during_the_run_is_told()
{
    const host_program host;
    host.write_sample();
    const private_mount disk(host.path(u"case"_s), 4096);
    if (!disk.is_there())
        QSKIP("no file system can be mounted here");
    const host_result result = host.run_meanwhile(extract_sample, u"extraction"_s, [&host] {
        QFile filling(host.path(u"case/filling"_s));
        if (filling.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
            while (filling.write(QByteArray(4096, 'x')) > 0) {
            }
        }
    });
    QCOMPARE(result.exit_code, 4);
    // Neither the rows nor the log got onto the disk, and the record there is the one of the start.
    const QString words = u"error: the rows of the table devices do not agree: 1,000 found in the evidence, "_s;
    QVERIFY2(result.errors.contains(words), qPrintable(result.errors));
    QVERIFY2(result.errors.contains(u"error: the plug-in's log, plugin.log, does not hold all"_s),
             qPrintable(result.errors));
    QVERIFY2(result.errors.contains(u"source.json cannot be written: no space left on device"_s),
             qPrintable(result.errors));
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"running"_s);
}

void test_full_disk::limit_of_file_size_is_told_data()
{
    QTest::addColumn<int>("blocks"); // of 512 bytes, or of 1024 in other shells

    for (const int blocks : {1, 20, 60, 120})
        QTest::addRow("%d blocks", blocks) << blocks;
}

void test_full_disk::limit_of_file_size_is_told()
{
    QFETCH(int, blocks);
    const host_program host;
    host.write_sample();
    const host_result result = host.run_through({u"sh"_s, u"-c"_s, u"ulimit -f %1; exec \"$@\""_s.arg(blocks), u"sh"_s},
                                                extract_sample);
    QVERIFY2(result.exit_code == 4 || result.exit_code == 1, qPrintable(result.errors));
    QVERIFY2(result.errors.contains(u"error: "_s), qPrintable(result.errors));
    QVERIFY(host.source_record().value("status"_L1).toString() != "done"_L1);
}

void test_full_disk::limit_of_file_size_leaves_nothing_unfinished_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QString>("message"); // $ stands for the working directory

    // clang-format off
    QTest::newRow("pages")    << u"report case -o report"_s            << u"$/report/report.html cannot be written: file too large"_s;
    QTest::newRow("rows")     << u"report case -o report -f csv"_s     << u"$/report/devices.csv cannot be written: file too large"_s;
    QTest::newRow("database") << u"report case -o report -f sqlite"_s  << u"$/report/report.sqlite cannot be written: "_s;
    QTest::newRow("workbook") << u"report case -o report -f xlsx"_s    << u"$/report/report.xlsx cannot be written: "_s;
    QTest::newRow("collect")  << u"collect case"_s                     << u"$/case/manifest.json cannot be written: file too large"_s;
    QTest::newRow("record")   << u"verify case --record verified"_s    << u"$/verified cannot be written: file too large"_s;
    QTest::newRow("sample")   << u"sample another"_s                   << u"the file cannot be written: $/another/README.txt: file too large"_s;
    // clang-format on
}

void test_full_disk::limit_of_file_size_leaves_nothing_unfinished()
{
    QFETCH(QString, arguments);
    QFETCH(QString, message);
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run(extract_sample).exit_code, 0);
    const host_result result = host.run_in_shell(arguments, u"ulimit -f 1"_s);
    QCOMPARE(result.exit_code, 1);
    message.replace(u'$', host.path({}));
    QVERIFY2(result.errors.contains(u"error: "_s + message), qPrintable(result.errors));
    QDirIterator unfinished(host.path(QString()), {u"*.new"_s, u"*.parts"_s, u"tmp.*"_s},
                            QDir::AllEntries | QDir::Hidden, QDirIterator::Subdirectories);
    QVERIFY2(!unfinished.hasNext(), qPrintable(unfinished.next()));
    QCOMPARE(host.run({u"collect"_s, u"case"_s}).exit_code, 0);
    QCOMPARE(host.run({u"verify"_s, u"case"_s}).exit_code, 0);
}

BLUETOOTH_LOGS_TEST(test_full_disk, QCoreApplication)

#include "test_full_disk.moc"
