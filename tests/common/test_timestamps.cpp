// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"
#include "tests/support/text_function.h"

#include <QDir>
#include <QFile>
#include <QTest>
#include <QTime>

#include <limits>
#include <sys/stat.h>
#include <time.h>

using namespace Qt::StringLiterals;
using library = plugin_static_function;

class test_timestamps : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data();
    void initTestCase();
    void init() override;

    void text_to_text_data();
    void text_to_text();
    void local_date_data();
    void local_date();
    void local_date_that_summer_time_skips();
    void timezone_to_seconds_data();
    void timezone_to_seconds();
    void display_data();
    void display();
    void display_in_local_time_data();
    void display_in_local_time();
    void display_logs_its_start_only_with_timezone();
    void posix_timestamp_of_a_file_data();
    void posix_timestamp_of_a_file();
    void posix_timestamp_of_a_changed_file();
    void posix_timestamp_of_what_does_not_exist_data();
    void posix_timestamp_of_what_does_not_exist();
    void posix_timestamp_in_the_hour_that_autumn_repeats();

private:
    debug_log_capture log;
};

namespace {

/** Seconds east of UTC of the zone that this program runs in. */
qint64 local_offset(time_t seconds)
{
    tm parts;
    localtime_r(&seconds, &parts);
    return parts.tm_gmtoff;
}

/** A file with given access and modification times. */
QString file_with_times(const QTemporaryDir &directory, const QString &name, time_t accessed, time_t modified)
{
    QFile file(directory.filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot create a file of a test");
    const timespec times[] = {{accessed, 900'000'000}, {modified, 100'000'000}};
    if (futimens(file.handle(), times) != 0)
        qFatal("cannot set the times of a file of a test");
    return file.fileName();
}

} // namespace

void test_timestamps::initTestCase_data()
{
    QTest::addColumn<QLocale>("locale");

    QTest::newRow("English") << QLocale(QLocale::C);
    QTest::newRow("German") << QLocale(QLocale::German);
    QTest::newRow("Arabic digits") << QLocale(QLocale::Arabic, QLocale::Egypt);
}

void test_timestamps::initTestCase()
{
    const QHash<QString, qint64> winter_offsets{{u"UTC"_s, 0},
                                                {u"Asia/Kolkata"_s, 19800},
                                                {u"America/New_York"_s, -18000}};
    const QString zone = qEnvironmentVariable("TZ");
    QCOMPARE(local_offset(1578182400), winter_offsets.value(zone, local_offset(1578182400)));
}

void test_timestamps::init()
{
    strict_test::init();
    QFETCH_GLOBAL(QLocale, locale);
    QLocale::setDefault(locale);
    log.start();
    log.take_lines();
}

void test_timestamps::text_to_text_data()
{
    QTest::addColumn<text_function>("function");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("expected");

    // clang-format off
    const text_function duration = library::get_human_readable_time;
    QTest::newRow("duration: empty")                   << duration << u""_s             << u""_s;
    QTest::newRow("duration: null")                    << duration << QString()         << u""_s;
    QTest::newRow("duration: blank")                   << duration << u" \t\n"_s        << u""_s;
    QTest::newRow("duration: zero")                    << duration << u"0"_s            << u"00:00 Min"_s;
    QTest::newRow("duration: seconds")                 << duration << u"59"_s           << u"00:59 Min"_s;
    QTest::newRow("duration: one minute")              << duration << u"60"_s           << u"01:00 Min"_s;
    QTest::newRow("duration: minutes")                 << duration << u"65"_s           << u"01:05 Min"_s;
    QTest::newRow("duration: last without hours")      << duration << u"3599"_s         << u"59:59 Min"_s;
    QTest::newRow("duration: one hour")                << duration << u"3600"_s         << u"01:00:00 Hrs"_s;
    QTest::newRow("duration: hours")                   << duration << u"3725"_s         << u"01:02:05 Hrs"_s;
    QTest::newRow("duration: 99 hours")                << duration << u"359999"_s       << u"99:59:59 Hrs"_s;
    QTest::newRow("duration: 100 hours")               << duration << u"360000"_s       << u"100:00:00 Hrs"_s;
    QTest::newRow("duration: largest")                 << duration << u"2147483647"_s   << u"596523:14:07 Hrs"_s;
    QTest::newRow("duration: does not fit")            << duration << u"2147483648"_s   << u"00:00 Min"_s;
    QTest::newRow("duration: negative")                << duration << u"-5"_s           << u""_s;
    QTest::newRow("duration: smallest")                << duration << u"-2147483648"_s  << u""_s;
    QTest::newRow("duration: too small")               << duration << u"-2147483649"_s  << u"00:00 Min"_s;
    QTest::newRow("duration: fraction")                << duration << u"65.999"_s       << u"01:05 Min"_s;
    QTest::newRow("duration: two points")              << duration << u"65.9.8"_s       << u"01:05 Min"_s;
    QTest::newRow("duration: only a fraction")         << duration << u".5"_s           << u"00:00 Min"_s;
    QTest::newRow("duration: small negative fraction") << duration << u"-0.5"_s         << u"00:00 Min"_s;
    QTest::newRow("duration: blanks around")           << duration << u" 65 "_s         << u"01:05 Min"_s;
    QTest::newRow("duration: unreadable")              << duration << u"abc"_s          << u"00:00 Min"_s;
    QTest::newRow("duration: not base 10")             << duration << u"0x41"_s         << u"00:00 Min"_s;

    const text_function apple = library::convert_apple_time_to_epoch;
    QTest::newRow("apple: empty")                      << apple << u""_s                << u""_s;
    QTest::newRow("apple: blank")                      << apple << u"  "_s              << u""_s;
    QTest::newRow("apple: zero")                       << apple << u"0"_s               << u""_s;
    QTest::newRow("apple: zero between blanks")        << apple << u" 0 "_s             << u""_s;
    QTest::newRow("apple: zero with a fraction")       << apple << u"0.0"_s             << u"978307200"_s;
    QTest::newRow("apple: one")                        << apple << u"1"_s               << u"978307201"_s;
    QTest::newRow("apple: fraction")                   << apple << u"600000000.5"_s     << u"1578307200"_s;
    QTest::newRow("apple: negative")                   << apple << u"-978307201"_s      << u"-1"_s;
    QTest::newRow("apple: largest")                    << apple << u"2147483647"_s      << u"3125790847"_s;
    QTest::newRow("apple: smallest")                   << apple << u"-2147483648"_s     << u"-1169176448"_s;
    QTest::newRow("apple: does not fit")               << apple << u"2147483648"_s      << u"978307200"_s;
    QTest::newRow("apple: unreadable")                 << apple << u"abc"_s             << u"978307200"_s;
    QTest::newRow("apple: only a point")               << apple << u"."_s               << u"978307200"_s;

    const text_function google = library::convert_google_time_to_epoch;
    QTest::newRow("google: empty")                     << google << u""_s                     << u""_s;
    QTest::newRow("google: blank")                     << google << u"  "_s                   << u""_s;
    QTest::newRow("google: zero")                      << google << u"0"_s                    << u""_s;
    QTest::newRow("google: microseconds")              << google << u"13000000000000000"_s    << u"1355526400"_s;
    QTest::newRow("google: blanks around")             << google << u" 13000000000000000 "_s  << u"1355526400"_s;
    QTest::newRow("google: fraction of a second")      << google << u"13000000000999999"_s    << u"1355526400"_s;
    QTest::newRow("google: the Unix epoch")            << google << u"11644473600000000"_s    << u"0"_s;
    QTest::newRow("google: before the Unix epoch")     << google << u"11644473599000000"_s    << u"-1"_s;
    QTest::newRow("google: first second")              << google << u"1"_s                    << u"-11644473600"_s;
    QTest::newRow("google: largest")                   << google << u"18446744073709551615"_s << u"18435099600109"_s;
    QTest::newRow("google: does not fit")              << google << u"18446744073709551616"_s << u""_s;
    QTest::newRow("google: negative")                  << google << u"-13000000000000000"_s   << u""_s;
    QTest::newRow("google: unreadable")                << google << u"abc"_s                  << u""_s;
    QTest::newRow("google: fraction")                  << google << u"13000000000000000.5"_s  << u""_s;
    QTest::newRow("google: Unix seconds")              << google << u"1355526400"_s           << u"1355526400"_s;
    QTest::newRow("google: any 10 characters")         << google << u" ten chars! "_s         << u"ten chars!"_s;

    const text_function mail = library::convert_human_readable_to_epoch;
    QTest::newRow("mail: empty")                       << mail << u""_s                                  << u""_s;
    QTest::newRow("mail: zero")                        << mail << u"0"_s                                 << u""_s;
    QTest::newRow("mail: weekday and zone")            << mail << u"Fri, 03 May 2019 10:00:00 GMT"_s     << u"1556877600"_s;
    QTest::newRow("mail: zone is not applied")         << mail << u"Fri, 03 May 2019 10:00:00 -0500"_s   << u"1556877600"_s;
    QTest::newRow("mail: no weekday")                  << mail << u"03 May 2019 10:00:00 GMT"_s          << u"1556877600"_s;
    QTest::newRow("mail: blanks")                      << mail << u"  Fri,  03 May 2019 10:00:00  GMT "_s << u"1556877600"_s;
    QTest::newRow("mail: skipped in New York")         << mail << u"Sun, 10 Mar 2019 02:30:00 EST"_s     << u"1552185000"_s;
    QTest::newRow("mail: second before 1970")          << mail << u"Wed, 31 Dec 1969 23:59:59 GMT"_s     << u"-1"_s;
    QTest::newRow("mail: the Unix epoch")              << mail << u"Thu, 01 Jan 1970 00:00:00 GMT"_s     << u"0"_s;
    QTest::newRow("mail: leap day")                    << mail << u"Tue, 29 Feb 2000 00:00:00 GMT"_s     << u"951782400"_s;
    QTest::newRow("mail: no such day")                 << mail << u"Fri, 29 Feb 2019 00:00:00 GMT"_s     << u""_s;
    QTest::newRow("mail: zone missing")                << mail << u"Fri, 03 May 2019 10:00:00"_s         << u""_s;
    QTest::newRow("mail: two words of zone")           << mail << u"Fri, 03 May 2019 10:00:00 GMT (x)"_s << u""_s;
    QTest::newRow("mail: German month")                << mail << u"Fr, 03 Mai 2019 10:00:00 GMT"_s      << u""_s;
    QTest::newRow("mail: one digit of the day")        << mail << u"Fri, 3 May 2019 10:00:00 GMT"_s      << u""_s;
    QTest::newRow("mail: second comma")                << mail << u"Fri, 03 May, 2019 10:00:00 GMT"_s    << u""_s;
    QTest::newRow("mail: only a comma")                << mail << u","_s                                 << u""_s;
    QTest::newRow("mail: unparsable")                  << mail << u"yesterday at noon"_s                 << u""_s;

    const text_function english = library::convert_human_readable_to_epoch_1;
    QTest::newRow("english: empty")                    << english << u""_s                                  << u""_s;
    QTest::newRow("english: afternoon")                << english << u"Jan 5, 2020, 3:04:05 PM UTC"_s       << u"1578236645"_s;
    QTest::newRow("english: morning")                  << english << u"Jan 5, 2020, 3:04:05 AM UTC"_s       << u"1578193445"_s;
    QTest::newRow("english: midnight")                 << english << u"Jan 5, 2020, 12:04:05 AM UTC"_s      << u"1578182645"_s;
    QTest::newRow("english: noon")                     << english << u"Jan 5, 2020, 12:04:05 PM UTC"_s      << u"1578225845"_s;
    QTest::newRow("english: blanks")                   << english << u"  Jan 5, 2020, 3:04:05 PM   UTC  "_s << u"1578236645"_s;
    QTest::newRow("english: two digits")               << english << u"Jan 05, 2020, 03:04:05 PM UTC"_s     << u"1578236645"_s;
    QTest::newRow("english: skipped in New York")      << english << u"Mar 10, 2019, 2:30:00 AM UTC"_s      << u"1552185000"_s;
    QTest::newRow("english: before 1970")              << english << u"Dec 31, 1969, 11:59:59 PM UTC"_s     << u"-1"_s;
    QTest::newRow("english: both halves")              << english << u"Jan 5, 2020, 3:04:05 PM AM UTC"_s    << u""_s;
    QTest::newRow("english: zone begins like a half")  << english << u"Jan 5, 2020, 3:04:05 AM AMT"_s       << u""_s;
    QTest::newRow("english: 24 hours")                 << english << u"Jan 5, 2020, 15:04:05 PM UTC"_s      << u""_s;
    QTest::newRow("english: no half of the day")       << english << u"Jan 5, 2020, 3:04:05 UTC"_s          << u""_s;
    QTest::newRow("english: German month")             << english << u"Okt 5, 2020, 3:04:05 PM UTC"_s       << u""_s;
    QTest::newRow("english: only a half")              << english << u"x PM UTC"_s                          << u""_s;
    QTest::newRow("english: unparsable, local")        << english << u"yesterday"_s                         << u""_s;

    const text_function numeric = library::convert_human_readable_to_epoch_2;
    QTest::newRow("numeric: empty")                    << numeric << u""_s                                  << u""_s;
    QTest::newRow("numeric: empty date")               << numeric << u".123 +0530"_s                        << u""_s;
    QTest::newRow("numeric: zero date")                << numeric << u"0.123 +0530"_s                       << u""_s;
    QTest::newRow("numeric: east")                     << numeric << u"2019-05-03 10:00:00.123 +0530"_s     << u"1556857800"_s;
    QTest::newRow("numeric: west")                     << numeric << u"2019-05-03 10:00:00.123 -0530"_s     << u"1556897400"_s;
    QTest::newRow("numeric: UTC")                      << numeric << u"2019-05-03 10:00:00.123 +0000"_s     << u"1556877600"_s;
    QTest::newRow("numeric: blanks around")            << numeric << u"  2019-05-03 10:00:00.123 +0530  "_s << u"1556857800"_s;
    QTest::newRow("numeric: zone joined")              << numeric << u"2019-05-03 10:00:00.123+0530"_s      << u"1556857800"_s;
    QTest::newRow("numeric: no fraction, east")        << numeric << u"2019-05-03 10:00:00 +0530"_s         << u"1556857800"_s;
    QTest::newRow("numeric: no fraction, zone joined") << numeric << u"2019-05-03 10:00:00+0530"_s        << u"1556857800"_s;
    QTest::newRow("numeric: no fraction, west")        << numeric << u"2019-05-03 10:00:00 -0100"_s         << u"1556881200"_s;
    QTest::newRow("numeric: point only in the zone")   << numeric << u"2019-05-03 10:00:00 +05.30"_s        << u""_s;
    QTest::newRow("numeric: a second point")           << numeric << u"2019-05-03 10:00:00.12.3 +0530"_s    << u"1556857800"_s;
    QTest::newRow("numeric: skipped in New York")      << numeric << u"2019-03-10 02:30:00.0 +0000"_s       << u"1552185000"_s;
    QTest::newRow("numeric: before 1970")              << numeric << u"1969-12-31 23:59:59.9 +0000"_s       << u"-1"_s;
    QTest::newRow("numeric: no sign at all")           << numeric << u"20190503 100000.123 0530"_s          << u""_s;
    QTest::newRow("numeric: both signs")               << numeric << u"2019-05-03 10:00:00.1 -0100 +0200"_s << u"1556870400"_s;
    QTest::newRow("numeric: unreadable zone")          << numeric << u"2019-05-03 10:00:00.123 +abcd"_s     << u"1556877600"_s;
    QTest::newRow("numeric: unparsable date")          << numeric << u"03.05.2019 10:00:00 +0530"_s         << u""_s;
    // The sign of the date is the last one: its day counts as the hours of a zone.
    QTest::newRow("numeric: no zone")                  << numeric << u"2019-05-03 10:00:00.123"_s           << u"1556888400"_s;

    const text_function iso_like = library::convert_T_Z_time_to_epoch;
    QTest::newRow("T Z: empty")                        << iso_like << u""_s                         << u""_s;
    QTest::newRow("T Z: blank")                        << iso_like << u"  "_s                       << u""_s;
    QTest::newRow("T Z: basic date")                   << iso_like << u"20190503"_s                 << u"1556841600"_s;
    QTest::newRow("T Z: basic date and T")             << iso_like << u"20190503T"_s                << u"1556841600"_s;
    QTest::newRow("T Z: basic with Z")                 << iso_like << u"20190503T100000Z"_s         << u"1556877600"_s;
    QTest::newRow("T Z: basic without Z")              << iso_like << u"20190503T100000"_s          << u"1556877600"_s;
    QTest::newRow("T Z: basic with a blank")           << iso_like << u"20190503 100000"_s          << u"1556877600"_s;
    QTest::newRow("T Z: extended")                     << iso_like << u"2019-05-03T10:00:00"_s      << u"1556877600"_s;
    QTest::newRow("T Z: extended with a blank")        << iso_like << u"2019-05-03 10:00:00"_s      << u"1556877600"_s;
    QTest::newRow("T Z: extended with -")              << iso_like << u"2019-05-03T10-00-00"_s      << u"1556877600"_s;
    QTest::newRow("T Z: milliseconds")                 << iso_like << u"2019-05-03T10:00:00.999"_s  << u"1556877600"_s;
    QTest::newRow("T Z: blanks")                       << iso_like << u" 2019-05-03 T 10:00:00 "_s  << u"1556877600"_s;
    QTest::newRow("T Z: third part is ignored")        << iso_like << u"2019-05-03 10:00:00 +0530"_s << u"1556877600"_s;
    QTest::newRow("T Z: second T")                     << iso_like << u"20190503T100000T999"_s      << u"1556877600"_s;
    QTest::newRow("T Z: skipped in New York")          << iso_like << u"2019-03-10T02:30:00"_s      << u"1552185000"_s;
    QTest::newRow("T Z: milliseconds before 1970")     << iso_like << u"1969-12-31T23:59:59.500"_s  << u"0"_s;
    QTest::newRow("T Z: seconds before 1970")          << iso_like << u"1969-12-31T23:59:58.500"_s  << u"-1"_s;
    QTest::newRow("T Z: first day")                    << iso_like << u"0001-01-01T00:00:00"_s      << u"-62135596800"_s;
    QTest::newRow("T Z: last day")                     << iso_like << u"9999-12-31T23:59:59"_s      << u"253402300799"_s;
    QTest::newRow("T Z: extended with Z")              << iso_like << u"2019-05-03T10:00:00Z"_s     << u""_s;
    QTest::newRow("T Z: extended date alone")          << iso_like << u"2019-05-03"_s               << u""_s;
    QTest::newRow("T Z: two blanks")                   << iso_like << u"2019-05-03  10:00:00"_s     << u""_s;
    QTest::newRow("T Z: microseconds")                 << iso_like << u"2019-05-03T10:00:00.123456"_s << u""_s;
    QTest::newRow("T Z: hour 24")                      << iso_like << u"2019-05-03T24:00:00"_s      << u""_s;
    QTest::newRow("T Z: only T")                       << iso_like << u"T"_s                        << u""_s;
    QTest::newRow("T Z: only a time")                  << iso_like << u"T10:00:00"_s                << u""_s;
    QTest::newRow("T Z: words")                        << iso_like << u"not a date"_s               << u""_s;
    QTest::newRow("T Z: lone surrogate")               << iso_like << QString(QChar(0xD83D))        << u""_s;
    // clang-format on
}

void test_timestamps::text_to_text()
{
    QFETCH(text_function, function);
    QFETCH(QString, input);
    QFETCH(QString, expected);

    QCOMPARE(function(input), expected);
    QCOMPARE(log.take_lines(), QStringList());
}

void test_timestamps::local_date_data()
{
    QTest::addColumn<QString>("date");
    QTest::addColumn<qint64>("seconds_in_utc");

    // clang-format off
    QTest::newRow("other zone")       << u"Jan 5, 2020, 3:04:05 PM PST"_s  << qint64{1578236645};
    QTest::newRow("zone is not UTC")  << u"Jan 5, 2020, 3:04:05 PM UTC+1"_s << qint64{1578236645};
    QTest::newRow("lower case zone")  << u"Jan 5, 2020, 3:04:05 AM utc"_s  << qint64{1578193445};
    QTest::newRow("no zone")          << u"Jan 5, 2020, 3:04:05 PM"_s      << qint64{1578236645};
    QTest::newRow("summer")           << u"May 3, 2019, 10:00:00 AM CEST"_s << qint64{1556877600};
    // clang-format on
}

void test_timestamps::local_date()
{
    QFETCH(QString, date);
    QFETCH(qint64, seconds_in_utc);

    const qint64 expected = seconds_in_utc - local_offset(seconds_in_utc);
    QCOMPARE(library::convert_human_readable_to_epoch_1(date), QString::number(expected));
}

/** New York went from 02:00 to 03:00: 02:30 was no time of that day. */
void test_timestamps::local_date_that_summer_time_skips()
{
    if (qEnvironmentVariable("TZ") != u"America/New_York"_s)
        QSKIP("New York's summer time");
    QCOMPARE(library::convert_human_readable_to_epoch_1(u"Mar 8, 2020, 2:30:00 AM EST"_s), QString());
    QCOMPARE(library::convert_human_readable_to_epoch_1(u"Mar 8, 2020, 2:30:00 AM UTC"_s), u"1583634600"_s);
}

void test_timestamps::timezone_to_seconds_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<int>("seconds");

