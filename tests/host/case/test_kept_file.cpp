// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/kept_file.h"

#include "host/case/case_layout.h"
#include "host/files/sha256.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/** The files of a source that records list: all but the record and the lock. */
class test_kept_file : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void files_of_a_source();
    void paths_that_stay_below_data();
    void paths_that_stay_below();
};

void test_kept_file::files_of_a_source()
{
    const QTemporaryDir folder;
    const QStringList paths{u"Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s, u"Source1/other"_s,
                            u"Source1/plugin.log"_s, u"Source1/salvage.jsonl"_s};
    for (const QString &path :
         paths + QStringList{u"Source1/source.json"_s, u"Source1/.lock"_s, u"Source2/plugin.log"_s})
        write_file(folder.filePath(path), path.toUtf8());
    QStringList listed;
    for (const kept_file &file : list_files_of_source(case_layout(folder.path()), 1)) {
        listed.append(file.path);
        QCOMPARE(file.size, file.path.size());
        QCOMPARE(file.sha256, sha256::of(file.path.toUtf8()));
    }
    QCOMPARE(listed, paths);
}

void test_kept_file::paths_that_stay_below_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("is_below");

    // clang-format off
    QTest::newRow("name")           << u"a"_s        << true;
    QTest::newRow("folders")        << u"a/b.c/d"_s  << true;
    QTest::newRow("dots in names")  << u"..a/b../..."_s << true;
    QTest::newRow("empty")          << u""_s         << false;
    QTest::newRow("absolute")       << u"/a"_s       << false;
    QTest::newRow("folder itself")  << u"."_s        << false;
    QTest::newRow("itself on the way") << u"a/./b"_s << false;
    QTest::newRow("above")          << u".."_s       << false;
    QTest::newRow("above, at the end") << u"a/.."_s  << false;
    QTest::newRow("doubled slash")  << u"a//b"_s     << false;
    QTest::newRow("slash at the end") << u"a/"_s     << false;
    QTest::newRow("a NUL")          << QString(u"a"_s + QChar::Null + u'b') << false;
    // clang-format on
}

void test_kept_file::paths_that_stay_below()
{
    QFETCH(const QString, path);
    QTEST(stays_below(path), "is_below");
}

BLUETOOTH_LOGS_TEST(test_kept_file, QCoreApplication)
#include "test_kept_file.moc"
