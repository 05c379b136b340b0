// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/command_line.h"
#include "host/source/source_kinds.h"
#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QTest>

#include <vector>

using namespace Qt::StringLiterals;

/** What the program answers to arguments that it cannot follow, and what it understands beside the exact words. */
class test_words : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void refusal_data();
    void refusal();
    void what_is_taken_data();
    void what_is_taken();
    void ranges_of_numbers_data();
    void ranges_of_numbers();
    void limits_of_reading_data();
    void limits_of_reading();
    void refusal_through_the_program();
    void help_is_found_data();
    void help_is_found();
    void help_of_the_zone_says_what_it_changes();
    void examples_stand_in_one_column();
    void path_that_is_no_text_data();
    void path_that_is_no_text();
    void relative_path_without_a_working_folder_data();
    void relative_path_without_a_working_folder();
    void kind_is_understood_data();
    void kind_is_understood();
    void number_with_leading_zeros();

private:
    host_program host;
};

namespace {

/** What the program makes of its arguments, without running anything. */
command_line parsed(const QStringList &arguments)
{
    std::vector<QByteArray> bytes{"bluetooth-logs"};
    for (const QString &argument : arguments)
        bytes.push_back(argument.toUtf8());
    std::vector<char *> words;
    for (QByteArray &word : bytes)
        words.push_back(word.data());
    return parse_command_line(int(words.size()), words.data());
}

} // namespace

