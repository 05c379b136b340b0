// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "tests/support/debug_log_capture.h"
#include "tests/support/file_content.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

using library = plugin_static_function;

namespace {

const QString home_kind = u"macOS_Home_Directory"_s;

} // namespace

class test_files_and_paths : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup();

    void copy_of_a_missing_folder_data();
    void copy_of_a_missing_folder();
    void copy_of_a_tree_of();
    void copy_of_names_that_are_no_texts();
    void copy_carries_no_permissions();
    void copy_into_an_existing_folder();
    void copy_follows_links();
    void copy_ends_on_link_cycles();
    void copy_ends_where_links_double();
    void copy_into_itself_ends();
    void copy_through_links_into_the_source_data();
    void copy_through_links_into_the_source();
    void copy_onto_itself_is_reported();
    void copy_skips_what_is_no_plain_file();
    void copy_without_a_destination();
    void copy_reports_an_unopenable_destination();
    void copy_reports_an_unreadable_file();
    void copy_of_large_files();
    void copy_reads_blocks();
    void copy_when_cancelled();
    void copy_cut_short_in_a_file();

    void remove_of_a_tree_of();
    void remove_of_nothing_data();
    void remove_of_nothing();
    void remove_leaves_link_targets();
    void remove_behind_a_link();
    void remove_of_names_that_are_no_texts();
    void remove_ignores_the_cancel_flag();
    void remove_of_odd_entries();

    void unmatched_entries_data();
    void unmatched_entries();
    void unmatched_entries_cancelled();
    void user_name_data();
    void user_name();
    void user_name_without_accounts();
    void existence_in_dir();
    void existence_when_cancelled();
    void available_file();
    void available_file_of_many();
    void available_file_creates_the_folder();
    void available_file_when_cancelled();
    void complete_path_data();
    void complete_path();
    void relative_path_data();
    void relative_path();

private:
    QString path(const QString &name) const
    {
        return directory->filePath(name);
    }

    debug_log_capture log;
    std::unique_ptr<QTemporaryDir> directory;
};

void test_files_and_paths::init()
{
    strict_test::init();
    directory = std::make_unique<QTemporaryDir>();
    log.start();
    log.take_lines();
}

void test_files_and_paths::cleanup()
{
    library::set_essentials();
}

void test_files_and_paths::copy_of_a_missing_folder_data()
{
    QTest::addColumn<QString>("source");
    QTest::newRow("missing") << u"/missing folder"_s;
    QTest::newRow("empty path") << u""_s;
    QTest::newRow("a file") << QCoreApplication::applicationFilePath();
}

void test_files_and_paths::copy_of_a_missing_folder()
{
    QFETCH(QString, source);
    library::copy_directory(source, u""_s);
    QCOMPARE(log.take_lines().filter(u"source diectory does not exist ----FAILED---- :"_s).size(), 1);
    library::copy_directory(source, path(u"copy"_s));
    QCOMPARE(log.take_lines(),
             QStringList{u"[time][KALDO_DESK][Artifacts Extraction][plugin_static_function::copy_directory]:-- "
                         "[copy_directory] source diectory does not exist ----FAILED---- :"_s
                         + source});
    QCOMPARE(tree_of(directory->path()), QStringList());
}

void test_files_and_paths::copy_of_a_tree_of()
{
    write_file(path(u"a/one.txt"_s), "1");
    write_file(path(u"a/.hidden"_s), "2");
    write_file(path(u"a/empty"_s), "");
    write_file(path(u"a/sub/日本 🎧/größe.txt"_s), "3");
    write_file(path(u"a/.hidden_dir/four"_s), "4");
    QDir().mkpath(path(u"a/empty_dir"_s));
    library::copy_directory(path(u"a"_s), path(u"deep/copy"_s));
    QCOMPARE(tree_of(path(u"deep/copy"_s)), tree_of(path(u"a"_s)));
    QCOMPARE(content_of(path(u"deep/copy/sub/日本 🎧/größe.txt"_s)), "3");
    QCOMPARE(content_of(path(u"deep/copy/.hidden_dir/four"_s)), "4");
    QCOMPARE(log.take_lines(), QStringList());
}

