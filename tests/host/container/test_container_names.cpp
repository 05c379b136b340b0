// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/container_format.h"
#include "host/container/evidence_search.h"
#include "host/container/member_name.h"
#include "tests/support/test_entry.h"

#include <QTest>

using namespace Qt::StringLiterals;

class test_container_names : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void name_is_taken_apart_data();
    void name_is_taken_apart();
    void plain_names_data();
    void plain_names();
    void names_fold_alike();
    void path_is_evidence_data();
    void path_is_evidence();
    void near_name_is_told();
    void format_is_guessed_data();
    void format_is_guessed();
    void every_signature_data();
    void every_signature();
    void tar_without_a_magic();
    void refusal_names_the_command_data();
    void refusal_names_the_command();
    void folders_to_look_into_data();
    void folders_to_look_into();
};

void test_container_names::name_is_taken_apart_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("parts");
    QTest::addColumn<QString>("danger");

    // clang-format off
    QTest::newRow("plain")       << "a/b.db"_ba            << u"a|b.db"_s        << QString();
    QTest::newRow("dot first")   << "./a//b.db"_ba         << u"a|b.db"_s        << QString();
    QTest::newRow("folder")      << "a/b/"_ba              << u"a|b"_s           << QString();
    QTest::newRow("dots in it")  << "a/..b/c.."_ba         << u"a|..b|c.."_s     << QString();
    QTest::newRow("above")       << "../a/b"_ba            << u"a|b"_s           << u"its name leads to a folder above"_s;
    QTest::newRow("above later") << "a/../../b"_ba         << u"a|b"_s           << u"its name leads to a folder above"_s;
    QTest::newRow("absolute")    << "/etc/passwd"_ba       << u"etc|passwd"_s    << u"its name is absolute"_s;
    QTest::newRow("drive")       << "C:/a"_ba              << u"a"_s             << u"its name begins with a drive letter"_s;
    QTest::newRow("backslash")   << "a\\..\\b"_ba          << u"a|b"_s           << u"its name holds a backslash"_s;
    QTest::newRow("zero byte")   << QByteArray("a\0b", 3)  << QString(u"a"_s + QChar(u'\0') + u"b"_s) << u"its name holds a zero byte"_s;
    QTest::newRow("longest")     << QByteArray(4096, 'a')  << QString(4096, u'a') << QString();
    QTest::newRow("too long")    << "b/" + QByteArray(4095, 'a') << u"b|"_s + QString(4094, u'a') << u"its name is longer than 4096 bytes"_s;
    QTest::newRow("too long, backslash") << "b\\" + QByteArray(4095, 'a') << u"b|"_s + QString(4094, u'a') << u"its name is longer than 4096 bytes"_s;
    QTest::newRow("no UTF-8")    << "a/\xff.db"_ba         << u"a|\\xff.db"_s    << QString();
    // clang-format on
}

void test_container_names::name_is_taken_apart()
{
    QFETCH(const QByteArray, bytes);
    const member_name name = take_apart(bytes);
    QTEST(name.danger, "danger");
    QTEST(name.parts.join(u'|'), "parts");
}

void test_container_names::plain_names_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("is_plain");

    // clang-format off
    QTest::newRow("plain")        << "./a/b 1~.db"_ba        << true;
    QTest::newRow("folder")       << "a/b/"_ba               << true;
    QTest::newRow("hidden")       << "a/.b"_ba               << true;
    QTest::newRow("colon inside") << "a/b:c"_ba              << true;
    QTest::newRow("as long as allowed") << QByteArray(4096, 'a') << true;
    QTest::newRow("too long")     << QByteArray(4097, 'a')   << false;
    QTest::newRow("empty")        << ""_ba                   << false;
    QTest::newRow("dot")          << "."_ba                  << false;
    QTest::newRow("dot last")     << "a/."_ba                << false;
    QTest::newRow("slashes last") << "a//"_ba                << false;
    QTest::newRow("above")        << "a/../b"_ba             << false;
    QTest::newRow("absolute")     << "/a"_ba                 << false;
    QTest::newRow("drive")        << "C:a"_ba                << false;
    QTest::newRow("backslash")    << "a\\b"_ba               << false;
    QTest::newRow("zero byte")    << QByteArray("a\0b", 3)   << false;
    QTest::newRow("line end")     << "a\nb"_ba               << false;
    QTest::newRow("delete")       << "a\x7f"_ba              << false;
    QTest::newRow("no ASCII")     << "a\xc3\xa9"_ba          << false;
    // clang-format on
}

