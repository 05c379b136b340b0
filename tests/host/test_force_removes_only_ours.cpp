// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView result_folder("Source1/Artifacts_Result/Bluetooth_Logs");

bool write_note(const QString &path)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) && file.write("note") == 4;
}

/** Every file and link below a folder, with its content or target. */
QStringList contents(const QString &folder)
{
    QStringList result;
    QDirIterator entries(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo entry(entries.next());
        QFile file(entry.filePath());
        QString text = entry.isSymLink() ? entry.symLinkTarget() : QString();
        if (entry.isFile() && file.open(QIODevice::ReadOnly))
            text = QString::fromLatin1(file.readAll().toHex());
        result.append(entry.filePath().sliced(folder.size()) + u'=' + text);
    }
    result.sort();
    return result;
}

} // namespace

/** A case holds more than the program's results, and nothing else is lost by --force. */
class test_force_removes_only_ours : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void notes_stay_and_are_named_data();
    void notes_stay_and_are_named();
    void what_a_damaged_database_left_is_ours_data();
    void what_a_damaged_database_left_is_ours();
    void notes_in_temporary_folders_stop_the_run_data();
    void notes_in_temporary_folders_stop_the_run();
    void nothing_is_written_through_links_data();
    void nothing_is_written_through_links();
    void case_below_a_linked_folder();
    void option_for_a_log_is_gone();

private:
    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
    const QStringList extract_anew = extract_sample + QStringList{u"--force"_s};
};

void test_force_removes_only_ours::notes_stay_and_are_named_data()
{
    QTest::addColumn<QString>("path");

    // clang-format off
    QTest::newRow("in the source's folder")  << u"Source1/notes.txt"_s;
    QTest::newRow("hidden")                  << u"Source1/.notes"_s;
    QTest::newRow("beside the results")      << u"Source1/Artifacts_Result/notes.txt"_s;
    QTest::newRow("among the results")       << QString(result_folder + u"/notes.txt"_s);
    QTest::newRow("results of another plug-in") << u"Source1/Artifacts_Result/Wi-Fi_Logs/Wi-Fi_Logs.sqlite"_s;
    QTest::newRow("beside the staged copies") << QString(result_folder + u"/Logs/notes.txt"_s);
    QTest::newRow("among the working copies") << u"Source1/Evidence/Library/Bluetooth/notes.db"_s;
    QTest::newRow("a name like a leftover")  << u"Source1/Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db.notes"_s;
    QTest::newRow("beside the preferences")  << u"Source1/Evidence/Library/Preferences/notes.plist"_s;
    QTest::newRow("a folder")                << u"Source1/notes/notes.txt"_s;
    QTest::newRow("a folder of one of our names") << u"Source1/ios_lines.jsonl/notes.txt"_s;
    // clang-format on
}

void test_force_removes_only_ours::notes_stay_and_are_named()
{
    QFETCH(QString, path);
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run(extract_sample).exit_code, 0);
    QVERIFY(write_note(host.path(u"case/"_s + path)) && write_note(host.path(u"case/report.txt"_s)));
    const host_result result = host.run(extract_anew);
    QCOMPARE(result.exit_code, 0);
    QVERIFY(result.errors.startsWith(u"note: this is not of an earlier run and stays: "_s));
    // It is named, or the folder is that it lies in.
    const QString named = result.errors.section(u": "_s, 2).trimmed();
    QVERIFY2(host.path(u"case/"_s + path).startsWith(named), qPrintable(result.errors));
    QCOMPARE(result.errors.count(u'\n'), 1);
    QFile note(host.path(u"case/"_s + path));
    QVERIFY(note.open(QIODevice::ReadOnly));
    QCOMPARE(note.readAll(), "note");
    QVERIFY(QFile::exists(host.path(u"case/report.txt"_s)));
}

void test_force_removes_only_ours::what_a_damaged_database_left_is_ours_data()
{
    QTest::addColumn<QString>("ending"); // of a name in the evidence, whose copy is in the way of the next run

    QTest::newRow("plain") << u".corrupt"_s;
    QTest::newRow("time") << u".12:00:00_01-31-2026.corrupt"_s;
    QTest::newRow("line end") << u".a\nb.corrupt"_s;
}

void test_force_removes_only_ours::what_a_damaged_database_left_is_ours()
{
    QFETCH(QString, ending);
    const host_program host;
    host.write_sample();
    const QString name = u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s + ending;
    QVERIFY(write_note(host.path(u"sample/macos/"_s + name)));
    QCOMPARE(host.run(extract_sample).exit_code, 0);
    QVERIFY(QFile::exists(host.path(u"case/Source1/Evidence/"_s + name)));
    const host_result result = host.run(extract_anew);
    QVERIFY2(!result.errors.contains(u"error: "_s) && !result.errors.contains(u"stays"_s), qPrintable(result.errors));
    QCOMPARE(result.exit_code, 0);
    QVERIFY(QFile::exists(host.path(u"case/Source1/Evidence/"_s + name)));
}

