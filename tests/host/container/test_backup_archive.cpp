// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/backup_store.h"
#include "host/files/host_error.h"
#include "tests/support/archive_bytes.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// Where every backup stores them: the SHA-1 of domain, "-" and path.
const QByteArray stored_other = "3a/3afe56e2c5aa8c090ded49445d95e8769ef34899";
const QByteArray stored_other_log = "b3/b319f580e2091e785356752c4bb55348eb8a0c18";
const QByteArray stored_preferences = "35/3563f4a234af8c67a8a6a664d5e70fa131739c2f";
const QByteArray stored_leftover = "aa/" + QByteArray(40, 'a');

const QString other_name = u"Library/Database/com.apple.MobileBluetooth.ledevices.other.db"_s;
const QString on_phone = u"containers/Shared/SystemGroup/backup/"_s;

/** An index that lists what the names above say, and a file that few backups have. */
QByteArray index_bytes()
{
    static const QByteArray bytes = [] {
        const QTemporaryDir folder;
        const sqlite_file index(folder.filePath(u"Manifest.db"_s));
        index.execute(u"CREATE TABLE Files(fileID TEXT, domain TEXT, relativePath TEXT)"_s);
        const auto row = [](const QByteArray &place, const QString &path) {
            return QVariantList{QString::fromLatin1(place.sliced(3)),
                                u"SysSharedContainerDomain-systemgroup.com.apple.bluetooth"_s, path};
        };
        index.execute_many(u"INSERT INTO Files VALUES(?, ?, ?)"_s,
                           {row(stored_other, other_name), row(stored_other_log, other_name + u"-wal"_s),
                            row(stored_preferences, u"Library/Preferences/com.apple.MobileBluetooth.devices.plist"_s),
                            row(stored_leftover, other_name + u".1.corrupt"_s)});
        return content_of(index.path());
    }();
    return bytes;
}

const QByteArray list_bytes = R"(<?xml version="1.0"?><plist version="1.0"><dict/></plist>)";

/** The files of a backup below a folder, in the order in which an archive may have them. */
QByteArray packed_backup(const QByteArray &folder)
{
    return tar_member(folder + stored_other, "o") + tar_member(folder + stored_preferences, "p")
           + tar_member(folder + stored_leftover, "l") + tar_member(folder + "Manifest.plist", list_bytes)
           + tar_member(folder + stored_other_log, "w") + tar_member(folder + "Manifest.db", index_bytes());
}

const QByteArray tar_end(1024, '\0');

/** What an archive gives. */
struct read_backup
{
    QStringList texts; ///< "name (its member): content", or an objection, of each file; what is told of the archive
    qint64 bytes = 0;  ///< that were read of the archive
};

read_backup read_of(const QByteArray &archive, const QString &member = {})
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.tar"_s);
    write_file(path, archive);
    read_backup found;
    container_observers observers;
    observers.read = [&found](qint64 bytes) { found.bytes += bytes; };
    try {
        const auto backup = open_backup(path, member, observers);
        const auto store = backup->store(0);
        store->visit(evidence_search(), [&found](const stored_file &file, byte_stream *stream) {
            QByteArray content(100, '\0');
            if (stream)
                content.truncate(stream->read(content.data(), content.size()));
            found.texts.append(joined(file.parts).section(u'.', -1) + u" ("_s + file.origin.path + u"): "_s
                               + (stream ? QString::fromUtf8(content) : file.objection));
        });
        found.texts += store->warnings();
        if (!store->damage().isEmpty())
            found.texts.append(store->damage());
    } catch (const host_error &error) {
        found.texts.append(QString::number(int(error.kind())) + u' ' + error.message().replace(path, u"a.tar"_s));
    }
    return found;
}

/** The evidence of a backup below a folder: first what every backup may hold, in the order of its index. */
QStringList texts_of(const QString &folder)
{
    const auto text = [&folder](const QString &ending, const QByteArray &place, const QString &content) {
        return QString(ending + u" ("_s + folder + QString::fromLatin1(place) + u"): "_s + content);
    };
    return {text(u"db"_s, stored_other, u"o"_s), text(u"db-wal"_s, stored_other_log, u"w"_s),
            text(u"plist"_s, stored_preferences, u"p"_s), text(u"corrupt"_s, stored_leftover, u"l"_s)};
}

} // namespace

/** A backup in an archive, whose files stand in any order. */
class test_backup_archive : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void files_data();
    void files();
    void passes_data();
    void passes();
    void facts();
};

