// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_layout.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

void make_file(const QString &path)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QVERIFY(QFile(path).open(QIODevice::WriteOnly));
}

/** All that is below a folder, by relative paths. */
QStringList names_below(const QString &folder)
{
    QStringList names;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext())
        names.append(entries.next().sliced(folder.size() + 1));
    names.sort();
    return names;
}

const QStringList files_of_a_run = {
    u"source.json"_s,
    u"source.json.new"_s,
    u"plugin.log"_s,
    u"ios_lines.jsonl"_s,
    u"ios_lines.jsonl.new"_s,
    u"unparsed_lines.jsonl"_s,
    u"unparsed_lines.jsonl.new"_s,
    u"wal_changes.json"_s,
    u"wal_changes.jsonl"_s,
    u"wal_changes.jsonl.new"_s,
    u"salvage.jsonl"_s,
    u"salvage.jsonl.new"_s,
    u"host_devices.jsonl"_s,
    u"host_devices.jsonl.new"_s,
    u"Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s,
    u"Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite-journal"_s,
    u"Artifacts_Result/Bluetooth_Logs/Logs/com.apple.MobileBluetooth.ledevices.other.db"_s,
    u"Artifacts_Result/Bluetooth_Logs/Logs/com.apple.MobileBluetooth.ledevices.paired.db"_s,
    u"Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s,
    u"Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db-wal"_s,
    u"Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db.12:00:00_01-31-2026.corrupt"_s,
    u"Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db.corrupt"_s,
    u"Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db.a\nb.corrupt"_s,
    u"Evidence/Library/Preferences/com.apple.Bluetooth.plist"_s,
    u"tmp/wal/com.apple.MobileBluetooth.ledevices.other.db"_s,
    u"tmp/wal/com.apple.MobileBluetooth.ledevices.other.db-shm"_s,
};

} // namespace

class test_case_layout : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void places();
    void removal_leaves_nothing_of_a_run();
    void removal_leaves_all_else();
    void removal_follows_no_link();
    void traces_of_a_run_data();
    void traces_of_a_run();
    void source_numbers();
};

