// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/finished_file.h"
#include "host/files/host_error.h"
#include "host/files/json_file.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "host/files/transfer.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

#include <fcntl.h>
#include <sys/syscall.h>

using namespace Qt::StringLiterals;

namespace {

/** What the calls of the system below give one after another while a test asks for it, and what they were made for. */
struct call_script
{
    QStringList synced;     ///< the paths that were put on the disk
    qsizetype failing = -1; ///< which of them fails
    int error = 0;          ///< with that error

    int special = -1;      ///< a descriptor that no file stands behind
    QList<int> results;    ///< what reading and writing it gives: a count, or -error; then 0
    QByteArray bytes;      ///< what is read from it, and what was written to it
    QList<size_t> amounts; ///< that were asked for
};

call_script script;

ssize_t next_result(size_t most)
{
    script.amounts.append(most);
    const int result = script.results.isEmpty() ? 0 : script.results.takeFirst();
    if (result >= 0)
        return result;
    errno = -result;
    return -1;
}

} // namespace

// In place of the system's, for this program alone.
extern "C" int fsync(int file)
{
    script.synced.append(QFile::symLinkTarget(u"/proc/self/fd/"_s + QString::number(file)));
    if (script.synced.size() - 1 == script.failing) {
        errno = script.error;
        return -1;
    }
    return int(::syscall(SYS_fsync, file));
}

extern "C" ssize_t read(int file, void *bytes, size_t most)
{
    if (file == -1 || file != script.special)
        return ::syscall(SYS_read, file, bytes, most);
    const ssize_t count = next_result(most);
    for (ssize_t place = 0; place < count; ++place)
        static_cast<char *>(bytes)[place] = script.bytes.at(place);
    if (count > 0)
        script.bytes.remove(0, count);
    return count;
}

extern "C" ssize_t write(int file, const void *bytes, size_t size)
{
    if (file == -1 || file != script.special)
        return ::syscall(SYS_write, file, bytes, size);
    const ssize_t count = next_result(size);
    if (count > 0)
        script.bytes.append(static_cast<const char *>(bytes), count);
    return count;
}

/** What is written is on the disk when it is said to be; calls that give less or nothing, or are interrupted. */
class test_failing_calls : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void what_is_put_on_the_disk_data();
    void what_is_put_on_the_disk();
    void written_whole_data();
    void written_whole();
    void read_to_the_end_data();
    void read_to_the_end();

private:
    std::unique_ptr<QTemporaryDir> folder;
};

void test_failing_calls::init()
{
    strict_test::init();
    folder = std::make_unique<QTemporaryDir>();
    script = {};
}

void test_failing_calls::what_is_put_on_the_disk_data()
{
    QTest::addColumn<QString>("work");
    QTest::addColumn<int>("failing");
    QTest::addColumn<int>("error");
    QTest::addColumn<QString>("synced"); // below the folder, which is "."
    QTest::addColumn<QString>("problem");

    const QString lost = u" cannot be written: input/output error"_s;
    // clang-format off
    QTest::newRow("file")                      << u"file"_s    << -1 << 0      << u"a.new ."_s    << QString();
    QTest::newRow("file is lost")              << u"file"_s    << 0  << EIO    << u"a.new"_s      << u"a"_s + lost;
    QTest::newRow("file of no such system")    << u"file"_s    << 0  << EINVAL << u"a.new"_s      << u"a cannot be written: invalid argument"_s;
    QTest::newRow("file's name is lost")       << u"file"_s    << 1  << EIO    << u"a.new ."_s    << u"a"_s + lost;
    QTest::newRow("names without such a call") << u"file"_s    << 1  << EINVAL << u"a.new ."_s    << QString();
    QTest::newRow("names of a mount")          << u"file"_s    << 1  << EROFS  << u"a.new ."_s    << QString();
    QTest::newRow("finished")                  << u"finish"_s  << -1 << 0      << u"b ."_s        << QString();
    QTest::newRow("finished, lost")            << u"finish"_s  << 0  << EIO    << u"b"_s          << u"c"_s + lost;
    QTest::newRow("finished, its name is lost") << u"finish"_s << 1  << EIO    << u"b ."_s        << u"c"_s + lost;
    QTest::newRow("folders")                   << u"folders"_s << -1 << 0      << u". d d/e"_s    << QString();
    QTest::newRow("folder is lost")            << u"folders"_s << 1  << EIO    << u". d"_s        << u"d/e"_s + lost;
    QTest::newRow("folder that is there")      << u"there"_s   << 0  << EIO    << QString()       << QString();
    // clang-format on
}