void test_words::refusal_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("message");

    const QString more = u" (bluetooth-logs --help tells more)"_s;
    const QString more_of_extract = u" (bluetooth-logs extract --help tells more)"_s;
    const QString more_of_show = u" (bluetooth-logs show --help tells more)"_s;
    const auto no_command = [](const QString &word) {
        return QString(u"there is no command "_s + word
                       + u" beside sample, extract, collect, verify, note, inspect, report, show and help"_s);
    };
    const QString nothing_asked = u"one of --flag or --text, --list and --remove is needed"_s;
    const QString two_places = u"--device or --row is given once, with --flag or --text"_s;
    const auto note = [](const QString &rest) { return QString(u"note "_s + rest).split(u' '); };
    const auto extract = [](const QString &rest) { return QString(u"extract -i s -o c "_s + rest).split(u' '); };

    // clang-format off
    QTest::newRow("before options")    << QStringList{u"extrct"_s, u"-i"_s, u"x"_s, u"-o"_s, u"y"_s} << no_command(u"extrct"_s) + u": did you mean extract?"_s + more;
    QTest::newRow("help misspelt")     << QStringList{u"help"_s, u"shwo"_s}     << no_command(u"shwo"_s) + u": did you mean show?"_s;
    QTest::newRow("option alone")      << QStringList{u"-x"_s, u"shwo"_s}       << u"there is no option -x"_s + more;
    QTest::newRow("command misspelt")  << QStringList{u"extrct"_s}              << no_command(u"extrct"_s) + u": did you mean extract?"_s + more;
    QTest::newRow("letters swapped")   << QStringList{u"shwo"_s, u"c"_s}        << no_command(u"shwo"_s) + u": did you mean show?"_s + more;
    QTest::newRow("capital letters")   << QStringList{u"SAMPLE"_s, u"d"_s}      << no_command(u"SAMPLE"_s) + u": did you mean sample?"_s + more;
    QTest::newRow("no such command")   << QStringList{u"frobnicate"_s}          << no_command(u"frobnicate"_s) + more;
    QTest::newRow("form of progress")  << extract(u"--progress jsno"_s)         << u"--progress: jsno is none of text, json: did you mean json?"_s;
    QTest::newRow("option misspelt")   << extract(u"--forse"_s)                 << u"there is no option --forse: did you mean --force?"_s + more_of_extract;
    QTest::newRow("option begun")      << extract(u"--memor 5000"_s)             << u"there is no option --memor: did you mean --memory-limit?"_s + more_of_extract;
    QTest::newRow("option with value") << QStringList{u"show"_s, u"c"_s, u"--tabel=devices"_s} << u"there is no option --tabel: did you mean --table?"_s + more_of_show;
    QTest::newRow("general option")    << QStringList{u"--nocolor"_s, u"show"_s, u"c"_s} << u"there is no option --nocolor: did you mean --no-color?"_s + more_of_show;
    QTest::newRow("no such option")    << QStringList{u"show"_s, u"c"_s, u"-x"_s} << u"there is no option -x"_s + more_of_show;
    QTest::newRow("option that went")  << extract(u"--log-file l"_s)            << u"there is no option --log-file"_s + more_of_extract;
    QTest::newRow("before the rest")   << QStringList{u"extract"_s, u"--inptu"_s, u"s"_s} << u"there is no option --inptu: did you mean --input?"_s + more_of_extract;
    QTest::newRow("stray argument")    << QStringList{u"show"_s, u"c"_s, u"d"_s} << u"it is not clear what d is for"_s + more_of_show;
    QTest::newRow("no value")          << QStringList{u"extract"_s, u"-i"_s}    << u"--input needs a value"_s + more_of_extract;
    QTest::newRow("value of a flag")   << extract(u"--force=maybe"_s)           << u"--force takes no value"_s + more_of_extract;
    QTest::newRow("no case")           << QStringList{u"extract"_s, u"-i"_s, u"s"_s} << u"--output is required"_s + more_of_extract;
    QTest::newRow("no source")         << QStringList{u"extract"_s, u"-o"_s, u"c"_s} << u"no source is given: --input or --sources names them"_s;
    QTest::newRow("two cases")         << extract(u"-o d"_s)                    << u"--output: given 2 times, and one value is possible"_s;
    QTest::newRow("kind misspelt")     << extract(u"-t makos"_s)                << u"--type: makos is none of auto, macOS, iOS_UID, ios, iOS_files, ios-files, iOS_backup, ios-backup, winOS, windows: did you mean macOS?"_s;
    QTest::newRow("no such kind")      << extract(u"-t amiga"_s)                << u"--type: amiga is none of auto, macOS, iOS_UID, ios, iOS_files, ios-files, iOS_backup, ios-backup, winOS, windows"_s;
    QTest::newRow("table misspelt")    << extract(u"--table device"_s)          << u"--table: device is none of devices, paired_devices: did you mean devices?"_s;
    QTest::newRow("second table")      << extract(u"--table devices --table x"_s) << u"--table: x is none of devices, paired_devices"_s;
    QTest::newRow("edition")           << extract(u"--engine 0"_s)              << u"--engine: 0 is none of KALDO_DESK, KALDO_FIELD, KALDO_BOOT"_s;
    QTest::newRow("layout misspelt")   << QStringList{u"show"_s, u"c"_s, u"--layout"_s, u"record"_s} << u"--layout: record is none of auto, table, records: did you mean records?"_s;
    QTest::newRow("negative number")   << extract(u"--source-number -007"_s)    << u"--source-number: -007 is no number from 0 to 1000000"_s;
    QTest::newRow("number with plus")  << extract(u"--source-number +7"_s)      << u"--source-number: +7 is no number from 0 to 1000000"_s;
    QTest::newRow("number too large")  << extract(u"--source-number 1000001"_s) << u"--source-number: 1000001 is no number from 0 to 1000000"_s;
    QTest::newRow("number too long")   << extract(u"--source-number 18446744073709551617"_s) << u"--source-number: 18446744073709551617 is no number from 0 to 1000000"_s;
    QTest::newRow("hexadecimal")       << extract(u"--source-number 0x10"_s)    << u"--source-number: 0x10 is no number from 0 to 1000000"_s;
    QTest::newRow("no memory")         << extract(u"--memory-limit 1"_s)        << u"--memory-limit: 1 is no number from 128 to 1073741824"_s;
    QTest::newRow("zone")              << extract(u"--timezone-offset 5h"_s)    << u"--timezone-offset: must look like +05:30, -08:00 or 19800, and not be 5h"_s;
    QTest::newRow("zone in seconds")   << extract(u"--timezone-offset -50401"_s) << u"--timezone-offset: must look like +05:30, -08:00 or 19800, and not be -50401"_s;
    QTest::newRow("zone too far")      << extract(u"--timezone-offset +14:01"_s) << u"--timezone-offset: must look like +05:30, -08:00 or 19800, and not be +14:01"_s;
    QTest::newRow("empty source")      << QStringList{u"extract"_s, u"-i"_s, u""_s, u"-o"_s, u"c"_s} << u"--input is an empty path"_s;
    QTest::newRow("empty case")        << QStringList{u"extract"_s, u"-i"_s, u"s"_s, u"-o"_s, u""_s} << u"--output is an empty path"_s;
    QTest::newRow("empty list")        << QStringList{u"extract"_s, u"--sources"_s, u""_s, u"-o"_s, u"c"_s} << u"--sources is an empty path"_s;
    QTest::newRow("empty plug-in")     << (extract(u"--plugin"_s) << u""_s)     << u"--plugin is an empty path"_s;
    QTest::newRow("empty sample")      << QStringList{u"sample"_s, u""_s}       << u"DIR is an empty path"_s;
    QTest::newRow("empty shown case")  << QStringList{u"show"_s, u""_s}         << u"CASE is an empty path"_s;
    QTest::newRow("zone, minutes")     << extract(u"--timezone-offset +05:60"_s) << u"--timezone-offset: must look like +05:30, -08:00 or 19800, and not be +05:60"_s;
    QTest::newRow("log of no size")    << extract(u"--max-log 0"_s)             << u"--max-log: must be a number above 0, and not be 0"_s;
    QTest::newRow("log of words")      << extract(u"--max-log many"_s)          << u"--max-log: must be a number above 0, and not be many"_s;
    QTest::newRow("log beyond all")    << extract(u"--max-log 1048577"_s)       << u"--max-log: must be a number above 0, and not be 1048577"_s;
    QTest::newRow("two ways")          << extract(u"--sources l.json"_s)        << u"--input and --sources are two ways to say the same: use one of them"_s;
    for (const char *option : {"-t macos", "--source-number 1", "--volume 1", "--member m"})
        QTest::newRow(option) << QString(u"extract --sources l.json -o c "_s + QLatin1StringView(option)).split(u' ')
                              << u"--type, --source-number, --volume and --member go with --input; in the file of --sources each source has its own"_s;
    QTest::newRow("volume of two")     << extract(u"-i t --volume 1"_s)         << u"--volume and --member are for one source; several are told them by --sources"_s;
    QTest::newRow("member of two")     << extract(u"-i t --member m"_s)         << u"--volume and --member are for one source; several are told them by --sources"_s;
    QTest::newRow("number of two")     << extract(u"-i t --source-number 4"_s)  << u"--source-number is for one source; several are numbered in their order, or by --sources"_s;
    for (const char *option : {"--force --resume", "--force --add", "--resume --add"})
        QTest::newRow(option) << extract(QLatin1StringView(option)) << u"--force, --resume and --add exclude each other"_s;
    for (const char *option : {"--only 1 --resume", "--only 1 --add"})
        QTest::newRow(option) << extract(QLatin1StringView(option)) << u"--only works on one source of the case; --resume and --add are for the whole"_s;
    QTest::newRow("file of no table")  << QStringList{u"show"_s, u"c"_s, u"-f"_s, u"csv"_s} << u"--format: it needs --table"_s;
    for (const QString &option : {u"--rows 1"_s, u"--layout table"_s})
        QTest::newRow(qPrintable(option)) << QString(u"show c -f csv --table devices "_s + option).split(u' ')
                                          << u"--format: a program gets all rows: --rows and --layout are for readers"_s;
    QTest::newRow("file for nobody")   << QStringList{u"show"_s, u"c"_s, u"-f"_s, u"html"_s} << u"--format: html is none of csv, tsv, jsonl"_s;
    QTest::newRow("shown table")       << QStringList{u"show"_s, u"c"_s, u"--table"_s, u"x"_s} << u"--table: x is none of devices, paired_devices, host_devices"_s;
    QTest::newRow("report's format")   << QStringList{u"report"_s, u"c"_s, u"-f"_s, u"pdf"_s} << u"--format: pdf is none of html, timeline, sqlite, xlsx, csv, tsv, jsonl"_s;
    QTest::newRow("zone of logs")      << QStringList{u"report"_s, u"c"_s, u"--log-zone"_s, u"+2:00"_s} << u"--log-zone: +2:00 is no zone like +02:00"_s;
    QTest::newRow("zone of no place")  << QStringList{u"report"_s, u"c"_s, u"--log-zone"_s, u"+20:00"_s} << u"--log-zone: +20:00 is no zone like +02:00"_s;
    QTest::newRow("epoch")             << QStringList{u"report"_s, u"c"_s, u"--mobile-epoch"_s, u"1904"_s} << u"--mobile-epoch: 1904 is none of 1970, 2001"_s;
    QTest::newRow("short hash")        << QStringList{u"verify"_s, u"c"_s, u"--manifest-sha256"_s, u"abc"_s} << u"--manifest-sha256: abc is no SHA-256 of 64 hexadecimal digits"_s;
    QTest::newRow("place of no source") << QStringList{u"verify"_s, u"c"_s, u"--evidence"_s, u"/new"_s} << u"--evidence: must look like 3=/new/place, and not be /new"_s;
    QTest::newRow("note of nothing")   << note(u"c --device b4c26a7fd37a"_s)    << nothing_asked;
    QTest::newRow("note by somebody")  << note(u"c --by A"_s)                   << nothing_asked;
    QTest::newRow("noted and listed")  << note(u"c --device b4c26a7fd37a --flag --list"_s) << nothing_asked;
    QTest::newRow("noted and removed") << note(u"c --text t --remove 1"_s)      << nothing_asked;
    QTest::newRow("listed and removed") << note(u"c --list --remove 1"_s)       << nothing_asked;
    QTest::newRow("note on nothing")   << note(u"c --flag"_s)                   << u"a note needs --device or --row"_s;
    QTest::newRow("text on nothing")   << note(u"c --text t"_s)                 << u"a note needs --device or --row"_s;
    QTest::newRow("note on two")       << note(u"c --flag --device b4c26a7fd37a --row 1:devices:1"_s) << two_places;
    QTest::newRow("a device's list")   << note(u"c --list --device b4c26a7fd37a"_s) << two_places;
    QTest::newRow("a row's removal")   << note(u"c --remove 1 --row 1:devices:1"_s) << two_places;
    QTest::newRow("no device")         << note(u"c --flag --device Headset"_s)  << u"--device: Headset is no address of 12 hexadecimal digits and no UUID"_s;
    QTest::newRow("no row")            << note(u"c --flag --row 1:sqlite_master:1"_s) << u"--row: 1:sqlite_master:1 is no row such as 1:devices:17"_s;
    QTest::newRow("note's number")     << note(u"c --remove x"_s)               << u"--remove: x is no number from 1 to 1000000000"_s;
    QTest::newRow("note of no case")   << QStringList{u"note"_s, u"--list"_s}   << u"CASE is required (bluetooth-logs note --help tells more)"_s;
    for (const auto &[command, name] : {std::pair("show", u"CASE"_s), std::pair("report", u"CASE"_s), std::pair("verify", u"CASE"_s),
                                        std::pair("collect", u"CASE"_s), std::pair("sample", u"DIR"_s), std::pair("inspect", u"PATH"_s)})
        QTest::newRow(qPrintable(QString(QLatin1StringView(command) + u" alone"_s))) << QStringList{QLatin1StringView(command)}
                                                         << name + u" is required (bluetooth-logs "_s + QLatin1StringView(command) + u" --help tells more)"_s;
    QTest::newRow("note, empty case")  << QStringList{u"note"_s, u""_s, u"--list"_s} << u"CASE is an empty path"_s;
    // clang-format on
}