    // clang-format off
    QTest::newRow("hours")              << u"0100"_s           << 3600;
    QTest::newRow("hours and minutes")  << u"0530"_s           << 19800;
    QTest::newRow("blanks around")      << u" 0530 "_s         << 19800;
    QTest::newRow("zero")               << u"0000"_s           << 0;
    QTest::newRow("largest")            << u"9999"_s           << 362340;
    QTest::newRow("three digits")       << u"053"_s            << 18180;
    QTest::newRow("hours only")         << u"05"_s             << 18000;
    QTest::newRow("one digit")          << u"5"_s              << 18000;
    QTest::newRow("empty")              << u""_s               << 0;
    QTest::newRow("null")               << QString()           << 0;
    QTest::newRow("unreadable hours")   << u"ab30"_s           << 1800;
    QTest::newRow("unreadable minutes") << u"05ab"_s           << 18000;
    QTest::newRow("colon")              << u"05:30"_s          << 18000;
    QTest::newRow("negative hours")     << u"-5"_s             << -18000;
    QTest::newRow("minutes fit")        << u"0035791394"_s     << 2147483640;
    QTest::newRow("sum does not fit")   << u"0035791395"_s     << 0;
    QTest::newRow("largest minutes")    << u"992147483647"_s   << 0;
    QTest::newRow("too many minutes")   << u"012147483648"_s   << 3600;
    // clang-format on
}

