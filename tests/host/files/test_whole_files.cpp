// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/file_lock.h"
#include "host/files/folder_listing.h"
#include "host/files/free_room.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <cstring>
#include <limits>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

QString kind_name(error_kind kind)
{
    switch (kind) {
    case error_kind::io:
        return u"io"_s;
    case error_kind::refused:
        return u"refused"_s;
    case error_kind::not_found:
        return u"not found"_s;
    default:
        return u"another kind"_s;
    }
}

/** What a function says when it refuses, with the kind of error: "not found: …". */
template<typename Function>
QString refusal(Function function)
{
    try {
        function();
    } catch (const host_error &error) {
        return kind_name(error.kind()) + u": "_s + error.message();
    }
    return u"done"_s;
}

} // namespace

/** Files of the program are written whole, read with care, locked, and stand where they were meant to. */
class test_whole_files : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void file_is_replaced_as_a_whole();
    void link_is_replaced_and_not_followed();
    void what_cannot_be_written_leaves_the_old();
    void what_is_no_file_is_not_read_data();
    void what_is_no_file_is_not_read();
    void json_that_is_none();
    void lock_is_held_once();
    void lock_is_no_link();
    void folders_are_listed();
    void room_that_is_not_there();
    void links_are_followed_nowhere_data();
    void links_are_followed_nowhere();
    void folders_are_made_without_links();
    void tree_goes_and_nothing_behind_its_links();
    void inside_data();
    void inside();
    void absolute_data();
    void absolute();
};

void test_whole_files::file_is_replaced_as_a_whole()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.json"_s);
    QVERIFY(QFile(path + u".new"_s).open(QIODevice::WriteOnly)); // of a run that was killed
    write_whole_file(path, "one");
    QCOMPARE(content_of(path), "one");
    write_json_file(path, {{u"a"_s, 1}});
    QCOMPARE(content_of(path), "{\n    \"a\": 1\n}\n");
    QCOMPARE(read_json_file(path), QJsonObject({{u"a"_s, 1}}));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList{u"a.json"_s});
}

void test_whole_files::link_is_replaced_and_not_followed()
{
    const QTemporaryDir folder;
    write_whole_file(folder.filePath(u"elsewhere"_s), "keep");
    for (const QString &name : {u"a"_s, u"a.new"_s})
        QVERIFY(QFile::link(folder.filePath(u"elsewhere"_s), folder.filePath(name)));
    write_whole_file(folder.filePath(u"a"_s), "new");
    QCOMPARE(content_of(folder.filePath(u"a"_s)), "new");
    QVERIFY(!QFileInfo(folder.filePath(u"a"_s)).isSymLink());
    QCOMPARE(content_of(folder.filePath(u"elsewhere"_s)), "keep");
}

void test_whole_files::what_cannot_be_written_leaves_the_old()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a"_s);
    QVERIFY(QDir().mkpath(path + u"/b"_s)); // no file takes its place
    QVERIFY(refusal([&] { write_whole_file(path, "x"); }).startsWith(u"io: "_s + path + u" cannot be written: "_s));
    QVERIFY(!QFile::exists(path + u".new"_s));
    QVERIFY(QFileInfo(path + u"/b"_s).isDir());
    const QString nowhere = folder.filePath(u"none/a"_s);
    QCOMPARE(refusal([&] { write_whole_file(nowhere, "x"); }),
             u"io: "_s + nowhere + u" cannot be written: no such file or directory"_s);
}

void test_whole_files::what_is_no_file_is_not_read_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");

    // clang-format off
    QTest::newRow("nothing")  << u"nothing"_s << u"no such file or directory"_s;
    QTest::newRow("folder")   << u"folder"_s  << u"it is not a regular file"_s;
    QTest::newRow("FIFO")     << u"fifo"_s    << u"it is not a regular file"_s;
    QTest::newRow("link")     << u"link"_s    << u"too many levels of symbolic links"_s;
    QTest::newRow("too large") << u"large"_s  << u"it has 11 bytes, more than this file ever has"_s;
    // clang-format on
}

void test_whole_files::what_is_no_file_is_not_read()
{
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    const QTemporaryDir folder;
    const QString path = folder.filePath(kind);
    QVERIFY(QDir().mkpath(folder.filePath(u"folder"_s)));
    QVERIFY(QFile::link(u"large"_s, folder.filePath(u"link"_s)));
    QCOMPARE(::mkfifo(QFile::encodeName(folder.filePath(u"fifo"_s)).constData(), 0600), 0);
    write_whole_file(folder.filePath(u"large"_s), "01234567890");
    QCOMPARE(refusal([&] { read_whole_file(path, 10); }), u"not found: "_s + path + u" cannot be read: "_s + reason);
}

void test_whole_files::json_that_is_none()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.json"_s);
    write_whole_file(path, "{\"a\": 1");
    QVERIFY(refusal([&] { read_json_file(path); }).startsWith(u"not found: "_s + path + u" is no JSON file: "_s));
    write_whole_file(path, "[1]");
    QCOMPARE(refusal([&] { read_json_file(path); }), u"not found: "_s + path + u" holds no JSON object"_s);
}

