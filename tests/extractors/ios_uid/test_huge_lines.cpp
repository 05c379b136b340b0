// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/extractors/ios_uid/ios_uid_case.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QTest>

using namespace Qt::StringLiterals;

class test_huge_lines : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void a_huge_line_data();
    void a_huge_line();
};

void test_huge_lines::a_huge_line_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("filling");
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<QString>("row");

    const QByteArray start = "Nov 15 20:32:16 host proc[1]: BLE device found: "_ba;
    // clang-format off
    QTest::newRow("no marker")          << QByteArray()            << QByteArray("x")      << "\n" + start + "Nm a\n" << u"'a'|NULL|NULL"_s;
    QTest::newRow("marker at its start") << start + "Nm a, "       << QByteArray("x")      << QByteArray(", Md b\n")  << u"'a'|'b'|NULL"_s;
    QTest::newRow("marker at its end")  << QByteArray("Nov 15 20:32:16") << QByteArray("x") << start + "Nm a\n"       << u"'a'|NULL|NULL"_s;
    QTest::newRow("nothing but parts")  << start                   << QByteArray(", ")     << QByteArray("Nm a")      << u"'a'|NULL|NULL"_s;
    QTest::newRow("nothing but names")  << start                   << QByteArray("Nm x, ") << QByteArray("Nm a")      << u"'a'|NULL|NULL"_s;
    // clang-format on
}

void test_huge_lines::a_huge_line()
{
    QFETCH(QByteArray, start);
    QFETCH(QByteArray, filling);
    QFETCH(QByteArray, end);
    QFETCH(QString, row);

    constexpr qsizetype huge = 50'000'000;
    ios_uid_case test;
    widen_tables(test.results);
    test.write_log(start + filling.repeated(huge / filling.size()) + end);
    test.extractor.extract_available_devices();
    QCOMPARE(test.results.quoted_rows(u"devices"_s, {u"device_name"_s, u"model"_s, u"sf_device_id"_s, u"date"_s}),
             QStringList{row + u"|'Nov 15 20:32:16'"_s});
}

BLUETOOTH_LOGS_TEST(test_huge_lines, QApplication)

#include "test_huge_lines.moc"