void test_force_removes_only_ours::notes_in_temporary_folders_stop_the_run_data()
{
    QTest::addColumn<QString>("folder");

    QTest::newRow("of the program") << u"Source1/tmp"_s;
    QTest::newRow("of the plug-in") << QString(result_folder + u"/tmp"_s);
}

void test_force_removes_only_ours::notes_in_temporary_folders_stop_the_run()
{
    QFETCH(QString, folder);
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run(extract_sample).exit_code, 0);
    const QString note = host.path(u"case/"_s + folder + u"/notes.txt"_s);
    QVERIFY(write_note(note));
    const host_result result = host.run(extract_anew);
    QCOMPARE(result.exit_code, 2);
    QVERIFY2(result.errors.endsWith(u"error: this is not of an earlier run and stands in the way, move it elsewhere "
                                    "first: "_s
                                    + host.path(u"case/"_s + folder) + u'\n'),
             qPrintable(result.errors));
    QVERIFY(QFile::exists(note));
}

void test_force_removes_only_ours::nothing_is_written_through_links_data()
{
    QTest::addColumn<QString>("link"); // of the case's parts
    QTest::addColumn<bool>("force");
    QTest::addColumn<int>("exit_code");

    const QStringList links{u"Source1"_s,
                            u"Source1/Artifacts_Result"_s,
                            result_folder,
                            result_folder + u"/Logs"_s,
                            result_folder + u"/tmp"_s,
                            result_folder + u"/Bluetooth_Logs.sqlite"_s,
                            u"Source1/Evidence"_s,
                            u"Source1/Evidence/Library"_s,
                            u"Source1/Evidence/Library/Bluetooth"_s,
                            u"Source1/tmp"_s,
                            u"Source1/plugin.log"_s,
                            u"Source1/source.json"_s,
                            u"Source1/source.json.new"_s};
    for (const QString &link : links) {
        QTest::newRow(qPrintable(link)) << link << false << 2;
        QTest::newRow(qPrintable(QString(link + u", force"_s))) << link << true << 0;
    }
}

void test_force_removes_only_ours::nothing_is_written_through_links()
{
    QFETCH(QString, link);
    QFETCH(bool, force);
    QFETCH(int, exit_code);
    const host_program host;
    host.write_sample();
    const QString elsewhere = host.path(u"elsewhere"_s);
    for (const QString &name : {u"note"_s, u"plugin.log"_s, u"source.json"_s, u"Bluetooth_Logs.sqlite"_s})
        QVERIFY(write_note(elsewhere + u'/' + name));
    const QString place = host.path(u"case/"_s + link);
    QVERIFY(QDir().mkpath(QFileInfo(place).path()));
    const bool is_file = link.contains(u".json"_s) || link.endsWith(u".log"_s) || link.endsWith(u".sqlite"_s);
    QVERIFY(QFile::link(is_file ? elsewhere + u"/note"_s : elsewhere, place));
    const QStringList before = contents(elsewhere);

    const host_result result = host.run(force ? extract_anew : extract_sample);
    QVERIFY2(result.exit_code == exit_code, qPrintable(result.errors));
    QCOMPARE(contents(elsewhere), before);
    QCOMPARE(QFileInfo(place).isSymLink(), !force);
}

void test_force_removes_only_ours::case_below_a_linked_folder()
{
    // The examiner's own way to the case may lead through links.
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().mkpath(host.path(u"disk/cases"_s)) && QFile::link(host.path(u"disk/cases"_s), host.path(u"link"_s)));
    const QStringList arguments{u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"link/../a/case"_s};
    QCOMPARE(host.run(arguments).exit_code, 0);
    QVERIFY(QFile::exists(host.path(u"disk/a/case/Source1/source.json"_s)));
    QVERIFY(!QFile::exists(host.path(u"a"_s)));
}

void test_force_removes_only_ours::option_for_a_log_is_gone()
{
    const host_program host;
    host.write_sample();
    const QStringList before = contents(host.path(u"sample"_s));
    for (const QString &log : {u"sample"_s, u"."_s, u"/dev/null"_s}) {
        const host_result result = host.run(extract_anew + QStringList{u"--log-file"_s, log});
        QCOMPARE(result.exit_code, 2);
        QVERIFY(result.errors.startsWith(u"error: "_s));
    }
    QCOMPARE(contents(host.path(u"sample"_s)), before);
}

BLUETOOTH_LOGS_TEST(test_force_removes_only_ours, QCoreApplication)

#include "test_force_removes_only_ours.moc"
