// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/working_copy.h"

#include "host/files/host_error.h"
#include "host/files/sha256.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class test_working_copy : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void rights_data();
    void rights();
    void hash_is_of_what_was_written();
    void nothing_is_written_over_data();
    void nothing_is_written_over();
};

void test_working_copy::rights_data()
{
    QTest::addColumn<int>("original");
    QTest::addColumn<int>("copy");

    QTest::newRow("of its owner alone") << 0600 << 0600;
    QTest::newRow("read-only") << 0400 << 0600;
    QTest::newRow("closed to its owner") << 0044 << 0644;
    QTest::newRow("nobody's") << 0000 << 0600;
    QTest::newRow("everybody's") << 0666 << 0666;
    QTest::newRow("set user") << 04755 << 0755;
}

void test_working_copy::rights()
{
    QFETCH(const int, original);
    QFETCH(const int, copy);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a/b"_s);
    working_copy made(path, mode_t(original));
    struct stat status = {};
    QCOMPARE(::stat(QFile::encodeName(path).constData(), &status), 0);
    QCOMPARE(int(status.st_mode & 07777), copy);
}

void test_working_copy::hash_is_of_what_was_written()
{
    const QTemporaryDir folder;
    working_copy made(folder.filePath(u"b"_s), 0600);
    const QByteArray large(200'000, 'x');
    made.add("first ");
    made.add(large);
    made.add({});
    QCOMPARE(made.hash(), sha256::of(QByteArray("first " + large)));
    QFile file(folder.filePath(u"b"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), "first " + large);
}

void test_working_copy::nothing_is_written_over_data()
{
    QTest::addColumn<bool>("is_link");
    QTest::newRow("a file") << false;
    QTest::newRow("a link that leads nowhere") << true;
}

void test_working_copy::nothing_is_written_over()
{
    QFETCH(const bool, is_link);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"b"_s);
    if (is_link)
        QVERIFY(QFile::link(folder.filePath(u"gone"_s), path));
    else
        QVERIFY(QFile(path).open(QIODevice::WriteOnly));
    try {
        const working_copy made(path, 0600);
        QFAIL("it was made");
    } catch (const host_error &error) {
        QCOMPARE(error.kind(), error_kind::io);
        QVERIFY2(error.message().startsWith(u"the working copy "_s + path + u" cannot be written: "_s),
                 qPrintable(error.message()));
    }
    QVERIFY(!QFile::exists(folder.filePath(u"gone"_s)));
}

BLUETOOTH_LOGS_TEST(test_working_copy, QCoreApplication)
#include "test_working_copy.moc"
