// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** Whether a terminal, an editor or a browser would do something with it but show it; line ends are all right. */
bool acts_on_its_reader(QChar character)
{
    const char16_t code = character.unicode();
    return (character.category() == QChar::Other_Control && code != u'\n') || code == 0x2028 || code == 0x2029
           || (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

bool is_harmless(const QString &text)
{
    return std::none_of(text.cbegin(), text.cend(), acts_on_its_reader);
}

} // namespace

/** The names of the hostile sample, in everything that the program writes and prints. */
class test_hostile_names : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void names_are_in_the_evidence();
    void what_is_printed_data();
    void what_is_printed();
    void records_of_the_run();
    void page();
    void json_lines();
    void separated_values();

private:
    QString report(const QString &name) const
    {
        return host.path(u"case/Report/"_s + name);
    }

    host_program host;
};

void test_hostile_names::initTestCase()
{
    QCOMPARE(host.run({u"sample"_s, u"sample"_s, u"--hostile"_s}).exit_code, 0);
    const host_result extraction = host.run(
        {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-i"_s, u"sample/ios/system.log"_s, u"-o"_s, u"case"_s});
    QCOMPARE(extraction.exit_code, 0);
    QVERIFY(is_harmless(extraction.output + extraction.errors));
    const host_result reports = host.run(
        {u"report"_s, u"case"_s, u"-f"_s, u"html"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"tsv"_s, u"-f"_s, u"jsonl"_s});
    QCOMPARE(reports.exit_code, 0);
    QVERIFY(is_harmless(reports.output + reports.errors));
}

/** Else the other tests would prove nothing. */
void test_hostile_names::names_are_in_the_evidence()
{
    const QByteArray database = content_of(
        host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s));
    for (const QByteArray &name :
         {"<img src=x onerror="_ba, "</script>"_ba, "<!--"_ba, "]]>"_ba, "javascript:"_ba, "=cmd|"_ba, "\x1b]0;"_ba,
          "\xE2\x80\xAE"_ba, "\xE2\x80\xA8"_ba, QByteArray("NUL \0 inside", 12), "\xED\xA0\x80"_ba})
        QVERIFY2(database.contains(name), name.toPercentEncoding().constData());
    QVERIFY(database.size() > 1 << 20);
}

void test_hostile_names::what_is_printed_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("table") << QStringList{u"show"_s, u"case"_s, u"--layout"_s, u"table"_s};
    QTest::newRow("records") << QStringList{u"show"_s, u"case"_s, u"--layout"_s, u"records"_s};
    QTest::newRow("verify") << QStringList{u"verify"_s, u"case"_s};
}

void test_hostile_names::what_is_printed()
{
    QFETCH(QStringList, arguments);
    const host_result result = host.run(arguments);
    QCOMPARE(result.exit_code, 0);
    QVERIFY(is_harmless(result.output));
    QVERIFY(is_harmless(result.errors));
    if (arguments.first() != u"show")
        return;
    QVERIFY(result.output.contains(u"NUL \\u{0} inside"_s));
    QVERIFY(result.output.contains(u"\\u{1b}]0;title\\u{7}"_s));
    QVERIFY(result.output.contains(u"photo\\u{202e}gpj.exe"_s));
}

void test_hostile_names::records_of_the_run()
{
    for (const QString &name : {u"manifest.json"_s, u"Source1/source.json"_s, u"Source2/source.json"_s,
                                u"Source1/plugin.log"_s, u"Source2/plugin.log"_s})
        QVERIFY2(is_harmless(QString::fromUtf8(content_of(host.path(u"case/"_s + name)))), qPrintable(name));
}

void test_hostile_names::page()
{
    const QByteArray bytes = content_of(report(u"report.html"_s));
    QVERIFY(bytes.isValidUtf8());
    QVERIFY(is_harmless(QString::fromUtf8(bytes)));
    for (const QByteArray &markup : {"<img"_ba, "<!--"_ba, "]]>"_ba, "<b>bold"_ba, "<i>marked"_ba, "<script>alert"_ba})
        QVERIFY2(!bytes.contains(markup), markup.constData());
    QCOMPARE(bytes.count("</script"), 2); // the data and the page's own
    QVERIFY(bytes.contains("NUL \\\\u{0} inside"));
    QVERIFY(bytes.contains("\\u003cimg src=x onerror=alert(1)\\u003e"));
    QVERIFY(bytes.contains("(cut; 1048572 bytes)"));
    QVERIFY(bytes.size() < 3'000'000); // the long name is there in part
}

void test_hostile_names::json_lines()
{
    QStringList names;
    QJsonValue no_utf8;
    const QByteArray content = content_of(report(u"devices.jsonl"_s));
    QVERIFY(content.isValidUtf8());
    for (const QByteArray &line : content.split('\n')) {
        if (line.isEmpty())
            continue;
        const QJsonObject row = QJsonDocument::fromJson(line).object();
        QVERIFY2(!row.isEmpty(), line.left(200).constData());
        names.append(row["plugin"_L1]["device_name"_L1].toString());
        if (row["host"_L1]["name"_L1].isObject() && row["source"_L1] == 1)
            no_utf8 = row["host"_L1]["name"_L1];
    }
    QCOMPARE(names.size(), 1053);
    QCOMPARE(no_utf8.toObject(),
             (QJsonObject{{u"base64"_s, QString::fromLatin1("lone surrogate \xED\xA0\x80 inside"_ba.toBase64())}}));
    QVERIFY(names.contains(u"<img src=x onerror=alert(1)>"_s.repeated(37449)));
    QVERIFY(names.contains(QString(u"NUL "_s + QChar(0) + u" inside"_s)));
    QVERIFY(names.contains(u"</script><script>alert(1)</script>"_s));
    QVERIFY(names.contains(u"a line\u2028and a paragraph\u2029end"_s));
    QVERIFY(names.contains(u"\x1b[31mred\x1b[0m \x1b]0;title\x07"_s));
}

void test_hostile_names::separated_values()
{
    const QString python = QStandardPaths::findExecutable(u"python3"_s);
    if (python.isEmpty())
        QSKIP("python3 is not there");
    // No cell is a formula, and the long one comes back whole.
    const QString script = u"import csv, sys\n"
                           "csv.field_size_limit(1 << 24)\n"
                           "for name, separator in ((sys.argv[1], ','), (sys.argv[2], '\\t')):\n"
                           "    with open(name, encoding='utf-8', newline='') as file:\n"
                           "        rows = list(csv.reader(file, delimiter=separator))\n"
                           "    cells = [cell for row in rows for cell in row]\n"
                           "    numbers = [c for c in cells if c.lstrip('-').isdigit()]\n"
                           "    formulas = [c for c in cells if c.strip()[:1] in ('=', '+', '-', '@')]\n"
                           "    if len(rows) != 1054 or set(formulas) - set(numbers): sys.exit(1)\n"
                           "    if \"'=cmd|'/C calc'!A0\" not in cells: sys.exit(2)\n"
                           "    if '<img src=x onerror=alert(1)>' * 37449 not in cells: sys.exit(3)\n"
                           "    if 'NUL \\0 inside' not in cells: sys.exit(4)\n"_s;
    QCOMPARE(QProcess::execute(python, {u"-c"_s, script, report(u"devices.csv"_s), report(u"devices.tsv"_s)}), 0);
}

BLUETOOTH_LOGS_TEST(test_hostile_names, QCoreApplication)

#include "test_hostile_names.moc"