void test_container_names::plain_names()
{
    QFETCH(const QByteArray, bytes);
    QTEST(is_plain_name(bytes), "is_plain");
    if (!is_plain_name(bytes))
        return;
    const member_name name = take_apart(bytes);
    QCOMPARE(name.danger, QString());
    QCOMPARE(name.text, QString::fromLatin1(bytes));
    QVERIFY(name.parts.last() == name.text.split(u'/', Qt::SkipEmptyParts).last());
}

void test_container_names::names_fold_alike()
{
    QCOMPARE(folded_name(u"Library/\u00c9t\u00e9"_s), folded_name(u"LIBRARY/e\u0301te\u0301"_s));
    QVERIFY(folded_name(u"a"_s) != folded_name(u"b"_s));
}

void test_container_names::path_is_evidence_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("root");
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("is_a_sign");

    const QString other = u"com.apple.MobileBluetooth.ledevices.other.db"_s;
    const QString list = u"com.apple.MobileBluetooth.devices.plist"_s;
    const QString group = u"private/var/containers/Shared/SystemGroup/0A1B"_s;
    // clang-format off
    QTest::newRow("macOS")                << (u"Library/Bluetooth/"_s + other)                     << u"macOS"_s     << u""_s                    << (u"Library/Bluetooth/"_s + other)          << true;
    QTest::newRow("macOS, data volume")   << (u"System/Volumes/Data/Library/Bluetooth/"_s + other) << u"macOS"_s     << u"System/Volumes/Data"_s << (u"Library/Bluetooth/"_s + other)          << true;
    QTest::newRow("write-ahead log")      << (u"x/Library/Bluetooth/"_s + other + u"-wal"_s)       << u"macOS"_s     << u"x"_s                   << (u"Library/Bluetooth/"_s + other + u"-wal"_s) << false;
    QTest::newRow("leftover")             << (u"Library/Bluetooth/"_s + other + u".12:00:00_01-31-2026.corrupt"_s) << u"macOS"_s << u""_s        << (u"Library/Bluetooth/"_s + other + u".12:00:00_01-31-2026.corrupt"_s) << false;
    QTest::newRow("preferences")          << u"Library/Preferences/com.apple.Bluetooth.plist"_s    << u"macOS"_s     << u""_s                    << u"Library/Preferences/com.apple.Bluetooth.plist"_s << false;
    QTest::newRow("mobile list")          << (u"Library/Bluetooth/Library/Preferences/"_s + list)  << u"macOS"_s     << u""_s                    << (u"Library/Bluetooth/Library/Preferences/"_s + list) << false;
    QTest::newRow("iOS")                  << (group + u"/Library/Database/"_s + other)             << u"iOS_files"_s << group                    << (u"Library/Bluetooth/"_s + other)          << true;
    QTest::newRow("iOS, leading folder")  << (u"filesystem1/"_s + group + u"/Library/Database/"_s + other) << u"iOS_files"_s << QString(u"filesystem1/"_s + group) << (u"Library/Bluetooth/"_s + other) << true;
    QTest::newRow("iOS list")             << (group + u"/Library/Preferences/"_s + list)           << u"iOS_files"_s << group                    << (u"Library/Bluetooth/Library/Preferences/"_s + list) << false;
    QTest::newRow("older iOS")            << (u"private/var/mobile/Library/MobileBluetooth/"_s + other) << u"iOS_files"_s << u"private/var/mobile"_s << (u"Library/Bluetooth/"_s + other)     << true;
    QTest::newRow("Windows hive")         << u"c/windows/SYSTEM32/config/System"_s                 << u"winOS"_s     << u"c"_s                   << u"windows/SYSTEM32/config/System"_s         << true;
    QTest::newRow("Windows log")          << u"Windows/System32/config/SYSTEM.LOG1"_s              << u"winOS"_s     << u""_s                    << u"Windows/System32/config/SYSTEM.LOG1"_s    << true;
    QTest::newRow("Windows log 2")        << u"Windows/System32/config/SYSTEM.LOG2"_s              << u"winOS"_s     << u""_s                    << u"Windows/System32/config/SYSTEM.LOG2"_s    << true;
    QTest::newRow("older iOS list")       << (u"mobile/Library/Preferences/"_s + list)             << u"iOS_files"_s << u"mobile"_s              << (u"Library/Bluetooth/Library/Preferences/"_s + list) << false;
    QTest::newRow("iOS backup")           << u"a/b/Manifest.db"_s                                  << u"iOS_backup"_s << u"a/b"_s                << u"Manifest.db"_s                            << true;
    QTest::newRow("shared memory")        << (u"Library/Bluetooth/"_s + other + u"-shm"_s)         << u"macOS"_s     << u""_s                    << (u"Library/Bluetooth/"_s + other + u"-shm"_s) << false;
    QTest::newRow("rollback journal")     << (u"Library/Bluetooth/"_s + other + u"-journal"_s)     << u"macOS"_s     << u""_s                    << (u"Library/Bluetooth/"_s + other + u"-journal"_s) << false;
    QTest::newRow("Windows")              << u"Windows/System32"_s                                 << u"winOS"_s     << u""_s                    << u""_s                                      << true;
    QTest::newRow("other letters")        << u"library/bluetooth/"_s + other                       << u""_s          << u""_s                    << u""_s                                      << false;
    QTest::newRow("other file")           << u"Library/Bluetooth/com.apple.db"_s                   << u""_s          << u""_s                    << u""_s                                      << false;
    QTest::newRow("other folder")         << (u"Bluetooth/"_s + other)                             << u""_s          << u""_s                    << u""_s                                      << false;
    QTest::newRow("longer name")          << (u"Library/Bluetooth/"_s + other + u".bak"_s)         << u""_s          << u""_s                    << u""_s                                      << false;
    // clang-format on
}