void test_words::refusal()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, message);

    const command_line line = parsed(arguments);
    QVERIFY(line.problem && !line.command);
    QCOMPARE(line.problem->message(), message);
    QCOMPARE(exit_code_of(line.problem->kind()), exit_code::usage);
}

void test_words::what_is_taken_data()
{
    QTest::addColumn<QString>("arguments");

    const QString extract = u"extract -i s -o c "_s;
    // clang-format off
    for (const char *form : {"-t macos", "-t iOS_UID", "-t IOS", "-t ios_files", "-t ios-files", "-t iOS_backup", "-t ios-backup", "-t winos", "-t Windows", "-t auto",
                             "--input t", "--type auto", "--volume 2", "--member a/b", "--source-number 2", "--live", "--output=d", "--add", "--resume", "--force", "--only 2",
                             "--examiner A", "--case-number 7", "--table devices", "--table paired_devices --table devices", "--engine KALDO_DESK", "--engine KALDO_FIELD",
                             "--engine KALDO_BOOT", "--os-name x", "--timezone-offset +14:00", "--timezone-offset -08:30", "--timezone-offset 19800", "--timezone-offset -50400",
                             "--suite-tables", "--no-container-hash", "--follow-links", "--jobs 2", "--memory-limit 200", "--timeout 5", "--max-database 5", "--max-log 0.5",
                             "--max-log 1048576", "--no-confinement", "--plugin p.so", "--progress text", "--progress json", "-v", "--verbose", "-q", "--quiet", "--no-color"}) {
        const QString option = QLatin1StringView(form);
        const bool is_output = option.startsWith("--output"_L1);
        QTest::newRow(form) << (is_output ? QString(u"extract -i s "_s + option) : extract + option);
    }
    for (const char *line : {"extract -o c --resume", "show c --source 2", "show c --rows 5", "show c --table host_devices", "show c --layout auto", "show c --layout table",
                             "show c --layout records", "show c --table devices -f csv", "show c --table devices -f tsv", "show c --table devices --format jsonl",
                             "report c -f html -f csv -f tsv -f jsonl", "report c -f timeline -f sqlite", "report c --format xlsx", "report c -o d --raw-cells --csv-bom --vendors v",
                             "report c --log-year 2024 --log-zone -08:30 --mobile-epoch 1970", "report c --log-zone +19:59 --mobile-epoch 2001", "report c --split --brief --force",
                             "verify c --manifest-sha256 0123456789abcdefABCDEF0123456789abcdef0123456789abcdef0123456789", "verify c --evidence 2=/x --evidence 1234567=/y=z",
                             "verify c --containers --results-only --report d --json", "verify c --record r.json", "collect c", "sample d --force --hostile --image",
                             "inspect a b --json", "note c --device b4:c2:6a:7f:d3:7a --flag --text t --by A", "note c --row 1:devices:17 --text t", "note c --list", "note c --remove 3",
                             "help", "help note"})
        QTest::newRow(line) << QString::fromLatin1(line);
    // clang-format on
}

