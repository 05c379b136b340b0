// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"
#include "tests/support/text_function.h"

#include <QTest>

#include <ctime>

using namespace Qt::StringLiterals;
using library = plugin_static_function;

/** Evidence can hold texts of any size: no conversion may take more than a few passes over its text. */
class test_large_texts : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void time_data();
    void time();
};

namespace {

constexpr qsizetype characters = 4'000'000;

/** Far above what some passes over such a text take, far below what a pass for each of its characters takes. */
#ifdef NDEBUG
constexpr qint64 bearable_milliseconds = 400;
#else
constexpr qint64 bearable_milliseconds = 3200; // without optimisation, or with sanitizers
#endif

constexpr struct
{
    const char *name;
    text_function function;
} conversions[] = {
    {"duration", library::get_human_readable_time},
    {"custom", library::convert_epoch_to_custom},
    {"apple", library::convert_apple_time_to_epoch},
    {"mail", library::convert_human_readable_to_epoch},
    {"english", library::convert_human_readable_to_epoch_1},
    {"numeric", library::convert_human_readable_to_epoch_2},
    {"GMT", library::convert_timestamp_to_human_readable_in_GMT},
    {"local", library::convert_timestamp_to_human_readable_with_timezone},
    {"T Z", library::convert_T_Z_time_to_epoch},
    {"google", library::convert_google_time_to_epoch},
    {"size", library::human_readable_size},
    {"suffix", library::mining_suffix},
    {"folder size", library::mining_size},
    {"OS version", library::get_source_os_scan_version},
    {"number", library::get_filtered_number_value},
    {"boolean", library::get_filtered_boolean_value},
    {"cfstring", library::get_filtered_cfstring_value},
    {"string", library::get_filtered_string_value},
    {"wherefrom", library::get_filtered_wherefrom_value},
    {"date", library::get_filtered_date_value},
    {"unicode", library::convert_string_to_unicode},
};

constexpr QStringView fillers[] = {u" ",  u"0",       u"1",       u"a",       u",",  u".",      u"+",
                                   u"-",  u"=",       u"(",       u"\"",      u"<",  u"(\"",    u"\",",
                                   u"T",  u"x ",      u" AM ",    u"]>{",     u"/.", u"]>{=,+", u"\\U",
                                   u"é🎧", u"\\U0041", u"\\UD83D", u"\\U2019s"};

} // namespace

void test_large_texts::time_data()
{
    QTest::addColumn<text_function>("function");
    QTest::addColumn<QString>("filler");

    for (const auto &conversion : conversions) {
        for (const QStringView filler : fillers)
            QTest::addRow("%s of %s", conversion.name, qPrintable(filler.toString()))
                << conversion.function << filler.toString();
    }
}

void test_large_texts::time()
{
    QFETCH(text_function, function);
    QFETCH(QString, filler);

    const QString text = filler.repeated(characters / filler.size());
    const std::clock_t start = std::clock(); // of the processor: other programs do not count
    function(text);
    QCOMPARE_LT((std::clock() - start) * 1000 / CLOCKS_PER_SEC, bearable_milliseconds);
}

BLUETOOTH_LOGS_TEST(test_large_texts, QCoreApplication)

#include "test_large_texts.moc"
