// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/platform_limits.h"
#include "tests/support/property_list_bytes.h"
#include "tests/support/property_list_objects.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

#include <limits>

using namespace Qt::StringLiterals;

class test_plist_values : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void string_values_data();
    void string_values();
    void number_values_data();
    void number_values();
    void yes_no_values_data();
    void yes_no_values();
    void array_values_data();
    void array_values();
    void failures_are_logged_under_their_own_name_data();
    void failures_are_logged_under_their_own_name();
    void key_that_is_no_text();
    void keys_count_exactly_data();
    void keys_count_exactly();
    void doubled_key();
    void cfstring_data();
    void cfstring();
    void nsdate_data();
    void nsdate();
    void nsdate_of_no_date();

private:
    void *key(const QByteArray &text = "key");
    void *dictionary(const QByteArray &value);

    debug_log_capture log;
    property_list_objects objects;
};

void test_plist_values::init()
{
    strict_test::init();
    log.start();
    log.take_lines();
}

void *test_plist_values::key(const QByteArray &text)
{
    return objects.root(xml_list("<string>" + text + "</string>"));
}

/** A dictionary with this element under "key"; an XML element, or an encoded object of a binary list. */
void *test_plist_values::dictionary(const QByteArray &value)
{
    if (value.startsWith('<'))
        return objects.root(xml_list("<dict><key>other</key><true/><key>key</key>" + value + "</dict>"));
    return objects.root(binary_list({binary_dictionary({1}, {2}), binary_text("key"), value}));
}

void test_plist_values::string_values_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("text");

    // clang-format off
    QTest::newRow("plain")        << "<string>AirPods</string>"_ba            << u"AirPods"_s;
    QTest::newRow("trimmed")      << "<string> \t AirPods  Pro\n</string>"_ba << u"AirPods  Pro"_s;
    QTest::newRow("empty")        << "<string></string>"_ba                   << u""_s;
    QTest::newRow("all blank")    << "<string>   </string>"_ba                << u""_s;
    QTest::newRow("unicode")      << "<string>größe 日本 🎧</string>"_ba      << u"größe 日本 🎧"_s;
    QTest::newRow("references")   << "<string>&lt;b&gt; &amp; &#x1F3A7;</string>"_ba << u"<b> & 🎧"_s;
    QTest::newRow("looks like a number") << "<string>2.9</string>"_ba         << u"2.9"_s;
    QTest::newRow("binary")       << binary_text("AirPods")                   << u"AirPods"_s;
    QTest::newRow("binary UTF-16") << "\x62\xD8\x3C\xDF\xA7"_ba               << u"🎧"_s;
    // clang-format on
}

void test_plist_values::string_values()
{
    SKIP_AT_PLATFORM_LIMIT();
    QFETCH(QByteArray, value);
    QFETCH(QString, text);

    QCOMPARE(plugin_static_function::get_nsstring_values(key(), dictionary(value)), text);
    QCOMPARE(plugin_static_function::get_nsstring_key_and_values(key(), dictionary(value), u"Name"_s),
             u"Name:+:"_s + text);
    QCOMPARE(log.take_lines(), QStringList());
}

