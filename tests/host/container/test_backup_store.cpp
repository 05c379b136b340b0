// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/backup_store.h"
#include "host/files/host_error.h"
#include "host/files/sha256.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString domain = u"SysSharedContainerDomain-systemgroup.com.apple.bluetooth"_s;
const QString other_path = u"Library/Database/com.apple.MobileBluetooth.ledevices.other.db"_s;
const QString on_device = u"containers/Shared/SystemGroup/backup/"_s;
const QString id_of_nothing(40, u'a');

/** A list of a backup, with what stands in its dictionary. */
QByteArray manifest_list(const QByteArray &members = {})
{
    return R"(<?xml version="1.0"?><plist version="1.0"><dict>)" + members + "</dict></plist>";
}

/** A row of the index, of a file of the domain that is meant. */
QVariantList listed(const QString &id, const QString &path)
{
    return {id, domain, path};
}

/** The folder of a backup; what it lists, and what is stored in it. */
class made_backup
{
public:
    explicit made_backup(const QList<QVariantList> &rows = {})
    {
        index().execute(u"CREATE TABLE Files(fileID TEXT, domain TEXT, relativePath TEXT)"_s);
        index().execute_many(u"INSERT INTO Files VALUES(?, ?, ?)"_s, rows);
        write_file(path(u"Manifest.plist"_s), manifest_list());
    }

    sqlite_file index() const
    {
        return sqlite_file(path(u"Manifest.db"_s));
    }
    QString path(const QString &relative = {}) const
    {
        return folder.filePath(relative);
    }
    void store(const QString &id, const QByteArray &content) const
    {
        write_file(path(id.first(2) + u'/' + id), content);
    }

    QTemporaryDir folder;
};

/** "path (where it is stored): content", or an objection, of each file; or why nothing of the backup is given. */
QStringList visit_of_backup(source_container &backup)
{
    QStringList texts;
    const auto store = backup.store(0);
    store->visit(evidence_search(), [&texts](const stored_file &file, byte_stream *stream) {
        QByteArray content(100, '\0');
        if (stream)
            content.truncate(stream->read(content.data(), content.size()));
        const QString name = joined(file.parts) + u" ("_s + file.origin.path + u')'
                             + (file.is_refused ? u", refused"_s : QString());
        texts.append(name + u": "_s + (stream ? QString::fromUtf8(content) : file.objection));
    });
    return texts + store->warnings() + (store->damage().isEmpty() ? QStringList() : QStringList{store->damage()});
}

QStringList visit_of_backup(const QString &path, const QString &member = {})
{
    try {
        return visit_of_backup(*open_backup(path, member, {}));
    } catch (const host_error &error) {
        return {QString::number(int(error.kind())) + u' ' + error.message()};
    }
}

using change_of_backup = void (*)(const made_backup &made);

} // namespace

Q_DECLARE_METATYPE(change_of_backup)

/** What is found in the folder of a backup, and why others are not read. */
class test_backup_store : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void refused_data();
    void refused();
    void files_data();
    void files();
    void most_files();
    void origin();
    void facts();
    void is_a_backup_data();
    void is_a_backup();
};