void test_files_and_paths::copy_of_names_that_are_no_texts()
{
    if (!names_are_bytes)
        QSKIP("file names are texts here");
    write_file(path(u"a"_s), "bad\xff", "1");
    write_file(path(u"a"_s), "dir\xfe/in", "2");
    write_file(path(u"a"_s), "good", "3");
    write_file(path(u"b"_s), "bad\xff/a folder", "in the way");
    library::copy_directory(path(u"a"_s), path(u"b"_s));
    const QString prefix = u"plugin_static_function::copy_directory: [copy_directory] "_s;
    QCOMPARE(log.take_messages(),
             QStringList({prefix + u"destination file open ----FAILED---- :"_s + path(u"b/bad\uFFFD"_s),
                          prefix + u"Error:Is a directory"_s}));

    library::copy_directory(path(u"a"_s), path(u"copy"_s));
    QCOMPARE(log.take_messages(), QStringList());
    QCOMPARE(tree_of(path(u"copy"_s)), QStringList({u"bad\uFFFD"_s, u"dir\uFFFD/"_s, u"dir\uFFFD/in"_s, u"good"_s}));
    for (const QString &folder : {u"a"_s, u"b"_s, u"copy"_s}) // the temporary folder does not see such names
        library::remove_directory(path(folder));
}

void test_files_and_paths::copy_carries_no_permissions()
{
    ::umask(022);
    write_file(path(u"a/file"_s), "content");
    QFile::setPermissions(path(u"a/file"_s), QFile::ReadOwner | QFile::ExeOwner);
    library::copy_directory(path(u"a"_s), path(u"b"_s));
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(path(u"b/file"_s)).constData(), &status), 0);
    QCOMPARE(uint(status.st_mode & 07777), 0644u);
}

void test_files_and_paths::copy_into_an_existing_folder()
{
    write_file(path(u"a/same"_s), "new");
    write_file(path(u"b/same"_s), "older and longer");
    write_file(path(u"b/other"_s), "other");
    library::copy_directory(path(u"a"_s), path(u"b"_s));
    QCOMPARE(content_of(path(u"b/same"_s)), "new");
    QCOMPARE(content_of(path(u"b/other"_s)), "other");
}

void test_files_and_paths::copy_follows_links()
{
    write_file(path(u"elsewhere/file"_s), "linked");
    QDir().mkpath(path(u"a"_s));
    QVERIFY(QFile::link(path(u"elsewhere/file"_s), path(u"a/file link"_s)));
    QVERIFY(QFile::link(path(u"elsewhere"_s), path(u"a/folder link"_s)));
    library::copy_directory(path(u"a"_s), path(u"copy"_s));
    QCOMPARE(tree_of(path(u"copy"_s)), QStringList({u"file link"_s, u"folder link/"_s, u"folder link/file"_s}));
    QCOMPARE(content_of(path(u"copy/file link"_s)), "linked");
}

void test_files_and_paths::copy_ends_on_link_cycles()
{
    write_file(path(u"a/b/file"_s), "content");
    QVERIFY(QFile::link(path(u"a"_s), path(u"a/b/up"_s)));
    QVERIFY(QFile::link(u"."_s, path(u"a/self"_s)));
    library::copy_directory(path(u"a"_s), path(u"copy"_s));
    QCOMPARE(tree_of(path(u"copy"_s)), QStringList({u"b/"_s, u"b/file"_s}));
}

void test_files_and_paths::copy_ends_where_links_double()
{
    constexpr int levels = 14;
    for (int level = 0; level < levels; ++level) {
        QDir().mkpath(path(QString::number(level)));
        for (const QString &name : {u"a"_s, u"b"_s})
            QVERIFY(QFile::link(u"../"_s + QString::number(level + 1), path(QString::number(level) + u'/' + name)));
    }
    write_file(path(QString::number(levels) + u"/file"_s), "content");
    library::copy_directory(path(u"0"_s), path(u"copy"_s));
    QCOMPARE(tree_of(path(u"copy"_s)).filter(u"/file"_s).size(), 64); // not 16384

    const QString prefix = u"plugin_static_function::copy_directory: [copy_directory] "_s;
    const QStringList messages = log.take_messages();
    QVERIFY(messages.contains(prefix + u"source file open ----FAILED---- :"_s + path(QString::number(levels))));
    QCOMPARE(messages.value(1), prefix + u"Error:Too many levels of symbolic links"_s);
}