void test_whole_files::lock_is_held_once()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u".lock"_s);
    QVERIFY(!file_lock::is_held(path));
    {
        const file_lock lock(path);
        QVERIFY(file_lock::is_held(path));
        const QString words = refusal([&] { const file_lock second(path); });
        QVERIFY2(words.startsWith(
                     u"refused: another run works here, process %1 on "_s.arg(QCoreApplication::applicationPid()))
                     && words.endsWith(u": "_s + path),
                 qPrintable(words));
    }
    QVERIFY(!file_lock::is_held(path));
    QVERIFY(QFile::exists(path));
    const file_lock again(path);
    QCOMPARE(content_of(path).count('\n'), 1);
}

void test_whole_files::lock_is_no_link()
{
    const QTemporaryDir folder;
    write_whole_file(folder.filePath(u"elsewhere"_s), "keep");
    QVERIFY(QFile::link(folder.filePath(u"elsewhere"_s), folder.filePath(u"link"_s)));
    QVERIFY(refusal([&] { const file_lock lock(folder.filePath(u"link"_s)); }).startsWith(u"io: the lock "_s));
    QVERIFY(refusal([&] { const file_lock lock(folder.path()); }).startsWith(u"io: the lock "_s));
    // A second name of a file is no lock file of ours.
    QCOMPARE(::link(QFile::encodeName(folder.filePath(u"elsewhere"_s)).constData(),
                    QFile::encodeName(folder.filePath(u"twin"_s)).constData()),
             0);
    const file_lock lock(folder.filePath(u"twin"_s));
    QCOMPARE(content_of(folder.filePath(u"elsewhere"_s)), "keep");
}

void test_whole_files::folders_are_listed()
{
    const QTemporaryDir folder;
    for (const QString &name : {u"b"_s, u"a"_s, u".c"_s, u"B"_s})
        write_file(folder.filePath(name), {});
    QCOMPARE(names_in(folder.path()), QStringList({u".c"_s, u"B"_s, u"a"_s, u"b"_s}));
    QCOMPARE(names_in(folder.filePath(u"none"_s)), QStringList());
    QCOMPARE(names_in(folder.filePath(u"a"_s)), QStringList());
    int entries = 0;
    QCOMPARE(for_each_entry(open_without_links(folder.filePath(u"a"_s), O_RDONLY), [&](const dirent &) { ++entries; }),
             ENOTDIR);
    QCOMPARE(entries, 0);
}

void test_whole_files::room_that_is_not_there()
{
    const QTemporaryDir folder;
    QCOMPARE(refusal([&] { require_room(folder.path(), 0); }), u"done"_s);
    QVERIFY(
        refusal([&] { require_room(folder.path(), std::numeric_limits<qint64>::max()); })
            .startsWith(u"another kind: there is no room in the case to copy the evidence: 9223372036854775807 bytes "
                        "are needed and "_s));
}

void test_whole_files::links_are_followed_nowhere_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QList<int>>("errors"); // systems differ

    // clang-format off
    QTest::newRow("file")             << u"real/file"_s       << QList<int>{0};
    QTest::newRow("nothing")          << u"real/none"_s       << QList<int>{ENOENT};
    QTest::newRow("no folder")        << u"real/file/file"_s  << QList<int>{ENOTDIR};
    QTest::newRow("link at the end")  << u"real/link"_s       << QList<int>{ELOOP};
    QTest::newRow("link on the way")  << u"way/file"_s        << QList<int>{ELOOP, ENOTDIR};
    QTest::newRow("link leads nowhere") << u"real/nowhere"_s  << QList<int>{ELOOP};
    // clang-format on
}

void test_whole_files::links_are_followed_nowhere()
{
    QFETCH(QString, path);
    QFETCH(QList<int>, errors);
    const QTemporaryDir folder;
    QVERIFY(QDir().mkpath(folder.filePath(u"real"_s)));
    write_whole_file(folder.filePath(u"real/file"_s), "x");
    QVERIFY(QFile::link(u"file"_s, folder.filePath(u"real/link"_s)));
    QVERIFY(QFile::link(u"none"_s, folder.filePath(u"real/nowhere"_s)));
    QVERIFY(QFile::link(u"real"_s, folder.filePath(u"way"_s)));
    const QByteArray name = QFile::encodeName(folder.filePath(path));
    for (const auto open : {open_in_one_step, open_step_by_step}) {
        errno = 0;
        const descriptor opened(open(name.constData(), O_RDONLY | O_NOFOLLOW, 0));
        if (!opened.is_open() && errno == ENOSYS)
            continue;
        QCOMPARE(opened.is_open(), errors.contains(0));
        QVERIFY2(opened.is_open() || errors.contains(errno), std::strerror(errno));
    }
}

