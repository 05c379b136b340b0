// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/sample/sample.h"
#include "host/sample/sample_parts.h"
#include "host/sample/sample_random.h"
#include "host/sample/write_ahead_log.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QCryptographicHash>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QtEndian>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray sha256_start(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().first(16);
}

/** What has the header of a database of SQLite as far as a log needs it; each page is filled with one letter. */
QByteArray pages_of(qsizetype page_size, const QByteArray &letters)
{
    QByteArray bytes;
    for (const char letter : letters)
        bytes += QByteArray(page_size, letter);
    qToBigEndian(quint16(page_size == 65536 ? 1 : page_size), bytes.data() + 16);
    return bytes;
}

using change_of_sample = void (*)(const QDir &sample);

} // namespace

Q_DECLARE_METATYPE(change_of_sample)

/** What a sample is made of. */
class test_sample_parts : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void random();
    void logs_data();
    void logs();
    void head_of_a_log();
    void packed();
    void names_of_ios_sources();
    void file_in_the_way();
    void what_stands_in_the_way_data();
    void what_stands_in_the_way();
};

void test_sample_parts::random()
{
    sample_random one(1);
    QStringList texts;
    for (int i = 0; i < 4; ++i)
        texts.append(QString::number(one.below(1000)));
    texts += {one.hex(1), one.hex(6), one.uuid(), one.address(u':'), one.address(u'-')};
    QCOMPARE(texts.join(u' '), u"528 462 930 246 8 936849 915BD1B4-4B09-6100-8010-678D39FEEF00 1B:65:63:DC:99:C1 "
                               "BA-E3-E8-CF-67-44"_s);
    sample_random two(2);
    QVERIFY(two.below(1000) != 528);
}

void test_sample_parts::logs_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");
    QTest::addColumn<QList<int>>("pages"); // the page of each frame, with the pages of the whole behind the last
    QTest::addColumn<QByteArray>("sha256");

    // clang-format off
    QTest::newRow("nothing")       << pages_of(512, "ab")    << pages_of(512, "ab")    << QList<int>{}              << QByteArray("68b7f1da7e51ecb9");
    QTest::newRow("one page")      << pages_of(512, "abc")   << pages_of(512, "axc")   << QList<int>{2, 3}          << QByteArray("7ee66037acbd1782");
    QTest::newRow("first and last") << pages_of(512, "abc")  << pages_of(512, "xbz")   << QList<int>{1, 0, 3, 3}    << QByteArray("d53d24a3273596f6");
    QTest::newRow("pages more")    << pages_of(512, "ab")    << pages_of(512, "abcd")  << QList<int>{3, 0, 4, 4}    << QByteArray("b4c44e4ab9efdcb2");
    QTest::newRow("largest pages") << pages_of(65536, "ab")  << pages_of(65536, "ax")  << QList<int>{2, 2}          << QByteArray("b44eeb2874d42724");
    // clang-format on
}

void test_sample_parts::logs()
{
    QFETCH(const QByteArray, before);
    QFETCH(const QByteArray, after);
    const QByteArray log = write_ahead_log(before, after);
    const qsizetype page_size = qFromBigEndian<quint32>(log.constData() + 8);
    QList<int> pages;
    for (qsizetype frame = 32; frame < log.size(); frame += 24 + page_size) {
        const int page = qFromBigEndian<qint32>(log.constData() + frame);
        pages += {page, qFromBigEndian<qint32>(log.constData() + frame + 4)};
        QCOMPARE(log.sliced(frame + 24, page_size), after.sliced((page - 1) * page_size, page_size));
        QCOMPARE(log.sliced(frame + 8, 8), log.sliced(16, 8));
    }
    QTEST(pages, "pages");
    QTEST(sha256_start(log), "sha256");
}

void test_sample_parts::head_of_a_log()
{
    QCOMPARE(write_ahead_log(pages_of(1024, "a"), pages_of(1024, "a")).toHex(), "377f0683002de21800000400"
                                                                                "00000000"
                                                                                "53414d504c453031"
                                                                                "69461c275c642811");
}

