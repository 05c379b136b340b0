// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/log_scan.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QBuffer>
#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <vector>

using namespace Qt::StringLiterals;

using marker_list = std::vector<QLatin1StringView>;
Q_DECLARE_METATYPE(marker_list)

namespace {

constexpr qsizetype block_sizes[] = {1, 2, 3, 7, 16, 17, 18, 64, 1000, 1 << 16};

/** What the scan must find, by its definition: each line is read, decoded and searched. */
QByteArrayList lines_read_one_by_one(const QByteArray &log, const marker_list &markers)
{
    QBuffer file;
    file.setData(log);
    file.open(QIODevice::ReadOnly);
    QByteArrayList lines;
    while (!file.atEnd()) {
        const QByteArray bytes = file.readLine();
        const QString line = QString::fromUtf8(bytes);
        const auto is_in_line = [&line](QLatin1StringView marker) { return line.contains(marker); };
        if (std::all_of(markers.begin(), markers.end(), is_in_line))
            lines.append(bytes);
    }
    return lines;
}

QByteArrayList scanned_lines(const QByteArray &log, const marker_list &markers, qsizetype block_bytes)
{
    QBuffer file;
    file.setData(log);
    file.open(QIODevice::ReadOnly);
    QByteArrayList lines;
    const bool cancelled = false;
    if (!scan_log(
            file, markers, cancelled, [&](const QByteArray &line) { lines.append(line); }, block_bytes))
        lines.append("cancelled");
    return lines;
}

QByteArray random_log(QRandomGenerator &random, const marker_list &markers)
{
    static const QByteArrayList bits = {"\n",
                                        "\n",
                                        "\r\n",
                                        "\r",
                                        QByteArray(1, '\0'),
                                        "\xEF\xBB\xBF",
                                        "\xE2\x80\x99",
                                        "\xE2\x80",
                                        "\xF0",
                                        "\xFF",
                                        "\xC1\x81",
                                        "a",
                                        " ",
                                        "BBBLE",
                                        "active device"};
    QByteArray log;
    for (int i = random.bounded(200); i > 0; --i) {
        const QLatin1StringView marker = markers[size_t(random.bounded(int(markers.size())))];
        switch (random.bounded(4)) {
        case 0:
            log.append(marker.data(), marker.size());
            break;
        case 1:
            log.append(marker.data(), random.bounded(int(marker.size())));
            break;
        default:
            log.append(bits.at(random.bounded(int(bits.size()))));
        }
    }
    return log;
}

/** A log whose disk gives up behind its first bytes. */
class failing_log : public QIODevice
{
public:
    explicit failing_log(const QByteArray &bytes)
        : content(bytes)
    {
        open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    }

protected:
    qint64 readData(char *data, qint64 size) override
    {
        if (pos() >= content.size())
            return -1;
        const QByteArray bytes = content.mid(pos(), size);
        std::copy(bytes.begin(), bytes.end(), data);
        return bytes.size();
    }

    qint64 writeData(const char *, qint64) override
    {
        return -1;
    }

    qint64 size() const override
    {
        return 1 << 20;
    }

private:
    QByteArray content;
};

/** A log that is emptied once its end has been read. */
class shrinking_log : public failing_log
{
public:
    using failing_log::failing_log;

protected:
    qint64 readData(char *data, qint64 size) override
    {
        if (is_empty)
            return 0;
        const qint64 count = failing_log::readData(data, size);
        is_empty = count < 0;
        return qMax<qint64>(count, 0);
    }

private:
    bool is_empty = false;
};

/** A log whose disk leads nowhere behind a place. */
class unseekable_log : public failing_log
{
public:
    unseekable_log(const QByteArray &bytes, qint64 last_place)
        : failing_log(bytes)
        , last(last_place)
    {
    }

    bool seek(qint64 place) override
    {
        return place <= last && failing_log::seek(place);
    }

private:
    qint64 last;
};

} // namespace

