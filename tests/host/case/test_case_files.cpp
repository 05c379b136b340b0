// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_files.h"
#include "host/source/macos_databases.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

class test_case_files : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void names_and_what_stands_beside();
    void names_are_there_once();
    void databases_have_their_names();
};

void test_case_files::names_and_what_stands_beside()
{
    constexpr case_file log = {"plugin.log"_L1, true, true};
    constexpr case_file lines = {"lines.jsonl"_L1, true, true, companions::unfinished};
    constexpr case_file rows = {"a/b.sqlite"_L1, true, true, companions::sqlite};
    QCOMPARE(names_of(log), QStringList({u"plugin.log"_s}));
    QCOMPARE(names_of(lines), QStringList({u"lines.jsonl"_s, u"lines.jsonl.new"_s}));
    QCOMPARE(names_of(rows),
             QStringList({u"a/b.sqlite"_s, u"a/b.sqlite-journal"_s, u"a/b.sqlite-wal"_s, u"a/b.sqlite-shm"_s}));
}

void test_case_files::names_are_there_once()
{
    QStringList names;
    for (const case_file &file : case_files)
        names += names_of(file);
    QCOMPARE(names.removeDuplicates(), 0);
    const QStringList traces = case_file_names(&case_file::is_trace);
    QVERIFY(traces.contains(u"ios_lines.jsonl"_s) && !traces.contains(u".lock"_s));
    QVERIFY(!traces.contains(u"Artifacts_Result/"_s));
    QVERIFY(!case_file_names(&case_file::is_removed).contains(u".lock"_s));
}

/** They stand whole in the table, and must be those that the host looks for. */
void test_case_files::databases_have_their_names()
{
    const QStringList removed = case_file_names(&case_file::is_removed);
    for (const macos_database *database : macos_databases) {
        const QStringList names{u"Evidence/"_s + path_in_source(*database),
                                u"Artifacts_Result/Bluetooth_Logs/Logs/"_s + database->file_name,
                                u"tmp/wal/"_s + database->file_name};
        for (const QString &name : names)
            QVERIFY2(removed.contains(name), qPrintable(name));
    }
    QVERIFY(removed.contains(u"Evidence/"_s + macos_preferences_file));
}

BLUETOOTH_LOGS_TEST(test_case_files, QCoreApplication)

#include "test_case_files.moc"