void test_timestamps::timezone_to_seconds()
{
    QFETCH(QString, zone);
    QFETCH(int, seconds);

    QCOMPARE(library::convert_timezone_to_seconds_1(zone), seconds);
}

void test_timestamps::display_data()
{
    QTest::addColumn<text_function>("function");
    QTest::addColumn<int>("format");
    QTest::addColumn<qint64>("selected_offset");
    QTest::addColumn<qint64>("machine_offset");
    QTest::addColumn<QString>("seconds");
    QTest::addColumn<QString>("expected");

    constexpr qint64 none = 0;
    constexpr qint64 india = 19800;
    constexpr qint64 new_york = -18000;
    constexpr qint64 largest = std::numeric_limits<qint64>::max();
    constexpr qint64 smallest = std::numeric_limits<qint64>::min();

    // clang-format off
    const text_function custom = library::convert_epoch_to_custom;
    QTest::newRow("custom: format 0")                << custom <<  0 << none     << none     << u"1556877600"_s << u"2019-May-03 10:00:00"_s;
    QTest::newRow("custom: format 1")                << custom <<  1 << none     << none     << u"1556877600"_s << u"May-03-2019 10:00:00"_s;
    QTest::newRow("custom: format 2")                << custom <<  2 << none     << none     << u"1556877600"_s << u"03-May-2019 10:00:00"_s;
    QTest::newRow("custom: format 3")                << custom <<  3 << none     << none     << u"1556877600"_s << u"03-May-2019 10:00:00"_s;
    QTest::newRow("custom: format -1")               << custom << -1 << none     << none     << u"1556877600"_s << u"03-May-2019 10:00:00"_s;
    QTest::newRow("custom: negative, format 0")      << custom <<  0 << none     << none     << u"-86400"_s     << u"1969/12/31 00:00:00"_s;
    QTest::newRow("custom: negative, format 1")      << custom <<  1 << none     << none     << u"-86400"_s     << u"12/31/1969 00:00:00"_s;
    QTest::newRow("custom: negative, format 2")      << custom <<  2 << none     << none     << u"-86400"_s     << u"31/12/1969 00:00:00"_s;
    QTest::newRow("custom: negative, format 3")      << custom <<  3 << none     << none     << u"-86400"_s     << u""_s;
    QTest::newRow("custom: negative, format -1")     << custom << -1 << none     << none     << u"-86400"_s     << u""_s;
    QTest::newRow("custom: selected zone")           << custom <<  0 << india    << none     << u"1556877600"_s << u"2019-May-03 15:30:00"_s;
    QTest::newRow("custom: machine's zone")          << custom <<  0 << none     << india    << u"1556877600"_s << u"2019-May-03 04:30:00"_s;
    QTest::newRow("custom: both zones")              << custom <<  0 << new_york << india    << u"1556877600"_s << u"2019-May-02 23:30:00"_s;
    QTest::newRow("custom: zone makes it negative")  << custom <<  0 << new_york << none     << u"3600"_s       << u"1969/12/31 20:00:00"_s;
    QTest::newRow("custom: negative keeps machine")  << custom <<  0 << new_york << india    << u"3600"_s       << u"1969/12/31 20:00:00"_s;
    QTest::newRow("custom: machine makes it early")  << custom <<  0 << none     << india    << u"3600"_s       << u"1969-Dec-31 19:30:00"_s;
    QTest::newRow("custom: zone makes it zero")      << custom <<  0 << new_york << none     << u"18000"_s      << u"1970-Jan-01 00:00:00"_s;
    QTest::newRow("custom: zone makes it positive")  << custom <<  0 << india    << none     << u"-19800"_s     << u"1970-Jan-01 00:00:00"_s;
    QTest::newRow("custom: fraction")                << custom <<  0 << none     << none     << u"1556877600.9"_s << u"2019-May-03 10:00:00"_s;
    QTest::newRow("custom: blanks around")           << custom <<  0 << none     << none     << u" 1556877600 "_s << u"2019-May-03 10:00:00"_s;
    QTest::newRow("custom: beyond 32 bits")          << custom <<  0 << none     << none     << u"4294967296"_s << u"2106-Feb-07 06:28:16"_s;
    QTest::newRow("custom: five digits of the year") << custom <<  0 << none     << none     << u"253402300800"_s << u"10000-Jan-01 00:00:00"_s;
    QTest::newRow("custom: last date")               << custom <<  0 << none     << none     << u"9223372036854775"_s << u"292278994-Aug-17 07:12:55"_s;
    QTest::newRow("custom: no such date")            << custom <<  0 << none     << none     << u"9223372036854776"_s << u""_s;
    QTest::newRow("custom: far before 1970")         << custom <<  0 << none     << none     << u"-11644473600"_s << u"1601/01/01 00:00:00"_s;
    QTest::newRow("custom: no such year")            << custom <<  0 << none     << none     << u"-9223372036854775808"_s << u""_s;
    QTest::newRow("custom: largest sum")             << custom <<  0 << largest  << none     << u"1"_s          << u""_s;
    QTest::newRow("custom: smallest sum")            << custom <<  0 << smallest << none     << u"-1"_s         << u""_s;
    QTest::newRow("custom: largest difference")      << custom <<  0 << none     << smallest << u"1"_s          << u""_s;
    QTest::newRow("custom: smallest difference")     << custom <<  0 << none     << largest  << u"1"_s          << u""_s;
    QTest::newRow("custom: does not fit")            << custom <<  0 << none     << none     << u"9223372036854775808"_s << u""_s;
    QTest::newRow("custom: zero")                    << custom <<  0 << india    << none     << u"0"_s          << u""_s;
    QTest::newRow("custom: only a fraction")         << custom <<  0 << none     << none     << u".5"_s         << u""_s;
    QTest::newRow("custom: unreadable")              << custom <<  0 << india    << none     << u"abc"_s        << u""_s;
    QTest::newRow("custom: empty")                   << custom <<  0 << india    << none     << u""_s           << u""_s;
    QTest::newRow("custom: null")                    << custom <<  0 << india    << none     << QString()       << u""_s;

    const text_function gmt = library::convert_timestamp_to_human_readable_in_GMT;
    QTest::newRow("GMT: format 0")                   << gmt    <<  0 << none     << none     << u"1556877600"_s << u"2019-May-03 10:00:00"_s;
    QTest::newRow("GMT: format 1")                   << gmt    <<  1 << none     << none     << u"1556877600"_s << u"May-03-2019 10:00:00"_s;
    QTest::newRow("GMT: format 2")                   << gmt    <<  2 << none     << none     << u"1556877600"_s << u"03-May-2019 10:00:00"_s;
    QTest::newRow("GMT: format 3")                   << gmt    <<  3 << none     << none     << u"1556877600"_s << u"03-May-2019 10:00:00"_s;
    QTest::newRow("GMT: no offset is applied")       << gmt    <<  0 << india    << new_york << u"1556877600"_s << u"2019-May-03 10:00:00"_s;
    QTest::newRow("GMT: negative")                   << gmt    <<  0 << none     << none     << u"-86400"_s     << u"1969-Dec-31 00:00:00"_s;
    QTest::newRow("GMT: negative, format 3")         << gmt    <<  3 << none     << none     << u"-86400"_s     << u"31-Dec-1969 00:00:00"_s;
    QTest::newRow("GMT: largest")                    << gmt    <<  0 << none     << none     << u"2147483647"_s << u"2038-Jan-19 03:14:07"_s;
    QTest::newRow("GMT: does not fit")               << gmt    <<  0 << none     << none     << u"2147483648"_s << u""_s;
    QTest::newRow("GMT: smallest")                   << gmt    <<  0 << none     << none     << u"-2147483648"_s << u"1901-Dec-13 20:45:52"_s;
    QTest::newRow("GMT: too small")                  << gmt    <<  0 << none     << none     << u"-2147483649"_s << u""_s;
    QTest::newRow("GMT: fraction and blanks")        << gmt    <<  0 << none     << none     << u" 1556877600.9 "_s << u"2019-May-03 10:00:00"_s;
    QTest::newRow("GMT: zero")                       << gmt    <<  0 << none     << none     << u"0"_s          << u""_s;
    QTest::newRow("GMT: unreadable")                 << gmt    <<  0 << none     << none     << u"abc"_s        << u""_s;
    QTest::newRow("GMT: empty")                      << gmt    <<  0 << none     << none     << u""_s           << u""_s;

    const text_function local = library::convert_timestamp_to_human_readable_with_timezone;
    QTest::newRow("local: negative, format 0")       << local  <<  0 << none     << none     << u"-86400"_s     << u"1969/12/31 00:00:00"_s;
    QTest::newRow("local: negative, format 1")       << local  <<  1 << none     << none     << u"-86400"_s     << u"12/31/1969 00:00:00"_s;
    QTest::newRow("local: negative, format 2")       << local  <<  2 << none     << none     << u"-86400"_s     << u"31/12/1969 00:00:00"_s;
    QTest::newRow("local: negative, format 3")       << local  <<  3 << none     << none     << u"-86400"_s     << u""_s;
    QTest::newRow("local: negative, no offset")      << local  <<  0 << india    << new_york << u"-86400"_s     << u"1969/12/31 00:00:00"_s;
    QTest::newRow("local: smallest")                 << local  <<  0 << none     << none     << u"-2147483648"_s << u"1901/12/13 20:45:52"_s;
    QTest::newRow("local: too small")                << local  <<  0 << none     << none     << u"-2147483649"_s << u""_s;
    QTest::newRow("local: does not fit")             << local  <<  0 << none     << none     << u"2147483648"_s << u""_s;
    QTest::newRow("local: zero")                     << local  <<  0 << none     << none     << u"0"_s          << u""_s;
    QTest::newRow("local: unreadable")               << local  <<  0 << none     << none     << u"abc"_s        << u""_s;
    QTest::newRow("local: empty")                    << local  <<  0 << none     << none     << u""_s           << u""_s;
    // clang-format on
}