void test_plist_values::number_values_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("text");

    // clang-format off
    QTest::newRow("integer")              << "<integer>7</integer>"_ba                    << u"7"_s;
    QTest::newRow("zero")                 << "<integer>0</integer>"_ba                    << u"0"_s;
    QTest::newRow("negative")             << "<integer>-5</integer>"_ba                   << u"-5"_s;
    QTest::newRow("real is cut")          << "<real>3.99</real>"_ba                       << u"3"_s;
    QTest::newRow("cut toward zero")      << "<real>-1.5</real>"_ba                       << u"-1"_s;
    QTest::newRow("below one")            << "<real>-0.5</real>"_ba                       << u"0"_s;
    QTest::newRow("true")                 << "<true/>"_ba                                 << u"1"_s;
    QTest::newRow("false")                << "<false/>"_ba                                << u"0"_s;
    QTest::newRow("last exact integer")   << "<integer>9007199254740992</integer>"_ba     << u"9007199254740992"_s;
    QTest::newRow("read as a double")     << "<integer>9007199254740993</integer>"_ba     << u"9007199254740992"_s;
    QTest::newRow("highest signed")       << "<integer>9223372036854775807</integer>"_ba  << u"9223372036854775807"_s;
    QTest::newRow("lowest signed")        << "<integer>-9223372036854775808</integer>"_ba << u"-9223372036854775808"_s;
    QTest::newRow("highest unsigned")     << "<integer>18446744073709551615</integer>"_ba << u"9223372036854775807"_s;
    QTest::newRow("real above the range") << binary_real(1e300)                           << u"9223372036854775807"_s;
    QTest::newRow("real below the range") << binary_real(-1e300)                          << u"-9223372036854775808"_s;
    QTest::newRow("infinite")             << binary_real(std::numeric_limits<double>::infinity()) << u"9223372036854775807"_s;
    QTest::newRow("minus infinite")       << binary_real(-std::numeric_limits<double>::infinity()) << u"-9223372036854775808"_s;
    QTest::newRow("no number")            << binary_real(std::numeric_limits<double>::quiet_NaN()) << u"0"_s;
    QTest::newRow("binary byte")          << "\x10\xFF"_ba                                << u"255"_s;
    QTest::newRow("binary minus one")     << "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"_ba    << u"-1"_s;
    // clang-format on
}

void test_plist_values::number_values()
{
    SKIP_AT_PLATFORM_LIMIT();
    QFETCH(QByteArray, value);
    QFETCH(QString, text);

    QCOMPARE(plugin_static_function::get_nsnumber_values(key(), dictionary(value)), text);
    QCOMPARE(plugin_static_function::get_nsnumber_key_and_values(key(), dictionary(value), u"Count"_s),
             u"Count:+:"_s + text);
    QCOMPARE(log.take_lines(), QStringList());
}

void test_plist_values::yes_no_values_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("text");

    // clang-format off
    QTest::newRow("true")         << "<true/>"_ba              << u"YES"_s;
    QTest::newRow("false")        << "<false/>"_ba             << u"NO"_s;
    QTest::newRow("binary true")  << "\x09"_ba                 << u"YES"_s;
    QTest::newRow("binary false") << "\x08"_ba                 << u"NO"_s;
    QTest::newRow("number 1")     << "<integer>1</integer>"_ba << u""_s;
    QTest::newRow("number 0")     << "<integer>0</integer>"_ba << u""_s;
    QTest::newRow("number 2")     << "<integer>2</integer>"_ba << u""_s;
    QTest::newRow("real 1")       << "<real>1.0</real>"_ba     << u""_s;
    // clang-format on
}

void test_plist_values::yes_no_values()
{
    SKIP_AT_PLATFORM_LIMIT();
    QFETCH(QByteArray, value);
    QFETCH(QString, text);

    QCOMPARE(plugin_static_function::get_nsnumber_values_yes_no(key(), dictionary(value)), text);
    QCOMPARE(plugin_static_function::get_nsnumber_key_and_value_yes_no(key(), dictionary(value), u"Paired"_s),
             u"Paired:+:"_s + text);
    QCOMPARE(log.take_lines(), QStringList());
}

