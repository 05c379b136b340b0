// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/extractors/ios_uid/ios_uid_case.h"
#include "tests/support/plugin_run.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** A line that reports a device, synthetic like every log text here. */
QByteArray found(const QByteArray &fields)
{
    return "Nov 15 20:32:16 host proc[1]: BLE device found: " + fields + '\n';
}

/** A notice of an active device. */
QByteArray active(const QByteArray &fields)
{
    return "Nov 15 20:32:16 host proc[1] <Notice>: Connected active device: " + fields + '\n';
}

/** One row with the date of the lines above behind its other values. */
QStringList row(const QString &values)
{
    return {values + u"|'Nov 15 20:32:16'"_s};
}

QStringList device_rows(const ios_uid_case &test)
{
    return test.results.quoted_rows(u"devices"_s, {u"device_name"_s, u"model"_s, u"sf_device_id"_s, u"date"_s});
}

QStringList paired_rows(const ios_uid_case &test)
{
    return test.results.quoted_rows(u"paired_devices"_s,
                                    {u"device_address"_s, u"device_name"_s, u"model"_s, u"status"_s, u"date"_s});
}

} // namespace

/** What a log makes of result tables that a host has given the missing columns. */
class test_log_rows : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void devices_data();
    void devices();
    void paired_devices_data();
    void paired_devices();
    void whole_rows();
    void nul_bytes_are_kept();
};