void test_files_and_paths::copy_into_itself_ends()
{
    write_file(path(u"a/file"_s), "content");
    library::copy_directory(path(u"a"_s), path(u"a/copy"_s));
    QCOMPARE(tree_of(path(u"a"_s)), QStringList({u"copy/"_s, u"copy/file"_s, u"file"_s}));
}

void test_files_and_paths::copy_onto_itself_is_reported()
{
    write_file(path(u"a/file"_s), "kept");
    QDir().mkpath(path(u"b"_s));
    QCOMPARE(::link(QFile::encodeName(path(u"a/file"_s)).constData(), QFile::encodeName(path(u"b/file"_s)).constData()),
             0);
    for (const QString &destination : {path(u"a"_s), path(u"b"_s)}) {
        library::copy_directory(path(u"a"_s), destination);
        const QString prefix = u"plugin_static_function::copy_directory: [copy_directory] "_s;
        QCOMPARE(log.take_messages(),
                 QStringList({prefix + u"destination file open ----FAILED---- :"_s + destination + u"/file"_s,
                              prefix + u"Error:source and destination are the same file"_s}));
    }
    QCOMPARE(content_of(path(u"a/file"_s)), "kept");
}

void test_files_and_paths::copy_through_links_into_the_source_data()
{
    QTest::addColumn<QString>("destination");
    QTest::addColumn<QString>("reported");
    QTest::newRow("link to a file") << u"links"_s << u"links/file"_s;
    QTest::newRow("link to a file to be") << u"new"_s << u"new/file"_s;
    QTest::newRow("hard link to a file") << u"hard"_s << u"hard/file"_s;
    QTest::newRow("link to a folder") << u"folders"_s << u"folders/sub"_s;
    QTest::newRow("new folder behind a link") << u"outermost/new"_s << u"outermost/new"_s;
}

void test_files_and_paths::copy_through_links_into_the_source()
{
    QFETCH(QString, destination);
    QFETCH(QString, reported);
    write_file(path(u"a/file"_s), "new");
    write_file(path(u"a/sub/other"_s), "kept");
    for (const QString &folder : {u"links"_s, u"new"_s, u"hard"_s, u"folders"_s})
        QDir().mkpath(path(folder));
    const QString other = path(u"a/sub/other"_s);
    QVERIFY(QFile::link(other, path(u"links/file"_s)));
    QVERIFY(QFile::link(path(u"a/sub/more"_s), path(u"new/file"_s)));
    QCOMPARE(::link(QFile::encodeName(other).constData(), QFile::encodeName(path(u"hard/file"_s)).constData()), 0);
    QVERIFY(QFile::link(path(u"a"_s), path(u"folders/sub"_s)));
    QVERIFY(QFile::link(path(u"a"_s), path(u"outermost"_s)));
    const QStringList before = tree_of(path(u"a"_s));
    library::copy_directory(path(u"a"_s), path(destination));
    const QString prefix = u"plugin_static_function::copy_directory: [copy_directory] "_s;
    QCOMPARE(log.take_messages(), QStringList({prefix + u"destination file open ----FAILED---- :"_s + path(reported),
                                               prefix + u"Error:a link leads into the source"_s}));
    QCOMPARE(tree_of(path(u"a"_s)), before);
    QCOMPARE(content_of(other), "kept");
}

void test_files_and_paths::copy_skips_what_is_no_plain_file()
{
    QDir().mkpath(path(u"a"_s));
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"a/fifo"_s)).constData(), 0600), 0);
    QVERIFY(QFile::link(path(u"a/fifo"_s), path(u"a/link to fifo"_s)));
    QVERIFY(QFile::link(path(u"nowhere"_s), path(u"a/broken"_s)));
    QVERIFY(QFile::link(u"/dev/zero"_s, path(u"a/endless"_s)));
    library::copy_directory(path(u"a"_s), path(u"copy"_s));
    QCOMPARE(tree_of(path(u"copy"_s)), QStringList());
    QCOMPARE(log.take_lines(), QStringList());
}