void test_timestamps::display()
{
    QFETCH(text_function, function);
    QFETCH(int, format);
    QFETCH(qint64, selected_offset);
    QFETCH(qint64, machine_offset);
    QFETCH(QString, seconds);
    QFETCH(QString, expected);

    library::examiner_selected_date_format_int = format;
    library::examiner_selected_timezone_offset_qint64 = selected_offset;
    library::examiner_machine_timezone_offset_qint64 = machine_offset;
    QCOMPARE(function(seconds), expected);
}

void test_timestamps::display_in_local_time_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("seconds");
    QTest::addColumn<QString>("in_utc");
    QTest::addColumn<QString>("in_india");
    QTest::addColumn<QString>("in_new_york");

    // clang-format off
    QTest::newRow("format 0")  <<  0 << u"1556877600"_s     << u"2019-May-03 10:00:00"_s << u"2019-May-03 15:30:00"_s << u"2019-May-03 06:00:00"_s;
    QTest::newRow("format 1")  <<  1 << u"1556877600"_s     << u"May-03-2019 10:00:00"_s << u"May-03-2019 15:30:00"_s << u"May-03-2019 06:00:00"_s;
    QTest::newRow("format 2")  <<  2 << u"1556877600"_s     << u"03-May-2019 10:00:00"_s << u"03-May-2019 15:30:00"_s << u"03-May-2019 06:00:00"_s;
    QTest::newRow("format 3")  <<  3 << u"1556877600"_s     << u"2019-May-03 10:00:00"_s << u"2019-May-03 15:30:00"_s << u"2019-May-03 06:00:00"_s;
    QTest::newRow("format -1") << -1 << u"1556877600"_s     << u"2019-May-03 10:00:00"_s << u"2019-May-03 15:30:00"_s << u"2019-May-03 06:00:00"_s;
    QTest::newRow("fraction")  <<  0 << u" 1556877600.9 "_s << u"2019-May-03 10:00:00"_s << u"2019-May-03 15:30:00"_s << u"2019-May-03 06:00:00"_s;
    QTest::newRow("winter")    <<  0 << u"1578236645"_s     << u"2020-Jan-05 15:04:05"_s << u"2020-Jan-05 20:34:05"_s << u"2020-Jan-05 10:04:05"_s;
    QTest::newRow("first")     <<  0 << u"1"_s              << u"1970-Jan-01 00:00:01"_s << u"1970-Jan-01 05:30:01"_s << u"1969-Dec-31 19:00:01"_s;
    QTest::newRow("largest")   <<  0 << u"2147483647"_s     << u"2038-Jan-19 03:14:07"_s << u"2038-Jan-19 08:44:07"_s << u"2038-Jan-18 22:14:07"_s;
    // clang-format on
}