void test_log_rows::devices_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QStringList>("rows");

    // clang-format off
    QTest::newRow("all fields") << found(R"(SFDevice ID 1A2B, Nm 'Desk\M-b\M^@\M^Ys Phone', Md 'Model1,1')")
        << row(u"'Desk''s Phone'|'Model1,1'|'1A2B'"_s);
    QTest::newRow("any order, others between") << found("RSSI -60, Md 'M', PairedBT, Nm 'N', AID 1, SFDevice ID 1")
        << row(u"'N'|'M'|'1'"_s);
    QTest::newRow("no field is known") << found("IDS 1, RSSI -60") << row(u"NULL|NULL|NULL"_s);
    QTest::newRow("nothing after the marker") << found("") << row(u"NULL|NULL|NULL"_s);
    QTest::newRow("fields without values") << found("SFDevice ID , Nm, Md ''") << row(u"''|''|''"_s);
    QTest::newRow("values of one character") << found("SFDevice ID 1, Nm:n, Md=m") << row(u"'n'|'m'|'1'"_s);
    QTest::newRow("identifier lacks its blank")<< found("SFDevice ID, Nm n") << row(u"'n'|NULL|NULL"_s);
    QTest::newRow("last one wins") << found("Nm 'a', SFDevice ID 1, Nm 'b', SFDevice ID 2, Md x, Md y") << row(u"'b'|'y'|'2'"_s);
    QTest::newRow("last one wins, even empty") << found("Nm 'a', Nm") << row(u"''|NULL|NULL"_s);
    QTest::newRow("only the start of a part") << found(" xNm 'a',  Nm 'b',Nm 'c', nm 'd', NM 'e'") << row(u"NULL|NULL|NULL"_s);
    QTest::newRow("longer word, same start") << found("Nmx'a', Mdxyz") << row(u"'a'|'yz'|NULL"_s);
    QTest::newRow("a value with the separator")<< found("SFDevice ID 1, Nm 'a, b', Md 'c, Nm d'") << row(u"'d'|'c'|'1'"_s);
    QTest::newRow("commas without blank") << found("Nm 'a,b,,c', Md M1,1") << row(u"'a,b,,c'|'M1,1'|NULL"_s);
    QTest::newRow("one quote at each end") << found("Nm ''a'', Md ''b''") << row(u"'''a'''|'''b'''|NULL"_s);
    QTest::newRow("only a leading quote") << found("Nm 'a, Md 'b") << row(u"'a'|'b'|NULL"_s);
    QTest::newRow("only a trailing quote") << found("Nm a', Md b'") << row(u"'a'|'b'|NULL"_s);
    QTest::newRow("a single quote") << found("Nm ', Md '") << row(u"''|''|NULL"_s);
    QTest::newRow("identifier keeps quotes") << found("SFDevice ID 'a'") << row(u"NULL|NULL|'''a'''"_s);
    QTest::newRow("escapes become quotes") << found(R"(Nm 'a\M-b\M^@\M^Y\M-b\M^@\M^Yb')") << row(u"'a''''b'|NULL|NULL"_s);
    QTest::newRow("escapes before stripping") << found(R"(Nm \M-b\M^@\M^Ya\M-b\M^@\M^Y)") << row(u"'a'|NULL|NULL"_s);
    QTest::newRow("escapes stay in a model") << found(R"(Md 'a\M-b\M^@\M^Ys', SFDevice ID \M-b\M^@\M^Y)")
        << row(uR"(NULL|'a\M-b\M^@\M^Ys'|'\M-b\M^@\M^Y')"_s);
    QTest::newRow("other escapes stay") << found(R"(Nm 'a\M-b\M^@\M^X\M-b\M^@\M^y\M-b\M^@')")
        << row(uR"('a\M-b\M^@\M^X\M-b\M^@\M^y\M-b\M^@'|NULL|NULL)"_s);
    QTest::newRow("typographic quote stays") << found("Nm 'Desk\xE2\x80\x99s'") << row(u"'Desk’s'|NULL|NULL"_s);
    QTest::newRow("withheld values") << found("Nm '<private>', Md <private>") << row(u"'<private>'|'<private>'|NULL"_s);
    QTest::newRow("hostile values") << found("Nm '=1+1\x1B[2J\xE2\x80\xAE', Md '); drop table devices;--'")
        << row(u"'=1+1\u001B[2J\u202E'|'); drop table devices;--'|NULL"_s);
    QTest::newRow("blanks at both ends go") << found(" \t Nm 'a' \t ") << row(u"'a'|NULL|NULL"_s);
    QTest::newRow("no blank after the marker") << QByteArray("Nov 15 20:32:16 BLE device found:Nm 'a', Nm 'b'") << row(u"'b'|NULL|NULL"_s);
    QTest::newRow("only that without a blank") << QByteArray("Nov 15 20:32:16 BLE device found:Nm 'a'") << row(u"NULL|NULL|NULL"_s);
    QTest::newRow("marker ends the log") << QByteArray("Nov 15 20:32:16 BLE device found:") << row(u"NULL|NULL|NULL"_s);
    QTest::newRow("the marker alone") << QByteArray("BLE device found:") << QStringList{u"NULL|NULL|NULL|'BLE device foun'"_s};
    QTest::newRow("marker twice in a line") << found("Nm 'a', BLE device found: Nm 'b'") << row(u"'a'|NULL|NULL"_s);
    QTest::newRow("marker in other case") << QByteArray("Nov 15 20:32:16 ble device found: Nm 'a'\n") << QStringList();
    QTest::newRow("marker cut by a line end") << QByteArray("Nov 15 20:32:16 BLE device\n found: Nm 'a'\n") << QStringList();
    QTest::newRow("line end CR LF") << QByteArray("Nov 15 20:32:16 BLE device found: Nm 'a'\r\nx\r\n") << row(u"'a'|NULL|NULL"_s);
    QTest::newRow("a lone CR ends no line") << QByteArray("Nov 15 20:32:16 x\rBLE device found: Nm 'a'\ry\n")
        << row(u"'a''\ry'|NULL|NULL"_s);
    QTest::newRow("no final line end") << QByteArray("x\nNov 15 20:32:16 BLE device found: Nm 'a'") << row(u"'a'|NULL|NULL"_s);
    QTest::newRow("byte-order marks at starts")<< ("\xEF\xBB\xBF" + found("Nm 'a'") + "\xEF\xBB\xBF" + found("Nm 'b'"))
        << QStringList{u"'a'|NULL|NULL|'Nov 15 20:32:16'"_s,
                       u"'b'|NULL|NULL|'Nov 15 20:32:16'"_s};
    QTest::newRow("a byte-order mark within") << found("Nm 'x\xEF\xBB\xBFy'") << row(u"'x\uFEFFy'|NULL|NULL"_s);
    QTest::newRow("mark at a value's start") << found("Nm '\xEF\xBB\xBFx'") << row(u"'x'|NULL|NULL"_s); // SQLite drops it
    QTest::newRow("invalid UTF-8") << found("Nm '\xFF\xC1\x81z\xE2\x80', Md \xF0\x9F\x8E\xA7")
        << row(u"'\uFFFD\uFFFD\uFFFDz\uFFFD\uFFFD'|'🎧'|NULL"_s);
    QTest::newRow("a date of other characters")<< QByteArray("日本日本日本日本日本日本日本日本日本 BLE device found: Nm a\n")
        << QStringList{u"'a'|NULL|NULL|'日本日本日本日本日本日本日本日'"_s};
    QTest::newRow("every report is a row") << (found("Nm a") + "other\n" + found("Nm a") + found("Nm a"))
        << QStringList(3, row(u"'a'|NULL|NULL"_s).first());
    QTest::newRow("less than the marker") << QByteArray("Nov 15 20:32:16 LE device found: Nm 'a'\nNov 15 20:32:16 BLE device found Nm 'a'\n") << QStringList();
    QTest::newRow("notices do not count") << active("PI 1, Nm 'a'") << QStringList();
    // clang-format on
}