void test_words::what_is_taken()
{
    QFETCH(const QString, arguments);
    const command_line line = parsed(arguments.split(u' '));
    QCOMPARE(line.problem ? line.problem->message() : QString(), QString());
    QVERIFY(line.command);
}

void test_words::ranges_of_numbers_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("option");
    QTest::addColumn<qint64>("least");
    QTest::addColumn<qint64>("most");

    const QString extract = u"extract -i s -o c"_s;
    constexpr qint64 most_mebibytes = 1073741824;
    constexpr qint64 most_seconds = 1073741824;
    // clang-format off
    QTest::newRow("volume")          << extract      << u"--volume"_s        << qint64(1)    << qint64(1000000);
    QTest::newRow("number")          << extract      << u"--source-number"_s << qint64(0)    << qint64(1000000);
    QTest::newRow("one source")      << extract      << u"--only"_s          << qint64(1)    << qint64(1000000);
    QTest::newRow("jobs")            << extract      << u"--jobs"_s          << qint64(1)    << qint64(1024);
    QTest::newRow("largest database") << extract     << u"--max-database"_s  << qint64(1)    << most_mebibytes;
    QTest::newRow("memory")          << extract      << u"--memory-limit"_s  << qint64(128)  << most_mebibytes;
    QTest::newRow("time")            << extract      << u"--timeout"_s       << qint64(1)    << most_seconds;
    QTest::newRow("note")            << u"note c"_s  << u"--remove"_s        << qint64(1)    << qint64(1000000000);
    QTest::newRow("year")            << u"report c"_s << u"--log-year"_s     << qint64(1970) << qint64(9999);
    QTest::newRow("shown source")    << u"show c"_s  << u"--source"_s        << qint64(0)    << qint64(9999999);
    QTest::newRow("shown rows")      << u"show c"_s  << u"--rows"_s          << qint64(0)    << (qint64(1) << 53);
    // clang-format on
}