void test_container_names::path_is_evidence()
{
    QFETCH(const QString, path);
    const std::optional<evidence_match> match = evidence_search().match(path.split(u'/'));
    QFETCH(const QString, kind);
    QCOMPARE(match ? QString(match->kind->name) : QString(), kind);
    if (!match)
        return;
    const QByteArray bytes = path.toUtf8();
    QVERIFY(evidence_search::may_match(bytes));
    QVERIFY(evidence_search::may_match(QByteArray(bytes + '/')));
    QVERIFY(!evidence_search::may_match(QByteArray(bytes + "/x")));
    QTEST(match->root, "root");
    QTEST(match->target, "target");
    QTEST(match->is_a_sign, "is_a_sign");
    QVERIFY(!evidence_search(&ios_uid_kind).match(path.split(u'/')));
}

void test_container_names::near_name_is_told()
{
    const evidence_search search;
    const QString name = u"com.apple.MobileBluetooth.ledevices.other.db"_s;
    QVERIFY(search.nearly_matches({u"LIBRARY"_s, u"Bluetooth"_s, name}));
    QVERIFY(search.nearly_matches({u"Library"_s, u"Bluetooth"_s, name.toUpper()}));
    QVERIFY(!search.nearly_matches({u"Library"_s, u"Bluetooth"_s, name}));
    QVERIFY(!search.nearly_matches({u"Elsewhere"_s, name.toUpper()}));
    QVERIFY(!search.nearly_matches({}));
    QVERIFY(evidence_search::may_match(QByteArray("LIBRARY/Bluetooth/" + name.toUpper().toUtf8())));
    for (const char *other : {"", "/", "a", "Library/Bluetooth/com.apple", "SYSTE", "SYSTEM/a"})
        QVERIFY2(!evidence_search::may_match(other), other);
}