class test_log_scan : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void finds_the_lines_data();
    void finds_the_lines();
    void agrees_with_reading_line_by_line_data();
    void agrees_with_reading_line_by_line();
    void every_border_of_a_block();
    void every_place_in_a_long_block();
    void stops_before_the_next_line();
    void a_flag_set_in_the_last_line_comes_too_late();
    void a_flag_set_before_stops_at_once_unless_there_is_no_line();
    void a_read_error_ends_the_log();
    void a_log_that_shrinks_ends();
    void a_place_that_cannot_be_reached_ends_the_log();
};

void test_log_scan::finds_the_lines_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QByteArrayList>("lines");

    // clang-format off
    QTest::newRow("empty log")                 << QByteArray()                       << QByteArrayList();
    QTest::newRow("only line ends")            << QByteArray("\n\n\n")               << QByteArrayList();
    QTest::newRow("only the marker")           << QByteArray("mark:")                << QByteArrayList{"mark:"};
    QTest::newRow("no marker")                 << QByteArray("mark\n:mark\n")        << QByteArrayList();
    QTest::newRow("other letter case")         << QByteArray("Mark:\nMARK:")         << QByteArrayList();
    QTest::newRow("first, last, no line end")  << QByteArray("mark:1\n2\n3mark:")    << QByteArrayList{"mark:1\n", "3mark:"};
    QTest::newRow("twice in a line")           << QByteArray("mark:mark:\nmark:\n")  << QByteArrayList{"mark:mark:\n", "mark:\n"};
    QTest::newRow("CR is no line end")         << QByteArray("1\rmark:\r\n2\r\n")    << QByteArrayList{"1\rmark:\r\n"};
    QTest::newRow("marker across lines")       << QByteArray("ma\nrk:\n")            << QByteArrayList();
    QTest::newRow("marker starts anew")        << QByteArray("mamark:\n")            << QByteArrayList{"mamark:\n"};
    QTest::newRow("empty lines around")        << QByteArray("\n\nmark:\n\n\n")      << QByteArrayList{"mark:\n"};
    QTest::newRow("NUL")                       << QByteArray("\0\nmark:\0x\n\0", 11) << QByteArrayList{QByteArray("mark:\0x\n", 8)};
    // clang-format on
}

void test_log_scan::finds_the_lines()
{
    QFETCH(QByteArray, log);
    QFETCH(QByteArrayList, lines);

    const marker_list markers{"mark:"_L1};
    QCOMPARE(lines_read_one_by_one(log, markers), lines);
    for (const qsizetype block_bytes : block_sizes)
        QCOMPARE(scanned_lines(log, markers, block_bytes), lines);
}

void test_log_scan::agrees_with_reading_line_by_line_data()
{
    QTest::addColumn<marker_list>("markers");

    // clang-format off
    QTest::newRow("one marker")              << marker_list{"BLE device found:"_L1};
    QTest::newRow("two markers")             << marker_list{"active device:"_L1, "<Notice>:"_L1};
    QTest::newRow("short ones that overlap") << marker_list{"aba"_L1, "ab"_L1, "b"_L1};
    // clang-format on
}

void test_log_scan::agrees_with_reading_line_by_line()
{
    QFETCH(marker_list, markers);

    QRandomGenerator random(20'260'517);
    qsizetype found = 0;
    for (int round = 0; round < 1000; ++round) {
        const QByteArray log = random_log(random, markers);
        const QByteArrayList lines = lines_read_one_by_one(log, markers);
        found += lines.size();
        for (const qsizetype block_bytes : block_sizes)
            QVERIFY2(scanned_lines(log, markers, block_bytes) == lines,
                     qPrintable(u"block %1, log %2"_s.arg(block_bytes).arg(QString::fromLatin1(log.toHex()))));
    }
    QVERIFY(found > 1000);
}

void test_log_scan::every_border_of_a_block()
{
    const marker_list markers{"active device:"_L1, "<Notice>:"_L1};
    for (qsizetype before = 0; before < 70; ++before) {
        const QByteArray line = QByteArray(before, 'x') + "<Notice>: active device: y\n";
        const QByteArray log = "active device:\n" + line + QByteArray(before, 'z') + '\n' + line + "<Notice>:\n";
        QCOMPARE(scanned_lines(log, markers, 32), QByteArrayList({line, line}));
    }
}

