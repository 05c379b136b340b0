// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/mount.h>
#endif

using namespace Qt::StringLiterals;

class test_evidence_file : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void opened_file_is_read_and_keeps_its_times();
    void refused_things_data();
    void refused_things();
    void refused_things_are_closed();
    void errors_are_those_of_qt_data();
    void errors_are_those_of_qt();
    void copy_is_whole();
    void copy_is_its_owners_data();
    void copy_is_its_owners();
    void copy_never_overwrites_data();
    void copy_never_overwrites();
    void safe_target_data();
    void safe_target();
    void safe_target_behind_many_links();
    void safe_target_by_another_name();
    void same_file();

private:
    QString path(const QString &name) const
    {
        return directory->filePath(name);
    }

    std::unique_ptr<QTemporaryDir> directory;
};

void test_evidence_file::init()
{
    strict_test::init();
    ::umask(022);
    directory = std::make_unique<QTemporaryDir>();
    write_file(path(u"source/file"_s), "evidence");
    QDir().mkpath(path(u"source/folder"_s));
    QDir().mkpath(path(u"case"_s));
    if (::mkfifo(QFile::encodeName(path(u"source/fifo"_s)).constData(), 0600) != 0)
        qFatal("cannot make a FIFO");
    QFile::link(u"/dev/zero"_s, path(u"source/device"_s));
    QFile::link(u"nowhere"_s, path(u"source/broken"_s));
}

void test_evidence_file::opened_file_is_read_and_keeps_its_times()
{
    const QByteArray name = QFile::encodeName(path(u"source/file"_s));
    const timespec old[2] = {{1000000000, 0}, {1000000001, 0}};
    QCOMPARE(::utimensat(AT_FDCWD, name.constData(), old, 0), 0);
    QFile file(path(u"source/file"_s));
    QCOMPARE(open_evidence_file(file), std::nullopt);
    QCOMPARE(file.readAll(), "evidence");
    QVERIFY(!file.isWritable());
    file.close();
    struct stat status = {};
    QCOMPARE(::stat(name.constData(), &status), 0);
#ifdef O_NOATIME
    QCOMPARE(status.st_atime, 1000000000);
#endif
    QCOMPARE(status.st_mtime, 1000000001);
}

void test_evidence_file::refused_things_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("error");
    QTest::newRow("missing") << u"missing"_s << u"No such file or directory"_s;
    QTest::newRow("broken link") << u"broken"_s << u"No such file or directory"_s;
    QTest::newRow("directory") << u"folder"_s << u"file to open is a directory"_s;
    QTest::newRow("FIFO") << u"fifo"_s << u"Not a regular file"_s;
    QTest::newRow("link to a device") << u"device"_s << u"Not a regular file"_s;
}

void test_evidence_file::refused_things()
{
    QFETCH(QString, name);
    QFETCH(QString, error);
    QFile file(path(u"source/"_s + name));
    QCOMPARE(open_evidence_file(file).value_or(QString()), error);
    QVERIFY(!file.isOpen());
    QVERIFY(!copy_evidence_file(path(u"source/"_s + name), path(u"case/copy"_s)));
    QVERIFY(!QFile::exists(path(u"case/copy"_s)));
}

void test_evidence_file::refused_things_are_closed()
{
    QFile folder(path(u"source/folder"_s));
    const int lowest_free = ::dup(STDIN_FILENO);
    ::close(lowest_free);
    QVERIFY(open_evidence_file(folder).has_value());
    const int lowest_free_now = ::dup(STDIN_FILENO);
    ::close(lowest_free_now);
    QCOMPARE(lowest_free_now, lowest_free);
}

void test_evidence_file::errors_are_those_of_qt_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << u"missing"_s;
    QTest::newRow("below a file") << u"file/below"_s;
    QTest::newRow("directory") << u"folder"_s;
    QTest::newRow("name too long") << QString(300, u'x');
}

void test_evidence_file::errors_are_those_of_qt()
{
    QFETCH(QString, name);
    QFile ours(path(u"source/"_s + name));
    QFile qts(path(u"source/"_s + name));
    QVERIFY(!qts.open(QIODevice::ReadOnly));
    QCOMPARE(open_evidence_file(ours).value_or(QString()), qts.errorString());
}

