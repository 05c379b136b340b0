// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/macos/bluetooth_logs_macos.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/platform_limits.h"
#include "tests/support/property_list_bytes.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class test_device_name : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void names_data();
    void names();
    void the_key_counts_exactly_data();
    void the_key_counts_exactly();
    void a_missing_file_is_silent();
    void lists_that_cannot_be_opened_data();
    void lists_that_cannot_be_opened();
    void what_is_no_regular_file_is_not_opened_data();
    void what_is_no_regular_file_is_not_opened();
    void a_path_that_cannot_be_expressed();
    void the_root_is_put_before_the_path_directly();
    void the_file_is_read_afresh();

private:
    QString name_of(const QString &key, const QString &root);
    QString name_of(const QString &key);
    void write_list(const QByteArray &list);
    QStringList lines(const QStringList &messages) const;

    debug_log_capture log;
    std::unique_ptr<QTemporaryDir> source;
    QString path;
};

void test_device_name::init()
{
    strict_test::init();
    log.start();
    log.take_lines();
    source = std::make_unique<QTemporaryDir>();
    path = source->path() + u"/Library/Preferences/com.apple.Bluetooth.plist"_s;
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
}

QString test_device_name::name_of(const QString &key, const QString &root)
{
    bluetooth_logs_macos extractor;
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info;
    info.source_root_path = root;
    extractor.macos_set_source_info(info);
    return extractor.xcode_get_device_name(key);
}

QString test_device_name::name_of(const QString &key)
{
    return name_of(key, source->path() + u'/');
}

void test_device_name::write_list(const QByteArray &list)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(list) != list.size())
        qFatal("cannot write %s", qPrintable(path));
}

QStringList test_device_name::lines(const QStringList &messages) const
{
    QStringList lines;
    for (const QString &message : messages)
        lines.append(u"bluetooth_logs_macos::xcode_get_device_name: "_s + message);
    return lines;
}

namespace {

using file_maker = int (*)(const char *path);

const QString device = u"aa-bb-cc-dd-ee-ff"_s;

/** A list as systems keep it, with @p entry for the device. */
QByteArray list_with(const QByteArray &entry)
{
    return xml_list("<dict><key>PairedDevices</key><array><string>aa-bb-cc-dd-ee-ff</string></array>"
                    "<key>DeviceCache</key><dict><key>00-00-00-00-00-01</key><dict><key>Name</key>"
                    "<string>Other</string></dict><key>aa-bb-cc-dd-ee-ff</key>"
                    + entry + "</dict></dict>");
}

QByteArray list_with_name(const QByteArray &name)
{
    return list_with("<dict><key>ClassOfDevice</key><integer>2360344</integer><key>Name</key>" + name
                     + "<key>LastNameUpdate</key><date>2020-05-03T10:00:00Z</date></dict>");
}

QByteArray binary_list_with_name(const QByteArray &name)
{
    return binary_list({binary_dictionary({1}, {2}), binary_text("DeviceCache"), binary_dictionary({3}, {4}),
                        binary_text("aa-bb-cc-dd-ee-ff"), binary_dictionary({5}, {6}), binary_text("Name"), name});
}

} // namespace