namespace {

QByteArray bytes_at(qsizetype place, const QByteArray &bytes)
{
    QByteArray block(8192, '\0');
    return block.replace(place, bytes.size(), bytes);
}

} // namespace

void test_container_names::format_is_guessed_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<int>("what");
    QTest::addColumn<QString>("format");

    using kind = container_guess::kind;
    // clang-format off
    QTest::newRow("nothing")     << QByteArray()                              << QByteArray()   << int(kind::none)       << QString();
    QTest::newRow("text")        << "May 17 12:11:05 phone a[1]: b\n"_ba      << QByteArray()   << int(kind::none)       << QString();
    QTest::newRow("VHD at end")  << bytes_at(510, "\x55\xaa"_ba)              << "conectix"_ba  << int(kind::image)      << u"vhd"_s;
    QTest::newRow("text at 510") << QByteArray(8192, 'a').replace(510, 2, "\x55\xaa") << QByteArray() << int(kind::none) << QString();
    QTest::newRow("AFF4")        << "PK\x03\x04....container.description"_ba  << QByteArray()   << int(kind::refused)    << u"an AFF4 image"_s;
    // clang-format on
}

void test_container_names::format_is_guessed()
{
    QFETCH(const QByteArray, start);
    QFETCH(const QByteArray, end);
    const container_guess guess = guess_container(start, end);
    QTEST(int(guess.what), "what");
    QTEST(QString(guess.format), "format");
}

