// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/property_list.h"
#include "common/property_list/property_list_file.h"
#include "common/property_list/property_list_guard.h"
#include "tests/support/platform_limits.h"
#include "tests/support/property_list_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDateTime>
#include <QFile>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <limits>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class test_property_list : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void encodings_data();
    void encodings();
    void files_data();
    void files();

private:
    QTemporaryDir directory;
};

void test_property_list::values_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QVariant>("value");

    const QDateTime date(QDate(2020, 5, 3), QTime(10, 0), QTimeZone::utc());
    // clang-format off
    QTest::newRow("text")              << xml_list("<string> größe 🎧 &amp; </string>")        << QVariant(u" größe 🎧 & "_s);
    QTest::newRow("empty text")        << xml_list("<string/>")                                << QVariant(u""_s);
    QTest::newRow("CDATA")             << xml_list("<string><![CDATA[<b>]]>&amp;</string>")    << QVariant(u"<b>&"_s);
    QTest::newRow("comment")           << xml_list("<!-- <array> --><string>a</string>")       << QVariant(u"a"_s);
    QTest::newRow("integer")           << xml_list("<integer>7</integer>")                     << QVariant(7LL);
    QTest::newRow("lowest integer")    << xml_list("<integer>-9223372036854775808</integer>")  << QVariant(std::numeric_limits<qint64>::min());
    QTest::newRow("highest integer")   << xml_list("<integer>9223372036854775807</integer>")   << QVariant(std::numeric_limits<qint64>::max());
    QTest::newRow("highest unsigned")  << xml_list("<integer>18446744073709551615</integer>")  << QVariant(std::numeric_limits<quint64>::max());
    QTest::newRow("real")              << xml_list("<real>-2.5</real>")                        << QVariant(-2.5);
    QTest::newRow("real with exponent") << xml_list("<real>1.5e10</real>")                     << QVariant(1.5e10);
    QTest::newRow("blanks around")     << xml_list("<array><integer> 7\n</integer><real> 2.5 </real></array>") << QVariant(QVariantList{7LL, 2.5});
    QTest::newRow("zeros in front")    << xml_list("<array><integer>010</integer><integer>-0010</integer><integer>+07</integer></array>") << QVariant(QVariantList{10LL, -10LL, 7LL});
    QTest::newRow("reals beyond range") << xml_list("<array><real>1e999</real><real>-1e999</real><real>-infinity</real></array>")
                                       << QVariant(QVariantList{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()});
    QTest::newRow("first year's date") << xml_list("<date>0001-01-01T00:00:00Z</date>")        << QVariant(QDateTime(QDate(1, 1, 1), QTime(0, 0), QTimeZone::utc()));
    QTest::newRow("empty key")         << xml_list("<dict><key/><true/><key>a</key><false/></dict>") << QVariant(QVariantMap{{u""_s, true}, {u"a"_s, false}});
    QTest::newRow("doubled key")       << xml_list("<dict><key>a</key><true/><key>a</key><false/></dict>") << QVariant(QVariantMap{{u"a"_s, false}});
    QTest::newRow("without plist")     << "<dict/>"_ba                                         << QVariant(QVariantMap());
    QTest::newRow("true")              << xml_list("<true/>")                                  << QVariant(true);
    QTest::newRow("false")             << xml_list("<false/>")                                 << QVariant(false);
    QTest::newRow("date")              << xml_list("<date>2020-05-03T10:00:00Z</date>")        << QVariant(date);
    QTest::newRow("data")              << xml_list("<data>\n\tAAH/\n</data>")                  << QVariant("\0\1\xff"_ba);
    QTest::newRow("array")             << xml_list("<array><true/><string>a</string></array>") << QVariant(QVariantList{true, u"a"_s});
    QTest::newRow("empty array")       << xml_list("<array/>")                                 << QVariant(QVariantList());
    QTest::newRow("dictionary")        << xml_list("<dict><key>b ü</key><true/><key>a</key><dict/></dict>") << QVariant(QVariantMap{{u"a"_s, QVariantMap()}, {u"b ü"_s, true}});
    QTest::newRow("binary, one-byte offsets") << "bplist00\xD1\x01\x02\x51\x61\x09\x08\x0B\x0D"_ba + QByteArray(6, '\0') + "\1\1"_ba + QByteArray(7, '\0') + "\3"_ba + QByteArray(15, '\0') + "\x0E"_ba
                                       << QVariant(QVariantMap{{u"a"_s, true}});
    QTest::newRow("binary text")       << binary_list({binary_text("a long text, counted apart")}) << QVariant(u"a long text, counted apart"_s);
    QTest::newRow("binary UTF-16")     << binary_list({"\x63\x00\xFC\xD8\x3C\xDF\xA7"_ba})     << QVariant(u"ü🎧"_s);
    QTest::newRow("binary integer")    << binary_list({"\x11\xFF\xFE"_ba})                     << QVariant(65534LL);
    QTest::newRow("binary negative")   << binary_list({"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFE"_ba}) << QVariant(-2LL);
    QTest::newRow("binary unsigned")   << binary_list({"\x14" + QByteArray(8, '\0') + QByteArray(8, '\xFF')}) << QVariant(std::numeric_limits<quint64>::max());
    QTest::newRow("binary real")       << binary_list({binary_real(-2.5)})                     << QVariant(-2.5);
    QTest::newRow("binary true")       << binary_list({"\x09"_ba})                             << QVariant(true);
    QTest::newRow("binary false")      << binary_list({"\x08"_ba})                             << QVariant(false);
    QTest::newRow("binary date")       << binary_list({binary_date(610192800.9)})              << QVariant(date);
    QTest::newRow("binary data")       << binary_list({"\x43\x00\x01\xFF"_ba})                 << QVariant("\0\1\xff"_ba);
    QTest::newRow("binary array")      << binary_list({binary_array({1, 2, 1}), "\x09"_ba, binary_text("a")}) << QVariant(QVariantList{true, u"a"_s, true});
    QTest::newRow("binary dictionary") << binary_list({binary_dictionary({1, 2}, {3, 4}), binary_text("b"), binary_text("a"), "\x09"_ba, binary_dictionary({}, {})})
                                       << QVariant(QVariantMap{{u"a"_s, QVariantMap()}, {u"b"_s, true}});
    QTest::newRow("root behind another object") << with_second_object_as_root(binary_list({binary_text("b"), binary_text("a")})) << QVariant(u"a"_s);
    QTest::newRow("more entries than levels are allowed") << xml_list("<array>" + QByteArray("<true/>").repeated(200) + "</array>") << QVariant(QVariantList(200, true));
    QTest::newRow("first second of all")   << binary_list({binary_date(-63113904000.0)}) << QVariant(QDateTime(QDate(1, 1, 1), QTime(0, 0), QTimeZone::utc()));
    QTest::newRow("before it")             << binary_list({binary_date(-63113904001.0)}) << QVariant(QDateTime());
    QTest::newRow("last second of all")    << binary_list({binary_date(252423993599.0)}) << QVariant(QDateTime(QDate(9999, 12, 31), QTime(23, 59, 59), QTimeZone::utc()));
    QTest::newRow("after it")              << binary_list({binary_date(252423993600.0)}) << QVariant(QDateTime());
    QTest::newRow("half a second before 2001") << binary_list({binary_date(-0.5)})       << QVariant(QDateTime(QDate(2000, 12, 31), QTime(23, 59, 59), QTimeZone::utc()));
    QTest::newRow("binary empty key")  << binary_list({binary_dictionary({1}, {2}), binary_text(""), "\x09"_ba}) << QVariant(QVariantMap{{u""_s, true}});
    QTest::newRow("binary doubled key") << binary_list({binary_dictionary({1, 1}, {2, 3}), binary_text("a"), "\x09"_ba, "\x08"_ba}) << QVariant(QVariantMap{{u"a"_s, false}});
    // clang-format on
}