/** Bytes of a header, of names that are too long for one field, and of whole blocks. */
void test_sample_parts::packed()
{
    const QTemporaryDir folder;
    const QString base = folder.path() + u'/';
    const QString longest = QString(50, u'd') + u'/' + QString(49, u'n'); // 100 bytes
    const QString longer = QString(50, u'd') + u'/' + QString(50, u'm');
    write_file(base + u"empty"_s, {});
    write_file(base + longest, QByteArray(511, 'x'));
    write_file(base + longer, QByteArray(512, 'y'));
    write_packed_sample(base + u"a.tar.gz"_s, base, {u"empty"_s, longest, longer});
    const QByteArray archive = content_of(base + u"a.tar.gz"_s);
    QCOMPARE(archive.first(10).toHex(), "1f8b08000000000002ff");
    QProcess gzip;
    gzip.start(u"gzip"_s, {u"-dc"_s, base + u"a.tar.gz"_s});
    QVERIFY(gzip.waitForFinished());
    const QByteArray tar = gzip.readAllStandardOutput();
    QCOMPARE(gzip.exitCode(), 0);
    QCOMPARE(tar.size(), 3 * 512 + 512 + 512 + 1024);
    QCOMPARE(qFromLittleEndian<quint32>(archive.constData() + archive.size() - 4), quint32(tar.size()));
    QCOMPARE(sha256_start(tar), "1671e638b4073b6d");
}

/** Also those that are there for a while only: --force removes what a run left that was ended. */
void test_sample_parts::names_of_ios_sources()
{
    QStringList names = ios_sample_files();
    QStringList expected;
    const QString root =
        u"ios_files/private/var/containers/Shared/SystemGroup/5A3C9E10-7B42-4D8F-9C11-0E6D2A7F4B38/Library/"_s;
    const QString other = u"com.apple.MobileBluetooth.ledevices.other.db"_s;
    const QString paired = u"com.apple.MobileBluetooth.ledevices.paired.db"_s;
    for (const QString &ending : {u""_s, u"-journal"_s, u"-wal"_s, u"-shm"_s}) {
        for (const QString &database : {other, paired}) {
            expected.append(root + u"Database/"_s + database + ending);
            expected.append(root + u"Database/"_s + database + u"-wal"_s + ending);
        }
        expected.append(root + u"Preferences/com.apple.MobileBluetooth.devices.plist"_s + ending);
        for (const QString &path : {u"Manifest.db"_s, other, paired})
            expected.append(u"ios_backup/"_s + path + ending);
    }
    expected += {u"ios_backup/Manifest.plist"_s,
                 u"ios_backup/3a/3afe56e2c5aa8c090ded49445d95e8769ef34899"_s,
                 u"ios_backup/b3/b319f580e2091e785356752c4bb55348eb8a0c18"_s,
                 u"ios_backup/60/60676dc938a4213796caffcb1b488a4ab84a1cc9"_s,
                 u"ios_backup/a5/a502d7ebefa1a02fcb808f623fdb68259864d5d7"_s,
                 u"ios_backup/35/3563f4a234af8c67a8a6a664d5e70fa131739c2f"_s};
    for (QStringList *const list : {&names, &expected}) {
        list->removeDuplicates();
        list->sort();
    }
    QCOMPARE(names, expected);
}

void test_sample_parts::file_in_the_way()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a"_s);
    write_sample_file(path, "one");
    try {
        write_sample_file(path, "two");
        QFAIL("it was written");
    } catch (const host_error &error) {
        QCOMPARE(error.message(), u"the file cannot be written: "_s + path + u": file exists"_s);
        QCOMPARE(error.kind(), error_kind::io);
    }
    QCOMPARE(content_of(path), "one");
    try {
        write_packed_sample(folder.filePath(u"a.tar.gz"_s), folder.path() + u'/', {u"none"_s});
        QFAIL("it was packed");
    } catch (const host_error &error) {
        QCOMPARE(error.message(), QString(u"the file cannot be read: "_s + folder.filePath(u"none"_s)
                                          + u": No such file or directory"_s));
        QCOMPARE(error.kind(), error_kind::io);
    }
}

