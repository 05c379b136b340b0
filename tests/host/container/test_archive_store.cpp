// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/archive_store.h"
#include "host/files/host_error.h"
#include "host/files/sha256.h"
#include "tests/support/archive_bytes.h"
#include "tests/support/file_content.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** What a visit of an archive gave. */
struct visited
{
    QStringList names;
    QString damage;
    QString failure; ///< of reading a member
    qint64 bytes = 0;
    qint64 read = 0; ///< of the archive
    qint64 hashed = 0;
    QString sha256;
};

/** @p most_others: of the files that are no evidence, which are not asked for behind so many; 0: of none. */
visited visit(const QByteArray &archive, const archive_limits &limits, int most_others = 1000)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a.tar"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(archive) != archive.size())
        qFatal("the archive cannot be written");
    file.close();
    visited found;
    const container_observers observers{[&found](qint64 bytes) { found.read += bytes; },
                                        [&found](qint64 bytes) { found.hashed += bytes; }};
    const auto store = open_archive(file.fileName(), most_others > 0, observers, limits);
    store->visit(evidence_search(), [&](const stored_file &stored, byte_stream *stream) {
        found.names.append(joined(stored.parts));
        if (found.names.size() == most_others)
            store->pass_over_others();
        QByteArray block(1 << 16, Qt::Uninitialized);
        try {
            while (const qsizetype count = stream ? stream->read(block.data(), block.size()) : 0)
                found.bytes += count;
        } catch (const stream_failure &failure) {
            found.failure = failure.reason();
        }
    });
    found.damage = store->damage();
    found.sha256 = store->file().sha256;
    return found;
}

archive_limits limits_of(qint64 ratio, qint64 members, qint64 free_bytes)
{
    archive_limits limits;
    limits.ratio = ratio;
    limits.members = members;
    limits.free_bytes = free_bytes;
    return limits;
}

/** What a visit says of each wanted file, and in the end of the archive: "path (of the member), flags: text". */
QStringList accounts(const QByteArray &archive, const QStringList &wanted)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a.tar"_s));
    if (!file.open(QIODevice::WriteOnly) || file.write(archive) != archive.size())
        qFatal("the archive cannot be written");
    file.close();
    const container_observers observers{[](qint64) {}, [](qint64) {}};
    const auto store = open_archive(file.fileName(), false, observers);
    QStringList found;
    const auto take = [&found](const stored_file &stored, byte_stream *stream) {
        QByteArray content(100, Qt::Uninitialized);
        content.truncate(stream ? stream->read(content.data(), content.size()) : 0);
        found.append(joined(stored.parts) + u" ("_s + stored.origin.path + u')'
                     + (stored.is_folder ? u", folder"_s : QString()) + (stored.is_refused ? u", refused"_s : QString())
                     + u": "_s + (stream ? u'"' + QString::fromUtf8(content) + u'"' : stored.objection));
    };
    if (wanted.isEmpty())
        store->visit(evidence_search(), take);
    else
        store->visit_named([&wanted](const QStringList &parts) { return wanted.contains(joined(parts)); }, take);
    return found + store->warnings() + (store->damage().isEmpty() ? QStringList() : QStringList{store->damage()});
}

} // namespace

class test_archive_store : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void usual_limits();
    void members_are_counted();
    void ratio_is_watched();
    void others_are_passed_over_from_a_file_on();
    void cut_in_what_is_passed_over_is_told();
    void hash_is_that_of_the_whole_file();
    void origins_data();
    void origins();
    void encrypted_members();
    void no_archive_data();
    void no_archive();
    void compressed_alone_data();
    void compressed_alone();
    void members_data();
    void members();
};

void test_archive_store::usual_limits()
{
    QCOMPARE(archive_limits().ratio, 1000);
    QCOMPARE(archive_limits().members, 10'000'000);
}

void test_archive_store::members_are_counted()
{
    const QByteArray archive = tar_member("a") + tar_member("b") + tar_member("c") + QByteArray(1024, '\0');
    const visited all = visit(archive, limits_of(1000, 3, 1 << 20));
    QCOMPARE(all.names, QStringList({u"a"_s, u"b"_s, u"c"_s}));
    QCOMPARE(all.damage, QString());
    QCOMPARE(all.read, archive.size());

    const visited some = visit(archive, limits_of(1000, 2, 1 << 20));
    QCOMPARE(some.names, QStringList({u"a"_s, u"b"_s}));
    QCOMPARE(some.damage, u"it has more than 2 members"_s);
}

