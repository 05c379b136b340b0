// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/evidence_look.h"

#include "host/files/sha256.h"
#include "host/source/macos_databases.h"
#include "tests/support/file_content.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QByteArray database_start("SQLite format 3\0", 16);

/** A macOS source, what lies outside of it, and the case's copies. */
class made_source
{
public:
    made_source()
    {
        source.kind = &macos_kind;
        source.path = folder.filePath(u"source"_s);
        source.root = source.path + u'/';
        QDir().mkpath(source.root + u"Library/Bluetooth"_s);
        QDir().mkpath(folder.filePath(u"copies"_s));
        write(database_start + "rows");
    }

    /** The database of the other devices. */
    QString database() const
    {
        return source.root + path_in_source(other_devices_database);
    }
    QString copy() const
    {
        return folder.filePath(u"copies/"_s) + path_in_source(other_devices_database);
    }
    QString outside() const
    {
        return folder.filePath(u"outside.db"_s);
    }
    void write(const QByteArray &content) const
    {
        write_file(database(), content);
    }
    void remove() const
    {
        if (!QFile::remove(database()))
            qFatal("there is no database");
    }
    void link_to(const QString &target) const
    {
        remove();
        if (!QFile::link(target, database()))
            qFatal("no link can be made");
    }

    evidence_state look(qint64 most_bytes = 1000)
    {
        hashed = 0;
        return look_before(source, {folder.filePath(u"copies"_s), {}, {}}, most_bytes,
                           [this](qint64 bytes) { hashed += bytes; });
    }
    void look_again(evidence_state &evidence)
    {
        hashed = 0;
        look_after(evidence, source, [this](qint64 bytes) { hashed += bytes; });
    }

    QTemporaryDir folder;
    evidence_source source;
    qint64 hashed = 0;
};

using change_of_source = void (*)(made_source &made);

/** "present, 20 bytes, hashed, copied: reason". */
QString account_of(const made_source &made, const evidence_file &file)
{
    QString text = presence_name(file.state);
    if (file.before)
        text += u", "_s + QString::number(file.before->size) + u" bytes"_s;
    if (file.before && !file.before->sha256.isEmpty())
        text += file.before->sha256 == sha256::of(content_of(made.database())) ? u", hashed"_s : u", another hash"_s;
    if (!file.copy_sha256.isEmpty())
        text += file.copy_sha256 == sha256::of(content_of(made.copy())) ? u", copied"_s : u", another copy"_s;
    if (!file.reason.isEmpty())
        text += u": "_s + QString(file.reason).replace(made.outside(), u"$"_s);
    return text;
}

} // namespace

Q_DECLARE_METATYPE(change_of_source)

/** What the host sees of a file of the evidence, before and after the plug-in. */
class test_evidence_look : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void before_the_run_data();
    void before_the_run();
    void companions_data();
    void companions();
    void after_the_run_data();
    void after_the_run();
    void closed_after_the_run();
    void listing();
    void times();
    void order();
    void log_text();
};

