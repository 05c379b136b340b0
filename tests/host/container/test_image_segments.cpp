// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/image_segments.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTemporaryDir>
#include <QtEndian>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** A section of an EWF: type, place of the next one, and what it holds. */
QByteArray section(const QByteArray &type, qint64 next, const QByteArray &content = {})
{
    QByteArray header(76, '\0');
    header.replace(0, type.size(), type);
    qToLittleEndian(next, header.data() + 16);
    return header + content;
}

QByteArray ewf(const QByteArray &sections)
{
    return QByteArray(13, 'E') + sections;
}

} // namespace

/** The files that an image is made of. */
class test_image_segments : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void segments_data();
    void segments();
    void many_of_an_ewf_data();
    void many_of_an_ewf();
    void extents();
    void hashes_data();
    void hashes();
};

void test_image_segments::segments_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QStringList>("present");
    QTest::addColumn<QStringList>("segments"); // the first one is the one that is given

    // clang-format off
    QTest::newRow("one file")          << u"raw"_s  << QStringList{u"a.dd"_s, u"a.002"_s}                   << QStringList{u"a.dd"_s};
    QTest::newRow("from 1")            << u"raw"_s  << QStringList{u"a.001"_s, u"a.002"_s, u"a.003"_s, u"a.005"_s} << QStringList{u"a.001"_s, u"a.002"_s, u"a.003"_s};
    QTest::newRow("from 0")            << u"raw"_s  << QStringList{u"a.000"_s, u"a.001"_s}                  << QStringList{u"a.000"_s, u"a.001"_s};
    QTest::newRow("two digits")        << u"raw"_s  << QStringList{u"a.01"_s, u"a.02"_s}                    << QStringList{u"a.01"_s, u"a.02"_s};
    QTest::newRow("five digits")       << u"raw"_s  << QStringList{u"a.00001"_s, u"a.00002"_s}              << QStringList{u"a.00001"_s, u"a.00002"_s};
    QTest::newRow("one digit")         << u"raw"_s  << QStringList{u"a.1"_s, u"a.2"_s}                      << QStringList{u"a.1"_s};
    QTest::newRow("not the first")     << u"raw"_s  << QStringList{u"a.002"_s, u"a.003"_s}                  << QStringList{u"a.002"_s};
    QTest::newRow("EWF")               << u"ewf"_s  << QStringList{u"a.E01"_s, u"a.E02"_s, u"a.E04"_s}      << QStringList{u"a.E01"_s, u"a.E02"_s};
    QTest::newRow("EWF, small letters") << u"ewf"_s << QStringList{u"a.e01"_s, u"a.e02"_s, u"a.E03"_s}      << QStringList{u"a.e01"_s, u"a.e02"_s};
    QTest::newRow("EWF of SMART")      << u"ewf"_s  << QStringList{u"a.s01"_s, u"a.s02"_s}                  << QStringList{u"a.s01"_s, u"a.s02"_s};
    QTest::newRow("EWF of other name") << u"ewf"_s  << QStringList{u"a.E02"_s, u"a.E03"_s}                  << QStringList{u"a.E02"_s};
    QTest::newRow("VHD")               << u"vhd"_s  << QStringList{u"a.001"_s, u"a.002"_s}                  << QStringList{u"a.001"_s};
    // clang-format on
}

void test_image_segments::segments()
{
    QFETCH(const QString, format);
    QFETCH(const QStringList, present);
    QFETCH(const QStringList, segments);
    const QTemporaryDir folder;
    for (const QString &name : present)
        write_file(folder.filePath(name), "x");
    QStringList found = image_segments(folder.filePath(segments.first()), QLatin1StringView(format.toLatin1()));
    for (QString &path : found)
        path.remove(folder.path() + u'/');
    QCOMPARE(found, segments);
}

void test_image_segments::many_of_an_ewf_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("name");

    // clang-format off
    QTest::newRow("last number")     << u"E01"_s << 99   << u"E99"_s;
    QTest::newRow("first letters")   << u"E01"_s << 100  << u"EAA"_s;
    QTest::newRow("second letter")   << u"E01"_s << 126  << u"EBA"_s;
    QTest::newRow("last letters")    << u"E01"_s << 775  << u"EZZ"_s;
    QTest::newRow("next first one")  << u"E01"_s << 776  << u"FAA"_s;
    QTest::newRow("small letters")   << u"e01"_s << 101  << u"eab"_s;
    // clang-format on
}