void test_plist_values::array_values_data()
{
    QTest::addColumn<QByteArray>("entries");
    QTest::addColumn<QString>("text");

    // clang-format off
    QTest::newRow("none")              << ""_ba                                             << u""_s;
    QTest::newRow("one")               << "<string>a</string>"_ba                           << u"a"_s;
    QTest::newRow("three")             << "<string>a</string><string>b</string><string>c</string>"_ba << u"a;b;c"_s;
    QTest::newRow("texts as they are") << "<string> a </string><string/><string>;</string>"_ba << u" a ;;;"_s;
    QTest::newRow("unicode")           << "<string>größe</string><string>🎧</string>"_ba    << u"größe;🎧"_s;
    QTest::newRow("integers")          << "<integer>-1</integer><integer>9007199254740993</integer>"_ba << u"-1;9007199254740993"_s;
    QTest::newRow("64-bit limits")     << "<integer>9223372036854775807</integer><integer>-9223372036854775808</integer>"_ba << u"9223372036854775807;-9223372036854775808"_s;
    QTest::newRow("highest unsigned")  << "<integer>18446744073709551615</integer>"_ba      << u"18446744073709551615"_s;
    QTest::newRow("reals")             << "<real>2.9</real><real>-0.5</real><real>4</real>"_ba << u"2.9;-0.5;4"_s;
    QTest::newRow("booleans")          << "<true/><false/>"_ba                              << u"YES;NO"_s;
    QTest::newRow("date")              << "<date>2020-05-03T10:00:00Z</date>"_ba            << u"2020-05-03T10:00:00Z"_s;
    QTest::newRow("data")              << "<data>AAH/</data>"_ba                            << u"0001ff"_s;
    QTest::newRow("array")             << "<array><string>a</string><integer>1</integer><true/></array><string>b</string>"_ba << u"[a;1;YES];b"_s;
    QTest::newRow("data in an array")  << "<array><data>AAH/</data><date>2020-05-03T10:00:00Z</date></array>"_ba << u"[0001ff;2020-05-03T10:00:00Z]"_s;
    QTest::newRow("dictionary")        << "<dict><key>b</key><string>x</string><key>a</key><array/></dict>"_ba << u"{a=[];b=x}"_s;
    // clang-format on
}

void test_plist_values::array_values()
{
    SKIP_AT_PLATFORM_LIMIT();
    QFETCH(QByteArray, entries);
    QFETCH(QString, text);

    QCOMPARE(plugin_static_function::get_nsarray_key_and_values(key(), dictionary("<array>" + entries + "</array>"),
                                                                u"Services"_s),
             u"Services:+:"_s + text);
    QCOMPARE(log.take_lines(), QStringList());
}

namespace {

using plist_function = QString (*)(void *key, void *dictionary);

template<auto function>
QString with_label(void *key, void *dictionary)
{
    return function(key, dictionary, u"label"_s);
}

} // namespace

void test_plist_values::failures_are_logged_under_their_own_name_data()
{
    QTest::addColumn<plist_function>("function");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("value");

    const struct
    {
        plist_function function;
        QString name;
        QByteArray accepted;
    } functions[] = {
        // clang-format off
        {plugin_static_function::get_nsstring_values,        u"get_nsstring_values"_s,        "string"},
        {plugin_static_function::get_nsnumber_values,        u"get_nsnumber_values"_s,        "number"},
        {plugin_static_function::get_nsnumber_values_yes_no, u"get_nsnumber_values_yes_no"_s, "number"},
        {with_label<plugin_static_function::get_nsstring_key_and_values>,       u"get_nsstring_key_and_values"_s,       "string"},
        {with_label<plugin_static_function::get_nsnumber_key_and_values>,       u"get_nsnumber_key_and_values"_s,       "number"},
        {with_label<plugin_static_function::get_nsnumber_key_and_value_yes_no>, u"get_nsnumber_key_and_value_yes_no"_s, "number"},
        {with_label<plugin_static_function::get_nsarray_key_and_values>,        u"get_nsarray_key_and_values"_s,        "array"},
        // clang-format on
    };
    const QList<std::pair<QByteArray, QByteArray>> values{
        {"string", "<string>7</string>"},
        {"number", "<integer>7</integer>"},
        {"array", "<array><string>7</string></array>"},
        {"dictionary", "<dict><key>key</key><string>7</string></dict>"},
        {"date", "<date>2020-05-03T10:00:00Z</date>"},
        {"data", "<data>AAH/</data>"},
    };
    for (const auto &row : functions) {
        for (const auto &[kind, value] : values) {
            if (kind != row.accepted)
                QTest::addRow("%s of a %s", qPrintable(row.name), kind.constData())
                    << row.function << row.name << value;
        }
    }
}

