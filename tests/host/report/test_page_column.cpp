// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/page_column.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

/** The shortest form of a column's values. */
class test_page_column : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void numbers();
    void nearly_every_row_its_own();
    void more_values_than_places();
    void first_rows();
    void same_values();
};

namespace {

page_column column_of(const QByteArrayList &texts)
{
    page_column column;
    for (const QByteArray &text : texts)
        column.add(cell::of_text_if_any(text));
    return column;
}

page_column column_of_numbers(qint64 count)
{
    page_column column;
    for (qint64 number = 0; number < count; ++number)
        column.add(cell::of_integer(number));
    return column;
}

} // namespace

void test_page_column::values_data()
{
    QTest::addColumn<QByteArrayList>("texts");
    QTest::addColumn<QByteArray>("json");

    const QByteArray null;
    // clang-format off
    QTest::newRow("one value")     << QByteArrayList{"a", "a"}            << QByteArray("\"same\":\"a\"");
    QTest::newRow("null")          << QByteArrayList{null}                << QByteArray("\"same\":\"\\\\N\"");
    QTest::newRow("empty")         << QByteArrayList{""}                  << QByteArray("\"same\":\"\"");
    QTest::newRow("several")       << QByteArrayList{"a", "b", "a"}       << QByteArray("\"values\":\"a\u00a0b\",\"rows\":\"AAEA\"");
    QTest::newRow("null or empty") << QByteArrayList{null, "", null}      << QByteArray("\"values\":\"\\\\N\u00a0\",\"rows\":\"AAEA\"");
    QTest::newRow("looks null")    << QByteArrayList{"\\N"}               << QByteArray("\"same\":\"\\\\\\\\N\"");
    QTest::newRow("separator")     << QByteArrayList{"a\u00a0b"}          << QByteArray("\"same\":\"a\\\\u{a0}b\"");
    QTest::newRow("markup")        << QByteArrayList{"</script>"}         << QByteArray("\"same\":\"\\u003c/script\\u003e\"");
    // clang-format on
}

void test_page_column::values()
{
    QFETCH(QByteArrayList, texts);
    QFETCH(QByteArray, json);
    QCOMPARE(column_of(texts).json(), json);
}

void test_page_column::numbers()
{
    page_column column = column_of_numbers(2);
    column.add(cell());
    QVERIFY(column.is_number());
    column.add(cell::of_text("3"));
    QVERIFY(!column.is_number());
    QVERIFY(!column_of({QByteArray()}).is_number());
    QVERIFY(!column_of({QByteArray()}).is_filled());
}

/** 256 values have places of one byte; with more of them a list of all rows is as short. */
void test_page_column::nearly_every_row_its_own()
{
    QVERIFY(column_of_numbers(256).json().startsWith("\"values\":\"0\u00a01"));
    QVERIFY(column_of_numbers(257).json().startsWith("\"text\":\"0\u00a01"));
    page_column column = column_of_numbers(257);
    for (int row = 0; row < 1000; ++row)
        column.add(cell::of_integer(256));
    QVERIFY(column.json().endsWith(",\"wide\":true"));
}

void test_page_column::more_values_than_places()
{
    page_column column = column_of_numbers(65537);
    column.add(cell());
    column.add(cell::of_text(""));
    const QByteArray json = column.json();
    QVERIFY(json.startsWith("\"text\":\"0\u00a01\u00a02"));
    QVERIFY(json.endsWith("65535\u00a065536\u00a0\\\\N\u00a0\""));
    QCOMPARE(column.size(), 65539);
}

void test_page_column::first_rows()
{
    const page_column column = column_of_numbers(300);
    QCOMPARE(column.shown(0), "0");
    QCOMPARE(column.shown(199), "199");
    QVERIFY(column.shown(200).isNull());
    QVERIFY(column_of({QByteArray()}).shown(0).isNull());
    QVERIFY(!column_of({""}).shown(0).isNull());
}

void test_page_column::same_values()
{
    QVERIFY(column_of({"1", "2"}).is_same_as(column_of({"1", "2"})));
    QVERIFY(!column_of({"1", "2"}).is_same_as(column_of({"2", "1"})));
    QVERIFY(column_of_numbers(70000).is_same_as(column_of_numbers(70000)));
    QVERIFY(!column_of_numbers(70000).is_same_as(column_of_numbers(70001)));
}

BLUETOOTH_LOGS_TEST(test_page_column, QCoreApplication)

#include "test_page_column.moc"