/** Each is made when it is missed. */
void test_image_segments::many_of_an_ewf()
{
    QFETCH(const QString, first);
    QFETCH(const int, number);
    const QTemporaryDir folder;
    const QString start = folder.filePath(u"a."_s);
    const QString letters = first.at(0).isUpper() ? u"ABCDEFGHIJKLMNOPQRSTUVWXYZ"_s : u"abcdefghijklmnopqrstuvwxyz"_s;
    QStringList endings;
    for (int count = 1; count < 100; ++count)
        endings.append(first.at(0) + QString::number(count).rightJustified(2, u'0'));
    for (const QChar leading : {first.at(0), QChar(char16_t(first.at(0).unicode() + 1))}) {
        for (const QChar middle : letters) {
            for (const QChar last : letters)
                endings.append(QString(leading) + middle + last);
        }
    }
    for (const QString &ending : endings.first(number))
        write_file(start + ending, {});
    const QStringList found = image_segments(start + first, "ewf"_L1);
    QCOMPARE(found.size(), number);
    QTEST(found.last().sliced(start.size()), "name");
}

void test_image_segments::extents()
{
    const QByteArray description = "# Disk DescriptorFile\nversion=1\n"
                                   "RW 100 SPARSE \"a-s001.vmdk\"\nRDONLY 5 FLAT \"b c.vmdk\" 0\n"
                                   "NOACCESS 7 ZERO\n NOACCESS 7 FLAT \"indented\"\nRW x FLAT \"no number\"\n"
                                   "NOACCESS 1 FLAT \"/elsewhere/d.vmdk\"\n";
    QCOMPARE(extent_names(description), QStringList({u"a-s001.vmdk"_s, u"b c.vmdk"_s, u"/elsewhere/d.vmdk"_s}));
    const QTemporaryDir folder;
    for (const QString &name : {u"a-s001.vmdk"_s, u"d.vmdk"_s})
        write_file(folder.filePath(name), "x");
    const QString path = folder.filePath(u"disk.vmdk"_s);
    const QStringList expected{path, folder.filePath(u"a-s001.vmdk"_s), folder.filePath(u"d.vmdk"_s)};
    write_file(path, description);
    QCOMPARE(image_segments(path, "vmdk"_L1), expected);

    // In a sparse one the header says in which blocks it stands, and in how many.
    QByteArray sparse(1024, '\0');
    sparse.replace(0, 4, "KDMV");
    qToLittleEndian(quint64(2), sparse.data() + 28);
    qToLittleEndian(quint64(1), sparse.data() + 36);
    write_file(path, sparse + description);
    QCOMPARE(image_segments(path, "vmdk"_L1), expected);
    qToLittleEndian(quint64(200), sparse.data() + 28); // beyond its end
    write_file(path, sparse + description);
    QCOMPARE(image_segments(path, "vmdk"_L1), QStringList{path});
    write_file(path, sparse.first(511));
    QCOMPARE(image_segments(path, "vmdk"_L1), QStringList{path});
}

void test_image_segments::hashes_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("md5");
    QTest::addColumn<QString>("sha1");
    QTest::addColumn<bool>("is_whole");

    const QByteArray md5(16, '\1');
    const QByteArray sha1(20, '\2');
    const QString md5_text = u"01"_s.repeated(16);
    const QString sha1_text = u"02"_s.repeated(20);
    // clang-format off
    QTest::newRow("none")          << ewf(section("header", 89) + section("done", 89))              << QString() << QString() << true;
    QTest::newRow("hash")          << ewf(section("hash", 13 + 76 + 36, md5 + QByteArray(20, '\3')) + section("done", 0)) << md5_text << QString() << true;
    QTest::newRow("digest")        << ewf(section("digest", 13 + 76 + 36, md5 + sha1) + section("done", 0)) << md5_text << sha1_text << true;
    QTest::newRow("cut digest")    << ewf(section("digest", 13 + 76 + 36, md5 + sha1.chopped(1)))    << md5_text << QString() << false;
    QTest::newRow("behind the end") << ewf(section("done", 13 + 76) + section("digest", 0, md5 + sha1)) << QString() << QString() << true;
    QTest::newRow("behind the next file") << ewf(section("next", 13 + 76) + section("digest", 0, md5 + sha1)) << QString() << QString() << false;
    QTest::newRow("going back")    << ewf(section("header", 13) + section("digest", 0, md5 + sha1))  << QString() << QString() << false;
    QTest::newRow("empty")         << QByteArray()                                                   << QString() << QString() << false;
    // clang-format on
}

void test_image_segments::hashes()
{
    QFETCH(const QByteArray, file);
    const QTemporaryDir folder;
    write_file(folder.filePath(u"a.E01"_s), file);
    const ewf_hashes found = hashes_in_ewf(folder.filePath(u"a.E01"_s));
    QTEST(found.md5, "md5");
    QTEST(found.sha1, "sha1");
    QTEST(found.is_whole, "is_whole");
}

BLUETOOTH_LOGS_TEST(test_image_segments, QCoreApplication)

#include "test_image_segments.moc"