void test_container_names::every_signature_data()
{
    QTest::addColumn<qsizetype>("place"); // -1: of the last bytes of the file
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("what");
    QTest::addColumn<QString>("format");

    using kind = container_guess::kind;
    // clang-format off
    QTest::newRow("QCOW2")         << qsizetype(0)    << "QFI\xfb"_ba                          << int(kind::refused)    << u"a QCOW2 image"_s;
    QTest::newRow("VHDX")          << qsizetype(0)    << "vhdxfile"_ba                         << int(kind::refused)    << u"a VHDX image"_s;
    QTest::newRow("VDI")           << qsizetype(64)   << "\x7f\x10\xda\xbe"_ba                 << int(kind::refused)    << u"a VDI image"_s;
    QTest::newRow("DMG")           << qsizetype(-1)   << "koly"_ba                             << int(kind::refused)    << u"a DMG image"_s;
    QTest::newRow("encrypted DMG") << qsizetype(0)    << "encrcdsa"_ba                         << int(kind::refused)    << u"an encrypted DMG image"_s;
    QTest::newRow("sparse image")  << qsizetype(0)    << "sprs"_ba                             << int(kind::refused)    << u"a sparse image of macOS"_s;
    QTest::newRow("Ex01")          << qsizetype(0)    << "EVF2\x0d\x0a\x81"_ba                 << int(kind::refused)    << u"an Ex01 image"_s;
    QTest::newRow("L01")           << qsizetype(0)    << "LVF\x09\x0d\x0a\xff"_ba              << int(kind::refused)    << u"an L01 image of single files"_s;
    QTest::newRow("AFF")           << qsizetype(0)    << "AFF10\x0d\x0a"_ba                    << int(kind::refused)    << u"an AFF image"_s;
    QTest::newRow("RAR")           << qsizetype(0)    << "Rar!\x1a\x07"_ba                     << int(kind::refused)    << u"a RAR archive"_s;
    QTest::newRow("E01")           << qsizetype(0)    << "EVF\x09\x0d\x0a\xff"_ba              << int(kind::image)      << u"ewf"_s;
    QTest::newRow("VMDK, sparse")  << qsizetype(0)    << "KDMV"_ba                             << int(kind::image)      << u"vmdk"_s;
    QTest::newRow("VMDK, ESX")     << qsizetype(0)    << "COWD"_ba                             << int(kind::image)      << u"vmdk"_s;
    QTest::newRow("VMDK, text")    << qsizetype(0)    << "# Disk DescriptorFile"_ba            << int(kind::image)      << u"vmdk"_s;
    QTest::newRow("VHD, dynamic")  << qsizetype(0)    << "conectix"_ba                         << int(kind::image)      << u"vhd"_s;
    QTest::newRow("VHD, fixed")    << qsizetype(-1)   << "conectix"_ba                         << int(kind::image)      << u"vhd"_s;
    QTest::newRow("zip")           << qsizetype(0)    << "PK\x03\x04"_ba                       << int(kind::archive)    << u"zip"_s;
    QTest::newRow("zip, empty")    << qsizetype(0)    << "PK\x05\x06"_ba                       << int(kind::archive)    << u"zip"_s;
    QTest::newRow("zip, split")    << qsizetype(0)    << "PK00PK\x03\x04"_ba                   << int(kind::archive)    << u"zip"_s;
    QTest::newRow("7z")            << qsizetype(0)    << "7z\xbc\xaf\x27\x1c"_ba               << int(kind::archive)    << u"7z"_s;
    QTest::newRow("tar")           << qsizetype(257)  << "ustar"_ba                            << int(kind::archive)    << u"tar"_s;
    QTest::newRow("cpio, new")     << qsizetype(0)    << "070701"_ba                           << int(kind::archive)    << u"cpio"_s;
    QTest::newRow("cpio, sums")    << qsizetype(0)    << "070702"_ba                           << int(kind::archive)    << u"cpio"_s;
    QTest::newRow("cpio, old")     << qsizetype(0)    << "070707"_ba                           << int(kind::archive)    << u"cpio"_s;
    QTest::newRow("cpio, little")  << qsizetype(0)    << "\xc7\x71"_ba                         << int(kind::archive)    << u"cpio"_s;
    QTest::newRow("cpio, big")     << qsizetype(0)    << "\x71\xc7"_ba                         << int(kind::archive)    << u"cpio"_s;
    QTest::newRow("gzip")          << qsizetype(0)    << "\x1f\x8b"_ba                         << int(kind::compressed) << u"gzip"_s;
    QTest::newRow("xz")            << qsizetype(0)    << QByteArray("\xfd" "7zXZ")             << int(kind::compressed) << u"xz"_s;
    QTest::newRow("bzip2")         << qsizetype(0)    << "BZh"_ba                              << int(kind::compressed) << u"bzip2"_s;
    QTest::newRow("zstd")          << qsizetype(0)    << "\x28\xb5\x2f\xfd"_ba                 << int(kind::compressed) << u"zstd"_s;
    QTest::newRow("APFS")          << qsizetype(32)   << "NXSB"_ba                             << int(kind::image)      << u"raw"_s;
    QTest::newRow("HFS+")          << qsizetype(1024) << QByteArray("H+\0\x04", 4)             << int(kind::image)      << u"raw"_s;
    QTest::newRow("HFSX")          << qsizetype(1024) << QByteArray("HX\0\x05", 4)             << int(kind::image)      << u"raw"_s;
    QTest::newRow("NTFS")          << qsizetype(3)    << "NTFS    "_ba                         << int(kind::image)      << u"raw"_s;
    QTest::newRow("exFAT")         << qsizetype(3)    << "EXFAT   "_ba                         << int(kind::image)      << u"raw"_s;
    QTest::newRow("BitLocker")     << qsizetype(3)    << "-FVE-FS-"_ba                         << int(kind::image)      << u"raw"_s;
    QTest::newRow("LUKS")          << qsizetype(0)    << "LUKS\xba\xbe"_ba                     << int(kind::image)      << u"raw"_s;
    QTest::newRow("GPT")           << qsizetype(512)  << "EFI PART"_ba                         << int(kind::image)      << u"raw"_s;
    QTest::newRow("GPT, 4,096")    << qsizetype(4096) << "EFI PART"_ba                         << int(kind::image)      << u"raw"_s;
    QTest::newRow("APM")           << qsizetype(512)  << QByteArray("PM\0\0", 4)               << int(kind::image)      << u"raw"_s;
    QTest::newRow("APM, 2,048")    << qsizetype(2048) << QByteArray("PM\0\0", 4)               << int(kind::image)      << u"raw"_s;
    QTest::newRow("ext")           << qsizetype(1080) << "\x53\xef"_ba                         << int(kind::image)      << u"raw"_s;
    QTest::newRow("MBR")           << qsizetype(510)  << "\x55\xaa"_ba                         << int(kind::image)      << u"raw"_s;
    // clang-format on
}