void test_case_layout::places()
{
    const source_layout layout = case_layout(u"/c"_s).source(7);
    QCOMPARE(layout.folder(), u"/c/Source7"_s);
    QCOMPARE(layout.record(), u"/c/Source7/source.json"_s);
    QCOMPARE(layout.plugin_log(), u"/c/Source7/plugin.log"_s);
    QCOMPARE(layout.result_database(), u"/c/Source7/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s);
    QCOMPARE(layout.relative_to_case(layout.record()), u"Source7/source.json"_s);
    QCOMPARE(layout.relative_to_case(u"/case"_s), u"/case"_s);
}

void test_case_layout::removal_leaves_nothing_of_a_run()
{
    const QTemporaryDir directory;
    const source_layout layout = case_layout(directory.path()).source(1);
    for (const QString &file : files_of_a_run)
        make_file(layout.folder() + u'/' + file);
    QVERIFY(QDir().mkpath(layout.temporary_folder()) && QDir().mkpath(layout.plugin_temporary_folder()));
    make_file(layout.lock());
    QVERIFY(layout.holds_a_run());
    QCOMPARE(layout.remove_run(), QStringList());
    QCOMPARE(names_below(directory.path()), QStringList({u"Source1"_s, u"Source1/.lock"_s}));
    QVERIFY(!layout.holds_a_run());
    QCOMPARE(layout.remove_run(), QStringList());
}

void test_case_layout::removal_leaves_all_else()
{
    const QTemporaryDir directory;
    const source_layout layout = case_layout(directory.path()).source(1);
    QStringList notes;
    for (const QString &file : files_of_a_run) {
        make_file(layout.folder() + u'/' + file);
        notes.append(QFileInfo(layout.folder() + u'/' + file).path() + u"/notes of "_s + QFileInfo(file).fileName());
        make_file(notes.last());
    }
    notes.removeDuplicates();
    QStringList kept = layout.remove_run();
    kept.sort();
    notes.sort();
    QCOMPARE(kept, notes);
    for (const QString &note : std::as_const(notes))
        QVERIFY2(QFile::exists(note), qPrintable(note));
    for (const QString &file : files_of_a_run)
        QVERIFY2(!QFile::exists(layout.folder() + u'/' + file), qPrintable(file));
}

void test_case_layout::removal_follows_no_link()
{
    const QTemporaryDir directory;
    const QTemporaryDir elsewhere;
    for (const QString &file : files_of_a_run)
        make_file(elsewhere.path() + u'/' + QFileInfo(file).fileName());
    const QStringList before = names_below(elsewhere.path());
    for (const QString &link :
         {u"Source1"_s, u"Source2/Artifacts_Result"_s, u"Source3/Artifacts_Result/Bluetooth_Logs"_s,
          u"Source4/Artifacts_Result/Bluetooth_Logs/Logs"_s, u"Source5/Evidence"_s, u"Source6/Evidence/Library"_s,
          u"Source7/Evidence/Library/Bluetooth"_s, u"Source8/tmp"_s,
          u"Source9/Artifacts_Result/Bluetooth_Logs/tmp"_s}) {
        const QString path = directory.filePath(link);
        QVERIFY(QDir().mkpath(QFileInfo(path).path()) && QFile::link(elsewhere.path(), path));
        const source_layout layout = case_layout(directory.path()).source(link.mid(6, 1).toInt());
        QVERIFY2(layout.holds_a_run(), qPrintable(link));
        QCOMPARE(layout.remove_run(), QStringList());
        QVERIFY2(!QFileInfo(path).isSymLink(), qPrintable(link));
        QCOMPARE(names_below(elsewhere.path()), before);
    }
}

void test_case_layout::traces_of_a_run_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("is_a_trace");

    // clang-format off
    QTest::newRow("record")        << u"source.json"_s                          << true;
    QTest::newRow("half a record") << u"source.json.new"_s                      << true;
    QTest::newRow("log")           << u"plugin.log"_s                           << true;
    QTest::newRow("lines")         << u"ios_lines.jsonl"_s                      << true;
    QTest::newRow("half of them")  << u"ios_lines.jsonl.new"_s                  << true;
    QTest::newRow("no rows")       << u"unparsed_lines.jsonl"_s                 << true;
    QTest::newRow("changes")       << u"wal_changes.jsonl"_s                    << true;
    QTest::newRow("old changes")   << u"wal_changes.json"_s                     << true;
    QTest::newRow("salvage")       << u"salvage.jsonl"_s                        << true;
    QTest::newRow("host's")        << u"host_devices.jsonl"_s                   << true;
    QTest::newRow("copies")        << u"Evidence/x"_s                           << true;
    QTest::newRow("results")       << u"Artifacts_Result/Bluetooth_Logs/x"_s    << true;
    QTest::newRow("lock")          << u".lock"_s                                << false;
    QTest::newRow("notes")         << u"notes"_s                                << false;
    QTest::newRow("other results") << u"Artifacts_Result/Wi-Fi_Logs/x"_s        << false;
    // clang-format on
}

void test_case_layout::traces_of_a_run()
{
    QFETCH(QString, file);
    QFETCH(bool, is_a_trace);
    const QTemporaryDir directory;
    const source_layout layout = case_layout(directory.path()).source(1);
    QVERIFY(!layout.holds_a_run());
    make_file(layout.folder() + u'/' + file);
    QCOMPARE(layout.holds_a_run(), is_a_trace);
}

void test_case_layout::source_numbers()
{
    const QTemporaryDir directory;
    for (const QString &name : {u"Source10"_s, u"Source2"_s, u"Source02"_s, u"Source"_s, u"source3"_s, u"Source-1"_s,
                                u"Source1x"_s, u"Source0"_s})
        QVERIFY(QDir().mkpath(directory.filePath(name)));
    make_file(directory.filePath(u"Source4"_s));
    QCOMPARE(case_layout(directory.path()).source_numbers(), QList<int>({0, 2, 10}));
    QCOMPARE(case_layout(directory.filePath(u"none"_s)).source_numbers(), QList<int>());
}

BLUETOOTH_LOGS_TEST(test_case_layout, QCoreApplication)

#include "test_case_layout.moc"
