// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"
#include "tests/support/text_function.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using library = plugin_static_function;

class test_value_formatting : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void init() override;

    void text_to_text_data();
    void text_to_text();
    void size_of_what_does_not_exist_data();
    void size_of_what_does_not_exist();
    void size_of_a_file();
    void size_of_a_folder();
    void size_of_names_that_are_no_texts();
    void size_of_a_folder_when_cancelled();
    void size_that_does_not_fit();
    void os_scan_version_data();
    void os_scan_version();
    void unicode_data();
    void unicode();
    void unicode_when_cancelled();

private:
    debug_log_capture log;
};

namespace {

/** A file of @p size bytes that takes no room. */
bool make_file(const QString &path, qint64 size)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.resize(size);
}

} // namespace

void test_value_formatting::initTestCase_data()
{
    QTest::addColumn<QLocale>("locale");

    QTest::newRow("English") << QLocale(QLocale::C);
    QTest::newRow("German") << QLocale(QLocale::German);
    QTest::newRow("Arabic digits") << QLocale(QLocale::Arabic, QLocale::Egypt);
}

void test_value_formatting::init()
{
    strict_test::init();
    QFETCH_GLOBAL(QLocale, locale);
    QLocale::setDefault(locale);
    log.start();
    log.take_lines();
}