void test_plist_values::failures_are_logged_under_their_own_name()
{
    QFETCH(plist_function, function);
    QFETCH(QString, name);
    QFETCH(QByteArray, value);

    const QString line = u"plugin_static_function::"_s + name + u": ["_s + name + u"]-----FAILED----- to get value: "_s;
    void *const list = dictionary(value);
    QCOMPARE(function(key(), list), QString());
    QCOMPARE(function(key(" größe 🎧 "), list), QString());
    QCOMPARE(function(key(), nullptr), QString());
    QCOMPARE(function(nullptr, list), QString());
    QCOMPARE(function(nullptr, nullptr), QString());
    QCOMPARE(function(key(), key()), QString()); // no dictionary
    QCOMPARE(function(list, list), QString());   // no key
    QCOMPARE(log.take_messages(),
             QStringList({line + u"key"_s, line + u" größe 🎧 "_s, line + u"key"_s, line, line, line + u"key"_s, line}));
}

/** A key that is no text is not the empty one. */
void test_plist_values::key_that_is_no_text()
{
    void *const list = objects.root(xml_list("<dict><key></key><string>found</string></dict>"));
    QCOMPARE(plugin_static_function::get_nsstring_values(key(""), list), u"found"_s);
    for (const QByteArray &other : {"<integer>0</integer>"_ba, "<data></data>"_ba, "<dict/>"_ba})
        QCOMPARE(plugin_static_function::get_nsstring_values(objects.root(xml_list(other)), list), QString());
    QCOMPARE(plugin_static_function::get_nsstring_values(nullptr, list), QString());
}

void test_plist_values::keys_count_exactly_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");

    // clang-format off
    QTest::newRow("the key itself") << "aa-BB größe &amp; 🎧"_ba  << u"found"_s;
    QTest::newRow("another case")   << "aa-bb größe &amp; 🎧"_ba  << QString();
    QTest::newRow("blank before")   << " aa-BB größe &amp; 🎧"_ba << QString();
    QTest::newRow("blank behind")   << "aa-BB größe &amp; 🎧 "_ba << QString();
    QTest::newRow("separators")     << "aa:BB größe &amp; 🎧"_ba  << QString();
    QTest::newRow("beginning")      << "aa-BB"_ba                 << QString();
    QTest::newRow("empty")          << ""_ba                      << QString();
    // clang-format on
}

void test_plist_values::keys_count_exactly()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, text);

    void *const list = objects.root(xml_list("<dict><key>aa-BB größe &amp; 🎧</key><string>found</string></dict>"));
    QCOMPARE(plugin_static_function::get_nsstring_values(key(name), list), text);
}

void test_plist_values::doubled_key()
{
    SKIP_AT_PLATFORM_LIMIT();
    void *const list = objects.root(binary_list(
        {binary_dictionary({1, 1}, {2, 3}), binary_text("key"), binary_text("first"), binary_text("last")}));
    QCOMPARE(plugin_static_function::get_nsstring_values(key(), list), u"last"_s);
}

void test_plist_values::cfstring_data()
{
    QTest::addColumn<QByteArray>("object");
    QTest::addColumn<QString>("text");

    // clang-format off
    QTest::newRow("plain")       << "<string>AirPods</string>"_ba        << u"AirPods"_s;
    QTest::newRow("not trimmed") << "<string> a </string>"_ba            << u" a "_s;
    QTest::newRow("unicode")     << "<string>größe 日本 🎧</string>"_ba  << u"größe 日本 🎧"_s;
    QTest::newRow("empty")       << "<string></string>"_ba               << u""_s;
    QTest::newRow("a number")    << "<integer>7</integer>"_ba            << u""_s;
    // clang-format on
}

void test_plist_values::cfstring()
{
    QFETCH(QByteArray, object);
    QFETCH(QString, text);

    const void *const string = objects.root(xml_list(object));
    QCOMPARE(plugin_static_function::convert_cfstring_to_qstring(static_cast<const __CFString *>(string)), text);
    QCOMPARE(plugin_static_function::convert_cfstring_to_qstring(nullptr), QString());
}