void test_timestamps::display_in_local_time()
{
    QFETCH(int, format);
    QFETCH(QString, seconds);
    QFETCH(QString, in_utc);
    QFETCH(QString, in_india);
    QFETCH(QString, in_new_york);

    const QHash<QString, QString> expected{{u"UTC"_s, in_utc},
                                           {u"Asia/Kolkata"_s, in_india},
                                           {u"America/New_York"_s, in_new_york}};
    const QString zone = qEnvironmentVariable("TZ");
    if (!expected.contains(zone))
        QSKIP("the zone of this run is none that is expected");
    library::examiner_selected_date_format_int = format;
    QCOMPARE(library::convert_timestamp_to_human_readable_with_timezone(seconds), expected.value(zone));
}

void test_timestamps::display_logs_its_start_only_with_timezone()
{
    for (const QString &seconds : {u""_s, u"1"_s, u"-1"_s}) {
        library::convert_timestamp_to_human_readable_with_timezone(seconds);
        library::convert_timestamp_to_human_readable_in_GMT(seconds);
        library::convert_epoch_to_custom(seconds);
    }
    const QString line =
        u"[time][KALDO_DESK][Artifacts Extraction][plugin_static_function::convert_timestamp_to_human_readable_with_timezone]:-- [convert_timestamp_to_human_readable_with_timezone] Start"_s;
    QCOMPARE(log.take_lines(), QStringList({line, line, line}));
}

