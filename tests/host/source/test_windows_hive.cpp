// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/windows_hive.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class test_windows_hive : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void paths_data();
    void paths();
};

void test_windows_hive::paths_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("paths");

    const QString hive = u"Windows/System32/config/SYSTEM"_s;
    QTest::newRow("nothing") << QStringList() << QStringList{hive};
    QTest::newRow("no hive") << QStringList{u"Windows/System32/config/SOFTWARE"_s} << QStringList{hive};
    QTest::newRow("hive") << QStringList{hive} << QStringList{hive};
    QTest::newRow("with logs") << QStringList{hive, hive + u".LOG2"_s, hive + u".LOG1"_s, hive + u".LOG"_s,
                                              hive + u".x"_s}
                               << QStringList{hive, hive + u".LOG"_s, hive + u".LOG1"_s, hive + u".LOG2"_s};
    QTest::newRow("other letter case") << QStringList{u"WINDOWS/system32/Config/system"_s,
                                                      u"WINDOWS/system32/Config/System.log1"_s}
                                       << QStringList{u"WINDOWS/system32/Config/system"_s,
                                                      u"WINDOWS/system32/Config/System.log1"_s};
    QTest::newRow("log alone") << QStringList{u"windows/System32/config/SYSTEM.LOG1"_s}
                               << QStringList{u"windows/System32/config/SYSTEM"_s,
                                              u"windows/System32/config/SYSTEM.LOG1"_s};
}

void test_windows_hive::paths()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, paths);
    const QTemporaryDir folder;
    for (const QString &file : files) {
        QVERIFY(QDir(folder.path()).mkpath(QFileInfo(file).path()));
        QFile opened(folder.filePath(file));
        QVERIFY(opened.open(QIODevice::WriteOnly));
    }
    QCOMPARE(windows_hive_paths(folder.path()), paths);
    QCOMPARE(windows_hive_paths(folder.path() + u'/'), paths);
    for (const QString &path : paths)
        QCOMPARE(is_windows_hive(path) + 2 * is_windows_hive_log(path), path == paths.first() ? 1 : 2);
}

BLUETOOTH_LOGS_TEST(test_windows_hive, QCoreApplication)

#include "test_windows_hive.moc"
