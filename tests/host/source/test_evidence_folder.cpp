// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/host_error.h"
#include "host/source/evidence_folder.h"
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
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void set_mode(const QString &path, mode_t mode)
{
    if (::chmod(QFile::encodeName(path).constData(), mode) != 0)
        qFatal("no mode");
}

} // namespace

/** Names in folders of the evidence, and which of them are closed. */
class test_evidence_folder : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void names_as_texts_data();
    void names_as_texts();
    void names_in_a_folder();
    void no_folder();
    void entry_in_any_letters();
    void closed_data();
    void closed();
    void opened_files();
};

void test_evidence_folder::names_as_texts_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("text");

    // clang-format off
    QTest::newRow("ASCII")        << QByteArray("a.db")            << u"a.db"_s;
    QTest::newRow("empty")        << QByteArray("")                << QString(u""_s);
    QTest::newRow("UTF-8")        << QByteArray("\xC3\xA4\xF0\x9F\x8E\xA7") << u"ä🎧"_s;
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF" "a") << u"\\xef\\xbb\\xbfa"_s;
    QTest::newRow("stray byte")   << QByteArray("a\xFF" "b")       << u"a\\xffb"_s;
    QTest::newRow("lowest")       << QByteArray("\x7F\x80")        << u"\x7f\\x80"_s;
    QTest::newRow("with UTF-8")   << QByteArray("\xC3\xA4\xFF")    << u"\\xc3\\xa4\\xff"_s;
    QTest::newRow("half a pair")  << QByteArray("\xED\xA0\x80")    << u"\\xed\\xa0\\x80"_s;
    QTest::newRow("U+FFFD")       << QByteArray("\xEF\xBF\xBD")    << u"\ufffd"_s;
    // clang-format on
}

void test_evidence_folder::names_as_texts()
{
    QFETCH(const QByteArray, name);
    QTEST(evidence_name_text(name), "text");
}

void test_evidence_folder::names_in_a_folder()
{
    const QTemporaryDir folder;
    for (const QString &name : {u"b"_s, u"C"_s, u"a"_s, u".hidden"_s, u"ä"_s})
        write_file(folder.filePath(name), {});
    QDir(folder.path()).mkdir(u"d"_s);
    QVERIFY(QFile::link(u"none"_s, folder.filePath(u"e"_s)));
    QStringList names{u".hidden"_s, u"C"_s, u"a"_s, u"b"_s, u"d"_s, u"e"_s, u"ä"_s};
    if (names_are_bytes) {
        write_file(folder.path(), "f\xFF", {});
        names.insert(6, u"f\\xff"_s);
    }
    const QStringList found = entry_names(folder.path());
    ::unlink(QByteArray(QFile::encodeName(folder.path()) + "/f\xFF").constData()); // Qt does not find it
    QCOMPARE(found, names);
}

void test_evidence_folder::no_folder()
{
    const QTemporaryDir folder;
    write_file(folder.filePath(u"file"_s), "x");
    QCOMPARE(entry_names(folder.filePath(u"none"_s)), QStringList());
    QCOMPARE(entry_names(folder.filePath(u"file"_s)), QStringList());
    QVERIFY(QFile::link(u"loop"_s, folder.filePath(u"loop"_s)));
    try {
        entry_names(folder.filePath(u"loop"_s));
        QFAIL("it was listed");
    } catch (const host_error &error) {
        QCOMPARE(error.message(),
                 QString(folder.filePath(u"loop"_s) + u" cannot be listed: too many levels of symbolic links"_s));
        QCOMPARE(error.kind(), error_kind::incomplete);
    }
}

void test_evidence_folder::entry_in_any_letters()
{
    const QTemporaryDir folder;
    for (const QString &name : {u"SYSTEM"_s, u"System.log"_s})
        write_file(folder.filePath(name), {});
    QCOMPARE(find_entry(folder.path(), u"system"_s), u"SYSTEM"_s);
    QCOMPARE(find_entry(folder.path(), u"SYSTEM.LOG"_s), u"System.log"_s);
    QCOMPARE(find_entry(folder.path(), u"syst"_s), QString());
    QCOMPARE(find_entry(folder.filePath(u"none"_s), u"system"_s), QString());
}

