// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/evidence_search.h"
#include "host/container/folder_store.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString database_name = u"com.apple.MobileBluetooth.ledevices.other.db"_s;
const QString database_path = u"Library/Bluetooth/"_s + database_name;

/** A folder with one database in it, and another folder beside it. */
class made_folder
{
public:
    made_folder()
    {
        QDir().mkpath(path(u"outside"_s));
        write_file(path(u"top/"_s + database_path), "content");
    }

    QString path(const QString &relative) const
    {
        return folder.filePath(relative);
    }
    /** What stands at @p place below the folder goes, and a link takes its place. */
    void link(const QString &place, const QString &target) const
    {
        const QString link = path(u"top/"_s + place);
        QDir(link).removeRecursively();
        QFile::remove(link);
        if (!QFile::link(target, link))
            qFatal("no link can be made");
    }

    QTemporaryDir folder;
};

using change_of_folder = void (*)(const made_folder &made);

/** "path = content" of each file, "path: objection" of those that are not read, then what is said of folders. */
QStringList texts_of_visit(const QString &folder, bool follow_links)
{
    QStringList texts;
    const std::unique_ptr<evidence_store> store = open_folder(folder, follow_links);
    store->visit(evidence_search(&macos_kind), [&texts](const stored_file &file, byte_stream *stream) {
        QByteArray content(100, '\0');
        if (stream)
            content.truncate(stream->read(content.data(), content.size()));
        const QString found = joined(file.parts);
        texts.append(stream ? QString(found + u" = "_s + QString::fromUtf8(content))
                            : QString(found + u": "_s + file.objection + (file.is_refused ? u"!"_s : QString())));
    });
    return texts + store->warnings();
}

} // namespace

Q_DECLARE_METATYPE(change_of_folder)

/** What is found in a folder, and where its links lead. */
class test_folder_store : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void found_data();
    void found();
    void origin();
};