void test_failing_calls::what_is_put_on_the_disk()
{
    QFETCH(const QString, work);
    QFETCH(const int, failing);
    QFETCH(const int, error);
    QFETCH(const QString, synced);
    QFETCH(const QString, problem);
    write_file(folder->filePath(u"b"_s), "content");
    QVERIFY(QDir().mkpath(folder->filePath(u"there"_s)));
    script.failing = failing;
    script.error = error;
    QString said;
    try {
        if (work == "file"_L1)
            write_whole_file(folder->filePath(u"a"_s), "content");
        else if (work == "finish"_L1)
            put_in_place(folder->filePath(u"b"_s), folder->filePath(u"c"_s));
        else if (work == "folders"_L1)
            make_folder(folder->filePath(u"d/e/f"_s));
        else
            make_folder(folder->filePath(u"there"_s));
    } catch (const host_error &failed) {
        QCOMPARE(failed.kind(), error_kind::io);
        said = failed.message().remove(folder->path() + u'/');
    }
    QCOMPARE(said, problem);
    QStringList places;
    for (const QString &path : script.synced)
        places.append(QDir(folder->path()).relativeFilePath(path));
    QCOMPARE(places.join(u' '), synced);
}

void test_failing_calls::written_whole_data()
{
    QTest::addColumn<QList<int>>("results");
    QTest::addColumn<QList<size_t>>("amounts");
    QTest::addColumn<QByteArray>("written");
    QTest::addColumn<int>("error"); // 0: all is written

    // clang-format off
    QTest::newRow("at once")             << QList<int>{5}            << QList<size_t>{5}       << "bytes"_ba << 0;
    QTest::newRow("in parts")            << QList<int>{1, 3, 1}      << QList<size_t>{5, 4, 1} << "bytes"_ba << 0;
    QTest::newRow("interrupted")         << QList<int>{-EINTR, 2, -EINTR, 3} << QList<size_t>{5, 5, 3, 3} << "bytes"_ba << 0;
    QTest::newRow("full at once")        << QList<int>{-ENOSPC}      << QList<size_t>{5}       << ""_ba      << ENOSPC;
    QTest::newRow("full in the middle")  << QList<int>{2, -ENOSPC}   << QList<size_t>{5, 3}    << "by"_ba    << ENOSPC;
    QTest::newRow("nothing more goes in") << QList<int>{4, 0}        << QList<size_t>{5, 1}    << "byte"_ba  << EIO;
    // clang-format on
}

void test_failing_calls::written_whole()
{
    QFETCH(const QList<int>, results);
    QFETCH(const QByteArray, written);
    QFETCH(const int, error);
    const descriptor special(::open("/dev/null", O_RDWR | O_CLOEXEC));
    script.special = special.number();
    script.results = results;
    errno = 0;
    const bool is_whole = write_all(special.number(), "bytes");
    const int found = errno;
    QTEST(script.amounts, "amounts");
    QCOMPARE(script.bytes, written);
    QCOMPARE(is_whole, error == 0);
    if (error != 0)
        QCOMPARE(found, error);
    script.amounts.clear();
    QVERIFY(write_all(special.number(), {}));
    QCOMPARE(script.amounts, QList<size_t>());
}

void test_failing_calls::read_to_the_end_data()
{
    QTest::addColumn<QList<int>>("results");
    QTest::addColumn<QStringList>("blocks");
    QTest::addColumn<bool>("is_whole");

    // clang-format off
    QTest::newRow("nothing")         << QList<int>{0}                        << QStringList()             << true;
    QTest::newRow("blocks")          << QList<int>{4, 1, 0}                  << QStringList{u"byte"_s, u"s"_s} << true;
    QTest::newRow("interrupted")     << QList<int>{-EINTR, -EINTR, 5, -EINTR, 0} << QStringList{u"bytes"_s} << true;
    QTest::newRow("unreadable")      << QList<int>{-EIO}                     << QStringList()             << false;
    QTest::newRow("unreadable part") << QList<int>{2, -EIO}                  << QStringList{u"by"_s}      << false;
    // clang-format on
}

void test_failing_calls::read_to_the_end()
{
    QFETCH(const QList<int>, results);
    const descriptor special(::open("/dev/null", O_RDWR | O_CLOEXEC));
    script.special = special.number();
    script.results = results;
    script.bytes = "bytes";
    QStringList found;
    const bool is_read = read_blocks(special.number(),
                                     [&found](QByteArrayView block) { found.append(QString::fromLatin1(block)); });
    QTEST(found, "blocks");
    QTEST(is_read, "is_whole");
    QCOMPARE(script.amounts, QList<size_t>(results.size(), 65536));
}

BLUETOOTH_LOGS_TEST(test_failing_calls, QCoreApplication)
#include "test_failing_calls.moc"