void test_log_scan::every_place_in_a_long_block()
{
    const marker_list markers{"active device:"_L1, "<Notice>:"_L1};
    for (qsizetype before = 0; before < 1'100; ++before) {
        const QByteArray line = QByteArray(before, ':') + "active device: <Notice>:" + QByteArray(1'100 - before, 'v');
        const QByteArray log = "active device\n" + line + "\n<Notice>: device:\n" + line;
        for (const qsizetype block_bytes : {1'200, 1 << 16})
            QCOMPARE(scanned_lines(log, markers, block_bytes), QByteArrayList({line + '\n', line}));
    }
}

void test_log_scan::stops_before_the_next_line()
{
    QBuffer file;
    file.setData("mark: 1\nmark: 2\nmark: 3\n");
    file.open(QIODevice::ReadOnly);
    bool cancelled = false;
    QByteArrayList lines;
    const auto on_line = [&](const QByteArray &line) {
        lines.append(line);
        cancelled = lines.size() == 2;
    };
    QVERIFY(!scan_log(file, marker_list{"mark:"_L1}, cancelled, on_line));
    QCOMPARE(lines, QByteArrayList({"mark: 1\n", "mark: 2\n"}));
}

void test_log_scan::a_flag_set_in_the_last_line_comes_too_late()
{
    QBuffer file;
    file.setData("1\nmark: 2");
    file.open(QIODevice::ReadOnly);
    bool cancelled = false;
    QVERIFY(scan_log(file, marker_list{"mark:"_L1}, cancelled, [&](const QByteArray &) { cancelled = true; }));
    QVERIFY(cancelled);

    file.close();
    file.setData("mark: 1\n2");
    file.open(QIODevice::ReadOnly);
    cancelled = false;
    QVERIFY(!scan_log(file, marker_list{"mark:"_L1}, cancelled, [&](const QByteArray &) { cancelled = true; }));
}

void test_log_scan::a_flag_set_before_stops_at_once_unless_there_is_no_line()
{
    const auto fail = [](const QByteArray &) { QFAIL("no line may be reported"); };
    const bool cancelled = true;
    QBuffer file;
    file.setData("mark: 1\n");
    file.open(QIODevice::ReadOnly);
    QVERIFY(!scan_log(file, marker_list{"mark:"_L1}, cancelled, fail));

    QBuffer empty;
    empty.open(QIODevice::ReadOnly);
    QVERIFY(scan_log(empty, marker_list{"mark:"_L1}, cancelled, fail));
}

void test_log_scan::a_read_error_ends_the_log()
{
    const bool cancelled = false;
    for (const qsizetype block_bytes : block_sizes) {
        failing_log file("mark: 1\n2\nmark: 3");
        QByteArrayList lines;
        const auto on_line = [&](const QByteArray &line) { lines.append(line); };
        QVERIFY(scan_log(file, marker_list{"mark:"_L1}, cancelled, on_line, block_bytes));
        QCOMPARE(lines, QByteArrayList({"mark: 1\n", "mark: 3"}));
    }
}

/** What stood before the block at hand can no longer be read. */
void test_log_scan::a_log_that_shrinks_ends()
{
    const bool cancelled = false;
    shrinking_log file(QByteArray(100, 'x') + "mark: ");
    QByteArrayList lines;
    const auto on_line = [&](const QByteArray &line) { lines.append(line); };
    QVERIFY(scan_log(file, marker_list{"mark:"_L1}, cancelled, on_line, 64));
    QCOMPARE(lines, QByteArrayList{QByteArray()});
}

void test_log_scan::a_place_that_cannot_be_reached_ends_the_log()
{
    const bool cancelled = false;
    unseekable_log file("mark: 1\n" + QByteArray(80, 'x') + "mark: 2\n", 63);
    QByteArrayList lines;
    const auto on_line = [&](const QByteArray &line) { lines.append(line); };
    QVERIFY(scan_log(file, marker_list{"mark:"_L1}, cancelled, on_line, 64));
    QCOMPARE(lines, QByteArrayList{"mark: 1\n"});
}

BLUETOOTH_LOGS_TEST(test_log_scan, QCoreApplication)

#include "test_log_scan.moc"