void test_sample_parts::what_stands_in_the_way_data()
{
    QTest::addColumn<change_of_sample>("change");
    QTest::addColumn<QString>("message"); // % stands for the folder; of a sample that is to be written anew

    const QString way = u"this stands in the way, and it is no sample of this program: "_s;
    // clang-format off
    QTest::newRow("a sample")       << change_of_sample([](const QDir &) {}) << QString();
    QTest::newRow("another readme") << change_of_sample([](const QDir &sample) { write_file(sample.filePath(u"README.txt"_s), "x"); }) << way + u"%/ios, %/macos, %/windows, %/README.txt"_s;
    QTest::newRow("a longer readme") << change_of_sample([](const QDir &sample) { const QString path = sample.filePath(u"README.txt"_s); write_file(path, content_of(path) + ' '); }) << way + u"%/ios, %/macos, %/windows, %/README.txt"_s;
    QTest::newRow("no readme")      << change_of_sample([](const QDir &sample) { QFile::remove(sample.filePath(u"README.txt"_s)); }) << way + u"%/ios, %/macos, %/windows"_s;
    QTest::newRow("readme alone")   << change_of_sample([](const QDir &sample) { for (const QString &name : {u"ios"_s, u"macos"_s, u"windows"_s}) QDir(sample.filePath(name)).removeRecursively(); }) << QString();
    QTest::newRow("file for folder") << change_of_sample([](const QDir &sample) { QDir(sample.filePath(u"windows/Users"_s)).removeRecursively(); write_file(sample.filePath(u"windows/Users"_s), "x"); }) << way + u"%/windows/Users"_s;
    QTest::newRow("link for folder") << change_of_sample([](const QDir &sample) { QDir(sample.filePath(u"windows/Users"_s)).removeRecursively(); QFile::link(sample.filePath(u"macos"_s), sample.filePath(u"windows/Users"_s)); }) << way + u"%/windows/Users"_s;
    QTest::newRow("link to nothing for folder") << change_of_sample([](const QDir &sample) { QDir(sample.filePath(u"windows/Users"_s)).removeRecursively(); QFile::link(u"none"_s, sample.filePath(u"windows/Users"_s)); }) << way + u"%/windows/Users"_s;
    QTest::newRow("folder for file") << change_of_sample([](const QDir &sample) { QFile::remove(sample.filePath(u"ios/system.log"_s)); sample.mkpath(u"ios/system.log"_s); }) << way + u"%/ios/system.log"_s;
    QTest::newRow("link for file")  << change_of_sample([](const QDir &sample) { QFile::remove(sample.filePath(u"ios/system.log"_s)); QFile::link(sample.filePath(u"macos"_s), sample.filePath(u"ios/system.log"_s)); }) << QString();
    QTest::newRow("folder for a packed one") << change_of_sample([](const QDir &sample) { sample.mkpath(u"sample.tar.gz"_s); }) << way + u"%/sample.tar.gz"_s;
    // clang-format on
}

void test_sample_parts::what_stands_in_the_way()
{
    QFETCH(const change_of_sample, change);
    QFETCH(QString, message);
    const QTemporaryDir folder;
    QCOMPARE(write_sample(folder.path(), {}, false), QStringList());
    change(QDir(folder.path()));
    QString found;
    try {
        QCOMPARE(write_sample(folder.path(), {}, true), QStringList());
    } catch (const host_error &error) {
        found = error.message();
        QCOMPARE(error.kind(), error_kind::refused);
    }
    QCOMPARE(found, message.replace(u'%', folder.path()));
    const bool is_written = message.isEmpty();
    QCOMPARE(QFile::exists(folder.filePath(u"macos/Library/Preferences/com.apple.Bluetooth.plist"_s)),
             is_written || QDir(folder.filePath(u"macos"_s)).exists());
}

BLUETOOTH_LOGS_TEST(test_sample_parts, QCoreApplication)

#include "test_sample_parts.moc"