void test_archive_store::ratio_is_watched()
{
    // Of what is not compressed no byte is unpacked to more: one for one is all that is left.
    const QByteArray archive = tar_member("a", QByteArray(4096, 'x')) + QByteArray(1024, '\0');
    QCOMPARE(visit(archive, limits_of(2, 10, 0)).bytes, 4096);
    const visited stopped = visit(archive, limits_of(0, 10, 0));
    QCOMPARE(stopped.failure, u"it unpacks to more than 0 times its size, which no evidence does"_s);
}

void test_archive_store::others_are_passed_over_from_a_file_on()
{
    const QByteArray archive = tar_member("a") + tar_member("b/../SYSTEM") + tar_member("./Library/Bluetooth/")
                               + tar_member("b") + tar_member("x/Windows/System32/config/system") + tar_member("c\xff")
                               + QByteArray(1024, '\0');
    const QString hive = u"x/Windows/System32/config/system"_s;
    QCOMPARE(visit(archive, {}).names, QStringList({u"a"_s, u"Library/Bluetooth"_s, u"b"_s, hive, u"c\\xff"_s}));
    QCOMPARE(visit(archive, {}, 1).names, QStringList({u"a"_s, hive}));
    QCOMPARE(visit(archive, {}, 0).names, QStringList({hive}));
}