void test_evidence_folder::closed_data()
{
    QTest::addColumn<int>("mode");       // of "a"
    QTest::addColumn<int>("mode_below"); // of "a/b"
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("listed");
    QTest::addColumn<QString>("closed"); // empty: none

    // clang-format off
    QTest::newRow("open")                << 0755 << 0755 << u"a/b/c"_s    << u"a"_s   << QString();
    QTest::newRow("not to be searched")  << 0644 << 0755 << u"a/b/c"_s    << QString() << u"a"_s;
    QTest::newRow("below")               << 0755 << 0644 << u"a/b/c"_s    << QString() << u"a/b"_s;
    QTest::newRow("itself")              << 0755 << 0644 << u"a/b"_s      << QString() << u"a/b"_s;
    QTest::newRow("not to be listed, and is not") << 0711 << 0711 << u"a/b/c"_s << QString() << QString();
    QTest::newRow("not to be listed")    << 0711 << 0755 << u"a/b/c"_s    << u"a"_s   << u"a"_s;
    QTest::newRow("listed below it")     << 0711 << 0755 << u"a/b/c"_s    << u"a/b"_s << QString();
    QTest::newRow("below what is listed") << 0755 << 0711 << u"a/b/c"_s   << u"a"_s   << u"a/b"_s;
    QTest::newRow("not there")           << 0755 << 0755 << u"a/none/c"_s << u"a"_s   << QString();
    QTest::newRow("a file")              << 0755 << 0755 << u"a/b/file"_s << u"a"_s   << QString();
    // clang-format on
}

void test_evidence_folder::closed()
{
    QFETCH(const int, mode);
    QFETCH(const int, mode_below);
    QFETCH(const QString, path);
    QFETCH(const QString, listed);
    QFETCH(const QString, closed);
    const QTemporaryDir folder;
    QDir(folder.path()).mkpath(u"a/b/c"_s);
    write_file(folder.filePath(u"a/b/file"_s), {});
    set_mode(folder.filePath(u"a/b"_s), mode_t(mode_below));
    set_mode(folder.filePath(u"a"_s), mode_t(mode));
    set_mode(folder.path(), 0755);
    if (::geteuid() != 0)
        QSKIP("the modes of others' folders do not count here");
    std::optional<QString> found;
    {
        const ordinary_user user;
        if (closed_folder(folder.path()))
            QSKIP("the folder of temporary files is closed to others");
        found = closed_folder(folder.filePath(path), listed.isEmpty() ? QString() : folder.filePath(listed));
    }
    QCOMPARE(found.value_or(QString()), closed.isEmpty() ? QString() : folder.filePath(closed));
    QCOMPARE(found.has_value(), !closed.isEmpty());
}

/** Nothing that waits for somebody is waited for; who asks for a folder gets no file. */
void test_evidence_folder::opened_files()
{
    const QTemporaryDir folder;
    write_file(folder.filePath(u"file"_s), "x");
    QCOMPARE(::mkfifo(QFile::encodeName(folder.filePath(u"fifo"_s)).constData(), 0600), 0);
    QVERIFY(open_evidence(folder.filePath(u"file"_s)).is_open());
    QVERIFY(open_evidence(folder.filePath(u"fifo"_s)).is_open());
    QVERIFY(open_evidence(folder.path(), O_DIRECTORY).is_open());
    QVERIFY(!open_evidence(folder.filePath(u"file"_s), O_DIRECTORY).is_open());
    QVERIFY(!open_evidence(folder.filePath(u"none"_s)).is_open());
    const descriptor file = open_evidence(folder.filePath(u"file"_s));
    const int flags = ::fcntl(file.number(), F_GETFL);
    QCOMPARE(flags & O_ACCMODE, O_RDONLY);
    QVERIFY((::fcntl(file.number(), F_GETFD) & FD_CLOEXEC) != 0);
}

BLUETOOTH_LOGS_TEST(test_evidence_folder, QCoreApplication)

#include "test_evidence_folder.moc"