void test_evidence_look::before_the_run_data()
{
    QTest::addColumn<change_of_source>("change");
    QTest::addColumn<QString>("account");
    QTest::addColumn<qint64>("hashed");

    const QString leads_out = u"it is reached by a link that leads out of the source, to $"_s;
    // clang-format off
    QTest::newRow("database")        << change_of_source([](made_source &) {}) << u"present, 20 bytes, hashed, copied"_s << qint64(20);
    QTest::newRow("magic alone")     << change_of_source([](made_source &made) { made.write(database_start); }) << u"present, 16 bytes, hashed, copied"_s << qint64(16);
    QTest::newRow("shorter")         << change_of_source([](made_source &made) { made.write(database_start.chopped(1)); }) << u"unreadable, 15 bytes, hashed, copied: it is no SQLite database"_s << qint64(15);
    QTest::newRow("other bytes")     << change_of_source([](made_source &made) { made.write("SQLite format 4, no more"); }) << u"unreadable, 24 bytes, hashed, copied: it is no SQLite database"_s << qint64(24);
    QTest::newRow("empty")           << change_of_source([](made_source &made) { made.write({}); }) << u"unreadable, 0 bytes, hashed, copied: it is empty, and no database"_s << qint64(0);
    QTest::newRow("largest")         << change_of_source([](made_source &made) { made.write(database_start + QByteArray(984, 'x')); }) << u"present, 1000 bytes, hashed, copied"_s << qint64(1000);
    QTest::newRow("too large")       << change_of_source([](made_source &made) { made.write(database_start + QByteArray(985, 'x')); }) << u"refused, 1001 bytes: it has 1001 bytes (0 MiB), more than the 0 MiB that --max-database allows"_s << qint64(0);
    QTest::newRow("absent")          << change_of_source([](made_source &made) { made.remove(); }) << u"absent"_s << qint64(0);
    QTest::newRow("no folder")       << change_of_source([](made_source &made) { QDir(made.source.root + u"Library"_s).removeRecursively(); }) << u"absent"_s << qint64(0);
    QTest::newRow("folder is a file") << change_of_source([](made_source &made) { QDir(made.source.root + u"Library/Bluetooth"_s).removeRecursively(); write_file(made.source.root + u"Library/Bluetooth"_s, "x"); }) << u"absent"_s << qint64(0);
    QTest::newRow("FIFO")            << change_of_source([](made_source &made) { made.remove(); ::mkfifo(QFile::encodeName(made.database()).constData(), 0600); }) << u"refused, 0 bytes: it is not a regular file"_s << qint64(0);
    QTest::newRow("link to nothing") << change_of_source([](made_source &made) { made.link_to(u"nothing"_s); }) << u"unreadable: it is a link that leads nowhere"_s << qint64(0);
    QTest::newRow("link within")     << change_of_source([](made_source &made) { write_file(made.source.root + u"a.db"_s, database_start); made.link_to(made.source.root + u"a.db"_s); }) << u"present, 16 bytes, hashed, copied"_s << qint64(16);
    QTest::newRow("link that leads out") << change_of_source([](made_source &made) { write_file(made.outside(), database_start); made.link_to(made.outside()); }) << u"refused: "_s + leads_out + u": --follow-links reads it nevertheless"_s << qint64(0);
    QTest::newRow("and is followed") << change_of_source([](made_source &made) { write_file(made.outside(), database_start); made.link_to(made.outside()); made.source.follow_links = true; }) << u"present, 16 bytes, hashed, copied: "_s + leads_out << qint64(16);
    QTest::newRow("and is no database") << change_of_source([](made_source &made) { write_file(made.outside(), "x"); made.link_to(made.outside()); made.source.follow_links = true; }) << u"unreadable, 1 bytes, hashed, copied: it is no SQLite database"_s << qint64(1);
    // clang-format on
}

void test_evidence_look::before_the_run()
{
    QFETCH(const change_of_source, change);
    made_source made;
    change(made);
    const evidence_state evidence = made.look();
    QCOMPARE(evidence.files.first().path, path_in_source(other_devices_database));
    QTEST(account_of(made, evidence.files.first()), "account");
    QTEST(made.hashed, "hashed");
    QCOMPARE(QFile::exists(made.copy()), !evidence.files.first().copy_sha256.isEmpty());
}

void test_evidence_look::companions_data()
{
    QTest::addColumn<QString>("ending");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("reason");

    // clang-format off
    QTest::newRow("log, little")   << u"-wal"_s     << QByteArray("\x37\x7f\x06\x82 rest") << QString();
    QTest::newRow("log, big")      << u"-wal"_s     << QByteArray("\x37\x7f\x06\x83 rest") << QString();
    QTest::newRow("empty log")     << u"-wal"_s     << QByteArray()                        << QString();
    QTest::newRow("no log")        << u"-wal"_s     << QByteArray("\x37\x7f\x06\x84 rest") << u"it is no write-ahead log"_s;
    QTest::newRow("cut log")       << u"-wal"_s     << QByteArray("\x37\x7f\x06")          << u"it is no write-ahead log"_s;
    QTest::newRow("journal")       << u"-journal"_s << QByteArray("x")                     << QString();
    QTest::newRow("shared memory") << u"-shm"_s     << QByteArray("x")                     << QString();
    // clang-format on
}

