// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/kept_access_times.h"

#include "tests/support/file_content.h"
#include "tests/support/ordinary_user.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class test_kept_access_times : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void time_stays();
    void file_of_another_owner();
    void errors_stay();
};

void test_kept_access_times::time_stays()
{
    const QTemporaryDir folder;
    const QByteArray path = QFile::encodeName(folder.filePath(u"image"_s));
    write_file(folder.filePath(u"image"_s), "content");
    constexpr timespec then[2] = {{1000000000, 0}, {1500000000, 0}}; // read before it was written: a time that moves
    QCOMPARE(::utimensat(AT_FDCWD, path.constData(), then, 0), 0);
    const kept_access_times kept;
    const int file = ::open(path.constData(), O_RDONLY);
    QVERIFY(file >= 0);
    char byte = 0;
    QCOMPARE(::read(file, &byte, 1), 1);
    QCOMPARE(byte, 'c');
    struct stat status = {};
    QCOMPARE(::fstat(file, &status), 0);
    QCOMPARE(status.st_atim.tv_sec, then[0].tv_sec);
    ::close(file);
}

/** Whose access times only its owner may keep: it is read all the same. */
void test_kept_access_times::file_of_another_owner()
{
    const QTemporaryDir folder;
    write_file(folder.filePath(u"image"_s), "content");
    for (const QString &path : {folder.path(), folder.filePath(u"image"_s)})
        QCOMPARE(::chmod(QFile::encodeName(path).constData(), 0755), 0);
    const kept_access_times kept;
    int file = -1;
    {
        const ordinary_user user;
        file = ::open(QFile::encodeName(folder.filePath(u"image"_s)).constData(), O_RDONLY);
    }
    QVERIFY(file >= 0);
    ::close(file);
}

void test_kept_access_times::errors_stay()
{
    const kept_access_times kept;
    QCOMPARE(::open("/nowhere/image", O_RDONLY), -1);
    QCOMPARE(errno, ENOENT);
}

BLUETOOTH_LOGS_TEST(test_kept_access_times, QCoreApplication)

#include "test_kept_access_times.moc"