void test_files_and_paths::copy_without_a_destination()
{
    write_file(path(u"a/file_that_must_not_reach_the_root_folder"_s), "content");
    library::copy_directory(path(u"a"_s), u""_s);
    QVERIFY(!QFile::exists(u"/file_that_must_not_reach_the_root_folder"_s));
    const QString prefix = u"plugin_static_function::copy_directory: [copy_directory] "_s;
    QCOMPARE(log.take_messages(), QStringList({prefix + u"destination file open ----FAILED---- :"_s,
                                               prefix + u"Error:No such file or directory"_s}));
}

void test_files_and_paths::copy_reports_an_unopenable_destination()
{
    write_file(path(u"a/name"_s), "content");
    write_file(path(u"a/other"_s), "content");
    QDir().mkpath(path(u"b/name"_s)); // a directory in the file's place
    library::copy_directory(path(u"a"_s), path(u"b"_s));
    QStringList lines = log.take_messages();
    const QString prefix = u"plugin_static_function::copy_directory: [copy_directory] "_s;
    QCOMPARE(lines.value(0), prefix + u"destination file open ----FAILED---- :"_s + path(u"b/name"_s));
    QVERIFY2(lines.value(1).startsWith(prefix + u"Error:"_s) && lines.value(1).contains(u"directory"_s),
             qPrintable(lines.value(1)));
    QCOMPARE(lines.size(), 2);
    QVERIFY(QFile::exists(path(u"b/other"_s)));
}

void test_files_and_paths::copy_reports_an_unreadable_file()
{
    write_file(path(u"a/secret"_s), "content");
    write_file(path(u"a/other"_s), "content");
    QFile::setPermissions(path(u"a/secret"_s), QFile::Permissions());
    {
        for (const QString &place : {directory->path(), QFileInfo(log.path()).path(), log.path()})
            QFile::setPermissions(place, QFile::Permissions(0x7777));
        const ordinary_user nobody;
        library::copy_directory(path(u"a"_s), path(u"b"_s));
    }
    const QString prefix = u"plugin_static_function::copy_directory: [copy_directory] "_s;
    QCOMPARE(log.take_messages(), QStringList({prefix + u"source file open ----FAILED---- :"_s + path(u"a/secret"_s),
                                               prefix + u"Error:Permission denied"_s}));
    QCOMPARE(tree_of(path(u"b"_s)), QStringList{u"other"_s});
}

void test_files_and_paths::copy_of_large_files()
{
    constexpr qsizetype block = 102400;
    const QByteArray exact(2 * block, 'x');
    const QByteArray odd(3 * block + 17, 'y');
    write_file(path(u"a/exact"_s), exact);
    write_file(path(u"a/odd"_s), odd);
    library::copy_directory(path(u"a"_s), path(u"b"_s));
    QCOMPARE(content_of(path(u"b/exact"_s)), exact);
    QCOMPARE(content_of(path(u"b/odd"_s)), odd);
}

void test_files_and_paths::copy_reads_blocks()
{
    write_file(path(u"a/file"_s), QByteArray(10 * 102400 + 1, 'x'));
    const auto write_calls = [] {
        const QByteArray counters = content_of(u"/proc/self/io"_s);
        return counters.mid(counters.indexOf("syscw: ") + 7).split('\n').value(0).toLongLong();
    };
    if (!QFile::exists(u"/proc/self/io"_s))
        QSKIP("counts system calls as Linux does");
    const qint64 before = write_calls();
    library::copy_directory(path(u"a"_s), path(u"b"_s));
    QCOMPARE(write_calls() - before, 11);
}

