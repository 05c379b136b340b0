// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_check.h"
#include "host/case/case_notes.h"
#include "host/files/host_error.h"
#include "tests/host/case/made_case.h"
#include "tests/support/test_entry.h"

using namespace Qt::StringLiterals;

namespace {

case_note note_on(const QString &device, const QString &text)
{
    case_note note;
    note.author = u"A. Example"_s;
    note.device = device;
    note.text = text;
    return note;
}

} // namespace

class test_case_notes : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void devices_data();
    void devices();
    void rows_data();
    void rows();
    void notes_are_appended_and_never_changed();
    void what_is_refused();
    void forged_lines_data();
    void forged_lines();
    void links_are_not_followed();
    void verification_takes_them_as_a_note();
};

void test_case_notes::devices_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("device");

    // clang-format off
    QTest::newRow("colons")          << u"b4:c2:6a:7f:d3:7a"_s << u"B4:C2:6A:7F:D3:7A"_s;
    QTest::newRow("hyphens")         << u"B4-C2-6A-7F-D3-7A"_s << u"B4:C2:6A:7F:D3:7A"_s;
    QTest::newRow("no separators")   << u"b4c26a7fd37a"_s      << u"B4:C2:6A:7F:D3:7A"_s;
    QTest::newRow("two separators")  << u"b4:c2-6a:7f:d3:7a"_s << QString();
    QTest::newRow("13 digits")       << u"b4c26a7fd37a1"_s     << QString();
    QTest::newRow("UUID")            << u"5c0e1c52-6f6c-4b0e-9d3d-0a1b2c3d4e5f"_s << u"5C0E1C52-6F6C-4B0E-9D3D-0A1B2C3D4E5F"_s;
    QTest::newRow("UUID, short")     << u"5c0e1c52-6f6c-4b0e-9d3d-0a1b2c3d4e5"_s  << QString();
    QTest::newRow("a name")          << u"Headset"_s           << QString();
    // clang-format on
}

void test_case_notes::devices()
{
    QFETCH(QString, text);
    QFETCH(QString, device);
    QCOMPARE(normal_device(text).value_or(QString()), device);
}

void test_case_notes::rows_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("is_row");

    // clang-format off
    QTest::newRow("a row")         << u"2:paired_devices:17"_s << true;
    QTest::newRow("another table") << u"2:sqlite_master:17"_s  << false;
    QTest::newRow("no number")     << u"2:devices:"_s          << false;
    QTest::newRow("no source")     << u"devices:17"_s          << false;
    QTest::newRow("below zero")    << u"2:devices:-1"_s        << false;
    // clang-format on
}

void test_case_notes::rows()
{
    QFETCH(QString, text);
    QFETCH(bool, is_row);
    QCOMPARE(row_named(text), is_row ? std::optional(noted_row{2, u"paired_devices"_s, 17}) : std::nullopt);
}

void test_case_notes::notes_are_appended_and_never_changed()
{
    const made_case the_case;
    const case_layout layout = the_case.layout();
    QVERIFY(read_case_notes(layout).isEmpty());
    case_note flag;
    flag.author = u"B"_s;
    flag.row = noted_row{2, u"devices"_s, 17};
    flag.is_flag = true;
    QCOMPARE(add_case_note(layout, note_on(u"B4:C2:6A:7F:D3:7A"_s, u"a\nb"_s)), 1);
    QCOMPARE(add_case_note(layout, flag), 2);
    const QByteArray before = made_case::content(layout.notes());
    remove_case_note(layout, 1, u"C"_s);
    QVERIFY(made_case::content(layout.notes()).startsWith(before));
    QCOMPARE(add_case_note(layout, note_on(u"B4:C2:6A:7F:D3:7A"_s, u"c"_s)), 3);

    const QList<case_note> notes = read_case_notes(layout);
    QCOMPARE(notes.size(), 2);
    QCOMPARE(notes.at(0).number, 2);
    QCOMPARE(notes.at(0).row, flag.row);
    QVERIFY(notes.at(0).is_flag && notes.at(0).text.isEmpty() && notes.at(0).device.isEmpty());
    QVERIFY(notes.at(0).time.endsWith(u'Z'));
    QCOMPARE(notes.at(1).author, u"A. Example"_s);
    QCOMPARE(notes.at(1).device, u"B4:C2:6A:7F:D3:7A"_s);
    QCOMPARE(notes.at(1).text, u"c"_s);
}

