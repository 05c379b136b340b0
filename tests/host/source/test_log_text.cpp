// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/log_text.h"

#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

/** What a text must have to be taken for the log of a device, and what is said of files that are none. */
class test_log_text : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void signatures_data();
    void signatures();
    void other_texts_data();
    void other_texts();
    void lines_data();
    void lines();
    void blocks_data();
    void blocks();
};

void test_log_text::signatures_data()
{
    QTest::addColumn<qsizetype>("place");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("words");

    const QString utf_16 = u"it is a text in UTF-16: convert it first (iconv -f UTF-16 -t UTF-8)"_s;
    // clang-format off
    QTest::newRow("gzip")          << qsizetype(0)   << "\x1f\x8b"_ba               << u"it is a gzip archive: unpack it first"_s;
    QTest::newRow("xz")            << qsizetype(0)   << QByteArray("\xfd" "7zXZ")   << u"it is an xz archive: unpack it first"_s;
    QTest::newRow("bzip2")         << qsizetype(0)   << "BZh"_ba                    << u"it is a bzip2 archive: unpack it first"_s;
    QTest::newRow("zstd")          << qsizetype(0)   << "\x28\xb5\x2f\xfd"_ba       << u"it is a zstd archive: unpack it first"_s;
    QTest::newRow("7z")            << qsizetype(0)   << "7z\xbc\xaf\x27\x1c"_ba     << u"it is a 7z archive: unpack it first"_s;
    QTest::newRow("zip")           << qsizetype(0)   << "PK\x03\x04"_ba             << u"it is a zip archive: unpack it first"_s;
    QTest::newRow("empty zip")     << qsizetype(0)   << "PK\x05\x06"_ba             << u"it is an empty zip archive"_s;
    QTest::newRow("tar")           << qsizetype(257) << "ustar"_ba                  << u"it is a tar archive: unpack it first"_s;
    QTest::newRow("E01")           << qsizetype(0)   << "EVF\x09\x0d\x0a\xff"_ba    << u"it is a disk image (E01): mount it, and give the log text in it"_s;
    QTest::newRow("Ex01")          << qsizetype(0)   << "EVF2\x0d\x0a\x81"_ba       << u"it is a disk image (Ex01): mount it, and give the log text in it"_s;
    QTest::newRow("SQLite")        << qsizetype(0)   << "SQLite format 3"_ba        << u"it is an SQLite database"_s;
    QTest::newRow("property list") << qsizetype(0)   << "bplist"_ba                 << u"it is a property list"_s;
    QTest::newRow("ELF")           << qsizetype(0)   << QByteArray("\x7f" "ELF")    << u"it is a program"_s;
    QTest::newRow("Windows")       << qsizetype(0)   << "MZ"_ba                     << u"it is a program"_s;
    QTest::newRow("Mach-O")        << qsizetype(0)   << "\xcf\xfa\xed\xfe"_ba       << u"it is a program"_s;
    QTest::newRow("Mach-O, fat")   << qsizetype(0)   << "\xca\xfe\xba\xbe"_ba       << u"it is a program"_s;
    QTest::newRow("UTF-16 LE")     << qsizetype(0)   << "\xff\xfe"_ba               << utf_16;
    QTest::newRow("UTF-16 BE")     << qsizetype(0)   << "\xfe\xff"_ba               << utf_16;
    // clang-format on
}

/** With all of its bytes, at its place. */
void test_log_text::signatures()
{
    QFETCH(const qsizetype, place);
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, words);
    const QByteArray whole = QByteArray(place, 'a') + bytes;
    QCOMPARE(why_no_log_text(whole).value_or(QString()), words);
    QCOMPARE(why_no_log_text(QByteArray(whole + "\n")).value_or(QString()), words);
    QVERIFY(!why_no_log_text(whole.chopped(1)));
    QVERIFY(!why_no_log_text(QByteArray('a' + whole)));
}

void test_log_text::other_texts_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QString>("words"); // none: it may be a log

    const QString utf_16 = u"it looks like a text in UTF-16: convert it first (iconv -f UTF-16LE -t UTF-8)"_s;
    const auto zeros_at = [](std::initializer_list<qsizetype> places) {
        QByteArray bytes(32, 'a');
        for (const qsizetype place : places)
            bytes[place] = '\0';
        return bytes;
    };
    // clang-format off
    QTest::newRow("nothing")            << QByteArray()                                   << u"it is empty"_s;
    QTest::newRow("one byte")           << "a"_ba                                         << QString();
    QTest::newRow("one zero")           << QByteArray(1, '\0')                            << QString();
    QTest::newRow("half of the zeros")  << zeros_at({1, 3, 5, 7, 9, 11, 13, 15})          << QString();
    QTest::newRow("more than half")     << zeros_at({1, 3, 5, 7, 9, 11, 13, 15, 17})      << utf_16;
    QTest::newRow("in even places")     << zeros_at({0, 2, 4, 6, 8, 10, 12, 14, 16})      << utf_16;
    QTest::newRow("one at odds")        << zeros_at({0, 1, 3, 5, 7, 9, 11, 13, 15, 17})   << utf_16;
    QTest::newRow("two at odds")        << zeros_at({0, 2, 1, 3, 5, 7, 9, 11, 13, 15, 17}) << QString();
    QTest::newRow("CR alone")           << "a\rb\r"_ba                                    << u"its lines end with CR alone: convert it first (dos2unix -c mac)"_s;
    QTest::newRow("CR and LF")          << "a\r\nb\r\n"_ba                                << QString();
    // clang-format on
}

