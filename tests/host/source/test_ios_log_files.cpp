// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/ios_log_files.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray with_row = "x <Notice>: active device: a\n";
const QByteArray without_row = "2024-05-17 12:11:05.123456+0200 x active device: b\n";

} // namespace

class test_ios_log_files : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void lines_without_rows();
    void all_lines_have_rows();
    void zero_bytes_data();
    void zero_bytes();
};

void test_ios_log_files::lines_without_rows()
{
    const QTemporaryDir folder;
    const QString unparsed = folder.filePath(u"unparsed_lines.jsonl"_s);
    ios_log_files files(folder.filePath(u"ios_lines.jsonl"_s), unparsed);
    files.add(QByteArray(with_row + without_row + without_row));
    files.finish();
    QCOMPARE(files.unparsed_counts(), (QJsonObject{{u"devices"_s, 0}, {u"paired_devices"_s, 2}}));
    QCOMPARE(content_of(folder.filePath(u"ios_lines.jsonl"_s)),
             R"({"line":1,"offset":0,"table":"paired_devices","text":"x <Notice>: active device: a"})"
             "\n");
    const QByteArray line = R"(,"table":"paired_devices","text":"2024-05-17 12:11:05.123456+0200 x active device: b",)"
                            R"("host_date":"2024-05-17T12:11:05.123456+02:00"})"
                            "\n";
    QCOMPARE(content_of(unparsed), R"({"line":2,"offset":29)" + line + R"({"line":3,"offset":80)" + line);
}

void test_ios_log_files::all_lines_have_rows()
{
    const QTemporaryDir folder;
    ios_log_files files(folder.filePath(u"ios_lines.jsonl"_s), folder.filePath(u"unparsed_lines.jsonl"_s));
    files.add(with_row);
    files.finish();
    QCOMPARE(files.unparsed_counts(), (QJsonObject{{u"devices"_s, 0}, {u"paired_devices"_s, 0}}));
    QVERIFY(!QFile::exists(folder.filePath(u"unparsed_lines.jsonl"_s)));
}

void test_ios_log_files::zero_bytes_data()
{
    QTest::addColumn<QByteArrayList>("blocks");
    QTest::addColumn<QString>("oddity");

    const QByteArray zero(1, '\0');
    QTest::newRow("none") << QByteArrayList{"a", "b"} << QString();
    QTest::newRow("one") << QByteArrayList{"a", "bc" + zero}
                         << u"it holds 1 zero byte, which no text has, from offset 3 on"_s;
    QTest::newRow("several") << QByteArrayList{"a", zero + "x" + zero, zero}
                             << u"it holds 3 zero bytes, which no text has, from offset 1 on"_s;
}

void test_ios_log_files::zero_bytes()
{
    QFETCH(QByteArrayList, blocks);
    QFETCH(QString, oddity);
    const QTemporaryDir folder;
    ios_log_files files(folder.filePath(u"a"_s), folder.filePath(u"b"_s));
    for (const QByteArray &block : blocks)
        files.add(block);
    QCOMPARE(files.oddity(), oddity);
}

BLUETOOTH_LOGS_TEST(test_ios_log_files, QCoreApplication)

#include "test_ios_log_files.moc"