void test_log_rows::devices()
{
    QFETCH(QByteArray, log);
    QFETCH(QStringList, rows);

    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(log);
    test.extractor.extract_available_devices();
    QCOMPARE(device_rows(test), rows);
    QCOMPARE(paired_rows(test), QStringList());
    QCOMPARE(test.debug_log.take_messages(),
             QStringList({u"bluetooth_logs_ios_uid::extract_available_devices:  start"_s,
                          u"bluetooth_logs_ios_uid::extract_available_devices:  end"_s}));
}

void test_log_rows::paired_devices_data()
{
    QTest::addColumn<QByteArray>("log");
    QTest::addColumn<QStringList>("rows");

    // clang-format off
    QTest::newRow("all fields") << active(R"(X, PI 11:22:33:44:55:66, Nm 'Desk\M-b\M^@\M^Ys Buds', Md 'Model2,1')")
        << row(u"'11:22:33:44:55:66'|'Desk''s Buds'|'Model2,1'|'Connected'"_s);
    QTest::newRow("address right behind") << active("PI 11:22:33:44:55:66, Nm 'a'") << row(u"NULL|'a'|NULL|'Connected'"_s);
    QTest::newRow("name right behind") << active("Nm 'a', Md 'b', PI 1") << row(u"'1'|NULL|'b'|'Connected'"_s);
    QTest::newRow("no field is known") << active("X") << row(u"NULL|NULL|NULL|'Connected'"_s);
    QTest::newRow("fields without values") << active("X, PI , Nm, Md") << row(u"''|''|''|'Connected'"_s);
    QTest::newRow("address lacks its blank") << active("X, PI, PI:1") << row(u"NULL|NULL|NULL|'Connected'"_s);
    QTest::newRow("last one wins") << active("X, PI 1, PI 2, Nm a, Nm 'b', Md 'c', Md d") << row(u"'2'|'b'|'d'|'Connected'"_s);
    QTest::newRow("escapes stay in a model") << active(R"(X, Md '\M-b\M^@\M^Y', PI \M-b\M^@\M^Y)")
        << row(uR"('\M-b\M^@\M^Y'|NULL|'\M-b\M^@\M^Y'|'Connected')"_s);
    QTest::newRow("no status") << QByteArray("Nov 15 20:32:16 <Notice>: active device: X, PI 1\n") << row(u"'1'|NULL|NULL|''"_s);
    QTest::newRow("status of several words") << QByteArray("Nov 15 20:32:16 <Notice>:   is now the  active device: X, PI 1\n")
        << row(u"'1'|NULL|NULL|'is now the'"_s);
    QTest::newRow("status with the separator") << QByteArray("Nov 15 20:32:16 <Notice>: PI 1, Nm a, active device: X, Md b\n")
        << row(u"'1'|'a'|'b'|'PI 1, Nm a,'"_s);
    QTest::newRow("a field before the marker") << QByteArray("Nov 15 20:32:16 <Notice>: PI 1 active device: X, Md b\n")
        << row(u"'1 active device: X'|NULL|'b'|'PI 1'"_s);
    QTest::newRow("marker twice in a line") << QByteArray("Nov 15 20:32:16 <Notice>: a active device: b active device: X, PI 1\n")
        << row(u"'1'|NULL|NULL|'a'"_s);
    QTest::newRow("notice twice in a line") << QByteArray("Nov 15 20:32:16 <Notice>: a <Notice>: active device: X, PI 1\n")
        << row(u"'1'|NULL|NULL|'a <Notice>:'"_s);
    // Without a blank after the marker the status is all but the last character.
    QTest::newRow("no blank after the marker") << QByteArray("Nov 15 20:32:16 <Notice>: Lost active device:X, PI 12\n")
        << row(u"'12'|NULL|NULL|'Lost active device:X, PI 1'"_s);
    QTest::newRow("blank before the last one") << QByteArray("Nov 15 20:32:16 <Notice>: Lost active device:X Y\n")
        << row(u"NULL|NULL|NULL|'Lost active device:X'"_s);
    QTest::newRow("marker ends the line") << QByteArray("Nov 15 20:32:16 <Notice>: Lost active device: \n")
        << row(u"NULL|NULL|NULL|'Lost active device'"_s);
    QTest::newRow("no blank after the notice") << QByteArray("Nov 15 20:32:16 <Notice>:active device: X, PI 1\n")
        << row(u"'1'|NULL|NULL|'ctive device: X, PI'"_s);
    QTest::newRow("marker before the notice") << QByteArray("Nov 15 20:32:16 active device: X, PI 1 <Notice>: Gone, PI 2\n")
        << row(u"'2'|NULL|NULL|'Gone, PI'"_s);
    QTest::newRow("one character is left") << QByteArray("Nov 15 20:32:16 active device: <Notice>: x\n") << row(u"NULL|NULL|NULL|''"_s);
    QTest::newRow("nothing is left") << QByteArray("Nov 15 20:32:16 active device: <Notice>:\n") << row(u"NULL|NULL|NULL|''"_s);
    QTest::newRow("notice ends the log") << QByteArray("Nov 15 20:32:16 active device: <Notice>:") << row(u"NULL|NULL|NULL|''"_s);
    QTest::newRow("marker but no notice") << QByteArray("Nov 15 20:32:16 <Error>: active device: X, PI 1\n") << QStringList();
    QTest::newRow("notice but no marker") << QByteArray("Nov 15 20:32:16 <Notice>: active  device: X, PI 1\n") << QStringList();
    QTest::newRow("less than a notice") << QByteArray("Nov 15 20:32:16 Notice>: active device: X, PI 1\nNov 15 20:32:16 <Notice> active device: X, PI 1\n") << QStringList();
    QTest::newRow("less than the marker") << QByteArray("Nov 15 20:32:16 <Notice>: ctive device: X, PI 1\nNov 15 20:32:16 <Notice>: active device X, PI 1\n") << QStringList();
    QTest::newRow("on neighbouring lines") << QByteArray("Nov 15 20:32:16 <Notice>:\nactive device: X, PI 1\n<Notice>:\n") << QStringList();
    QTest::newRow("other letter case") << QByteArray("Nov 15 20:32:16 <notice>: active device: X\n<Notice>: Active device: X\n")
        << QStringList();
    QTest::newRow("every notice is a row") << (active("X, PI 1") + found("Nm a") + active("X, PI 1"))
        << QStringList(2, row(u"'1'|NULL|NULL|'Connected'"_s).first());
    QTest::newRow("line end CR LF") << QByteArray("Nov 15 20:32:16 <Notice>: On active device: X, PI 1\r\n")
        << row(u"'1'|NULL|NULL|'On'"_s);
    QTest::newRow("no final line end") << QByteArray("Nov 15 20:32:16 <Notice>: On active device: X, PI 1") << row(u"'1'|NULL|NULL|'On'"_s);
    QTest::newRow("byte-order mark at start") << ("\xEF\xBB\xBF" + active("X, PI \xFF")) << row(u"'\uFFFD'|NULL|NULL|'Connected'"_s);
    // clang-format on
}