void test_whole_files::folders_are_made_without_links()
{
    const QTemporaryDir folder;
    make_folder(folder.filePath(u"a/b/c"_s));
    make_folder(folder.filePath(u"a/b/c"_s));
    QVERIFY(QFileInfo(folder.filePath(u"a/b/c"_s)).isDir());
    QVERIFY(QFile::link(folder.filePath(u"a"_s), folder.filePath(u"link"_s)));
    for (const QString &path : {u"link"_s, u"link/new"_s})
        QVERIFY(refusal([&] { make_folder(folder.filePath(path)); }).startsWith(u"io: "_s));
    QCOMPARE(QDir(folder.filePath(u"a"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"b"_s});
}

void test_whole_files::tree_goes_and_nothing_behind_its_links()
{
    const QTemporaryDir folder;
    make_folder(folder.filePath(u"tree/a/b"_s));
    write_whole_file(folder.filePath(u"tree/a/b/file"_s), "x");
    write_whole_file(folder.filePath(u"kept"_s), "x");
    QVERIFY(QFile::link(folder.path(), folder.filePath(u"tree/a/link"_s)));
    QCOMPARE(folder_entry(folder.filePath(u"tree"_s)).remove_tree(), 0);
    QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{u"kept"_s});
    QCOMPARE(folder_entry(folder.filePath(u"tree"_s)).remove_tree(), ENOENT);
}

void test_whole_files::inside_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("is_inside_of_it");

    // clang-format off
    QTest::newRow("itself")              << u"in"_s               << true;
    QTest::newRow("below")               << u"in/a"_s             << true;
    QTest::newRow("not there yet")       << u"in/new/newer"_s     << true;
    QTest::newRow("beside")              << u"out"_s              << false;
    QTest::newRow("a longer name")       << u"in2"_s              << false;
    QTest::newRow("above")               << u""_s                 << false;
    QTest::newRow("by a link")           << u"out/link"_s         << true;
    QTest::newRow("below a link")        << u"out/link/a/new"_s   << true;
    QTest::newRow("out by a link")       << u"in/way_out/new"_s   << false;
    QTest::newRow("up again")            << u"in/a/../../out"_s   << false;
    QTest::newRow("up again into it")    << u"out/../in/new"_s    << true;
    QTest::newRow("loop of links")       << u"in/loop/new"_s      << true;
    QTest::newRow("up from a loop")      << u"in/loop/../../out"_s << false;
    QTest::newRow("link that leads nowhere") << u"in/nowhere"_s   << true;
    // clang-format on
}

void test_whole_files::inside()
{
    QFETCH(QString, path);
    QFETCH(bool, is_inside_of_it);
    const QTemporaryDir folder;
    for (const QString &name : {u"in/a"_s, u"in2"_s, u"out"_s})
        QVERIFY(QDir().mkpath(folder.filePath(name)));
    QVERIFY(QFile::link(folder.filePath(u"in"_s), folder.filePath(u"out/link"_s)));
    QVERIFY(QFile::link(folder.filePath(u"out"_s), folder.filePath(u"in/way_out"_s)));
    QVERIFY(QFile::link(u"loop"_s, folder.filePath(u"in/loop"_s)));
    QVERIFY(QFile::link(u"gone"_s, folder.filePath(u"in/nowhere"_s)));
    QCOMPARE(is_inside(folder.path() + u'/' + path, folder.filePath(u"in"_s)), is_inside_of_it);
}

void test_whole_files::absolute_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("absolute_form"); // $ is the folder

    // clang-format off
    QTest::newRow("empty")            << u""_s               << u"refused: --x is an empty path"_s;
    QTest::newRow("absolute")         << u"$/a"_s            << u"$/a"_s;
    QTest::newRow("doubled slashes")  << u"$//a//b/"_s       << u"$/a/b"_s;
    QTest::newRow("dots")             << u"$/./a/."_s        << u"$/a"_s;
    QTest::newRow("links stay")       << u"$/link/b"_s       << u"$/link/b"_s;
    QTest::newRow("above a link")     << u"$/link/../b"_s    << u"$/deep/b"_s;
    QTest::newRow("above a folder")   << u"$/deep/er/../b"_s << u"$/deep/b"_s;
    QTest::newRow("dots in a name")   << u"$/..a"_s          << u"$/..a"_s;
    // clang-format on
}

void test_whole_files::absolute()
{
    QFETCH(QString, path);
    QFETCH(QString, absolute_form);
    const QTemporaryDir folder;
    QVERIFY(QDir().mkpath(folder.filePath(u"deep/er"_s)));
    QVERIFY(QFile::link(folder.filePath(u"deep/er"_s), folder.filePath(u"link"_s)));
    QString given;
    const QString problem = refusal(
        [&] { given = absolute_path(QString(path).replace(u'$', folder.path()), u"--x"_s); });
    QCOMPARE(problem == "done"_L1 ? given : problem, absolute_form.replace(u'$', folder.path()));
}

BLUETOOTH_LOGS_TEST(test_whole_files, QCoreApplication)

#include "test_whole_files.moc"