void test_archive_store::cut_in_what_is_passed_over_is_told()
{
    const QByteArray archive = tar_member("a", QByteArray(100'000, 'x')) + tar_member("b") + QByteArray(1024, '\0');
    QCOMPARE(visit(archive, {}, 0).damage, QString());
    const visited cut = visit(archive.first(50'000), {}, 0);
    QVERIFY2(cut.damage.startsWith(u"truncated"_s), qPrintable(cut.damage));
}

void test_archive_store::hash_is_that_of_the_whole_file()
{
    const QByteArray archive = tar_member("a", QByteArray(100'000, 'x')) + QByteArray(1024, '\0') + "behind its end";
    for (const int most_others : {1, 0}) {
        const visited found = visit(archive, {}, most_others);
        QCOMPARE(found.sha256, sha256::of(archive));
        QCOMPARE(found.hashed, archive.size());
        QCOMPARE(found.read, archive.size());
    }
}

void test_archive_store::origins_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QByteArray>("origin");
    QTest::addColumn<QString>("format");

    // clang-format off
    QTest::newRow("cpio") << cpio_member("a", "content", 42) + cpio_member("TRAILER!!!")
        << QByteArray(R"({"inode":42,"modified":"2024-05-17T10:11:05.000000000Z","path":"a","size":7})") << u"cpio"_s;
    QTest::newRow("tar")  << tar_member("a", "content") + QByteArray(1024, '\0')
        << QByteArray(R"({"inode":null,"modified":"1970-01-01T00:00:00.000000000Z","path":"a","size":7})") << u"tar"_s;
    // clang-format on
}

void test_archive_store::origins()
{
    QFETCH(const QByteArray, archive);
    const QTemporaryDir folder;
    write_file(folder.filePath(u"a"_s), archive);
    const auto store = open_archive(folder.filePath(u"a"_s), true, {});
    QByteArray origin;
    store->visit(evidence_search(), [&origin](const stored_file &file, byte_stream *) {
        origin = QJsonDocument(file.origin.to_json()).toJson(QJsonDocument::Compact);
    });
    QTEST(origin, "origin");
    QTEST(QString(store->format()), "format");
    QVERIFY(!store->is_single_file());
    QCOMPARE(store->damage(), QString());
}

/** A zip whose members say that they are. */
void test_archive_store::encrypted_members()
{
    const QByteArray name = "Windows/System32/config/SYSTEM";
    const QTemporaryDir folder;
    write_file(folder.filePath(u"a"_s), encrypted_zip_member(name));
    const auto store = open_archive(folder.filePath(u"a"_s), true, {});
    QStringList found;
    store->visit(evidence_search(), [&found](const stored_file &file, byte_stream *stream) {
        found.append(joined(file.parts) + (file.is_encrypted ? u", encrypted"_s : QString())
                     + (file.is_refused ? u", refused: "_s : u": "_s) + file.objection + (stream ? u"!"_s : QString()));
    });
    QCOMPARE(found, QStringList{QString::fromLatin1(name) + u", encrypted, refused: it is encrypted"_s});
}

void test_archive_store::no_archive_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("compressed"); // by these commands
    QTest::addColumn<QString>("message");

    // clang-format off
    QTest::newRow("compressed twice") << QByteArray("a text") << u"gzip | gzip"_s << u"the archive cannot be read: $: it is compressed more than once"_s;
    QTest::newRow("no tar") << QByteArray(1024, 'x') << u"cat"_s << u"the archive cannot be read: $: its format is not known"_s;
    // clang-format on
}

void test_archive_store::no_archive()
{
    QFETCH(const QByteArray, content);
    QFETCH(const QString, compressed);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a"_s);
    write_file(folder.filePath(u"in"_s), content);
    QCOMPARE(QProcess::execute(u"sh"_s,
                               {u"-c"_s, u"cd '"_s + folder.path() + u"' && cat in | "_s + compressed + u" > a"_s}),
             0);
    QString found;
    try {
        const auto store = open_archive(path, true, {});
        store->visit(evidence_search(), [](const stored_file &, byte_stream *) {});
        found = store->damage();
    } catch (const host_error &error) {
        found = error.message().replace(path, u"$"_s);
    }
    QTEST(found, "message");
}

void test_archive_store::compressed_alone_data()
{
    QTest::addColumn<QString>("archive");
    QTest::addColumn<QString>("file");

    // clang-format off
    QTest::newRow("gzip")             << u"system.log.gz"_s << u"system.log"_s;
    QTest::newRow("bzip2")            << u"system.bz2"_s    << u"system"_s;
    QTest::newRow("xz")               << u"system.log.xz"_s << u"system.log"_s;
    QTest::newRow("zstd")             << u"a.tar.zst"_s     << u"a.tar"_s;
    QTest::newRow("capitals")         << u"SYSTEM.LOG.GZ"_s << u"SYSTEM.LOG"_s;
    QTest::newRow("another ending")   << u"system.log.z"_s  << u"system.log.z"_s;
    QTest::newRow("an ending alone")  << u".gz"_s           << u".gz"_s;
    QTest::newRow("no ending")        << u"gz"_s            << u"gz"_s;
    // clang-format on
}

/** Its name is what is left without the ending, whatever it is compressed with. */
void test_archive_store::compressed_alone()
{
    QFETCH(const QString, archive);
    const QTemporaryDir folder;
    const QString path = folder.filePath(archive);
    QCOMPARE(QProcess::execute(u"sh"_s, {u"-c"_s, u"printf text | gzip >\"$1\""_s, u"sh"_s, path}), 0);
    QStringList names;
    const auto store = open_archive(path, true, container_observers(), archive_limits());
    store->visit(evidence_search(), [&names](const stored_file &stored, byte_stream *) {
        QVERIFY(stored.is_alone);
        names.append(joined(stored.parts) + u' ' + stored.origin.path);
    });
    QFETCH(const QString, file);
    QCOMPARE(names, QStringList({file + u' ' + file}));
}

void test_archive_store::members_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QStringList>("wanted"); // none: evidence
    QTest::addColumn<QStringList>("accounts");

    const QString evidence = u"Windows/System32/config/SYSTEM"_s;
    const QByteArray end(1024, '\0');
    QByteArray misnamed;
    QStringList passed_over;
    for (int count = 10; count < 32; ++count) {
        const QString name = QString::number(count) + u"/WINDOWS/System32/config/SYSTEM/../x"_s;
        misnamed += tar_member(name.toUtf8());
        if (count < 30)
            passed_over.append(u"passed over in the archive, its name leads to a folder above: "_s + name);
    }
    QByteArray chain;
    for (char link = 'a'; link < 'k'; ++link)
        chain += tar_member(QByteArray(1, link), {}, '2', QByteArray(1, char(link + 1)));

    // clang-format off
    QTest::newRow("file")             << tar_member("d/f", "x") + tar_member("d/g") + end          << QStringList{u"d/f"_s} << QStringList{u"d/f (d/f): \"x\""_s};
    QTest::newRow("folder")           << tar_member("d/f/", {}, '5') + end                     << QStringList{u"d/f"_s} << QStringList{u"d/f (d/f/), folder: "_s};
    QTest::newRow("FIFO")             << tar_member("d/f", {}, '6') + end                      << QStringList{u"d/f"_s} << QStringList{u"d/f (d/f), refused: it is not a regular file"_s};
    QTest::newRow("device")           << tar_member("d/f", {}, '3') + end                      << QStringList{u"d/f"_s} << QStringList{u"d/f (d/f), refused: it is not a regular file"_s};
    QTest::newRow("link")             << tar_member("g", "y") + tar_member("d/f", {}, '2', "../g") + end << QStringList{u"d/f"_s} << QStringList{u"d/f (g): \"y\""_s};
    QTest::newRow("link to what comes") << tar_member("d/f", {}, '2', "g") + tar_member("d/g", "y") + end << QStringList{u"d/f"_s} << QStringList{u"d/f (d/g): \"y\""_s};
    QTest::newRow("from the root")    << tar_member("g", "y") + tar_member("d/f", {}, '2', "/g") + end << QStringList{u"d/f"_s} << QStringList{u"d/f (g): \"y\""_s};
    QTest::newRow("hard link")        << tar_member("d/g", "y") + tar_member("e/f", {}, '1', "d/g") + end << QStringList{u"e/f"_s} << QStringList{u"e/f (d/g): \"y\""_s};
    QTest::newRow("link to a link")   << tar_member("f", {}, '2', "g") + tar_member("g", {}, '2', "h") + tar_member("h", "z") + end << QStringList{u"f"_s} << QStringList{u"f (h): \"z\""_s};
    QTest::newRow("link to a folder") << tar_member("f", {}, '2', "g") + tar_member("g/", {}, '5') + end << QStringList{u"f"_s} << QStringList{u"f (g/), folder: "_s};
    QTest::newRow("link to a FIFO")   << tar_member("f", {}, '2', "g") + tar_member("g", {}, '6') + end << QStringList{u"f"_s} << QStringList{u"f (g), refused: it is not a regular file"_s};
    QTest::newRow("link to nowhere")  << tar_member("d/f", {}, '2', "g") + end                 << QStringList{u"d/f"_s} << QStringList{u"d/f (d/f): it is a link that leads nowhere"_s};
    QTest::newRow("link to itself")   << tar_member("f", {}, '2', "f") + end                   << QStringList{u"f"_s}   << QStringList{u"f (f): it is a link that leads nowhere"_s};
    QTest::newRow("too many links")   << chain + tar_member("k", "z") + end                    << QStringList{u"a"_s}   << QStringList{u"a (i): it is a link that leads nowhere"_s};
    QTest::newRow("eight links")      << chain + tar_member("k", "z") + end                    << QStringList{u"c"_s}   << QStringList{u"c (k): \"z\""_s};
    QTest::newRow("link out")         << tar_member("d/f", {}, '2', "../../g") + end           << QStringList{u"d/f"_s} << QStringList{u"d/f (d/f), refused: it is a link that leads out of the container, to ../../g"_s};
    QTest::newRow("link to the top")  << tar_member("d/f", {}, '2', "..") + end                << QStringList{u"d/f"_s} << QStringList{u"d/f (d/f), refused: it is a link that leads out of the container, to .."_s};
    QTest::newRow("link to a link out") << tar_member("f", {}, '2', "g") + tar_member("g", {}, '2', "../h") + end << QStringList{u"f"_s} << QStringList{u"f (g), refused: it is a link that leads out of the container, to ../h"_s};
    QTest::newRow("evidence")         << tar_member(evidence.toUtf8(), "r") + tar_member("Windows/System32/config/SOFTWARE") + end << QStringList() << QStringList{evidence + u" ("_s + evidence + u"): \"r\""_s};
    QTest::newRow("other letters")    << tar_member("library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db") + end << QStringList() << QStringList{u"passed over in the archive, it is named as evidence but for letter case or the form of Unicode: library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s};
    QTest::newRow("dangerous names")  << misnamed + end                                    << QStringList()         << passed_over + QStringList{u"2 more names of the archive were passed over"_s};
    // clang-format on
}

void test_archive_store::members()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const QStringList, wanted);
    QTEST(accounts(archive, wanted), "accounts");
}

BLUETOOTH_LOGS_TEST(test_archive_store, QCoreApplication)

#include "test_archive_store.moc"