void test_plist_values::nsdate_data()
{
    QTest::addColumn<double>("seconds_since_2001");
    QTest::addColumn<qint64>("in_utc");
    QTest::addColumn<qint64>("in_kolkata");
    QTest::addColumn<qint64>("in_new_york");

    constexpr double far = 8e9; // 2254: 32 bits do not hold it
    // clang-format off
    QTest::newRow("reference date")     <<         0.0  <<  978307200LL <<  978327000LL <<  978289200LL;
    QTest::newRow("afternoon, summer")  << 610210800.0  << 1588518000LL << 1588537800LL << 1588503600LL;
    QTest::newRow("midnight, winter")   << 599529600.0  << 1577836800LL << 1577856600LL << 1577818800LL;
    QTest::newRow("noon")               << 599572800.0  << 1577880000LL << 1577899800LL << 1577862000LL;
    QTest::newRow("sub-seconds go")     << 599529600.75 << 1577836800LL << 1577856600LL << 1577818800LL;
    QTest::newRow("backwards, always")  <<        -0.5  <<  978307199LL <<  978326999LL <<  978289199LL;
    QTest::newRow("in a gap of New York when taken as UTC") << 605327400.0 << 1583634600LL << 1583654400LL << 1583616600LL;
    QTest::newRow("Unix time 0")        << -978307200.0 <<          0LL <<      19800LL <<     -18000LL;
    QTest::newRow("far away")           <<         far  << 8978307200LL << 8978327000LL << 8978292800LL;
    QTest::newRow("before the calendar's reform") << -13198550400.0 << -12220243200LL << -12220221992LL << -12220260962LL;
    QTest::newRow("a millennium ago") << -30946838400.0 << -29968531200LL << -29968509992LL << -29968548962LL;
    QTest::newRow("first year") << -63113817600.0 << -62135510400LL << -62135489192LL << -62135528162LL;
    QTest::newRow("last year")   << 252421358400.0 << 253399665600LL << 253399685400LL << 253399647600LL;
    QTest::newRow("year 10000 in the east") << 252423990000.0 << 253402297200LL << 0LL << 253402279200LL;
    QTest::newRow("beyond every year")  <<        1e300 <<          0LL <<          0LL <<          0LL;
    QTest::newRow("no number")          << std::numeric_limits<double>::quiet_NaN() << 0LL << 0LL << 0LL;
    // clang-format on
}

void test_plist_values::nsdate()
{
    SKIP_AT_PLATFORM_LIMIT();
    QFETCH(double, seconds_since_2001);
    const QByteArray zone = qgetenv("TZ");
    const char *const column = zone == "Asia/Kolkata"       ? "in_kolkata"
                               : zone == "America/New_York" ? "in_new_york"
                                                            : "in_utc";
    const qint64 expected = *static_cast<const qint64 *>(QTest::qData(column, QMetaType::LongLong));

    void *const date = objects.root(binary_list({binary_date(seconds_since_2001)}));
    QCOMPARE(plugin_static_function::convert_nsdate_to_epoch(date, date), expected);
    QCOMPARE(log.take_lines(), QStringList());
}

void test_plist_values::nsdate_of_no_date()
{
    void *const date = objects.root(xml_list("<date>2020-05-03T10:00:00Z</date>"));
    QCOMPARE(plugin_static_function::convert_nsdate_to_epoch(nullptr, nullptr), 0);
    QCOMPARE(plugin_static_function::convert_nsdate_to_epoch(nullptr, date), 0);
    QCOMPARE(plugin_static_function::convert_nsdate_to_epoch(date, nullptr), 0);
    QCOMPARE(plugin_static_function::convert_nsdate_to_epoch(date, key()), 0);
    QCOMPARE(plugin_static_function::convert_nsdate_to_epoch(key(), date), 0);
    void *const date_text = objects.root(xml_list("<string>2020-05-03T10:00:00Z</string>"));
    QCOMPARE(plugin_static_function::convert_nsdate_to_epoch(date_text, date), 0);
    QCOMPARE(log.take_lines(), QStringList());
}

BLUETOOTH_LOGS_TEST(test_plist_values, QCoreApplication)

#include "test_plist_values.moc"