void test_property_list::values()
{
    SKIP_AT_PLATFORM_LIMIT();
    QFETCH(QByteArray, list);
    QFETCH(QVariant, value);

    const QVariant parsed = parse_property_list(guarded_property_list(list));
    QCOMPARE(parsed.metaType(), value.metaType());
    QCOMPARE(parsed, value);
}

void test_property_list::encodings_data()
{
    QTest::addColumn<QStringConverter::Encoding>("encoding");
    QTest::addColumn<bool>("has_mark");

    // clang-format off
    QTest::newRow("UTF-8")                          << QStringConverter::Utf8    << false;
    QTest::newRow("UTF-8 with a byte order mark")   << QStringConverter::Utf8    << true;
    QTest::newRow("UTF-16 big-endian with mark")    << QStringConverter::Utf16BE << true;
    QTest::newRow("UTF-16 little-endian with mark") << QStringConverter::Utf16LE << true;
    // clang-format on
}

void test_property_list::encodings()
{
    QFETCH(QStringConverter::Encoding, encoding);
    QFETCH(bool, has_mark);

    QStringEncoder encoder(encoding, has_mark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
    const QByteArray list = encoder(u"<plist><string>größe 🎧</string></plist>"_s);
    QCOMPARE(parse_property_list(guarded_property_list(list)), QVariant(u"größe 🎧"_s));
}

void test_property_list::files_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");

    const auto write = [this](const QString &name, const QByteArray &content, qint64 size) {
        QFile file(directory.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.resize(size))
            qFatal("cannot write %s", qPrintable(name));
    };
    const QByteArray list = xml_list("<string>a</string>");
    write(u"list"_s, list, list.size());
    write(u"empty"_s, {}, 0);
    write(u"huge"_s, list, 100LL << 30);
    QDir(directory.path()).mkdir(u"directory"_s);
    QFile::link(directory.filePath(u"list"_s), directory.filePath(u"link"_s));
    QFile::link(u"/dev/zero"_s, directory.filePath(u"device"_s));
    QFile::link(directory.filePath(u"loop"_s), directory.filePath(u"loop"_s));
    ::mkfifo(QFile::encodeName(directory.filePath(u"fifo"_s)).constData(), 0600);

    // clang-format off
    QTest::newRow("a list")              << u"list"_s      << QVariant(u"a"_s);
    QTest::newRow("a link to it")        << u"link"_s      << QVariant(u"a"_s);
    QTest::newRow("missing")             << u"missing"_s   << QVariant();
    QTest::newRow("empty")               << u"empty"_s     << QVariant();
    QTest::newRow("a hundred gigabytes") << u"huge"_s      << QVariant();
    QTest::newRow("a directory")         << u"directory"_s << QVariant();
    QTest::newRow("a link to a device")  << u"device"_s    << QVariant();
    QTest::newRow("a link to itself")    << u"loop"_s      << QVariant();
    QTest::newRow("a pipe")              << u"fifo"_s      << QVariant();
    // clang-format on
}

void test_property_list::files()
{
    QFETCH(QString, name);
    QFETCH(QVariant, value);

    QCOMPARE(read_property_list(directory.filePath(name)), value);
}

BLUETOOTH_LOGS_TEST(test_property_list, QCoreApplication)

#include "test_property_list.moc"