void test_backup_archive::files_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QString>("member");
    QTest::addColumn<QStringList>("texts");

    const QByteArray root = packed_backup({}) + tar_end;
    const QByteArray two = packed_backup("a/x/") + packed_backup("b/y/") + tar_end;
    const QString refused = QString::number(int(error_kind::refused));
    const QString unread = QString::number(int(error_kind::not_found)) + u" the backup cannot be read: a.tar: "_s;
    const QString missing = u" there is no device log and no evidence with the name of --member: "_s;
    const auto changed = [](QByteArray archive, const QByteArray &from, const QByteArray &to) {
        const QByteArray member = tar_member(from, from.endsWith(".plist") ? list_bytes : QByteArray("o"));
        return archive.replace(member, to);
    };
    // clang-format off
    QTest::newRow("at the root")       << root                             << QString()  << texts_of({});
    QTest::newRow("in a folder")       << packed_backup("a/b/") + tar_end  << QString()  << texts_of(u"a/b/"_s);
    QTest::newRow("two")               << two                              << QString()  << QStringList{refused + u" there is evidence in several folders, choose one: --member a/x, --member b/y"_s};
    QTest::newRow("the first of two")  << two                              << u"a/x"_s   << texts_of(u"a/x/"_s);
    QTest::newRow("the second of two") << two                              << u"b/y"_s   << texts_of(u"b/y/"_s);
    QTest::newRow("none of two")       << two                              << u"b"_s     << QStringList{refused + missing + u'b'};
    QTest::newRow("not the only one")  << root                             << u"b"_s     << QStringList{refused + missing + u'b'};
    QTest::newRow("the higher first")  << packed_backup("a/") + packed_backup("b/y/") + tar_end << QString() << texts_of(u"a/"_s);
    QTest::newRow("the higher behind") << packed_backup("b/y/") + packed_backup("a/") + tar_end << QString() << texts_of(u"a/"_s);
    QTest::newRow("two higher behind") << packed_backup("b/y/") + packed_backup("a/") + packed_backup("c/") + tar_end << QString()
                                       << QStringList{refused + u" there is evidence in several folders, choose one: --member a, --member c"_s};
    QTest::newRow("no backup")         << tar_member("a", "x") + tar_end   << QString()  << QStringList{unread + u"it has no Manifest.db"_s};
    QTest::newRow("no list")           << changed(root, "Manifest.plist", {}) << QString() << QStringList{unread + u"it has no Manifest.plist"_s};
    QTest::newRow("lists are folders") << tar_member("Manifest.db", {}, '6') + tar_member("Manifest.plist", {}, '6') + tar_end << QString()
                                       << QStringList{unread + u"Manifest.db: it is not a regular file; Manifest.plist: it is not a regular file"_s};
    QTest::newRow("one is missing")    << changed(root, stored_other, {})  << QString()
                                       << texts_of({}).sliced(1) + QStringList{u"db (3a/3afe56e2c5aa8c090ded49445d95e8769ef34899): the backup lists it and does not store it, at 3a/3afe56e2c5aa8c090ded49445d95e8769ef34899"_s};
    QTest::newRow("one is a FIFO")     << changed(root, stored_other, tar_member(stored_other, {}, '6')) << QString()
                                       << QStringList{u"db (3a/3afe56e2c5aa8c090ded49445d95e8769ef34899): it is not a regular file"_s} + texts_of({}).sliced(1);
    QTest::newRow("one twice")         << packed_backup({}) + tar_member(stored_other, "n") + tar_end << QString()
                                       << texts_of({}).first(1) + QStringList{u"db (3a/3afe56e2c5aa8c090ded49445d95e8769ef34899): n"_s} + texts_of({}).sliced(1);
    QTest::newRow("a name that leads out") << tar_member("../x/Manifest.db") + root << QString()
                                       << texts_of({}) + QStringList{u"passed over in the archive, its name leads to a folder above: ../x/Manifest.db"_s};
    // clang-format on
}

void test_backup_archive::files()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const QString, member);
    QTEST(read_of(archive, member).texts, "texts");
}

/** What every backup may hold is kept while it is looked for, up to 1,000 files; the rest takes a pass of its own. */
void test_backup_archive::passes_data()
{
    QTest::addColumn<int>("others"); // lists of other backups, in front of this one
    QTest::addColumn<int>("passes");

    QTest::newRow("none") << 0 << 2;
    QTest::newRow("just not too many") << 994 << 2;
    QTest::newRow("too many") << 995 << 3;
}

void test_backup_archive::passes()
{
    QFETCH(const int, others);
    QFETCH(const int, passes);
    QByteArray archive;
    for (int i = 0; i < others; ++i)
        archive += tar_member(QByteArray::number(i) + "/Manifest.plist");
    archive += packed_backup({}) + tar_end;
    const read_backup found = read_of(archive);
    QStringList sorted = found.texts;
    QStringList expected = texts_of({});
    sorted.sort();
    expected.sort();
    QCOMPARE(sorted, expected);
    QCOMPARE(found.bytes, passes * archive.size());
}

void test_backup_archive::facts()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.tar"_s);
    write_file(path, packed_backup("a/") + tar_end);
    const auto backup = open_backup(path, {}, {});
    QCOMPARE(backup->kind(), &ios_backup_kind);
    const container_facts facts = backup->facts();
    QCOMPARE(facts.kind, u"backup"_s);
    QCOMPARE(facts.format, u"tar"_s);
    QCOMPARE(facts.files.size(), 1);
    QCOMPARE(facts.files.first().path, path);
}

BLUETOOTH_LOGS_TEST(test_backup_archive, QCoreApplication)

#include "test_backup_archive.moc"