/** With all of its bytes, at its place; a file that ends before the last of them, or has another there, is none. */
void test_container_names::every_signature()
{
    QFETCH(const qsizetype, place);
    QFETCH(const QByteArray, bytes);
    const auto guess = [place](const QByteArray &content) {
        return place < 0 ? guess_container(QByteArray("x"), content) : guess_container(content, {});
    };
    const QByteArray whole = place < 0 ? bytes
                                       : bytes_at(place, bytes).first(qMax(place + bytes.size(), qsizetype(600)));
    QTEST(int(guess(whole).what), "what");
    QTEST(QString(guess(whole).format), "format");
    QByteArray other = whole;
    const qsizetype last = qMax<qsizetype>(0, place) + bytes.size() - 1;
    other[last] = char(other[last] ^ 0x40);
    QCOMPARE(int(guess(other).what), int(container_guess::kind::none));
    QCOMPARE(int(guess(whole.first(last)).what), int(container_guess::kind::none));
    if (place >= 0)
        QCOMPARE(int(guess('\0' + whole).what), int(container_guess::kind::none));
}

void test_container_names::tar_without_a_magic()
{
    QByteArray header(512, '\0');
    header.replace(0, 5, "a.txt");
    qint64 sum = 8 * ' ';
    for (const char byte : std::as_const(header))
        sum += static_cast<unsigned char>(byte);
    const auto format_with = [&header](qint64 written) {
        QByteArray one = header;
        return guess_container(one.replace(148, 6, QByteArray::number(written, 8).rightJustified(6, '0')), {}).format;
    };
    QCOMPARE(format_with(sum), "tar"_L1);
    QCOMPARE(format_with(sum + 1), QLatin1StringView());
    header.truncate(511);
    QCOMPARE(format_with(sum), QLatin1StringView());
}