void test_files_and_paths::copy_when_cancelled()
{
    write_file(path(u"a/file"_s), "content");
    write_file(path(u"a/sub/file"_s), "content");
    library::bool_cancel_extraction = true;
    library::copy_directory(path(u"a"_s), path(u"b"_s));
    QCOMPARE(tree_of(directory->path()), QStringList({u"a/"_s, u"a/file"_s, u"a/sub/"_s, u"a/sub/file"_s, u"b/"_s}));
}

void test_files_and_paths::copy_cut_short_in_a_file()
{
    constexpr qint64 never_copied_whole = qint64(64) << 30; // sparse
    write_file(path(u"a/file"_s), "content");
    QFile source(path(u"a/file"_s));
    QVERIFY(source.resize(never_copied_whole));
    write_file(path(u"a/sub/file"_s), "content");

    std::signal(SIGALRM, [](int) { library::bool_cancel_extraction = true; });
    itimerval soon = {};
    soon.it_value.tv_usec = 50000;
    QCOMPARE(::setitimer(ITIMER_REAL, &soon, nullptr), 0);
    library::copy_directory(path(u"a"_s), path(u"b"_s));
    std::signal(SIGALRM, SIG_DFL);

    QCOMPARE(tree_of(path(u"b"_s)), QStringList{u"file"_s});
    const qint64 copied = QFileInfo(path(u"b/file"_s)).size();
    QVERIFY(copied > 0 && copied < never_copied_whole);
    QCOMPARE(copied % 102400, 0);
    QCOMPARE(log.take_lines(), QStringList());
}

void test_files_and_paths::remove_of_a_tree_of()
{
    write_file(path(u"a/file"_s), "content");
    write_file(path(u"a/.hidden"_s), "content");
    write_file(path(u"a/.hidden_dir/.deep/größe 🎧"_s), "content");
    QDir().mkpath(path(u"a/empty"_s));
    write_file(path(u"beside"_s), "content");
    library::remove_directory(path(u"a/"_s));
    QCOMPARE(tree_of(directory->path()), QStringList{u"beside"_s});
}

void test_files_and_paths::remove_of_nothing_data()
{
    QTest::addColumn<QString>("dir");
    QTest::newRow("missing") << u"missing"_s;
    QTest::newRow("empty path") << u""_s;
    QTest::newRow("null path") << QString();
    QTest::newRow("a file") << u"file"_s;
}

void test_files_and_paths::remove_of_nothing()
{
    QFETCH(QString, dir);
    write_file(path(u"file"_s), "content");
    const QString current = QDir::currentPath();
    QDir::setCurrent(directory->path()); // an empty path must not mean this folder
    library::remove_directory(dir);
    QDir::setCurrent(current);
    QCOMPARE(tree_of(directory->path()), QStringList{u"file"_s});
}

void test_files_and_paths::remove_leaves_link_targets()
{
    write_file(path(u"target/file"_s), "content");
    QDir().mkpath(path(u"a"_s));
    QVERIFY(QFile::link(path(u"target"_s), path(u"a/folder link"_s)));
    QVERIFY(QFile::link(path(u"target/file"_s), path(u"a/file link"_s)));
    QVERIFY(QFile::link(path(u"nowhere"_s), path(u"a/broken"_s)));
    QVERIFY(QFile::link(path(u"target"_s), path(u"root link"_s)));
    library::remove_directory(path(u"a"_s));
    library::remove_directory(path(u"root link/"_s));
    QCOMPARE(tree_of(directory->path()), QStringList({u"target/"_s, u"target/file"_s}));
}

void test_files_and_paths::remove_behind_a_link()
{
    write_file(path(u"elsewhere/folder/file"_s), "kept");
    write_file(path(u"elsewhere/x/file"_s), "content");
    write_file(path(u"here/x/file"_s), "kept");
    QVERIFY(QFile::link(path(u"elsewhere/folder"_s), path(u"here/link"_s)));
    library::remove_directory(path(u"here/link/../x"_s));
    library::remove_directory(path(u"here/link/../missing/"_s));
    QCOMPARE(tree_of(directory->path()),
             QStringList({u"elsewhere/"_s, u"elsewhere/folder/"_s, u"elsewhere/folder/file"_s, u"here/"_s,
                          u"here/link@"_s, u"here/x/"_s, u"here/x/file"_s}));
    library::remove_directory(path(u"here/x/."_s));
    QCOMPARE(tree_of(path(u"here"_s)), QStringList{u"link@"_s});
}