void test_timestamps::posix_timestamp_of_a_file_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<qint64>("accessed");
    QTest::addColumn<qint64>("modified");
    QTest::addColumn<qint64>("accessed_seconds");
    QTest::addColumn<qint64>("modified_seconds");

    // clang-format off
    QTest::newRow("today's times")     << u"file.txt"_s  << qint64{1556877600} << qint64{1556877500} << qint64{1556877600} << qint64{1556877500};
    QTest::newRow("beyond 32 bits")    << u"late"_s      << qint64{4294967296} << qint64{4294967297} << qint64{4294967296} << qint64{4294967297};
    QTest::newRow("before 1970")       << u"early"_s     << qint64{-86401}     << qint64{-86402}     << qint64{-86400}     << qint64{-86401};
    QTest::newRow("blanks in the name") << u" a file "_s << qint64{1556877600} << qint64{1556877500} << qint64{1556877600} << qint64{1556877500};
    // clang-format on
}

void test_timestamps::posix_timestamp_of_a_file()
{
    QFETCH(QString, name);
    QFETCH(qint64, accessed);
    QFETCH(qint64, modified);
    QFETCH(qint64, accessed_seconds);
    QFETCH(qint64, modified_seconds);

    const QTemporaryDir directory;
    const QString path = file_with_times(directory, name, accessed, modified);
    const QString prefix = directory.path() + u'/';
    const QDateTime born = QFileInfo(path).birthTime(); // not every file system knows it
    const QString relative = path.sliced(prefix.size());
    for (const auto &times : {library::get_posix_timestamp(path, {}), library::get_posix_timestamp(relative, prefix)}) {
        QCOMPARE(times.birth_time, born.isValid() ? born.toMSecsSinceEpoch() / 1000 : 0);
        QCOMPARE(times.last_access_time, accessed_seconds);
        QCOMPARE(times.last_modification_time, modified_seconds);
    }
}