void test_words::ranges_of_numbers()
{
    QFETCH(const QString, command);
    QFETCH(const QString, option);
    QFETCH(const qint64, least);
    QFETCH(const qint64, most);
    const auto problem_with = [&](qint64 number) {
        const command_line line = parsed(command.split(u' ') + QStringList{option, QString::number(number)});
        return line.problem ? line.problem->message() : QString();
    };
    const QString range = u" is no number from %1 to %2"_s.arg(least).arg(most);
    QCOMPARE(problem_with(least), QString());
    QCOMPARE(problem_with(most), QString());
    QCOMPARE(problem_with(least - 1), QString(option + u": "_s + QString::number(least - 1) + range));
    QCOMPARE(problem_with(most + 1), QString(option + u": "_s + QString::number(most + 1) + range));
}

/** In what a stranger's case is read: memory, time, and where may be written. */
void test_words::limits_of_reading_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<qint64>("memory");
    QTest::addColumn<qint64>("timeout");
    QTest::addColumn<QStringList>("writable");

    // clang-format off
    QTest::newRow("show")             << QStringList{u"show"_s, u"/c"_s}    << qint64(2048) << qint64(0)    << QStringList();
    QTest::newRow("show, limited")    << QStringList{u"show"_s, u"/c"_s, u"--memory-limit"_s, u"200"_s, u"--timeout"_s, u"7"_s} << qint64(200) << qint64(7) << QStringList();
    QTest::newRow("verify")           << QStringList{u"verify"_s, u"/c"_s}  << qint64(2048) << qint64(0)    << QStringList();
    QTest::newRow("verify, recorded") << QStringList{u"verify"_s, u"/c"_s, u"--record"_s, u"/d/r.json"_s} << qint64(2048) << qint64(0) << QStringList{u"/d"_s};
    QTest::newRow("collect")          << QStringList{u"collect"_s, u"/c"_s} << qint64(2048) << qint64(3600) << QStringList{u"/c"_s};
    QTest::newRow("report")           << QStringList{u"report"_s, u"/c"_s}  << qint64(2048) << qint64(3600) << QStringList{u"/c/Report"_s};
    QTest::newRow("report elsewhere") << QStringList{u"report"_s, u"/c"_s, u"-o"_s, u"/d"_s} << qint64(2048) << qint64(3600) << QStringList{u"/d"_s};
    // clang-format on
}

