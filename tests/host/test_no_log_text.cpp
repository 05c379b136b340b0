// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

/** What is no log text of a device is no iOS source, and an empty result is not taken for a finding. */
class test_no_log_text : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void damaged_container_is_refused_data();
    void damaged_container_is_refused();
    void file_is_refused_data();
    void file_is_refused();
    void log_is_taken_data();
    void log_is_taken();
};

void test_no_log_text::file_is_refused_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");

    const QByteArray line = "May 17 12:11:05 phone bluetoothd[159] <Notice>: x\n";
    const auto utf_16 = [&line](int first) {
        QByteArray text;
        for (const char byte : line)
            text.append(first == 0 ? '\0' : byte).append(first == 0 ? byte : '\0');
        return text;
    };
    const QByteArray rest(600, '\1');
    // clang-format off
    QTest::newRow("empty")          << QByteArray()                                    << u"it is empty"_s;
    QTest::newRow("SQLite")         << QByteArray("SQLite format 3\0", 16) + rest      << u"it is an SQLite database"_s;
    QTest::newRow("property list")  << "bplist00" + rest                               << u"it is a property list"_s;
    QTest::newRow("program")        << QByteArray("\x7f" "ELF\2\1\1\0", 8) + rest      << u"it is a program"_s;
    QTest::newRow("UTF-16, mark")   << "\xff\xfe" + utf_16(1)                          << u"it is a text in UTF-16: convert it first (iconv -f UTF-16 -t UTF-8)"_s;
    QTest::newRow("UTF-16 BE, mark") << "\xfe\xff" + utf_16(0)                         << u"it is a text in UTF-16: convert it first (iconv -f UTF-16 -t UTF-8)"_s;
    QTest::newRow("UTF-16")         << utf_16(1)                                       << u"it looks like a text in UTF-16: convert it first (iconv -f UTF-16LE -t UTF-8)"_s;
    QTest::newRow("CR")             << QByteArray(line).replace('\n', '\r').repeated(3) << u"its lines end with CR alone: convert it first (dos2unix -c mac)"_s;
    QTest::newRow("another text")   << QByteArray("Dear diary,\nnothing of this day.\n") << u"no line of it looks like one of a device's log"_s;
    QTest::newRow("one long line")  << QByteArray(3 << 20, 'x')                        << u"no line of it looks like one of a device's log"_s;
    // clang-format on
}

/** What is a container by its first bytes, and nothing behind them. */
void test_no_log_text::damaged_container_is_refused_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("start");
    const QByteArray rest(600, '\1');
    QTest::newRow("gzip") << QByteArray("\x1f\x8b\x08") + rest << u"the archive cannot be read: $: "_s;
    QTest::newRow("xz") << QByteArray("\xfd"
                                      "7zXZ\0",
                                      6)
                               + rest
                        << u"the archive cannot be read: $: "_s;
    QTest::newRow("bzip2") << "BZh9" + rest << u"the archive cannot be read: $: "_s;
    QTest::newRow("zstd") << QByteArray("\x28\xb5\x2f\xfd") + rest << u"the archive cannot be read: $: "_s;
    QTest::newRow("zip") << "PK\x03\x04" + rest
                         << u"$: there is no evidence in it; the container cannot be read to its end: "_s;
    QTest::newRow("7z") << QByteArray("7z\xbc\xaf\x27\x1c") + rest
                        << u"$: there is no evidence in it; the container cannot be read to its end: "_s;
    QTest::newRow("tar") << QByteArray(257, 'a') + "ustar" + rest << u"the archive cannot be read: $: "_s;
    QTest::newRow("E01") << QByteArray("EVF\x09\x0d\x0a\xff\0", 8) + rest << u"the image cannot be opened: $: "_s;
}

void test_no_log_text::damaged_container_is_refused()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, start);
    const host_program host;
    QFile file(host.path(u"log"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    file.close();
    const host_result result = host.run({u"extract"_s, u"-i"_s, u"log"_s, u"-o"_s, u"case"_s});
    QVERIFY2(result.errors.startsWith(u"error: "_s + start.replace(u"$"_s, host.path(u"log"_s))),
             qPrintable(result.errors));
    QCOMPARE(result.exit_code, 3);
    QVERIFY(!QFile::exists(host.path(u"case"_s)));
}

void test_no_log_text::file_is_refused()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, reason);
    const host_program host;
    QFile log(host.path(u"log"_s));
    QVERIFY(log.open(QIODevice::WriteOnly) && log.write(content) == content.size());
    log.close();
    for (const QStringList &type : {QStringList(), QStringList{u"-t"_s, u"iOS_UID"_s}}) {
        const host_result result = host.run(QStringList{u"extract"_s, u"-i"_s, u"log"_s, u"-o"_s, u"case"_s} + type);
        QCOMPARE(result.errors,
                 u"error: this is no log text of a device: "_s + host.path(u"log"_s) + u": "_s + reason + u'\n');
        QCOMPARE(result.exit_code, 3);
        QVERIFY(!QFile::exists(host.path(u"case"_s)));
    }
}

void test_no_log_text::log_is_taken_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("note");

    const QByteArray line = "May 17 12:11:05 phone bluetoothd[159] <Notice>: nothing\n";
    const QByteArray found = "May 17 12:11:05 phone a[1] <Notice>: BLE device found: SFDevice ID AB, Nm 'x', Md 'y'\n";
    const QString nothing = u"note: no line of the log tells of a Bluetooth device\n"_s;
    // clang-format off
    QTest::newRow("system log")            << line                                                  << nothing;
    QTest::newRow("no line end")           << line.chopped(1)                                       << nothing;
    QTest::newRow("day of one figure")     << QByteArray("May  7 02:11:05 phone a[1] <Notice>: x\n") << nothing;
    QTest::newRow("exported log")          << QByteArray("2026-05-17 12:11:05.123456+0200 0x1 Default a: x\n") << nothing;
    QTest::newRow("CR and LF")             << QByteArray(line).replace("\n", "\r\n")                << nothing;
    QTest::newRow("behind other lines")    << QByteArray("about this log\n\n").repeated(200000) + line << nothing;
    QTest::newRow("stray bytes")           << "\xff\xfd\n" + line                                   << nothing;
    QTest::newRow("device")                << found                                                 << QString();
    QTest::newRow("device without a time") << QByteArray("BLE device found: SFDevice ID AB, Nm 'x', Md 'y'\n") << QString();
    // clang-format on
}

void test_no_log_text::log_is_taken()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, note);
    const host_program host;
    QFile log(host.path(u"log"_s));
    QVERIFY(log.open(QIODevice::WriteOnly) && log.write(content) == content.size());
    log.close();
    const host_result result = host.run({u"extract"_s, u"-i"_s, u"log"_s, u"-o"_s, u"case"_s});
    QCOMPARE(result.errors, u"note: the result tables get the columns that rows of iOS sources fill; --suite-tables "
                            "leaves them as the suite makes them\n"_s
                                + note);
    QCOMPARE(result.exit_code, 0);
}

BLUETOOTH_LOGS_TEST(test_no_log_text, QCoreApplication)

#include "test_no_log_text.moc"