void test_evidence_look::companions()
{
    QFETCH(const QString, ending);
    QFETCH(const QByteArray, content);
    made_source made;
    write_file(made.database() + ending, content);
    const evidence_state evidence = made.look();
    const evidence_file *file = evidence.file_named(path_in_source(other_devices_database) + ending);
    QVERIFY(file);
    QCOMPARE(presence_name(file->state), "present"_L1);
    QTEST(file->reason, "reason");
    QCOMPARE(content_of(made.copy() + ending), content);
}

void test_evidence_look::after_the_run_data()
{
    QTest::addColumn<change_of_source>("change");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<QStringList>("changes"); // the beginnings
    QTest::addColumn<qint64>("hashed");

    const QString path = path_in_source(other_devices_database) + u": "_s;
    // clang-format off
    QTest::newRow("nothing")       << change_of_source([](made_source &) {}) << QString() << QStringList() << qint64(20);
    QTest::newRow("longer")        << change_of_source([](made_source &made) { made.write(database_start + "rows and more"); }) << QString() << QStringList{path + u"its size was 20 bytes and is 29"_s} << qint64(29);
    QTest::newRow("other content") << change_of_source([](made_source &made) { made.write(database_start + "ROWS"); }) << QString() << QStringList{path + u"its content was changed: its SHA-256 was "_s} << qint64(20);
    QTest::newRow("gone")          << change_of_source([](made_source &made) { made.remove(); }) << QString() << QStringList{path + u"it is gone"_s} << qint64(0);
    QTest::newRow("replaced")      << change_of_source([](made_source &made) { QFile::rename(made.database(), made.outside()); made.write(database_start + "rows"); }) << QString() << QStringList{path + u"it is another file than before"_s} << qint64(20);
    QTest::newRow("a link out")    << change_of_source([](made_source &made) { write_file(made.outside(), "x"); made.link_to(made.outside()); })
        << u"it is reached by a link that leads out of the source, to $: --follow-links reads it nevertheless"_s << QStringList{path + u"it is gone"_s} << qint64(0);
    // clang-format on
}

void test_evidence_look::after_the_run()
{
    QFETCH(const change_of_source, change);
    QFETCH(const QStringList, changes);
    made_source made;
    evidence_state evidence = made.look();
    change(made);
    made.look_again(evidence);
    QTEST(QString(evidence.files.first().reason).replace(made.outside(), u"$"_s), "reason");
    const QStringList found = evidence.changes();
    QCOMPARE(found.size(), changes.size());
    for (qsizetype i = 0; i < changes.size(); ++i)
        QVERIFY2(found.at(i).startsWith(changes.at(i)), qPrintable(found.at(i)));
    QTEST(made.hashed, "hashed");
}

/** What cannot be read again is not known to have changed. */
void test_evidence_look::closed_after_the_run()
{
    made_source made;
    for (QString path = made.database(); path != made.folder.path(); path = QFileInfo(path).path())
        QCOMPARE(::chmod(QFile::encodeName(path).constData(), 0755), 0);
    QCOMPARE(::chmod(QFile::encodeName(made.folder.path()).constData(), 0755), 0);
    evidence_state evidence = made.look();
    QCOMPARE(::chmod(QFile::encodeName(made.database()).constData(), 0), 0);
    {
        const ordinary_user user;
        if (!QFileInfo::exists(made.database()))
            QSKIP("the folder of temporary files is closed to others");
        made.look_again(evidence);
    }
    const evidence_file &file = evidence.files.first();
    QCOMPARE(presence_name(file.state), "unreadable"_L1);
    QCOMPARE(file.reason, u"it cannot be read again: permission denied"_s);
}

/** Names that come and go in the folder of the databases. */
void test_evidence_look::listing()
{
    made_source made;
    write_file(made.source.root + u"Library/Bluetooth/stays"_s, {});
    write_file(made.source.root + u"Library/Bluetooth/goes"_s, {});
    evidence_state evidence = made.look();
    QVERIFY(QFile::remove(made.source.root + u"Library/Bluetooth/goes"_s));
    write_file(made.source.root + u"Library/Bluetooth/comes"_s, {});
    made.look_again(evidence);
    const QString name = QString(other_devices_database.file_name);
    QCOMPARE(evidence.listing_before, QStringList({name, u"goes"_s, u"stays"_s}));
    QCOMPARE(evidence.listing_after, QStringList({name, u"comes"_s, u"stays"_s}));
    QCOMPARE(evidence.changes(), QStringList({u"Library/Bluetooth/comes: it was not there before"_s,
                                              u"Library/Bluetooth/goes: it is gone"_s}));
}