void test_evidence_file::copy_is_whole()
{
    const QByteArray content(3 * (1 << 20) + 17, 'x');
    write_file(path(u"source/large"_s), content);
    write_file(path(u"source/empty"_s), "");
    QVERIFY(copy_evidence_file(path(u"source/large"_s), path(u"case/large"_s)));
    QVERIFY(copy_evidence_file(path(u"source/empty"_s), path(u"case/empty"_s)));
    QCOMPARE(content_of(path(u"case/large"_s)), content);
    QCOMPARE(content_of(path(u"case/empty"_s)), "");
    QVERIFY(!copy_evidence_file(path(u"source/large"_s), path(u"missing/large"_s)));
}

void test_evidence_file::copy_is_its_owners_data()
{
    QTest::addColumn<QFileDevice::Permissions>("of_source");
    QTest::newRow("only its owner reads") << QFileDevice::Permissions(QFileDevice::ReadOwner);
    QTest::newRow("everyone may do all") << QFileDevice::Permissions(0x7777);
}

void test_evidence_file::copy_is_its_owners()
{
    QFETCH(QFileDevice::Permissions, of_source);
    QVERIFY(QFile::setPermissions(path(u"source/file"_s), of_source));
    QVERIFY(copy_evidence_file(path(u"source/file"_s), path(u"case/copy"_s)));
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(path(u"case/copy"_s)).constData(), &status), 0);
    QCOMPARE(status.st_mode & 07777, mode_t(0600));
}

void test_evidence_file::copy_never_overwrites_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("file") << u"case/there"_s;
    QTest::newRow("link to a file") << u"case/link"_s;
    QTest::newRow("link to nothing") << u"case/broken"_s;
    QTest::newRow("the source itself") << u"source/file"_s;
}

void test_evidence_file::copy_never_overwrites()
{
    QFETCH(QString, target);
    write_file(path(u"case/there"_s), "evidence"); // the same content: it must not matter
    QVERIFY(QFile::link(path(u"source/file"_s), path(u"case/link"_s)));
    QVERIFY(QFile::link(path(u"source/new"_s), path(u"case/broken"_s)));
    write_file(path(u"source/other"_s), "other");
    QVERIFY(!copy_evidence_file(path(u"source/other"_s), path(target)));
    QCOMPARE(content_of(path(u"case/there"_s)), "evidence");
    QCOMPARE(content_of(path(u"source/file"_s)), "evidence");
    QVERIFY(!QFile::exists(path(u"source/new"_s)));
}

void test_evidence_file::safe_target_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("root");
    QTest::addColumn<bool>("safe");

    // clang-format off
    QTest::newRow("plain")                       << u"case/plain/file"_s      << u"source/"_s << true;
    QTest::newRow("missing")                     << u"case/a/b/c"_s           << u"source/"_s << true;
    QTest::newRow("through a link")              << u"case/linked/new/file"_s << u"source/"_s << false;
    QTest::newRow("the link itself")             << u"case/linked"_s          << u"source"_s  << false;
    QTest::newRow("link to a file")              << u"case/file link"_s       << u"source/"_s << false;
    QTest::newRow("link to nothing below")       << u"case/dangling"_s        << u"source/"_s << false;
    QTest::newRow("relative link")               << u"case/relative"_s        << u"source/"_s << false;
    QTest::newRow("link to a link")              << u"case/chain/x"_s         << u"source/"_s << false;
    QTest::newRow("up again behind the link")    << u"case/linked/../case/x"_s << u"source/"_s << true;
    QTest::newRow("link elsewhere")              << u"case/elsewhere"_s       << u"source/"_s << true;
    QTest::newRow("link to itself")              << u"case/loop/x"_s          << u"source/"_s << true;
    QTest::newRow("name that begins alike")      << u"source2/x"_s            << u"source"_s  << true;
    QTest::newRow("in plain sight")              << u"source/case/x"_s        << u"source/"_s << true;
    QTest::newRow("the root is a link")          << u"case/linked/x"_s        << u"case/linked/"_s << true;
    QTest::newRow("beside a linked root")        << u"source/x"_s             << u"case/linked/"_s << true;
    QTest::newRow("below a folder the root links to") << u"case/x"_s         << u"case/up/"_s << true;
    QTest::newRow("a link below a linked root")  << u"case/linked/x"_s        << u"case/linked too/"_s << false;
    QTest::newRow("the root's own folder")       << u"source"_s               << u"source/"_s << true;
    QTest::newRow("missing root")                << u"case/lost/x"_s          << u"lost/"_s << false;
    QTest::newRow("no root")                     << u"case/linked/x"_s        << u""_s        << true;
    // clang-format on
}