void test_value_formatting::text_to_text_data()
{
    QTest::addColumn<text_function>("function");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");

    // clang-format off
    const text_function size = library::human_readable_size;
    QTest::newRow("size: empty")                   << size << u""_s                     << u""_s;
    QTest::newRow("size: blank")                   << size << u" \n "_s                 << u""_s;
    QTest::newRow("size: zero")                    << size << u"0"_s                    << u"0 B"_s;
    QTest::newRow("size: last of bytes")           << size << u"1023"_s                 << u"1023 B"_s;
    QTest::newRow("size: first of kilobytes")      << size << u"1024"_s                 << u"1.00 KB"_s;
    QTest::newRow("size: kilobytes")               << size << u"1536"_s                 << u"1.50 KB"_s;
    QTest::newRow("size: last of kilobytes")       << size << u"1048575"_s              << u"1024.00 KB"_s;
    QTest::newRow("size: first of megabytes")      << size << u"1048576"_s              << u"1.00 MB"_s;
    QTest::newRow("size: five gigabytes")          << size << u"5368709120"_s           << u"5120.00 MB"_s;
    QTest::newRow("size: top bit")                 << size << u"9223372036854775808"_s  << u"8796093022208.00 MB"_s;
    QTest::newRow("size: largest")                 << size << u"18446744073709551615"_s << u"17592186044416.00 MB"_s;
    QTest::newRow("size: does not fit")            << size << u"18446744073709551616"_s << u"0 B"_s;
    QTest::newRow("size: negative")                << size << u"-1"_s                   << u"0 B"_s;
    QTest::newRow("size: fraction")                << size << u"2048.5"_s               << u"0 B"_s;
    QTest::newRow("size: unreadable")              << size << u"abc"_s                  << u"0 B"_s;
    QTest::newRow("size: blanks around")           << size << u" 2048 "_s               << u"2.00 KB"_s;

    const text_function suffix = library::mining_suffix;
    QTest::newRow("suffix: empty")                 << suffix << u""_s                   << u""_s;
    QTest::newRow("suffix: blank")                 << suffix << u"  "_s                 << u""_s;
    QTest::newRow("suffix: one")                   << suffix << u"/a/photo.JPG"_s       << u"JPG"_s;
    QTest::newRow("suffix: last of two")           << suffix << u"archive.tar.gz"_s     << u"gz"_s;
    QTest::newRow("suffix: hidden file")           << suffix << u"/home/x/.bashrc"_s    << u""_s;
    QTest::newRow("suffix: hidden file with one")  << suffix << u"/home/x/.config.json"_s << u"json"_s;
    QTest::newRow("suffix: two points in front")   << suffix << u"..gz"_s               << u"gz"_s;
    QTest::newRow("suffix: only in the folder")    << suffix << u"/a.b/c"_s             << u""_s;
    QTest::newRow("suffix: folder")                << suffix << u"/a.b/"_s              << u""_s;
    QTest::newRow("suffix: point at the end")      << suffix << u"name."_s              << u""_s;
    QTest::newRow("suffix: this folder")           << suffix << u"."_s                  << u""_s;
    QTest::newRow("suffix: blanks around")         << suffix << u" a.txt "_s            << u"txt"_s;
    QTest::newRow("suffix: blank in front")        << suffix << u"/ .x"_s               << u"x"_s;

    const text_function number = library::get_filtered_number_value;
    QTest::newRow("number: description")           << number << u"<CFNumber 0x7fa1 [0x7fa2]>{value = +5, type = kCFNumberSInt64Type}"_s << u"5"_s;
    QTest::newRow("number: fraction")              << number << u"<CFNumber 0x7fa1 [0x7fa2]>{value = +5.25, type = kCFNumberFloat64Type}"_s << u"5.25"_s;
    QTest::newRow("number: negative")              << number << u"<CFNumber 0x7fa1 [0x7fa2]>{value = -5, type = kCFNumberSInt64Type}"_s << u""_s;
    QTest::newRow("number: no comma")              << number << u"{value = +5}"_s       << u""_s;
    QTest::newRow("number: + behind the comma")    << number << u"{value = 5, +6}"_s    << u""_s;
    QTest::newRow("number: second +")              << number << u"+1+2,"_s              << u"1"_s;
    QTest::newRow("number: empty parts")           << number << u"+,"_s                 << u""_s;
    QTest::newRow("number: comma first")           << number << u",+5,"_s               << u""_s;
    QTest::newRow("number: empty")                 << number << u""_s                   << u""_s;

    const text_function boolean = library::get_filtered_boolean_value;
    QTest::newRow("boolean: description")          << boolean << u"<CFBoolean 0x7fa1 [0x7fa2]>{value = true}"_s << u"true"_s;
    QTest::newRow("boolean: blanks around")        << boolean << u"  <CFBoolean 0x7fa1 [0x7fa2]>{value = false}\n"_s << u"false"_s;
    QTest::newRow("boolean: any last character")   << boolean << u"]>{value = trueX"_s  << u"true"_s;
    QTest::newRow("boolean: second =")             << boolean << u"]>{a = b = c}"_s     << u"b"_s;
    QTest::newRow("boolean: second braces")        << boolean << u"]>{a = bc]>{d = e}"_s << u"b"_s;
    QTest::newRow("boolean: = before the braces")  << boolean << u"a = b]>{c}"_s        << u""_s;
    QTest::newRow("boolean: nothing behind =")     << boolean << u"]>{value ="_s        << u""_s;
    QTest::newRow("boolean: no braces")            << boolean << u"value = true"_s      << u""_s;
    QTest::newRow("boolean: no =")                 << boolean << u"]>{true}"_s          << u""_s;
    QTest::newRow("boolean: keeps quotes")         << boolean << u"]>{value = \"x\"}"_s << u"\"x\""_s;
    QTest::newRow("boolean: empty")                << boolean << u""_s                  << u""_s;

    const text_function cfstring = library::get_filtered_cfstring_value;
    QTest::newRow("cfstring: description")         << cfstring << u"<CFString 0x7fa1 [0x7fa2]>{contents = \"AirPods von Jörg\"}"_s << u"AirPods von Jörg"_s;
    QTest::newRow("cfstring: quotes inside")       << cfstring << u"]>{contents = \" a \"b\" \"}"_s << u"a b"_s;
    QTest::newRow("cfstring: = inside")            << cfstring << u"]>{contents = \"a=b\"}"_s << u""_s;
    QTest::newRow("cfstring: only quotes")         << cfstring << u"]>{contents = \"\"}"_s << u""_s;
    QTest::newRow("cfstring: no braces")           << cfstring << u"contents = \"a\""_s << u""_s;
    QTest::newRow("cfstring: empty")               << cfstring << u""_s                 << u""_s;

    const text_function string = library::get_filtered_string_value;
    QTest::newRow("string: list")                  << string << u"(\n    \"a\",\n    \"b c\"\n)"_s << u"a;b c"_s;
    QTest::newRow("string: one entry")             << string << u"(\n    \"a\"\n)"_s    << u"a"_s;
    QTest::newRow("string: empty entries")         << string << u",a,,b,"_s             << u";a;;b;"_s;
    QTest::newRow("string: only a comma")          << string << u","_s                  << u";"_s;
    QTest::newRow("string: parentheses inside")    << string << u"(a(1), \"(b\")"_s     << u"a1;b"_s;
    QTest::newRow("string: semicolon inside")      << string << u"a;,b"_s               << u"a;;b"_s;
    QTest::newRow("string: blank inside quotes")   << string << u"\" a \""_s            << u"a"_s;
    QTest::newRow("string: empty list")            << string << u"(\n)"_s               << u""_s;
    QTest::newRow("string: empty")                 << string << u""_s                   << u""_s;
    QTest::newRow("string: blank")                 << string << u" \t\n"_s              << u""_s;

    const text_function wherefrom = library::get_filtered_wherefrom_value;
    QTest::newRow("wherefrom: list")               << wherefrom << u"(\n    \"https://a.example/x\",\n    \"https://a.example/\"\n)"_s << u"https://a.example/x;https://a.example/"_s;
    QTest::newRow("wherefrom: list on one line")   << wherefrom << u"(\"https://a.example/x\",\"https://a.example/\")"_s << u"https://a.example/x;https://a.example/"_s;
    QTest::newRow("wherefrom: line feeds")         << wherefrom << u"a\nb"_s            << u"ab"_s;
    QTest::newRow("wherefrom: pairs of blanks")    << wherefrom << u"a  b   c    d e"_s << u"ab cd e"_s;
    QTest::newRow("wherefrom: pair by line feed")  << wherefrom << u"a \n b"_s          << u"ab"_s;
    QTest::newRow("wherefrom: opening")            << wherefrom << u"(\"a"_s            << u"a"_s;
    QTest::newRow("wherefrom: closing")            << wherefrom << u"a\")"_s            << u"a"_s;
    QTest::newRow("wherefrom: closing by blanks")  << wherefrom << u"a\"  )"_s          << u"a"_s;
    QTest::newRow("wherefrom: opening and closing") << wherefrom << u"x(\")y"_s         << u"x)y"_s;
    QTest::newRow("wherefrom: quote and comma")    << wherefrom << u"a\",b"_s           << u"a;b"_s;
    QTest::newRow("wherefrom: comma")              << wherefrom << u"a,b"_s             << u"a\nb"_s;
    QTest::newRow("wherefrom: less")               << wherefrom << u"a<b"_s             << u"a(b"_s;
    QTest::newRow("wherefrom: greater")            << wherefrom << u"a>b"_s             << u"a)b"_s;
    QTest::newRow("wherefrom: less and quote")     << wherefrom << u"a<\"b\">"_s        << u"a(b)"_s;
    QTest::newRow("wherefrom: quotes")             << wherefrom << u"\"a\"b\""_s        << u"ab"_s;
    QTest::newRow("wherefrom: apostrophe")         << wherefrom << u"Anna\\U2019s iPhone"_s << u"Anna's iPhone"_s;
    QTest::newRow("wherefrom: quote in an escape") << wherefrom << u"\\U20\"19s"_s      << u"'s"_s;
    QTest::newRow("wherefrom: other escape")       << wherefrom << u"\\u2019s \\U2019 \\U2018s"_s << u"\\u2019s \\U2019 \\U2018s"_s;
    QTest::newRow("wherefrom: comma at the end")   << wherefrom << u"a,"_s              << u"a"_s;
    QTest::newRow("wherefrom: empty")              << wherefrom << u""_s                << u""_s;
    QTest::newRow("wherefrom: blank")              << wherefrom << u" \n\t"_s           << u""_s;

    const text_function date = library::get_filtered_date_value;
    QTest::newRow("date: ISO")                     << date << u"2019-05-03T10:00:00Z"_s      << u"1556877600"_s;
    QTest::newRow("date: ISO without a zone")      << date << u"2019-05-03T10:00:00"_s       << u"1556877600"_s;
    QTest::newRow("date: ISO with milliseconds")   << date << u"2019-05-03T10:00:00.999Z"_s  << u"1556877600"_s;
    QTest::newRow("date: ISO, fraction and zone")  << date << u"2019-05-03T10:00:00.5+05:30"_s << u"1556857800"_s;
    QTest::newRow("date: day")                     << date << u"2019-05-03"_s                << u"1556841600"_s;
    QTest::newRow("date: description")             << date << u" 2019-05-03 10:00:00 +0000 "_s << u"1556877600"_s;
    QTest::newRow("date: description, east")       << date << u"2019-05-03 10:00:00 +0530"_s << u"1556857800"_s;
    QTest::newRow("date: description, west")       << date << u"2019-05-03 10:00:00 -0530"_s << u"1556897400"_s;
    QTest::newRow("date: ISO, east")               << date << u"2019-05-03T10:00:00+05:30"_s << u"1556857800"_s;
    QTest::newRow("date: ISO, west")               << date << u"2019-05-03T10:00:00-05:30"_s << u"1556897400"_s;
    QTest::newRow("date: ISO without seconds")     << date << u"2019-05-03T10:00"_s          << u"1556877600"_s;
    QTest::newRow("date: skipped in New York")     << date << u"2019-03-10 02:30:00"_s       << u"1552185000"_s;
    QTest::newRow("date: before 1970, truncated")  << date << u"1969-12-31T23:59:59.5Z"_s    << u"0"_s;
    QTest::newRow("date: Apple reference seconds") << date << u"600000000.5"_s               << u"1578307200"_s;
    QTest::newRow("date: Apple, empty fraction")   << date << u"600000000."_s                << u"1578307200"_s;
    QTest::newRow("date: Apple, zero")             << date << u"0.0"_s                       << u"978307200"_s;
    QTest::newRow("date: Apple, negative")         << date << u"-978307201.5"_s              << u"-1"_s;
    QTest::newRow("date: Apple beyond 32 bits")    << date << u"4294967296.0"_s              << u"5273274496"_s;
    QTest::newRow("date: Apple, largest sum")      << date << u"9223372035876468607.0"_s     << u"9223372036854775807"_s;
    QTest::newRow("date: Apple, sum does not fit") << date << u"9223372035876468608.0"_s     << u""_s;
    QTest::newRow("date: Apple, does not fit")     << date << u"9223372036854775808.0"_s     << u""_s;
    QTest::newRow("date: no point")                << date << u"600000000"_s                 << u""_s;
    QTest::newRow("date: only a fraction")         << date << u".5"_s                        << u""_s;
    QTest::newRow("date: words with a point")      << date << u"no date."_s                  << u""_s;
    QTest::newRow("date: two zones")               << date << u"2019-05-03T10:00:00+05:30Z"_s << u""_s;
    QTest::newRow("date: no such day")             << date << u"2019-02-29T10:00:00Z"_s      << u""_s;
    QTest::newRow("date: basic format")            << date << u"20190503T100000Z"_s          << u""_s;
    QTest::newRow("date: only a zone")             << date << u"Z"_s                         << u""_s;
    QTest::newRow("date: named zone")              << date << u"2019-05-03 10:00:00.5 GMT"_s << u""_s;
    QTest::newRow("date: empty")                   << date << u""_s                          << u""_s;
    QTest::newRow("date: blank")                   << date << u"  "_s                        << u""_s;
    // clang-format on
}

