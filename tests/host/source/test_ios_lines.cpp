// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/log_scan.h"
#include "extractors/ios_uid/parse_log_line.h"
#include "host/source/ios_lines.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QBuffer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype block_sizes[] = {1, 2, 3, 7, 16, 17, 18, 64, 1000, 1 << 20};

QByteArrayList found_lines(const QByteArray &log, qsizetype block_bytes)
{
    QByteArrayList lines;
    ios_line_finder finder([&lines](const ios_line &line) {
        lines.append(QByteArray::number(line.number) + '@' + QByteArray::number(line.offset) + ' ' + line.table.data()
                     + (line.has_row ? " " : " without row ") + line.start.toByteArray());
    });
    for (qsizetype begin = 0; begin < log.size(); begin += block_bytes)
        finder.add(QByteArrayView(log).sliced(begin, qMin(block_bytes, log.size() - begin)));
    finder.finish();
    return lines;
}

/** The lines of one table as the plug-in's scan finds them. */
QByteArrayList scanned_lines(const QByteArray &log, const log_line_format &format)
{
    QBuffer file;
    file.setData(log);
    file.open(QIODevice::ReadOnly);
    QByteArrayList lines;
    const bool cancelled = false;
    scan_log(file, format.markers, cancelled,
             [&lines](const QByteArray &line) { lines.append(line.endsWith('\n') ? line.chopped(1) : line); });
    return lines;
}

QByteArray random_log(QRandomGenerator &random)
{
    static const QByteArrayList bits = {"\n",
                                        "\n",
                                        "\r\n",
                                        QByteArray(1, '\0'),
                                        "\xFF",
                                        "BBLE",
                                        "<Notice>:",
                                        "<Notice>",
                                        "active device:",
                                        "active dev",
                                        "BLE device found:",
                                        "BLE device found",
                                        ":",
                                        "a"};
    QByteArray log;
    for (int i = random.bounded(200); i > 0; --i)
        log.append(bits.at(random.bounded(int(bits.size()))));
    return log;
}

} // namespace

class test_ios_lines : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void finds_lines_data();
    void finds_lines();
    void finds_what_the_plugin_finds();
    void a_line_of_any_length();
    void written_lines();
};

void test_ios_lines::finds_lines_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QByteArrayList>("lines");

    // clang-format off
    QTest::newRow("empty")             << QByteArray("") << QByteArrayList();
    QTest::newRow("none")              << QByteArray("a\nb") << QByteArrayList();
    QTest::newRow("found device")      << QByteArray("a\nx BLE device found: y\nb\n") << QByteArrayList{"2@2 devices x BLE device found: y"};
    QTest::newRow("without line end")  << QByteArray("\n\nBLE device found:") << QByteArrayList{"3@2 devices BLE device found:"};
    QTest::newRow("carriage return")   << QByteArray("BLE device found:\r\n") << QByteArrayList{"1@0 devices BLE device found:\r"};
    QTest::newRow("active device")     << QByteArray("<Notice>: active device: y\n") << QByteArrayList{"1@0 paired_devices <Notice>: active device: y"};
    QTest::newRow("words turned")      << QByteArray("active device: <Notice>:\n") << QByteArrayList{"1@0 paired_devices active device: <Notice>:"};
    QTest::newRow("no notice")         << QByteArray("<Error>: active device: y\n<Notice>: z") << QByteArrayList{"1@0 paired_devices without row <Error>: active device: y"};
    QTest::newRow("both")              << QByteArray("<Notice>: active device: BLE device found:\n")
                                       << QByteArrayList{"1@0 devices <Notice>: active device: BLE device found:",
                                                         "1@0 paired_devices <Notice>: active device: BLE device found:"};
    QTest::newRow("twice in a line")   << QByteArray("BLE device found: BLE device found:\nBLE device found:")
                                       << QByteArrayList{"1@0 devices BLE device found: BLE device found:", "2@36 devices BLE device found:"};
    QTest::newRow("in turn")           << QByteArray("BLE device found:\n<Notice>:active device:\nBLE device found:\n")
                                       << QByteArrayList{"1@0 devices BLE device found:", "2@18 paired_devices <Notice>:active device:", "3@42 devices BLE device found:"};
    // clang-format on
}