void test_files_and_paths::remove_of_names_that_are_no_texts()
{
    if (!names_are_bytes)
        QSKIP("file names are texts here");
    write_file(path(u"a"_s), "bad\xff", "content");
    write_file(path(u"a"_s), "dir\xfe/in", "content");
    library::remove_directory(path(u"a"_s));
    QCOMPARE(tree_of(directory->path()), QStringList());
}

void test_files_and_paths::remove_ignores_the_cancel_flag()
{
    write_file(path(u"a/b/file"_s), "content");
    library::bool_cancel_extraction = true;
    library::remove_directory(path(u"a"_s));
    QCOMPARE(tree_of(directory->path()), QStringList());
}

void test_files_and_paths::remove_of_odd_entries()
{
    QDir().mkpath(path(u"a/\n new line"_s));
    write_file(path(u"a/*?[x]"_s), "content");
    write_file(path(u"a/..."_s), "content");
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"a/fifo"_s)).constData(), 0600), 0);
    QFile::setPermissions(path(u"a/*?[x]"_s), QFile::Permissions());
    QString deep = path(u"a"_s);
    for (int level = 0; level < 300; ++level)
        deep += u"/deep"_s;
    QVERIFY(QDir().mkpath(deep));
    library::remove_directory(path(u"a"_s));
    QCOMPARE(tree_of(directory->path()), QStringList());
}

void test_files_and_paths::unmatched_entries_data()
{
    QTest::addColumn<QStringList>("parent");
    QTest::addColumn<QStringList>("child");
    QTest::addColumn<QStringList>("unmatched");

    const QString a = u"a"_s;
    const QString b = u"b"_s;
    QTest::newRow("repeats stay") << QStringList{a, b, a} << QStringList{b} << QStringList{a, a};
    QTest::newRow("order stays") << QStringList{b, a} << QStringList{} << QStringList{b, a};
    QTest::newRow("case matters") << QStringList{a} << QStringList{u"A"_s} << QStringList{a};
    QTest::newRow("all matched") << QStringList{a, b} << QStringList{b, a} << QStringList{};
    QTest::newRow("empty parent") << QStringList{} << QStringList{a} << QStringList{};
    QTest::newRow("empty entry") << QStringList{u""_s} << QStringList{u""_s} << QStringList{};
}

void test_files_and_paths::unmatched_entries()
{
    QFETCH(QStringList, parent);
    QFETCH(QStringList, child);
    QFETCH(QStringList, unmatched);
    QCOMPARE(library::get_unmatched_varible_list_of_parentlist(parent, child), unmatched);
}

void test_files_and_paths::unmatched_entries_cancelled()
{
    library::bool_cancel_extraction = true;
    QCOMPARE(library::get_unmatched_varible_list_of_parentlist({u"a"_s}, {}), QStringList());
}

void test_files_and_paths::user_name_data()
{
    QTest::addColumn<QString>("file_path");
    QTest::addColumn<QString>("prefix");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("home");

    // clang-format off
    QTest::newRow("known account")       << u"/mnt/Users/alice/x"_s << u"/mnt/Users"_s  << u"alice"_s << u"/Users/alice"_s;
    QTest::newRow("first of two")        << u"/bob/x"_s             << u""_s            << u"bob"_s   << u"/first"_s;
    QTest::newRow("unknown account")     << u"/mnt/Users/carol/x"_s << u"/mnt/Users"_s  << u"carol"_s << u""_s;
    QTest::newRow("other case")          << u"/Alice/x"_s           << u""_s            << u"Alice"_s << u""_s;
    QTest::newRow("only length counts")  << u"/mnt/Users/alice/x"_s << u"##########"_s  << u"alice"_s << u"/Users/alice"_s;
    QTest::newRow("prefix before Users") << u"/mnt/Users/alice"_s   << u"/mnt"_s        << u"Users"_s << u""_s;
    QTest::newRow("one part")            << u"alice"_s              << u""_s            << u""_s      << u""_s;
    QTest::newRow("prefix too long")     << u"/a/b"_s               << u"/a/b/c/d/e"_s  << u""_s      << u""_s;
    QTest::newRow("empty second part")   << u"//x"_s                << u""_s            << u""_s      << u""_s;
    // clang-format on
}