void test_device_name::names_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<QString>("name");

    // clang-format off
    QTest::newRow("XML")                    << list_with_name("<string>AirPods</string>")           << u"AirPods"_s;
    QTest::newRow("binary")                 << binary_list_with_name(binary_text("AirPods"))         << u"AirPods"_s;
    QTest::newRow("unicode")                << list_with_name("<string>größe 日本 🎧</string>")     << u"größe 日本 🎧"_s;
    QTest::newRow("binary unicode")         << binary_list_with_name("\x63\x00\xFC\xD8\x3C\xDF\xA7"_ba) << u"ü🎧"_s;
    QTest::newRow("not trimmed")            << list_with_name("<string> a </string>")               << u" a "_s;
    QTest::newRow("empty")                  << list_with_name("<string></string>")                  << u""_s;
    QTest::newRow("markup")                 << list_with_name("<string>&lt;b&gt;&amp;</string>")    << u"<b>&"_s;
    QTest::newRow("name is a number")       << list_with_name("<integer>7</integer>")               << u""_s;
    QTest::newRow("name is a boolean")      << list_with_name("<true/>")                            << u""_s;
    QTest::newRow("name is a dictionary")   << list_with_name("<dict><key>Name</key><string>a</string></dict>") << u""_s;
    QTest::newRow("name is an array")       << list_with_name("<array><string>a</string></array>")  << u""_s;
    QTest::newRow("name is data")           << list_with_name("<data>AAH/</data>")                  << u""_s;
    QTest::newRow("name is a date")         << list_with_name("<date>2020-05-03T10:00:00Z</date>")  << u""_s;
    QTest::newRow("binary, name is a real") << binary_list_with_name(binary_real(1))                << u""_s;
    QTest::newRow("no name")                << list_with("<dict><key>displayName</key><string>a</string></dict>") << u""_s;
    QTest::newRow("name in another case")   << list_with("<dict><key>name</key><string>a</string></dict>") << u""_s;
    QTest::newRow("device is empty")        << list_with("<dict/>")                                 << u""_s;
    QTest::newRow("device is a text")       << list_with("<string>Name</string>")                   << u""_s;
    QTest::newRow("device is an array")     << list_with("<array><string>Name</string></array>")    << u""_s;
    QTest::newRow("device is a number")     << list_with("<integer>7</integer>")                    << u""_s;
    QTest::newRow("cache is a text")        << xml_list("<dict><key>DeviceCache</key><string>a</string></dict>") << u""_s;
    QTest::newRow("cache is an array")      << xml_list("<dict><key>DeviceCache</key><array><dict/></array></dict>") << u""_s;
    QTest::newRow("cache is a boolean")     << xml_list("<dict><key>DeviceCache</key><true/></dict>") << u""_s;
    QTest::newRow("cache is empty")         << xml_list("<dict><key>DeviceCache</key><dict/></dict>") << u""_s;
    QTest::newRow("no cache")               << xml_list("<dict><key>devicecache</key><dict/></dict>") << u""_s;
    QTest::newRow("empty list")             << xml_list("<dict/>")                                  << u""_s;
    // clang-format on
}

void test_device_name::names()
{
    SKIP_AT_PLATFORM_LIMIT();
    QFETCH(QByteArray, list);
    QFETCH(QString, name);

    write_list(list);
    QCOMPARE(name_of(device), name);
    QCOMPARE(log.take_messages(), lines({u"Starts"_s, u"Ends"_s}));
}

void test_device_name::the_key_counts_exactly_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("name");

    // clang-format off
    QTest::newRow("as stored")        << device                   << u"AirPods"_s;
    QTest::newRow("another device")   << u"00-00-00-00-00-01"_s   << u"Other"_s;
    QTest::newRow("upper case")       << u"AA-BB-CC-DD-EE-FF"_s   << u""_s;
    QTest::newRow("colons")           << u"aa:bb:cc:dd:ee:ff"_s   << u""_s;
    QTest::newRow("no separators")    << u"aabbccddeeff"_s        << u""_s;
    QTest::newRow("blank before")     << u" aa-bb-cc-dd-ee-ff"_s  << u""_s;
    QTest::newRow("blank behind")     << u"aa-bb-cc-dd-ee-ff "_s  << u""_s;
    QTest::newRow("beginning")        << u"aa-bb"_s               << u""_s;
    QTest::newRow("NUL behind")       << device + QChar(0)        << u""_s;
    QTest::newRow("half a character") << device + QChar(0xD800)   << u""_s;
    QTest::newRow("empty")            << u""_s                    << u""_s;
    QTest::newRow("null")             << QString()                << u""_s;
    // clang-format on
}

void test_device_name::the_key_counts_exactly()
{
    QFETCH(QString, key);
    QFETCH(QString, name);

    write_list(list_with_name("<string>AirPods</string>"));
    QCOMPARE(name_of(key), name);
    QCOMPARE(log.take_messages(), lines({u"Starts"_s, u"Ends"_s}));
}

void test_device_name::a_missing_file_is_silent()
{
    QCOMPARE(name_of(device), QString());
    QCOMPARE(log.take_messages(), lines({u"Starts"_s}));

    QVERIFY(QFile::link(path + u".missing"_s, path));
    QCOMPARE(name_of(device), QString());
    QCOMPARE(log.take_messages(), lines({u"Starts"_s}));
}