void test_case_notes::what_is_refused()
{
    const made_case the_case;
    case_note note;
    note.row = noted_row{3, u"devices"_s, 1}; // there is no such source
    QVERIFY_THROWS_EXCEPTION(host_error, add_case_note(the_case.layout(), note));
    QVERIFY_THROWS_EXCEPTION(host_error, remove_case_note(the_case.layout(), 1, u"A"_s));
    QVERIFY(!QFile::exists(the_case.layout().notes()));

    note.row = {};
    note.device = u"B4:C2:6A:7F:D3:7A"_s;
    note.author = u"A"_s;
    note.is_flag = true;
    QCOMPARE(add_case_note(the_case.layout(), note), 1);
    remove_case_note(the_case.layout(), 1, u"A"_s);
    QVERIFY_THROWS_EXCEPTION(host_error, remove_case_note(the_case.layout(), 1, u"A"_s)); // it is removed already
    QVERIFY_THROWS_EXCEPTION(host_error, remove_case_note(the_case.layout(), 2, u"A"_s));
}

void test_case_notes::forged_lines_data()
{
    QTest::addColumn<QByteArray>("line");

    // clang-format off
    QTest::newRow("no JSON")          << QByteArray("x\n");
    QTest::newRow("no note")          << QByteArray("{}\n");
    QTest::newRow("another number")   << QByteArray(R"({"number":2,"time":"t","by":"A","device":"B4:C2:6A:7F:D3:7A","row":null,"flag":true,"text":null})" "\n");
    QTest::newRow("no place")         << QByteArray(R"({"number":1,"time":"t","by":"A","device":null,"row":null,"flag":true,"text":null})" "\n");
    QTest::newRow("removes nothing")  << QByteArray(R"({"removes":1,"time":"t","by":"A"})" "\n");
    QTest::newRow("cut")              << QByteArray(R"({"number":1,)");
    // clang-format on
}

void test_case_notes::forged_lines()
{
    QFETCH(QByteArray, line);
    const made_case the_case;
    made_case::write(the_case.layout().notes(), line);
    QVERIFY_THROWS_EXCEPTION(host_error, read_case_notes(the_case.layout()));
    QVERIFY_THROWS_EXCEPTION(host_error, add_case_note(the_case.layout(), note_on(u"B4:C2:6A:7F:D3:7A"_s, u"a"_s)));
    QCOMPARE(made_case::content(the_case.layout().notes()), line);
}

void test_case_notes::links_are_not_followed()
{
    const made_case the_case;
    const QString elsewhere = the_case.directory() + u"/../elsewhere"_s;
    made_case::write(elsewhere, {});
    QVERIFY(QFile::link(elsewhere, the_case.layout().notes()));
    QVERIFY_THROWS_EXCEPTION(host_error, add_case_note(the_case.layout(), note_on(u"B4:C2:6A:7F:D3:7A"_s, u"a"_s)));
    QCOMPARE(made_case::content(elsewhere), QByteArray());
}

void test_case_notes::verification_takes_them_as_a_note()
{
    const made_case the_case;
    check_request request;
    request.directory = the_case.directory();
    request.leaves_out_evidence = true;
    request.manifest_sha256 = collect_case(the_case.layout()).manifest_sha256;
    QCOMPARE(check_case(request).notes, QStringList());
    add_case_note(the_case.layout(), note_on(u"B4:C2:6A:7F:D3:7A"_s, u"a"_s));
    QCOMPARE(check_case(request).notes, QStringList({u"notes.jsonl was changed after the manifest was made"_s}));
    QCOMPARE(check_case(request).code(), outcome_code::done);
    request.manifest_sha256 = collect_case(the_case.layout()).manifest_sha256;
    QCOMPARE(check_case(request).notes, QStringList());
}

BLUETOOTH_LOGS_TEST(test_case_notes, QCoreApplication)

#include "test_case_notes.moc"