void test_value_formatting::text_to_text()
{
    QFETCH(text_function, function);
    QFETCH(QString, input);
    QFETCH(QString, expected);

    QCOMPARE(function(input), expected);
    QCOMPARE(log.take_lines(), QStringList());
}

void test_value_formatting::size_of_what_does_not_exist_data()
{
    QTest::addColumn<QString>("path");

    QTest::newRow("empty") << u""_s;
    QTest::newRow("null") << QString();
    QTest::newRow("blank") << u" "_s;
    QTest::newRow("missing") << u"/no/such/file"_s;
    QTest::newRow("not trimmed") << u"/ "_s;
}

void test_value_formatting::size_of_what_does_not_exist()
{
    QFETCH(QString, path);

    QCOMPARE(library::mining_size(path), QString());
}

void test_value_formatting::size_of_a_file()
{
    const QTemporaryDir directory;
    for (const qint64 size : {0LL, 1LL, 5'000'000'000LL}) {
        const QString path = directory.filePath(u" a file "_s);
        QVERIFY(make_file(path, size));
        QCOMPARE(library::mining_size(path), QString::number(size));
    }
    const QString link = directory.filePath(u"link"_s);
    QVERIFY(QFile::link(directory.filePath(u" a file "_s), link));
    QCOMPARE(library::mining_size(link), u"5000000000"_s);
    QVERIFY(QFile::link(directory.filePath(u"missing"_s), directory.filePath(u"dangling"_s)));
    QCOMPARE(library::mining_size(directory.filePath(u"dangling"_s)), QString());
}

void test_value_formatting::size_of_a_folder()
{
    const QTemporaryDir outside;
    QVERIFY(make_file(outside.filePath(u"not counted"_s), 1'000));
    const QTemporaryDir directory;
    const QDir root(directory.path());
    QCOMPARE(library::mining_size(root.path()), u"0"_s);

    QVERIFY(root.mkpath(u"empty"_s));
    QVERIFY(root.mkpath(u"folder/.hidden folder"_s));
    QVERIFY(make_file(root.filePath(u"file"_s), 1));
    QVERIFY(make_file(root.filePath(u".hidden"_s), 20));
    QVERIFY(make_file(root.filePath(u"folder/file"_s), 300));
    QVERIFY(make_file(root.filePath(u"folder/.hidden folder/file"_s), 4'000));
    QVERIFY(make_file(root.filePath(u"folder/large"_s), 5'000'000'000));
    QVERIFY(QFile::link(root.filePath(u"file"_s), root.filePath(u"link to a file"_s)));
    QVERIFY(QFile::link(outside.path(), root.filePath(u"link to a folder"_s)));
    QVERIFY(QFile::link(u".."_s, root.filePath(u"folder/cycle"_s)));
    QVERIFY(QFile::link(root.filePath(u"missing"_s), root.filePath(u"dangling"_s)));
    QCOMPARE(mkfifo(qPrintable(root.filePath(u"pipe"_s)), 0600), 0);
    QCOMPARE(library::mining_size(root.path()), u"5000004321"_s);
    QCOMPARE(library::mining_size(root.path() + u'/'), u"5000004321"_s);
    QCOMPARE(library::mining_size(root.filePath(u"link to a folder"_s)), u"1000"_s);
    QCOMPARE(library::mining_size(root.filePath(u"pipe"_s)), u"0"_s);
}

void test_value_formatting::size_of_names_that_are_no_texts()
{
    if (!names_are_bytes)
        QSKIP("file names are texts here");
    const QTemporaryDir directory;
    const QString folder = directory.filePath(u"folder"_s);
    write_file(folder, "bad\xff", "1");
    write_file(folder, "dir\xfe/in", "22");
    write_file(folder, "good", "3");
    QCOMPARE(library::mining_size(folder), u"4"_s);
    library::remove_directory(folder); // the temporary folder does not see such names
}

void test_value_formatting::size_of_a_folder_when_cancelled()
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(u"file"_s);
    QVERIFY(make_file(file, 12'345'678));
    library::set_cancel_extraction(true);
    QCOMPARE(library::mining_size(directory.path()), QString::number(QFileInfo(directory.path()).size()));
    QCOMPARE(library::mining_size(file), u"12345678"_s);
}

void test_value_formatting::size_that_does_not_fit()
{
    constexpr qint64 half = 0x4000'0000'0000'0000;
    const QTemporaryDir directory(u"/dev/shm/"_s);
    if (!directory.isValid() || !make_file(directory.filePath(u"a"_s), half))
        QSKIP("no file system for files of this size");
    QVERIFY(make_file(directory.filePath(u"b"_s), half - 1));
    QCOMPARE(library::mining_size(directory.path()), u"9223372036854775807"_s);
    QVERIFY(make_file(directory.filePath(u"c"_s), 1));
    QCOMPARE(library::mining_size(directory.path()), QString());
}

void test_value_formatting::os_scan_version_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("examiner");
    QTest::addColumn<QString>("macos");
    QTest::addColumn<QString>("ios");
    QTest::addColumn<QString>("other");

    // clang-format off
    QTest::newRow("10.15.7")       << u"10.15.7"_s     << u"10_15_7"_s     << u"10_15_7"_s     << u"10"_s     << u"10_15_7"_s;
    QTest::newRow("11.2.3")        << u"11.2.3"_s      << u"11"_s          << u"11"_s          << u"11"_s     << u"11_2_3"_s;
    QTest::newRow("11")            << u"11"_s          << u"11"_s          << u"11"_s          << u"11"_s     << u"11"_s;
    QTest::newRow("12.0.1")        << u"12.0.1"_s      << u"12_0_1"_s      << u"12_0_1"_s      << u"12"_s     << u"12_0_1"_s;
    QTest::newRow("14.4.1")        << u"14.4.1"_s      << u"14_4_1"_s      << u"14_4_1"_s      << u"14"_s     << u"14_4_1"_s;
    QTest::newRow("begins so too") << u"110.5"_s       << u"110"_s         << u"110"_s         << u"110"_s    << u"110_5"_s;
    QTest::newRow("blank before")  << u" 11.2"_s       << u" 11_2"_s       << u" 11_2"_s       << u" 11"_s    << u" 11_2"_s;
    QTest::newRow("point first")   << u".5"_s          << u"_5"_s          << u"_5"_s          << u""_s       << u"_5"_s;
    QTest::newRow("empty")         << u""_s            << u""_s            << u""_s            << u""_s       << u""_s;
    // clang-format on
}

void test_value_formatting::os_scan_version()
{
    QFETCH(QString, version);
    QFETCH(QString, examiner);
    QFETCH(QString, macos);
    QFETCH(QString, ios);
    QFETCH(QString, other);

    library::examiner_machine_os_version_full = version;
    library::source_os_version_full = u"not the examiner's"_s;
    QCOMPARE(library::get_examiner_machine_os_scan_version(), examiner);

    library::examiner_machine_os_version_full = u"not the source's"_s;
    library::source_os_version_full = version;
    QCOMPARE(library::get_source_os_scan_version(u"macOS"_s), macos);
    QCOMPARE(library::get_source_os_scan_version(u"iOS"_s), ios);
    QCOMPARE(library::get_source_os_scan_version(u"winOS"_s), ios);
    for (const QString &scheme : {u"iOS_UID"_s, u"macos"_s, u" iOS"_s, u""_s})
        QCOMPARE(library::get_source_os_scan_version(scheme), other);
    QCOMPARE(library::source_os_version_full, version);
}

void test_value_formatting::unicode_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");

    // clang-format off
    QTest::newRow("empty")                     << u""_s                          << u""_s;
    QTest::newRow("no escape")                 << u" plain größe "_s             << u" plain größe "_s;
    QTest::newRow("one")                       << u"\\U0041"_s                   << u"A"_s;
    QTest::newRow("between texts")             << u" Anna\\U2019s iPhone "_s     << u" Anna’s iPhone "_s;
    QTest::newRow("several")                   << u"\\U65e5\\U672C, \\U00e9."_s  << u"日本, é."_s;
    QTest::newRow("surrogate pair")            << u"\\UD83C\\UDFA7"_s            << u"🎧"_s;
    QTest::newRow("lone surrogate")            << u"a\\UD83Cb"_s                 << u"a"_s + QChar(0xD83C) + u"b"_s;
    QTest::newRow("lone surrogate in the text") << QChar(0xD83C) + u"\\U0041"_s  << QChar(0xD83C) + u"A"_s;
    QTest::newRow("zero")                      << u"a\\U0000b"_s                 << u"a"_s + QChar(0) + u"b"_s;
    QTest::newRow("largest")                   << u"\\UFFFF"_s                   << QString(QChar(0xFFFF));
    QTest::newRow("digits go on")              << u"\\U00412"_s                  << u"A2"_s;
    QTest::newRow("eight digits")              << u"\\U0001F600"_s               << QChar(1) + u"F600"_s;
    QTest::newRow("makes no new escape")       << u"\\U005cU0041"_s              << u"\\U0041"_s;
    QTest::newRow("makes no new mark")         << u"\\U005c\\U0055\\U0030041"_s  << u"\\U0041"_s;
    QTest::newRow("backslash before")          << u"\\\\U0041"_s                 << u"\\A"_s;
    QTest::newRow("lower case mark")           << u"\\u0041"_s                   << u"\\u0041"_s;
    QTest::newRow("only the mark")             << u"\\U"_s                       << u"\\U"_s;
    QTest::newRow("three digits at the end")   << u"\\U0041 \\U004"_s            << u"\\U0041 \\U004"_s;
    QTest::newRow("three digits in the text")  << u"\\U004 \\U0041"_s            << u"\\U004 \\U0041"_s;
    QTest::newRow("no hexadecimal digit")      << u"\\U00G1 \\U0041"_s           << u"\\U00G1 \\U0041"_s;
    QTest::newRow("last cannot be read")       << u"\\U0041 \\Uxxxx"_s           << u"\\U0041 \\Uxxxx"_s;
    QTest::newRow("plus")                      << u"\\U+041"_s                   << u"\\U+041"_s;
    QTest::newRow("minus")                     << u"\\U-041"_s                   << u"\\U-041"_s;
    QTest::newRow("blanks")                    << u"\\U  41"_s                   << u"\\U  41"_s;
    QTest::newRow("blank at the end")          << u"\\U041 "_s                   << u"\\U041 "_s;
    QTest::newRow("prefix")                    << u"\\U0x41"_s                   << u"\\U0x41"_s;
    QTest::newRow("digits of another script")  << u"\\U٠٠٤١"_s                   << u"\\U٠٠٤١"_s;
    QTest::newRow("wide digits")               << u"\\U００４１"_s                << u"\\U００４１"_s;
    QTest::newRow("mark within a mark")        << u"\\U\\U0041"_s                << u"\\U\\U0041"_s;
    QTest::newRow("many marks")                << u"\\U\\U\\U\\U\\U\\U"_s        << u"\\U\\U\\U\\U\\U\\U"_s;
    QTest::newRow("many escapes")              << u"\\U0041"_s.repeated(1000)    << u"A"_s.repeated(1000);
    // clang-format on
}

void test_value_formatting::unicode()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);

    QCOMPARE(library::convert_string_to_unicode(text), expected);
    QCOMPARE(
        log.take_lines(),
        QStringList{
            u"[time][KALDO_DESK][Artifacts Extraction][plugin_static_function::convert_string_to_unicode]:--  : running"_s});
}

void test_value_formatting::unicode_when_cancelled()
{
    library::set_cancel_extraction(true);
    QCOMPARE(library::convert_string_to_unicode(u"a \\U0041"_s), u"a \\U0041"_s);
    QCOMPARE(log.take_messages(), QStringList{u"plugin_static_function::convert_string_to_unicode:  : running"_s});
}

BLUETOOTH_LOGS_TEST(test_value_formatting, QCoreApplication)

#include "test_value_formatting.moc"