void test_container_names::refusal_names_the_command_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QByteArray>("end");
    QTest::addColumn<QString>("refusal");

    // clang-format off
    QTest::newRow("QCOW2") << "QFI\xfb"_ba                        << QByteArray() << u"it is a QCOW2 image, which this program does not read: convert it first (qemu-img convert -O raw /a b /a b.raw)"_s;
    QTest::newRow("VHDX")  << "vhdxfile"_ba                       << QByteArray() << u"it is a VHDX image, which this program does not read: convert it first (qemu-img convert -O raw /a b /a b.raw)"_s;
    QTest::newRow("VDI")   << bytes_at(64, "\x7f\x10\xda\xbe"_ba) << QByteArray() << u"it is a VDI image, which this program does not read: convert it first (qemu-img convert -O raw /a b /a b.raw)"_s;
    QTest::newRow("DMG")   << QByteArray("x")                     << "koly"_ba    << u"it is a DMG image, which this program does not read: convert it first (qemu-img convert -f dmg -O raw /a b /a b.raw)"_s;
    QTest::newRow("AFF")   << "AFF10\x0d\x0a"_ba                  << QByteArray() << u"it is an AFF image, which this program does not read: convert it first (affconvert -r -e raw /a b)"_s;
    QTest::newRow("RAR")   << "Rar!\x1a\x07"_ba                   << QByteArray() << u"it is a RAR archive, which this program does not read: convert it first (unar /a b)"_s;
    QTest::newRow("AFF4")  << QByteArray("PK\x03\x04" "aff4://")             << QByteArray() << u"it is an AFF4 image, which this program does not read"_s;
    QTest::newRow("Ex01")  << "EVF2\x0d\x0a\x81"_ba               << QByteArray() << u"it is an Ex01 image, which this program does not read"_s;
    QTest::newRow("L01")   << "LVF\x09\x0d\x0a\xff"_ba            << QByteArray() << u"it is an L01 image of single files, which this program does not read"_s;
    QTest::newRow("encrypted DMG") << "encrcdsa"_ba               << QByteArray() << u"it is an encrypted DMG image, which this program does not read"_s;
    QTest::newRow("sparse image")  << "sprs"_ba                   << QByteArray() << u"it is a sparse image of macOS, which this program does not read"_s;
    // clang-format on
}

void test_container_names::refusal_names_the_command()
{
    QFETCH(const QByteArray, start);
    QFETCH(const QByteArray, end);
    QTEST(refusal_of(guess_container(start, end), u"/a b"_s), "refusal");
}

void test_container_names::folders_to_look_into_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("folders");

    // clang-format off
    QTest::newRow("macOS") << u"macOS"_s << QStringList{
        u"Library/Bluetooth"_s, u"System/Volumes/Data/Library/Bluetooth"_s, u"*/Library/Bluetooth"_s,
        u"Library/Bluetooth/Library/Preferences"_s, u"System/Volumes/Data/Library/Bluetooth/Library/Preferences"_s, u"*/Library/Bluetooth/Library/Preferences"_s,
        u"Library/Preferences"_s, u"System/Volumes/Data/Library/Preferences"_s, u"*/Library/Preferences"_s};
    QTest::newRow("iOS") << u"iOS_files"_s << QStringList{
        u"private/var/containers/Shared/SystemGroup/*/Library/Database"_s, u"containers/Shared/SystemGroup/*/Library/Database"_s,
        u"*/containers/Shared/SystemGroup/*/Library/Database"_s, u"*/private/var/containers/Shared/SystemGroup/*/Library/Database"_s,
        u"private/var/containers/Shared/SystemGroup/*/Library/Preferences"_s, u"containers/Shared/SystemGroup/*/Library/Preferences"_s,
        u"*/containers/Shared/SystemGroup/*/Library/Preferences"_s, u"*/private/var/containers/Shared/SystemGroup/*/Library/Preferences"_s,
        u"private/var/mobile/Library/MobileBluetooth"_s, u"mobile/Library/MobileBluetooth"_s,
        u"*/mobile/Library/MobileBluetooth"_s, u"*/private/var/mobile/Library/MobileBluetooth"_s,
        u"private/var/mobile/Library/Preferences"_s, u"mobile/Library/Preferences"_s,
        u"*/mobile/Library/Preferences"_s, u"*/private/var/mobile/Library/Preferences"_s};
    QTest::newRow("Windows") << u"winOS"_s << QStringList{
        u"Windows/System32/config"_s, u"*/Windows/System32/config"_s, u"Windows/System32"_s, u"*/Windows/System32"_s};
    QTest::newRow("log") << u"iOS_UID"_s << QStringList();
    // clang-format on
}

void test_container_names::folders_to_look_into()
{
    QFETCH(const QString, kind);
    QStringList folders;
    for (const QStringList &parts : evidence_search(source_kind_named(kind)).folders())
        folders.append(parts.join(u'/'));
    QTEST(folders, "folders");
}

BLUETOOTH_LOGS_TEST(test_container_names, QCoreApplication)
#include "test_container_names.moc"