/** A file is born once; its permissions may change later. */
void test_timestamps::posix_timestamp_of_a_changed_file()
{
    const QTemporaryDir directory;
    const QString path = file_with_times(directory, u"file"_s, 1556877600, 1556877500);
    const qint64 born = library::get_posix_timestamp(path, {}).birth_time;
    if (born == 0)
        QSKIP("this file system does not know when a file was born");
    QTest::qSleep(1010 - QTime::currentTime().msec()); // the next second has begun then
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
    QVERIFY(QFileInfo(path).metadataChangeTime().toSecsSinceEpoch() > born);
    QCOMPARE(library::get_posix_timestamp(path, {}).birth_time, born);
}

void test_timestamps::posix_timestamp_of_what_does_not_exist_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("prefix");

    // clang-format off
    QTest::newRow("both empty")      << u""_s             << u""_s;
    QTest::newRow("only a prefix")   << u""_s             << QDir::tempPath();
    QTest::newRow("missing file")    << u"/no/such/file"_s << u""_s;
    QTest::newRow("prefix misplaced") << QDir::tempPath() << u"/no/such/folder"_s;
    QTest::newRow("not trimmed")     << u"/ "_s           << u""_s;
    // clang-format on
}

void test_timestamps::posix_timestamp_of_what_does_not_exist()
{
    QFETCH(QString, path);
    QFETCH(QString, prefix);

    const auto times = library::get_posix_timestamp(path, prefix);
    QCOMPARE(times.birth_time, 0);
    QCOMPARE(times.last_access_time, 0);
    QCOMPARE(times.last_modification_time, 0);
}

void test_timestamps::posix_timestamp_in_the_hour_that_autumn_repeats()
{
    const QTemporaryDir directory;
    for (const qint64 seconds : {1572759000, 1572762600}) { // 01:30 in New York, twice
        const auto times = library::get_posix_timestamp(file_with_times(directory, u"f"_s, seconds, seconds), {});
        QCOMPARE(times.last_access_time, seconds);
        QCOMPARE(times.last_modification_time, seconds);
    }
}

BLUETOOTH_LOGS_TEST(test_timestamps, QCoreApplication)

#include "test_timestamps.moc"