void test_evidence_file::safe_target()
{
    QFETCH(QString, name);
    QFETCH(QString, root);
    QVERIFY(QFile::link(path(u"source"_s), path(u"case/linked"_s)));
    QVERIFY(QFile::link(path(u"source/file"_s), path(u"case/file link"_s)));
    QVERIFY(QFile::link(path(u"source/new/deep"_s), path(u"case/dangling"_s)));
    QVERIFY(QFile::link(u"../source/new"_s, path(u"case/relative"_s)));
    QVERIFY(QFile::link(u"linked"_s, path(u"case/chain"_s)));
    QVERIFY(QFile::link(u"/dev"_s, path(u"case/elsewhere"_s)));
    QVERIFY(QFile::link(u"loop"_s, path(u"case/loop"_s)));
    QVERIFY(QFile::link(path(u""_s), path(u"case/up"_s)));
    QVERIFY(QFile::link(u"linked"_s, path(u"case/linked too"_s)));
    QVERIFY(QFile::link(path(u"lost"_s), path(u"case/lost"_s)));
    QTEST(is_safe_target(path(name), root.isEmpty() ? root : path(root)), "safe");
}

/** The kernel opens the end of forty links, and of no more. */
void test_evidence_file::safe_target_behind_many_links()
{
    QString target = path(u"source/file"_s);
    for (int i = 1; i <= 41; ++i) {
        const QString link = path(u"case/link %1"_s.arg(i));
        QVERIFY(QFile::link(target, link));
        target = link;
    }
    QCOMPARE(content_of(path(u"case/link 40"_s)), "evidence");
    QVERIFY(!is_safe_target(path(u"case/link 40"_s), path(u"source/"_s)));
    QVERIFY(!QFile(path(u"case/link 41"_s)).open(QIODevice::ReadOnly));
    QVERIFY(is_safe_target(path(u"case/link 41"_s), path(u"source/"_s)));
}

/** One folder has two names without a link where volumes ignore case, and on Macs; here by mounting it twice. */
void test_evidence_file::safe_target_by_another_name()
{
#ifdef __linux__
    const QByteArray other_name = QFile::encodeName(path(u"same source"_s));
    QVERIFY(QDir().mkpath(path(u"same source"_s)));
    if (::mount(QFile::encodeName(path(u"source"_s)).constData(), other_name.constData(), nullptr, MS_BIND, nullptr)
        != 0)
        QSKIP("only root mounts folders");
    const auto unmount = qScopeGuard([&other_name] { ::umount(other_name.constData()); });
    QVERIFY(QFile::link(path(u"same source/new"_s), path(u"case/linked"_s)));
    QVERIFY(!is_safe_target(path(u"case/linked"_s), path(u"source/"_s)));
    QVERIFY(is_safe_target(path(u"same source/case/x"_s), path(u"source/"_s))); // in plain sight
    QVERIFY(is_safe_target(path(u"case/x"_s), path(u"source/"_s)));
#else
    QSKIP("mounts a folder twice, as Linux does");
#endif
}

void test_evidence_file::same_file()
{
    const QString file = path(u"source/file"_s);
    QVERIFY(QFile::link(file, path(u"case/link"_s)));
    QCOMPARE(::link(QFile::encodeName(file).constData(), QFile::encodeName(path(u"case/hard"_s)).constData()), 0);
    write_file(path(u"case/copy"_s), "evidence");
    QVERIFY(is_same_file(file, file));
    QVERIFY(is_same_file(path(u"case/link"_s), file));
    QVERIFY(is_same_file(path(u"case/hard"_s), file));
    QVERIFY(!is_same_file(path(u"case/copy"_s), file));
    QVERIFY(!is_same_file(path(u"missing"_s), file));
    QVERIFY(!is_same_file(path(u"missing"_s), path(u"missing"_s)));
    QVERIFY(!is_same_file(u""_s, file));
}

BLUETOOTH_LOGS_TEST(test_evidence_file, QCoreApplication)

#include "test_evidence_file.moc"