void test_log_text::other_texts()
{
    QFETCH(const QByteArray, start);
    QTEST(why_no_log_text(start).value_or(QString()), "words");
}

void test_log_text::lines_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<bool>("is_of_a_log");

    // clang-format off
    QTest::newRow("system log")       << "May 17 12:11:05 phone"_ba         << true;
    QTest::newRow("day of one digit") << "May  7 12:11:05"_ba               << true;
    QTest::newRow("blanks before")    << "  May 17 12:11:05"_ba             << true;
    QTest::newRow("export")           << "2026-05-17 12:11"_ba              << true;
    QTest::newRow("ISO 8601")         << "2026-05-17T12:11"_ba              << true;
    QTest::newRow("found device")     << "x BLE device found: y"_ba         << true;
    QTest::newRow("active device")    << "x active device: y"_ba            << true;
    QTest::newRow("empty")            << QByteArray()                       << false;
    QTest::newRow("no seconds")       << "May 17 12:11"_ba                  << false;
    QTest::newRow("day of 40")        << "May 47 12:11:05"_ba               << false;
    QTest::newRow("small letters")    << "may 17 12:11:05"_ba               << false;
    QTest::newRow("behind a word")    << "on May 17 12:11:05"_ba            << false;
    QTest::newRow("far behind")       << QByteArray(26, ' ') + "May 17 12:11:05" << false;
    QTest::newRow("just before that") << QByteArray(25, ' ') + "May 17 12:11:05" << true;
    QTest::newRow("date alone")       << "2026-05-17"_ba                    << false;
    // clang-format on
}

void test_log_text::lines()
{
    QFETCH(const QByteArray, line);
    QTEST(is_device_log_line(line), "is_of_a_log");
}

void test_log_text::blocks_data()
{
    QTest::addColumn<QByteArrayList>("blocks");
    QTest::addColumn<int>("decided_after"); // so many blocks; -1: at the end alone
    QTest::addColumn<QString>("reason");    // none: it is a log

    const QString none = u"no line of it looks like one of a device's log"_s;
    const QByteArray line = "May 17 12:11:05 phone\n";
    // clang-format off
    QTest::newRow("nothing")             << QByteArrayList{}                              << -1 << u"it is empty"_s;
    QTest::newRow("empty block")         << QByteArrayList{""}                            << -1 << u"it is empty"_s;
    QTest::newRow("first line")          << QByteArrayList{line}                          << 1  << QString();
    QTest::newRow("second line")         << QByteArrayList{"a\n" + line}                  << 1  << QString();
    QTest::newRow("without its end")     << QByteArrayList{line.chopped(1)}               << 1  << QString();
    QTest::newRow("across two blocks")   << QByteArrayList{"a\nMay 17 12", ":11:05\n"}    << 2  << QString();
    QTest::newRow("second block")        << QByteArrayList{"a\nb\n", line}                << 2  << QString();
    QTest::newRow("no such line")        << QByteArrayList{"a\n", "b\n"}                  << -1 << none;
    QTest::newRow("archive")             << QByteArrayList{"\x1f\x8b", line}              << 1  << u"it is a gzip archive: unpack it first"_s;
    QTest::newRow("archive in it")       << QByteArrayList{"a\n", "\x1f\x8b\n"}           << -1 << none;
    // clang-format on
}

void test_log_text::blocks()
{
    QFETCH(const QByteArrayList, blocks);
    QFETCH(const int, decided_after);
    QFETCH(const QString, reason);
    device_log_check check;
    int decided = -1;
    for (qsizetype i = 0; i < blocks.size(); ++i) {
        const bool is_log = check.add(blocks.at(i));
        if (decided < 0 && check.is_decided())
            decided = int(i) + 1;
        QCOMPARE(is_log, check.is_decided() && check.reason().isEmpty());
    }
    QCOMPARE(decided, decided_after);
    QCOMPARE(check.finish(), reason.isEmpty());
    QCOMPARE(check.reason(), reason);
}

BLUETOOTH_LOGS_TEST(test_log_text, QCoreApplication)

#include "test_log_text.moc"