void test_words::limits_of_reading()
{
    QFETCH(const QStringList, arguments);
    const command_line line = parsed(arguments);
    QVERIFY(line.reading && line.command);
    QTEST(line.reading->memory, "memory");
    QTEST(line.reading->timeout, "timeout");
    QTEST(line.reading->writable, "writable");
}

void test_words::refusal_through_the_program()
{
    const host_result result = host.run({u"show"_s, u"c"_s, u"-x"_s});
    QCOMPARE(result.errors, u"error: there is no option -x (bluetooth-logs show --help tells more)\n"_s);
    QCOMPARE(result.output, QString());
    QCOMPARE(result.exit_code, 2);
    QCOMPARE(QDir(host.path(QString())).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

void test_words::help_is_found_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("usage");
    QTest::addColumn<int>("exit_code");

    const QString program = u"Usage: bluetooth-logs [OPTIONS] COMMAND\n"_s;
    const QString show = u"Usage: bluetooth-logs show [OPTIONS] CASE\n"_s;
    // clang-format off
    QTest::newRow("nothing")         << QStringList()                       << program << 2;
    QTest::newRow("only an option")  << QStringList{u"-q"_s}                << program << 2;
    QTest::newRow("help")            << QStringList{u"help"_s}              << program << 0;
    QTest::newRow("--help")          << QStringList{u"--help"_s}            << program << 0;
    QTest::newRow("help of a command") << QStringList{u"help"_s, u"show"_s} << show    << 0;
    QTest::newRow("--help behind it") << QStringList{u"show"_s, u"--help"_s} << show   << 0;
    // clang-format on
}

void test_words::help_is_found()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, usage);
    QFETCH(int, exit_code);

    const host_result result = host.run(arguments);
    QVERIFY2(result.output.startsWith(usage), qPrintable(result.output));
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exit_code, exit_code);
}

void test_words::help_of_the_zone_says_what_it_changes()
{
    const host_result result = host.run({u"extract"_s, u"--help"_s});
    QVERIFY2(result.output.simplified().contains(u"It changes nothing of the tables"_s), qPrintable(result.output));
}

void test_words::examples_stand_in_one_column()
{
    const QString help = host.run({u"help"_s, u"collect"_s}).output;
    QVERIFY2(help.endsWith(u"Examples:\n"
                           "  bluetooth-logs extract --sources list.json -o case --only 1   on one machine\n"
                           "  bluetooth-logs extract --sources list.json -o case --only 2   on another one\n"
                           "  bluetooth-logs collect case                                   once all have ended\n"_s),
             qPrintable(help));
}