void test_files_and_paths::user_name()
{
    QFETCH(QString, file_path);
    QFETCH(QString, prefix);
    library::system_account_QList = {{u"alice"_s, u"/Users/alice"_s},
                                     {u"bob"_s, u"/first"_s},
                                     {u"bob"_s, u"/second"_s}};
    const auto account = library::extract_user_name_from_sourcefile(file_path, prefix);
    QTEST(account.system_user, "user");
    QTEST(account.system_account_home_path, "home");
}

void test_files_and_paths::user_name_without_accounts()
{
    QCOMPARE(library::extract_user_name_from_sourcefile(u"/alice/x"_s, u""_s).system_user, QString());
}

void test_files_and_paths::existence_in_dir()
{
    write_file(path(u"report.txt"_s), "content");
    write_file(path(u".hidden"_s), "content");
    write_file(path(u" padded "_s), "content");
    write_file(path(u"sub/deep.txt"_s), "content");
    QVERIFY(QFile::link(path(u"nowhere"_s), path(u"broken"_s)));
    const auto exists = [this](const QString &name) {
        return library::is_file_exist_in_dir(directory->path(), name, u"caller"_s);
    };
    QVERIFY(exists(u"report.txt"_s));
    QVERIFY(exists(u"  report.txt "_s));
    QVERIFY(exists(u"padded"_s));
    QVERIFY(exists(u"sub"_s));
    QVERIFY(exists(u".hidden"_s));
    QVERIFY(exists(u"broken"_s));
    QVERIFY(!exists(u"Report.txt"_s));
    QVERIFY(!exists(u"deep.txt"_s));
    QVERIFY(!exists(u""_s));
    QVERIFY(!library::is_file_exist_in_dir(path(u"missing"_s), u"x"_s, u""_s));
    const QString current = QDir::currentPath();
    QDir::setCurrent(directory->path());
    QVERIFY(!library::is_file_exist_in_dir(u""_s, u"report.txt"_s, u""_s));
    QDir::setCurrent(current);
}

void test_files_and_paths::existence_when_cancelled()
{
    write_file(path(u"file"_s), "content");
    library::bool_cancel_extraction = true;
    QVERIFY(!library::is_file_exist_in_dir(directory->path(), u"file"_s, u""_s));
}

void test_files_and_paths::available_file()
{
    const auto available = [this] {
        return library::get_available_file(u"a/report.txt"_s, directory->path(), u"caller"_s);
    };
    QCOMPARE(available(), u"report.txt"_s);
    write_file(path(u"report.txt"_s), "content");
    QCOMPARE(available(), u"1_report.txt"_s);
    write_file(path(u"1_report.txt"_s), "content");
    QCOMPARE(available(), u"2_report.txt"_s);
    write_file(path(u"2_report.txt"_s), "content");
    QCOMPARE(available(), u"3_report.txt"_s);
    QCOMPARE(library::get_available_file(u"plain"_s, directory->path(), u""_s), u"plain"_s);
}

/** One listing a call: a listing for each number took most of a minute. */
void test_files_and_paths::available_file_of_many()
{
    constexpr int copies = 4000;
    write_file(path(u"x"_s), "");
    for (int number = 1; number < copies; ++number)
        write_file(path(QString::number(number) + u"_x"_s), "");
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(library::get_available_file(u"x"_s, directory->path(), u""_s), u"4000_x"_s);
    qInfo("%lld ms for %d copies", timer.elapsed(), copies);
    QVERIFY(timer.elapsed() < 3000);
}

void test_files_and_paths::available_file_creates_the_folder()
{
    QCOMPARE(library::get_available_file(u"/x/y"_s, path(u"new/folder"_s), u""_s), u"y"_s);
    QVERIFY(QDir(path(u"new/folder"_s)).exists());
}