void test_device_name::lists_that_cannot_be_opened_data()
{
    QTest::addColumn<QByteArray>("list");

    const QByteArray named = binary_list_with_name(binary_text("a"));
    // clang-format off
    QTest::newRow("empty file")     << ""_ba;
    QTest::newRow("no list")        << "Bluetooth"_ba;
    QTest::newRow("XML cut off")    << list_with_name("<string>a</string>").chopped(20);
    QTest::newRow("binary cut off") << named.chopped(1);
    QTest::newRow("only the mark")  << named.first(8);
    QTest::newRow("root is an array")   << xml_list("<array><dict><key>DeviceCache</key><dict/></dict></array>");
    QTest::newRow("root is a text")     << xml_list("<string>DeviceCache</string>");
    QTest::newRow("root is a number")   << xml_list("<integer>7</integer>");
    QTest::newRow("binary array")       << binary_list({binary_array({1}), binary_text("DeviceCache")});
    QTest::newRow("list in itself")     << binary_list({binary_dictionary({1}, {0}), binary_text("DeviceCache")});
    QTest::newRow("200,000 levels")     << list_with(QByteArray("<dict><key>Name</key>").repeated(200'000)
                                                     + QByteArray("</dict>").repeated(200'000));
    // clang-format on
}

void test_device_name::lists_that_cannot_be_opened()
{
    SKIP_AT_PLATFORM_LIMIT();
    QFETCH(QByteArray, list);

    write_list(list);
    QCOMPARE(name_of(device), QString());
    QCOMPARE(log.take_messages(), lines({u"Starts"_s, u"m_plist open -------FAILED------"_s, path}));
}

void test_device_name::what_is_no_regular_file_is_not_opened_data()
{
    QTest::addColumn<file_maker>("make");

    // clang-format off
    QTest::newRow("pipe")           << +[](const char *at) { return ::mkfifo(at, 0600); };
    QTest::newRow("directory")      << +[](const char *at) { return ::mkdir(at, 0700); };
    QTest::newRow("link to device") << +[](const char *at) { return ::symlink("/dev/zero", at); };
    // clang-format on
}

void test_device_name::what_is_no_regular_file_is_not_opened()
{
    QFETCH(file_maker, make);

    QCOMPARE(make(QFile::encodeName(path).constData()), 0);
    QCOMPARE(name_of(device), QString());
    QCOMPARE(log.take_messages(), lines({u"Starts"_s, u"m_plist open -------FAILED------"_s, path}));
}

/** Half a character is written to the system as "?", which would open the file of another source. */
void test_device_name::a_path_that_cannot_be_expressed()
{
    const QString root = source->path() + u'/' + QChar(0xD800) + u'/';
    const QString encoded = QFile::decodeName(QFile::encodeName(root));
    QVERIFY(encoded != root);
    QVERIFY(QDir().mkpath(encoded + u"Library/Preferences"_s));
    write_list(list_with_name("<string>AirPods</string>"));
    QVERIFY(QFile::copy(path, encoded + u"Library/Preferences/com.apple.Bluetooth.plist"_s));

    QCOMPARE(name_of(device, root), QString());
    const QStringList messages = log.take_messages();
    QCOMPARE(messages.first(2), lines({u"Starts"_s, u"target_file open -------FAILED------"_s}));
    QCOMPARE(messages.size(), 3);
    QVERIFY(messages.last().endsWith(u"/Library/Preferences/com.apple.Bluetooth.plist"_s));
}

void test_device_name::the_root_is_put_before_the_path_directly()
{
    write_list(list_with_name("<string>AirPods</string>"));
    QCOMPARE(name_of(device, source->path()), QString()); // no "/" between
    QCOMPARE(log.take_messages(), lines({u"Starts"_s}));
}

void test_device_name::the_file_is_read_afresh()
{
    bluetooth_logs_macos extractor;
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info;
    info.source_root_path = source->path() + u'/';
    extractor.macos_set_source_info(info);

    write_list(list_with_name("<string>AirPods</string>"));
    QCOMPARE(extractor.xcode_get_device_name(device), u"AirPods"_s);
    write_list(list_with_name("<string>Headphones</string>"));
    QCOMPARE(extractor.xcode_get_device_name(device), u"Headphones"_s);
    QVERIFY(QFile::remove(path));
    QCOMPARE(extractor.xcode_get_device_name(device), QString());
    QCOMPARE(log.take_messages(), lines({u"Starts"_s, u"Ends"_s, u"Starts"_s, u"Ends"_s, u"Starts"_s}));
}

BLUETOOTH_LOGS_TEST(test_device_name, QApplication)

#include "test_device_name.moc"