void test_backup_store::refused_data()
{
    QTest::addColumn<change_of_backup>("change");
    QTest::addColumn<QString>("reason");

    // clang-format off
    QTest::newRow("no index")      << change_of_backup([](const made_backup &made) { QFile::remove(made.path(u"Manifest.db"_s)); })    << u"it has no Manifest.db"_s;
    QTest::newRow("no list")       << change_of_backup([](const made_backup &made) { QFile::remove(made.path(u"Manifest.plist"_s)); }) << u"it has no Manifest.plist"_s;
    QTest::newRow("folders")       << change_of_backup([](const made_backup &made) { for (const QString &name : {u"Manifest.db"_s, u"Manifest.plist"_s}) { QFile::remove(made.path(name)); QDir().mkpath(made.path(name)); } })
                                   << u"Manifest.db: it is not a regular file; Manifest.plist: it is not a regular file"_s;
    QTest::newRow("a link")        << change_of_backup([](const made_backup &made) { QFile::rename(made.path(u"Manifest.db"_s), made.path(u"x"_s)); QFile::link(u"x"_s, made.path(u"Manifest.db"_s)); })
                                   << u"Manifest.db: it is not a regular file"_s;
    QTest::newRow("no plist")      << change_of_backup([](const made_backup &made) { write_file(made.path(u"Manifest.plist"_s), "x"); }) << u"Manifest.plist is no property list"_s;
    QTest::newRow("empty plist")   << change_of_backup([](const made_backup &made) { write_file(made.path(u"Manifest.plist"_s), ""); })  << u"Manifest.plist is no property list"_s;
    QTest::newRow("encrypted")     << change_of_backup([](const made_backup &made) { write_file(made.path(u"Manifest.plist"_s), manifest_list("<key>IsEncrypted</key><true/>")); })
                                   << u"it is encrypted (IsEncrypted in Manifest.plist)"_s;
    QTest::newRow("no database")   << change_of_backup([](const made_backup &made) { write_file(made.path(u"Manifest.db"_s), "x"); }) << u"Manifest.db cannot be read: file is not a database"_s;
    QTest::newRow("a view")        << change_of_backup([](const made_backup &made) { made.index().execute(u"ALTER TABLE Files RENAME TO t"_s); made.index().execute(u"CREATE VIEW Files AS SELECT * FROM t"_s); })
                                   << u"Manifest.db has no ordinary table Files"_s;
    QTest::newRow("no column")     << change_of_backup([](const made_backup &made) { made.index().execute(u"ALTER TABLE Files RENAME COLUMN relativePath TO x"_s); })
                                   << u"Manifest.db cannot be read: no such column: relativePath"_s;
    // clang-format on
}

void test_backup_store::refused()
{
    QFETCH(const change_of_backup, change);
    QFETCH(const QString, reason);
    const made_backup made;
    change(made);
    const QString kind = QString::number(int(error_kind::not_found));
    QCOMPARE(visit_of_backup(made.path()),
             QStringList{kind + u" the backup cannot be read: "_s + made.path() + u": "_s + reason});
}

void test_backup_store::files_data()
{
    QTest::addColumn<QList<QVariantList>>("rows");
    QTest::addColumn<change_of_backup>("change");
    QTest::addColumn<QStringList>("texts");

    const QString preferences = u"Library/Preferences/com.apple.MobileBluetooth.devices.plist"_s;
    const QString a(40, u'a');
    const QString b(40, u'B');
    const auto nothing = change_of_backup([](const made_backup &) {});
    const auto stored = change_of_backup([](const made_backup &made) {
        made.store(QString(40, u'a'), "one");
        made.store(QString(40, u'B'), "two");
    });
    // clang-format off
    QTest::newRow("none listed")      << QList<QVariantList>() << stored << QStringList();
    QTest::newRow("two files")        << QList<QVariantList>{listed(b, preferences), listed(a, other_path)} << stored
        << QStringList{on_device + preferences + u" (BB/"_s + b + u"): two"_s, on_device + other_path + u" (aa/"_s + a + u"): one"_s};
    QTest::newRow("beside a database") << QList<QVariantList>{listed(a, other_path + u"-wal"_s)} << stored << QStringList{on_device + other_path + u"-wal (aa/"_s + a + u"): one"_s};
    QTest::newRow("not evidence")     << QList<QVariantList>{listed(a, u"Library/Database/other.db"_s), listed(b, u"x/"_s + other_path)} << stored << QStringList();
    QTest::newRow("another domain")   << QList<QVariantList>{{a, u"HomeDomain"_s, other_path}} << stored << QStringList();
    QTest::newRow("not stored")       << QList<QVariantList>{listed(a, other_path)} << nothing
        << QStringList{on_device + other_path + u" (aa/"_s + a + u"): the backup lists it and does not store it, at aa/"_s + a};
    QTest::newRow("a FIFO")           << QList<QVariantList>{listed(a, other_path)} << change_of_backup([](const made_backup &made) {
            const QString place = made.path(u"aa/"_s + QString(40, u'a')); QDir().mkpath(made.path(u"aa"_s)); ::mkfifo(QFile::encodeName(place).constData(), 0600); })
        << QStringList{on_device + other_path + u" (aa/"_s + a + u"), refused: it is not a regular file"_s};
    QTest::newRow("a link")           << QList<QVariantList>{listed(a, other_path)} << change_of_backup([](const made_backup &made) {
            QDir().mkpath(made.path(u"aa"_s)); QFile::link(made.path(u"Manifest.plist"_s), made.path(u"aa/"_s + QString(40, u'a'))); })
        << QStringList{on_device + other_path + u" (aa/"_s + a + u"), refused: it is not a regular file"_s};
    for (const QString &id : {a.first(39), QString(a + u'a'), QString(a.first(39) + u'g'), QString(u"../"_s + a.first(37))})
        QTest::newRow(qPrintable(u"no name of a file: "_s + id)) << QList<QVariantList>{listed(id, other_path)} << stored << QStringList();
    // clang-format on
}

