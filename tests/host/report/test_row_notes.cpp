// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/row_notes.h"
#include "host/report/reading/wal_change.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

case_note note_on(int number, const QString &device, const QString &text, bool is_flag = false)
{
    case_note note;
    note.number = number;
    note.device = device;
    note.text = text;
    note.is_flag = is_flag;
    return note;
}

case_note note_on_row(int number, const noted_row &row, const QString &text)
{
    case_note note = note_on(number, {}, text);
    note.row = row;
    return note;
}

wal_change change_of(const QByteArray &before, const QByteArray &after)
{
    static const report_source source{source_record(), u"Source1"_s, {}};
    return {source, "devices", {}, "changed", before, after, {}};
}

} // namespace

/** What examiners noted, and what write-ahead logs change, beside a row. */
class test_row_notes : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void devices_are_found_by_any_notation();
    void rows_are_found_by_source_table_and_number();
    void marks();
    void changed_values_data();
    void changed_values();
    void counters_of_the_row_with_its_log();
};

void test_row_notes::devices_are_found_by_any_notation()
{
    const note_list list({note_on(1, u"B4:C2:6A:7F:D3:7A"_s, u"the headset"_s), note_on(2, u"0A-U"_s, u"other"_s)});
    QCOMPARE(list.of_device({"Public b4-c2-6a-7f-d3-7a"}).size(), 1);
    QCOMPARE(list.of_device({"b4c26a7fd37a", "B4:C2:6A:7F:D3:7A"}).size(), 1);
    QCOMPARE(list.of_device({"", "0a-u", "B4:C2:6A:7F:D3:7A"}).size(), 2);
    QCOMPARE(list.of_device({"B4:C2:6A:7F:D3:7B", ""}).size(), 0);
}

void test_row_notes::rows_are_found_by_source_table_and_number()
{
    const note_list list({note_on_row(1, {2, u"devices"_s, 7}, u"this one"_s)});
    QCOMPARE(list.of_row({2, u"devices"_s, 7}).size(), 1);
    QCOMPARE(list.of_row({1, u"devices"_s, 7}).size(), 0);
    QCOMPARE(list.of_row({2, u"paired_devices"_s, 7}).size(), 0);
    QCOMPARE(list.of_row({2, u"devices"_s, 8}).size(), 0);
}

void test_row_notes::marks()
{
    const case_note text = note_on(1, u"A"_s, u"a \"b\""_s);
    const case_note flag = note_on(2, u"A"_s, {}, true);
    const case_note second = note_on(3, u"A"_s, u"c"_s);
    const note_marks none;
    QCOMPARE(none.json, "[]"_ba);
    QVERIFY(!none.is_flagged);
    notes_of_one notes{&second};
    add_notes(notes, {&text, &flag});
    add_notes(notes, {&text});
    const note_marks all(notes);
    QCOMPARE(all.json, R"(["a \"b\"","c"])"_ba);
    QCOMPARE(all.text, R"(a "b" | c)"_ba);
    QVERIFY(all.is_flagged);
    QVERIFY(!note_marks({&text}).is_flagged);
}

void test_row_notes::changed_values_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QByteArray>("values");

    // clang-format off
    QTest::newRow("a counter")       << R"({"Name":"Car","LastSeenTime":5})"_ba << R"({"Name":"Car","LastSeenTime":9})"_ba << R"({"LastSeenTime":9})"_ba;
    QTest::newRow("a large integer") << R"({"LastSeenTime":5})"_ba << R"({"LastSeenTime":9007199254740993})"_ba << R"({"LastSeenTime":9007199254740993})"_ba;
    QTest::newRow("a name is gone")  << R"({"Name":"Car","Tags":1})"_ba << R"({"Name":null,"Tags":1})"_ba << R"({"Name":null})"_ba;
    QTest::newRow("a column is new") << R"({"Name":"Car"})"_ba << R"({"Name":"Car","Tags":"x"})"_ba << R"({"Tags":"x"})"_ba;
    QTest::newRow("nothing")         << R"({"Name":"Car"})"_ba << R"({"Name":"Car"})"_ba << "{}"_ba;
    QTest::newRow("deleted")         << R"({"Name":"Car"})"_ba << ""_ba << ""_ba;
    // clang-format on
}

void test_row_notes::changed_values()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QFETCH(QByteArray, values);
    QCOMPARE(change_of(before, after).changed_values(), values);
}

void test_row_notes::counters_of_the_row_with_its_log()
{
    const counter_pair both = change_of("{}", R"({"LastSeenTime":9,"LastConnectionTime":"7"})").counters_after();
    QCOMPARE(both.seen, std::optional<qint64>(9));
    QCOMPARE(both.connected, std::optional<qint64>(7));
    const counter_pair deleted = change_of(R"({"LastSeenTime":9})", {}).counters_after();
    QCOMPARE(deleted.seen, std::optional<qint64>());
    QCOMPARE(deleted.connected, std::optional<qint64>());
}

BLUETOOTH_LOGS_TEST(test_row_notes, QCoreApplication)

#include "test_row_notes.moc"
