// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

/** Who is not the owner of the evidence cannot keep its access times, and is told before the run. */
class test_access_times : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void owner_is_told_nothing();
    void other_user_is_told_data();
    void other_user_is_told();
};

void test_access_times::owner_is_told_nothing()
{
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s}).errors, QString());
}

void test_access_times::other_user_is_told_data()
{
    QTest::addColumn<QString>("source");

    QTest::newRow("macOS") << u"sample/macos"_s;
    QTest::newRow("iOS") << u"sample/ios/system.log"_s;
}

void test_access_times::other_user_is_told()
{
    QFETCH(QString, source);
    if (::geteuid() != 0)
        QSKIP("only root can become another user");
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().mkpath(host.path(u"case"_s)));
    QCOMPARE(::chmod(QFile::encodeName(host.path(QString())).constData(), 0755), 0);
    QCOMPARE(::chmod(QFile::encodeName(host.path(u"case"_s)).constData(), 0777), 0);
    QStringList arguments{u"extract"_s, u"-i"_s, source, u"-o"_s, u"case"_s};
    if (source.startsWith(u"sample/ios"_s))
        arguments.append(u"--suite-tables"_s); // without the note on them
    const host_result result = host.run_through({u"setpriv"_s, u"--reuid=65534"_s, u"--regid=65534"_s,
                                                 u"--clear-groups"_s},
                                                arguments);
    if (result.exit_code == 126 || result.exit_code == 127 || result.exit_code == -1)
        QSKIP("no other user can run the program here");
    QVERIFY2(result.errors.startsWith(
                 u"warning: reading will change access times of the evidence, since only its owner and root may keep "
                 "them: run as one of these, or mount the source read-only (mount -o ro) or without access times "
                 "(mount -o noatime)\n"_s),
             qPrintable(result.errors));
    QCOMPARE(result.exit_code, source.startsWith(u"sample/ios"_s) ? 4 : 0);
}

BLUETOOTH_LOGS_TEST(test_access_times, QCoreApplication)

#include "test_access_times.moc"