/** Those of the file, each under its name. */
void test_evidence_look::times()
{
    made_source made;
    const QByteArray database = QFile::encodeName(made.database());
    const timespec times[] = {{1'500'000'000, 0}, {1'600'000'000, 0}}; // read, modified
    QCOMPARE(::utimensat(AT_FDCWD, database.constData(), times, 0), 0);
    const evidence_file file = made.look().files.first();
    QCOMPARE(file.before->modified, u"2020-09-13T12:26:40.000000000Z"_s);
    QVERIFY(QDateTime::fromString(file.before->changed, Qt::ISODate).secsTo(QDateTime::currentDateTimeUtc()) < 3600);
}

/** In the order in which the record has them: databases with what stands beside them, leftovers, lists of devices. */
void test_evidence_look::order()
{
    made_source made;
    write_file(made.database() + u".2.corrupt"_s, {});
    write_file(made.database() + u".1.corrupt"_s, {});
    QString paths;
    for (const evidence_file &file : made.look().files)
        paths += file.path + u'\n';
    QCOMPARE(paths.replace(u"com.apple.MobileBluetooth.ledevices."_s, QString()), uR"(Library/Bluetooth/other.db
Library/Bluetooth/other.db-wal
Library/Bluetooth/other.db-shm
Library/Bluetooth/other.db-journal
Library/Bluetooth/paired.db
Library/Bluetooth/paired.db-wal
Library/Bluetooth/paired.db-shm
Library/Bluetooth/paired.db-journal
Library/Bluetooth/other.db.1.corrupt
Library/Bluetooth/other.db.2.corrupt
Library/Preferences/com.apple.Bluetooth.plist
Library/Bluetooth/Library/Preferences/com.apple.MobileBluetooth.devices.plist
)"_s);
}

/** Its lines are kept; no copy is made of it. */
void test_evidence_look::log_text()
{
    const QTemporaryDir folder;
    evidence_source source;
    source.kind = &ios_uid_kind;
    source.root = folder.filePath(u"source/"_s);
    source.log_file = source.root + u"system.log"_s;
    const QByteArray line = "May 17 12:11:05 p s[1] <Notice>: BLE device found: SFDevice ID 1A\n";
    write_file(source.log_file, line + "x active device: y\n" + QByteArray(1, '\0'));
    write_file(source.root + u"other.log"_s, "x");
    evidence_state evidence = look_before(source,
                                          {folder.filePath(u"copies"_s), folder.filePath(u"lines"_s),
                                           folder.filePath(u"unparsed"_s)},
                                          1, [](qint64) {});
    QCOMPARE(evidence.files.size(), 1);
    QCOMPARE(evidence.files.first().path, u"system.log"_s);
    QCOMPARE(presence_name(evidence.files.first().state), "present"_L1);
    QCOMPARE(evidence.files.first().reason,
             u"it holds 1 zero byte, which no text has, from offset "_s + QString::number(line.size() + 19) + u" on"_s);
    QVERIFY(evidence.files.first().copy_sha256.isEmpty());
    QVERIFY(!QFile::exists(folder.filePath(u"copies"_s)));
    QCOMPARE(evidence.unparsed_lines, QJsonObject({{u"devices"_s, 0}, {u"paired_devices"_s, 1}}));
    QCOMPARE(content_of(folder.filePath(u"lines"_s)).count('\n'), 1);
    QCOMPARE(content_of(folder.filePath(u"unparsed"_s)).count('\n'), 1);
    QCOMPARE(evidence.listing_before, QStringList{u"system.log"_s});
    QVERIFY(QFile::remove(source.log_file));
    look_after(evidence, source, [](qint64) {});
    QCOMPARE(evidence.changes(), QStringList{u"system.log: it is gone"_s});
}

BLUETOOTH_LOGS_TEST(test_evidence_look, QCoreApplication)

#include "test_evidence_look.moc"