void test_files_and_paths::available_file_when_cancelled()
{
    library::bool_cancel_extraction = true;
    QCOMPARE(library::get_available_file(u"x"_s, path(u"new"_s), u""_s), QString());
}

void test_files_and_paths::complete_path_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("complete");

    // clang-format off
    QTest::newRow("another home")     << u"/Users/alice/Library/x"_s << u"bob"_s << home_kind << u"/Users/bob/Library/x"_s;
    QTest::newRow("no slash behind")  << u"/Users/alice"_s           << u"bob"_s << home_kind << u"/Users/bob/Users/alice"_s;
    QTest::newRow("empty old user")   << u"/Users//x"_s              << u"bob"_s << home_kind << u"/Users/bob/x"_s;
    QTest::newRow("outside Users")    << u"/Library/x"_s             << u"bob"_s << home_kind << u"/Library/x"_s;
    QTest::newRow("other case")       << u"/users/alice/x"_s         << u"bob"_s << home_kind << u"/users/alice/x"_s;
    QTest::newRow("other kind")       << u"/Users/alice/x"_s         << u"bob"_s << u"macos_home_directory"_s << u"/Users/alice/x"_s;
    QTest::newRow("slash added")      << u"rel/x"_s                  << u"bob"_s << home_kind << u"/rel/x"_s;
    QTest::newRow("empty")            << u""_s                       << u"bob"_s << home_kind << u""_s;
    QTest::newRow("blank")            << u"  "_s                     << u"bob"_s << u""_s     << u"  "_s;
    // clang-format on
}

void test_files_and_paths::complete_path()
{
    QFETCH(QString, given);
    QFETCH(QString, user);
    QFETCH(QString, kind);
    QTEST(library::get_complete_file_path(given, user, kind), "complete");
}

void test_files_and_paths::relative_path_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("root");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("relative");

    // clang-format off
    QTest::newRow("below the root")   << u"/mnt/src/Users/bob/x"_s << u"/mnt/src"_s  << home_kind << u"/Users/bob/x"_s;
    QTest::newRow("root with slash")  << u"/mnt/src/Users/bob"_s   << u"/mnt/src/"_s << home_kind << u"/Users/bob"_s;
    QTest::newRow("root in the middle") << u"/a/mnt/src/x"_s       << u"/mnt/src"_s  << home_kind << u"/x"_s;
    QTest::newRow("first occurrence") << u"/r/x/r/y"_s             << u"/r"_s        << home_kind << u"/x/r/y"_s;
    QTest::newRow("root not found")   << u"/mnt/src/x"_s           << u"/MNT"_s      << home_kind << u"/mnt/src/x"_s;
    QTest::newRow("nothing left")     << u"/mnt/src"_s             << u"/mnt/src"_s  << home_kind << u""_s;
    QTest::newRow("empty root")       << u"/mnt/src/x"_s           << u""_s          << home_kind << u"/mnt/src/x"_s;
    QTest::newRow("other kind")       << u"/mnt/src/Users/bob/x"_s << u"/mnt/src"_s  << u"other"_s << u"/mnt/src/Users/bob/x"_s;
    QTest::newRow("slash added")      << u"rel/x"_s                << u"zzz"_s       << u"other"_s << u"/rel/x"_s;
    QTest::newRow("empty")            << u""_s                     << u"zzz"_s       << u"other"_s << u""_s;
    QTest::newRow("blank")            << u" \t"_s                  << u"zzz"_s       << home_kind << u" \t"_s;
    // clang-format on
}

void test_files_and_paths::relative_path()
{
    QFETCH(QString, given);
    QFETCH(QString, root);
    QFETCH(QString, kind);
    QFETCH(QString, relative);
    QCOMPARE(library::get_relative_file_path(given, root, kind), relative);
    const auto final_file = library::get_final_artifact_source_file(given, root, kind);
    QCOMPARE(final_file.artifact_source_file, relative);
    QCOMPARE(final_file.complete_source_file_path, kind == home_kind ? given : QString());
}

BLUETOOTH_LOGS_TEST(test_files_and_paths, QCoreApplication)

#include "test_files_and_paths.moc"
