// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/ios_rows.h"

#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class test_ios_rows : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void cells_data();
    void cells();
    void differences_data();
    void differences();
};

void test_ios_rows::cells_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QStringList>("cells");

    const QByteArray found = "May 17 12:11:05 phone p[1] <Notice>: BLE device found: ";
    const QByteArray active = "May 17 12:11:05 phone p[1] <Notice>: ";
    const QString date = u"date=May 17 12:11:05"_s;
    // clang-format off
    QTest::newRow("device")         << u"devices"_s << found + "SFDevice ID 1A, RSSI -60, Nm 'Desk', Md 'M1,1'\r"
        << QStringList{u"sf_device_id=1A"_s, u"device_name=Desk"_s, u"model=M1,1"_s, date};
    QTest::newRow("nothing named")  << u"devices"_s << found + "RSSI -60" << QStringList{u"sf_device_id NULL"_s, u"device_name NULL"_s, u"model NULL"_s, date};
    QTest::newRow("last one counts") << u"devices"_s << found + "SFDevice ID 1, Nm 'a', Nm 'b'" << QStringList{u"sf_device_id=1"_s, u"device_name=b"_s, u"model NULL"_s, date};
    QTest::newRow("nothing behind") << u"devices"_s << found + "SFDevice ID 1, Nm, Md ''" << QStringList{u"sf_device_id=1"_s, u"device_name="_s, u"model="_s, date};
    QTest::newRow("quotation mark") << u"devices"_s << found + R"(SFDevice ID 1, Nm 'Ann\M-b\M^@\M^Ys', Md 'x\M-b\M^@\M^Y')"
        << QStringList{u"sf_device_id=1"_s, u"device_name=Ann's"_s, uR"(model=x\M-b\M^@\M^Y)"_s, date};
    QTest::newRow("no UTF-8")       << u"devices"_s << found + "SFDevice ID \xff" << QStringList{u"sf_device_id=\ufffd"_s, u"device_name NULL"_s, u"model NULL"_s, date};
    QTest::newRow("active")         << u"paired_devices"_s << active + "Route changed to active device: x, PI B4:C2, Nm 'Pods', Md 'P'"
        << QStringList{u"device_address=B4:C2"_s, u"device_name=Pods"_s, u"model=P"_s, date, u"status=Route changed to"_s};
    QTest::newRow("no blank")       << u"paired_devices"_s << active + "now active device:x, PI B4"
        << QStringList{u"device_address=B4"_s, u"device_name NULL"_s, u"model NULL"_s, date, u"status=now active device:x, PI B"_s};
    // clang-format on
}

void test_ios_rows::cells()
{
    QFETCH(QString, table);
    QFETCH(QByteArray, line);
    QFETCH(QStringList, cells);
    QStringList texts;
    for (const expected_cell &cell : expected_cells(table, line))
        texts.append(cell.column + (cell.text.isNull() ? u" NULL"_s : u'=' + cell.text));
    QCOMPARE(texts, cells);
}

void test_ios_rows::differences_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QStringList>("texts");

    // clang-format off
    QTest::newRow("none")         << u"SELECT 1"_s << QStringList();
    QTest::newRow("lost row")     << u"DELETE FROM devices WHERE INT = 1"_s << QStringList{u"the log holds 2 lines for the table devices, and the result 1 row"_s};
    QTest::newRow("one row more") << u"INSERT INTO devices DEFAULT VALUES"_s << QStringList{u"the log holds 2 lines for the table devices, and the result 3 rows"_s};
    QTest::newRow("empty row")    << u"UPDATE devices SET sf_device_id = NULL, device_name = NULL, model = NULL, date = NULL WHERE INT = 2"_s
        << QStringList{u"1 row of the table devices is not what the log says in line 9"_s};
    QTest::newRow("other text")   << u"UPDATE devices SET device_name = device_name || ' '"_s
        << QStringList{u"2 rows of the table devices are not what the log says, the first one in line 4"_s};
    QTest::newRow("empty, not NULL") << u"UPDATE devices SET model = '' WHERE INT = 2"_s
        << QStringList{u"1 row of the table devices is not what the log says in line 9"_s};
    // clang-format on
}

void test_ios_rows::differences()
{
    QFETCH(QString, change);
    QFETCH(QStringList, texts);
    const QTemporaryDir folder;
    const QString database = folder.filePath(u"result.sqlite"_s);
    const QString lines = folder.filePath(u"ios_lines.jsonl"_s);
    {
        const sqlite_file result(database);
        result.execute(
            u"CREATE TABLE devices(INT INTEGER PRIMARY KEY, device_name TEXT, model TEXT, sf_device_id TEXT, date TEXT)"_s);
        result.execute(u"CREATE TABLE paired_devices(INT INTEGER PRIMARY KEY)"_s);
        result.execute(
            u"INSERT INTO devices VALUES(1, 'a', 'm', '1', 'BLE device foun'), (2, 'b', NULL, '2', 'BLE device foun')"_s);
        result.execute(change);
    }
    QFile file(lines);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        "{\"line\":4,\"offset\":0,\"table\":\"devices\",\"text\":\"BLE device found: SFDevice ID 1, Nm 'a', Md 'm'\"}\n"
        "{\"line\":5,\"offset\":0,\"table\":\"other\",\"text\":\"x\"}\n"
        "{\"line\":9,\"offset\":0,\"table\":\"devices\",\"text\":{\"base64\":\""
        + QByteArray("BLE device found: SFDevice ID 2, Nm 'b'").toBase64() + "\"}}\n");
    file.close();
    QCOMPARE(ios_row_differences(database, lines, {u"devices"_s, u"paired_devices"_s}), texts);
}

BLUETOOTH_LOGS_TEST(test_ios_rows, QCoreApplication)

#include "test_ios_rows.moc"