void test_folder_store::found_data()
{
    QTest::addColumn<change_of_folder>("change");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QStringList>("texts_where_links_leave");

    const QStringList plain{database_path + u" = content"_s};
    const QString nowhere = u"it is a link that leads nowhere"_s;
    // clang-format off
    QTest::newRow("a file")           << change_of_folder([](const made_folder &) {}) << plain << plain;
    QTest::newRow("nothing")          << change_of_folder([](const made_folder &made) { QFile::remove(made.path(u"top/"_s + database_path)); }) << QStringList() << QStringList();
    QTest::newRow("a FIFO")           << change_of_folder([](const made_folder &made) { const QString place = made.path(u"top/"_s + database_path); QFile::remove(place); ::mkfifo(QFile::encodeName(place).constData(), 0600); })
        << QStringList{database_path + u": it is not a regular file!"_s} << QStringList{database_path + u": it is not a regular file!"_s};
    QTest::newRow("link to a file")   << change_of_folder([](const made_folder &made) { write_file(made.path(u"top/a.db"_s), "linked"); made.link(database_path, u"../../a.db"_s); })
        << QStringList{database_path + u" = linked"_s} << QStringList{database_path + u" = linked"_s};
    QTest::newRow("link to a link")   << change_of_folder([](const made_folder &made) { write_file(made.path(u"top/a.db"_s), "linked"); made.link(u"b.db"_s, u"a.db"_s); made.link(database_path, u"../../b.db"_s); })
        << QStringList{database_path + u" = linked"_s} << QStringList{database_path + u" = linked"_s};
    QTest::newRow("from the root")    << change_of_folder([](const made_folder &made) { write_file(made.path(u"top/a.db"_s), "linked"); made.link(database_path, u"/./a.db"_s); })
        << QStringList{database_path + u" = linked"_s} << QStringList{database_path + u": it is not a regular file!"_s};
    QTest::newRow("other letters")    << change_of_folder([](const made_folder &made) { write_file(made.path(u"top/A.db"_s), "linked"); made.link(database_path, u"/a.db"_s); })
        << QStringList{database_path + u" = linked"_s} << QStringList{database_path + u": it is not a regular file!"_s};
    QTest::newRow("link to nothing")  << change_of_folder([](const made_folder &made) { made.link(database_path, u"none"_s); })
        << QStringList{database_path + u": "_s + nowhere + u'!'} << QStringList{database_path + u": it is not a regular file!"_s};
    QTest::newRow("through a file")   << change_of_folder([](const made_folder &made) { write_file(made.path(u"top/a"_s), "x"); made.link(database_path, u"/a/b"_s); })
        << QStringList{database_path + u": "_s + nowhere + u'!'} << QStringList{database_path + u": it is not a regular file!"_s};
    QTest::newRow("link out")         << change_of_folder([](const made_folder &made) { write_file(made.path(u"outside/a.db"_s), "outside"); made.link(database_path, u"../../../outside/a.db"_s); })
        << QStringList{database_path + u": it is a link that leads out of the container, to ../../../outside/a.db!"_s} << QStringList{database_path + u" = outside"_s};
    QTest::newRow("link to itself")   << change_of_folder([](const made_folder &made) { made.link(database_path, database_name); })
        << QStringList{database_path + u": it is a link that leads to itself!"_s} << QStringList{database_path + u": it is not a regular file!"_s};
    QTest::newRow("link to a folder") << change_of_folder([](const made_folder &made) { made.link(database_path, u"/Library"_s); })
        << QStringList{database_path + u": it is not a regular file!"_s} << QStringList{database_path + u": it is not a regular file!"_s};
    QTest::newRow("folder by a link") << change_of_folder([](const made_folder &made) { QDir().rename(made.path(u"top/Library"_s), made.path(u"top/Lib"_s)); made.link(u"Library"_s, u"Lib"_s); })
        << plain << plain;
    QTest::newRow("folder out")       << change_of_folder([](const made_folder &made) { QDir().rename(made.path(u"top/Library"_s), made.path(u"outside/Library"_s)); made.link(u"Library"_s, u"../outside/Library"_s); })
        << QStringList{u"Library: it is a link that leads out of the container, to ../outside/Library"_s} << plain;
    QTest::newRow("folder nowhere")   << change_of_folder([](const made_folder &made) { made.link(u"Library"_s, u"none"_s); })
        << QStringList{u"Library: "_s + nowhere} << QStringList();
    QTest::newRow("below a folder")   << change_of_folder([](const made_folder &made) { QDir().mkpath(made.path(u"top/x"_s)); QDir().rename(made.path(u"top/Library"_s), made.path(u"top/x/Library"_s)); })
        << QStringList{u"x/"_s + database_path + u" = content"_s} << QStringList{u"x/"_s + database_path + u" = content"_s};
    // clang-format on
}

void test_folder_store::found()
{
    QFETCH(const change_of_folder, change);
    made_folder made;
    change(made);
    QStringList once = texts_of_visit(made.path(u"top"_s), false);
    once.removeDuplicates(); // a folder is looked for by several patterns
    QTEST(once, "texts");
    QStringList leaving = texts_of_visit(made.path(u"top"_s), true);
    leaving.removeDuplicates();
    QTEST(leaving, "texts_where_links_leave");
}

void test_folder_store::origin()
{
    const made_folder made;
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(made.path(u"top/"_s + database_path)).constData(), &status), 0);
    open_folder(made.path(u"top"_s), false)
        ->visit(evidence_search(&macos_kind), [&](const stored_file &file, byte_stream *) {
            QCOMPARE(file.origin.path, database_path);
            QCOMPARE(file.origin.inode.value_or(0), quint64(status.st_ino));
            QCOMPARE(file.origin.size.value_or(0), quint64(7));
            QVERIFY(!file.origin.modified.isEmpty());
        });
}

BLUETOOTH_LOGS_TEST(test_folder_store, QCoreApplication)

#include "test_folder_store.moc"