void test_backup_store::files()
{
    QFETCH(const QList<QVariantList>, rows);
    QFETCH(const change_of_backup, change);
    const made_backup made(rows);
    change(made);
    QTEST(visit_of_backup(made.path()), "texts");
}

void test_backup_store::most_files()
{
    QList<QVariantList> rows;
    for (int i = 0; i < 1001; ++i)
        rows.append(listed(QString::number(i).rightJustified(40, u'0'), other_path));
    QCOMPARE(visit_of_backup(made_backup(rows.first(999)).path()).size(), 999);
    QCOMPARE(visit_of_backup(made_backup(rows).path()).size(), 1000);
}

void test_backup_store::origin()
{
    const made_backup made({listed(id_of_nothing, other_path)});
    made.store(id_of_nothing, "content");
    struct stat status = {};
    const QString place = made.path(u"aa/"_s + id_of_nothing);
    const timespec times[] = {{1, 0}, {1715940665, 123456789}};
    QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(place).constData(), times, 0), 0);
    QCOMPARE(::stat(QFile::encodeName(place).constData(), &status), 0);
    int count = 0;
    open_backup(made.path(), {}, {})->store(0)->visit(evidence_search(), [&](const stored_file &file, byte_stream *) {
        ++count;
        QCOMPARE(file.origin.inode.value_or(0), quint64(status.st_ino));
        QCOMPARE(file.origin.size.value_or(0), qint64(7));
        QCOMPARE(file.origin.modified, u"2024-05-17T10:11:05.123456789Z"_s);
        QVERIFY(!file.is_encrypted && !file.is_folder && !file.is_alone);
    });
    QCOMPARE(count, 1);
}

void test_backup_store::facts()
{
    const made_backup made;
    const auto backup = open_backup(made.path(), {}, {});
    QCOMPARE(backup->kind(), &ios_backup_kind);
    QVERIFY(backup->volumes().isEmpty());
    const container_facts before = backup->facts();
    QCOMPARE(before.kind, u"backup"_s);
    QCOMPARE(before.format, u"folder"_s);
    QCOMPARE(before.files.size(), 2);
    qint64 hashed = 0;
    backup->hash_files([&hashed](qint64 bytes) { hashed += bytes; });
    const container_facts after = backup->facts();
    const QStringList names{u"Manifest.db"_s, u"Manifest.plist"_s};
    qint64 size = 0;
    for (qsizetype i = 0; i < 2; ++i) {
        const QByteArray content = content_of(made.path(names.at(i)));
        QCOMPARE(before.files.at(i).sha256, QString());
        QCOMPARE(after.files.at(i).path, made.path(names.at(i)));
        QCOMPARE(after.files.at(i).size, content.size());
        QCOMPARE(after.files.at(i).sha256, sha256::of(content));
        size += content.size();
    }
    QCOMPARE(hashed, size);
}

void test_backup_store::is_a_backup_data()
{
    QTest::addColumn<change_of_backup>("change");
    QTest::addColumn<bool>("is_backup");

    // clang-format off
    QTest::newRow("both")     << change_of_backup([](const made_backup &) {}) << true;
    QTest::newRow("no index") << change_of_backup([](const made_backup &made) { QFile::remove(made.path(u"Manifest.db"_s)); }) << false;
    QTest::newRow("no list")  << change_of_backup([](const made_backup &made) { QFile::remove(made.path(u"Manifest.plist"_s)); }) << false;
    QTest::newRow("folder")   << change_of_backup([](const made_backup &made) { QFile::remove(made.path(u"Manifest.plist"_s)); QDir().mkpath(made.path(u"Manifest.plist"_s)); }) << false;
    // clang-format on
}

void test_backup_store::is_a_backup()
{
    QFETCH(const change_of_backup, change);
    const made_backup made;
    change(made);
    QTEST(is_backup_folder(made.path()), "is_backup");
}

BLUETOOTH_LOGS_TEST(test_backup_store, QCoreApplication)

#include "test_backup_store.moc"