void test_words::path_that_is_no_text_data()
{
    QTest::addColumn<QString>("command"); // ? stands for a name with a byte that is no UTF-8
    QTest::addColumn<QString>("name");

    // clang-format off
    QTest::newRow("source")     << u"extract -i ? -o c"_s             << u"--input"_s;
    QTest::newRow("list")       << u"extract --sources ? -o c"_s      << u"--sources"_s;
    QTest::newRow("case")       << u"extract -i s -o ?"_s             << u"--output"_s;
    QTest::newRow("plug-in")    << u"extract -i s -o c --plugin ?"_s  << u"--plugin"_s;
    QTest::newRow("text")       << u"extract -i s -o c --os-name ?"_s << u"--os-name"_s;
    QTest::newRow("sample")     << u"sample ?"_s                      << u"DIR"_s;
    QTest::newRow("shown case") << u"show ?"_s                        << u"CASE"_s;
    QTest::newRow("collected")  << u"collect ?"_s                     << u"CASE"_s;
    // clang-format on
}

void test_words::path_that_is_no_text()
{
    QFETCH(QString, command);
    QFETCH(QString, name);

    const host_result result = host.run_in_shell(command.replace(u'?', u"$(printf 'a\\377')"_s));
    QCOMPARE(result.errors, u"error: "_s + name + u": a\ufffd is no valid UTF-8\n"_s);
    QCOMPARE(result.exit_code, 2);
    QCOMPARE(QDir(host.path(QString())).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

void test_words::relative_path_without_a_working_folder_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("exit_code");
    QTest::addColumn<QString>("message"); // $ stands for the working directory of the test

    const QString gone = u", and the working folder is gone: give an absolute path"_s;
    // clang-format off
    QTest::newRow("source")     << u"extract -i s -o $/c"_s << 2 << u"--input is a relative path, s"_s + gone;
    QTest::newRow("case")       << u"extract -i $/s -o c"_s << 2 << u"--output is a relative path, c"_s + gone;
    QTest::newRow("sample")     << u"sample s"_s            << 2 << u"DIR is a relative path, s"_s + gone;
    QTest::newRow("shown case") << u"show c"_s              << 2 << u"CASE is a relative path, c"_s + gone;
    QTest::newRow("absolute")   << u"extract -i $/s -o $/c"_s << 3 << u"there is no source at $/s"_s;
    // clang-format on
}

void test_words::relative_path_without_a_working_folder()
{
    QFETCH(QString, command);
    QFETCH(int, exit_code);
    QFETCH(QString, message);

    const QString folder = host.path(QString());
    const host_result result = host.run_in_shell(command.replace(u'$', folder),
                                                 u"mkdir gone && cd gone && rmdir ../gone"_s);
    QCOMPARE(result.errors, u"error: "_s + message.replace(u'$', folder) + u'\n');
    QCOMPARE(result.exit_code, exit_code);
}

void test_words::kind_is_understood_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("name");

    // clang-format off
    QTest::newRow("macOS")   << u"macOS"_s   << u"macOS"_s;
    QTest::newRow("MacOs")   << u"MacOs"_s   << u"macOS"_s;
    QTest::newRow("ios")     << u"ios"_s     << u"iOS_UID"_s;
    QTest::newRow("IOS")     << u"IOS"_s     << u"iOS_UID"_s;
    QTest::newRow("ios_uid") << u"ios_uid"_s << u"iOS_UID"_s;
    QTest::newRow("WINOS")   << u"WINOS"_s   << u"winOS"_s;
    QTest::newRow("Windows") << u"Windows"_s << u"winOS"_s;
    QTest::newRow("begun")   << u"mac"_s     << QString();
    // clang-format on
}

void test_words::kind_is_understood()
{
    QFETCH(QString, kind);
    QFETCH(QString, name);

    const source_kind *found = source_kind_named(kind);
    QCOMPARE(found ? QString(found->name) : QString(), name);
}

void test_words::number_with_leading_zeros()
{
    const host_program other;
    other.write_sample();
    const host_result result = other.run({u"extract"_s, u"-i"_s, u"sample/ios/system.log"_s, u"-t"_s, u"IOS"_s, u"-o"_s,
                                          u"case"_s, u"--source-number"_s, u"010"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(QDir(other.path(u"case"_s)).entryList(QDir::Dirs | QDir::NoDotAndDotDot), QStringList{u"Source10"_s});
}

BLUETOOTH_LOGS_TEST(test_words, QCoreApplication)

#include "test_words.moc"