void test_log_rows::paired_devices()
{
    QFETCH(QByteArray, log);
    QFETCH(QStringList, rows);

    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(log);
    test.extractor.extract_paired_devices();
    QCOMPARE(paired_rows(test), rows);
    QCOMPARE(device_rows(test), QStringList());
    QCOMPARE(test.debug_log.take_messages(), QStringList({u"bluetooth_logs_ios_uid::extract_paired_devices:  start"_s,
                                                          u"bluetooth_logs_ios_uid::extract_paired_devices:  end"_s}));
}

void test_log_rows::whole_rows()
{
    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(found("SFDevice ID 1, Nm 'a', Md 'b'") + active("X, PI 2, Nm 'c', Md 'd'"));
    test.extractor.ios_uid_extract_artifacts();

    const QString written =
        u"0|1|NULL|NULL|'%1'|NULL|NULL|NULL|NULL|NULL|NULL|NULL|NULL|'iOS 17'|'Source3'|NULL|NULL|NULL"_s;
    QCOMPARE(test.results.quoted_rows(u"devices"_s, result_columns()), QStringList{written.arg(u"a"_s)});
    QCOMPARE(test.results.quoted_rows(u"paired_devices"_s, result_columns()), QStringList{written.arg(u"c"_s)});
    QCOMPARE(device_rows(test), row(u"'a'|'b'|'1'"_s));
    QCOMPARE(paired_rows(test), row(u"'2'|'c'|'d'|'Connected'"_s));
}

void test_log_rows::nul_bytes_are_kept()
{
    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(QByteArray("\0ov 15 20:32:16 ", 16) + found(QByteArray("Nm 'a\0b', Md '\0'\0", 17)));
    test.extractor.extract_available_devices();
    QCOMPARE(test.results.rows(u"SELECT hex(device_name), hex(model), hex(date) FROM devices"_s),
             QList<QVariantList>({{u"610062"_s, u"002700"_s, u"006F762031352032303A33323A3136"_s}}));
}

BLUETOOTH_LOGS_TEST(test_log_rows, QApplication)

#include "test_log_rows.moc"