void test_ios_lines::finds_lines()
{
    QFETCH(QByteArray, log);
    QFETCH(QByteArrayList, lines);
    for (const qsizetype block_bytes : block_sizes)
        QCOMPARE(found_lines(log, block_bytes), lines);
}

void test_ios_lines::finds_what_the_plugin_finds()
{
    QRandomGenerator random(20);
    for (int i = 0; i < 300; ++i) {
        const QByteArray log = random_log(random);
        const QByteArrayList expected_devices = scanned_lines(log, log_line_format::found_device);
        const QByteArrayList expected_paired = scanned_lines(log, log_line_format::active_device);
        for (const qsizetype block_bytes : block_sizes) {
            QByteArrayList devices;
            QByteArrayList paired;
            qint64 last = 0;
            ios_line_finder finder([&](const ios_line &line) {
                if (line.has_row)
                    (line.table == "devices"_L1 ? devices : paired).append(line.start.toByteArray());
                QCOMPARE(log.sliced(line.offset, line.size), line.start);
                QCOMPARE(log.first(line.offset).count('\n') + 1, line.number);
                QVERIFY(line.number >= last);
                last = line.number;
            });
            for (qsizetype begin = 0; begin < log.size(); begin += block_bytes)
                finder.add(QByteArrayView(log).sliced(begin, qMin(block_bytes, log.size() - begin)));
            finder.finish();
            QCOMPARE(devices, expected_devices);
            QCOMPARE(paired, expected_paired);
        }
    }
}

void test_ios_lines::a_line_of_any_length()
{
    const QByteArray block(1 << 20, 'x');
    qint64 size = 0;
    qsizetype held = 0;
    qint64 number = 0;
    ios_line_finder finder([&](const ios_line &line) {
        size = line.size;
        held = line.start.size();
        number = line.number;
    });
    finder.add("first\nBLE devi");
    finder.add("ce found:");
    for (int i = 0; i < 20; ++i)
        finder.add(block);
    finder.add("\n");
    QCOMPARE(number, 2);
    QCOMPARE(size, (20 << 20) + 17);
    QCOMPARE(held, 16 << 20);
}

void test_ios_lines::written_lines()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"ios_lines.jsonl"_s);
    ios_line_writer writer(path);
    writer.add({7, 9000000000, "devices"_L1, "a\t\"\xE2\x80\xAE", 6});
    writer.add({8, 9000000009, "paired_devices"_L1, "\xFF", 1});
    writer.add({9, 9000000011, "devices"_L1, "ab", 20});
    writer.add({10, 9000000012, "devices"_L1, "2024-05-17 12:11:05.123456+0200 x", 33});
    writer.commit();
    QCOMPARE(content_of(path),
             "{\"line\":7,\"offset\":9000000000,\"table\":\"devices\",\"text\":\"a\\t\\\"\\u202e\"}\n"
             "{\"line\":8,\"offset\":9000000009,\"table\":\"paired_devices\",\"text\":{\"base64\":\"/w==\"}}\n"
             "{\"line\":9,\"offset\":9000000011,\"table\":\"devices\",\"text\":\"ab\",\"size\":20}\n"
             "{\"line\":10,\"offset\":9000000012,\"table\":\"devices\","
             "\"text\":\"2024-05-17 12:11:05.123456+0200 x\",\"host_date\":\"2024-05-17T12:11:05.123456+02:00\"}\n");
}

BLUETOOTH_LOGS_TEST(test_ios_lines, QCoreApplication)

#include "test_ios_lines.moc"
