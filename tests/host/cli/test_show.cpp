// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/host/pseudo_terminal.h"
#include "tests/support/sanitizer.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>

#include <sys/file.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

class test_show : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void every_value_is_shown();
    void one_table_on_request();
    void no_rows();
    void nothing_of_the_sample_acts_on_the_terminal();
    void database_is_not_written();
    void damaged_database_is_told();
    void database_without_tables_is_told();
    void full_disk_is_told();
    void database_is_shown_too();
    void every_source_of_a_case_is_shown();
    void an_older_manifest_is_said_to_be_so();
    void an_older_report_is_said_to_be_so();
    void sightings_are_called_so();
    void one_source_on_request();
    void what_became_of_the_run_is_told_data();
    void what_became_of_the_run_is_told();
    void a_run_that_goes_on_is_not_disturbed();
    void first_rows_on_request();
    void rows_as_records();
    void layout_follows_the_terminal_data();
    void layout_follows_the_terminal();
    void a_view_is_no_result_table();
    void many_rows_take_little_memory();

private:
    static QString legend()
    {
        return u"∅ is NULL, \"\" an empty text; \\u{1b} stands for a character that is unseen or would act on the "
               "terminal, \\\\ for a backslash.\n\n"_s;
    }
    static sqlite_file make_case(const host_program &host, int number = 1, const QString &status = u"done"_s);
};

/** A source of a case in the folder "case": its record, and its result tables without rows. */
sqlite_file test_show::make_case(const host_program &host, int number, const QString &status)
{
    const QString source = host.path(u"case/Source"_s + QString::number(number));
    const QString folder = source + u"/Artifacts_Result/Bluetooth_Logs"_s;
    QFile record(source + u"/source.json"_s);
    const QJsonObject members{{u"format"_s, u"bluetooth-logs source"_s},
                              {u"version"_s, 1},
                              {u"number"_s, number},
                              {u"path"_s, u"/e\x1b"_s},
                              {u"type"_s, u"macOS"_s},
                              {u"status"_s, status}};
    if (!QDir().mkpath(folder) || !record.open(QIODevice::WriteOnly)
        || record.write(QJsonDocument(members).toJson()) <= 0)
        qFatal("no case");
    const sqlite_file database(folder + u"/Bluetooth_Logs.sqlite"_s);
    for (const QString &table : {u"devices"_s, u"paired_devices"_s})
        database.execute(u"CREATE TABLE "_s + table
                         + u"(bookmark INTEGER, INT INTEGER PRIMARY KEY, device_name VARCHAR(100), last_seen_time "
                           "INTEGER, source_file VARCHAR(1024), notes VARCHAR(500))"_s);
    return database;
}

void test_show::every_value_is_shown()
{
    const host_program host;
    const sqlite_file database = make_case(host);
    const QString insert =
        u"INSERT INTO devices(bookmark, device_name, last_seen_time, source_file) VALUES(?, ?, ?, ?)"_s;
    database.execute_many(insert, {{0, u"客厅"_s, 5, u"/e/x\x1b[2J.db"_s},
                                   {0, QVariant(), 1234567, u"/e/x\x1b[2J.db"_s},
                                   {0, u""_s, -1, u"/e/x\x1b[2J.db"_s},
                                   {0, u"∅"_s, 0, u"/e/x\x1b[2J.db"_s},
                                   {0, u"\"\""_s, 0, u"/e/x\x1b[2J.db"_s},
                                   {0, u" NULL "_s, 0, u"/e/x\x1b[2J.db"_s},
                                   {0, u" "_s, 0, u"/e/x\x1b[2J.db"_s},
                                   {0, QByteArray("\x1b\x00z", 3), QVariant(), u"/e/x\x1b[2J.db"_s}});
    database.execute(
        u"INSERT INTO paired_devices(bookmark, device_name, source_file, notes) VALUES(0, 'a', '/1', 'n')"_s);
    database.execute(u"INSERT INTO paired_devices(bookmark, device_name, source_file) VALUES(1, 'b\u202ec', '/22')"_s);

    const host_result result = host.run({u"show"_s, u"case"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output, u"devices\n"
                            "In every row:\n"
                            "  bookmark: 0\n"
                            "  source_file: /e/x\\u{1b}[2J.db\n"
                            "∅ in every row: notes\n"
                            "\n"
                            "  INT  device_name       last_seen_time\n"
                            "  ───  ────────────────  ──────────────\n"
                            "    1  客厅                           5\n"
                            "    2  ∅                        1234567\n"
                            "    3  \"\"                            -1\n"
                            "    4  \\u{2205}                       0\n"
                            "    5  \\u{22}\"                        0\n"
                            "    6  \\u{20}NULL\\u{20}               0\n"
                            "    7  \\u{20}                         0\n"
                            "    8  x'1b007a'                      ∅\n"
                            "\n"
                            "paired_devices\n"
                            "∅ in every row: last_seen_time\n"
                            "\n"
                            "  bookmark  INT  device_name  source_file  notes\n"
                            "  ────────  ───  ───────────  ───────────  ─────\n"
                            "         0    1  a            /1           n\n"
                            "         1    2  b\\u{202e}c   /22          ∅\n"
                            "\n"_s
                                + legend() + u"devices         8 rows\npaired_devices  2 rows\n"_s);
}

void test_show::one_table_on_request()
{
    const host_program host;
    make_case(host).execute(u"INSERT INTO devices(device_name) VALUES('a')"_s);
    const host_result result = host.run({u"show"_s, u"case"_s, u"--table"_s, u"devices"_s});
    QCOMPARE(result.exit_code, 0);
    QVERIFY(!result.output.contains(u"paired_devices"_s));
    QVERIFY(result.output.endsWith(legend() + u"devices         1 row\n"_s));
}

void test_show::no_rows()
{
    const host_program host;
    make_case(host);
    const host_result result = host.run({u"show"_s, u"case"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.output, legend() + u"devices         0 rows\npaired_devices  0 rows\n"_s);
}

void test_show::nothing_of_the_sample_acts_on_the_terminal()
{
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s}).exit_code, 0);
    const host_result result = host.run({u"show"_s, u"case"_s});
    QCOMPARE(result.exit_code, 0);
    static const QRegularExpression acting(u"[\\p{Cc}\\p{Cf}\\p{Zl}\\p{Zp}]"_s);
    QString text = result.output;
    text.remove(u'\n').replace(QRegularExpression(u"(?<=[🏽🏃👨👩])\u200d(?=[💻♀👩👧])"_s), QString());
    const QRegularExpressionMatch match = acting.match(text);
    QVERIFY2(!match.hasMatch(), qPrintable(text.mid(match.capturedStart() - 20, 40)));
    QVERIFY(text.contains(u"\\u{1b}[31mred\\u{1b}[0m \\u{1b}]0;title\\u{7}"_s));
    QVERIFY(result.output.endsWith(legend() + u"devices         1,000 rows\npaired_devices  20 rows\n"_s));
}

void test_show::database_is_not_written()
{
    const host_program host;
    const sqlite_file database = make_case(host);
    database.execute(u"INSERT INTO devices(device_name) VALUES('a')"_s);
    QFile file(database.path());
    const QDateTime long_ago = QDateTime::fromSecsSinceEpoch(1000000000);
    QVERIFY(file.open(QIODevice::ReadWrite) && file.setFileTime(long_ago, QFileDevice::FileModificationTime));
    const QByteArray before = file.readAll();
    file.close();
    QCOMPARE(host.run({u"show"_s, u"case"_s}).exit_code, 0);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), before);
    QCOMPARE(QFileInfo(database.path()).lastModified(), long_ago);
    QCOMPARE(QFileInfo(database.path()).dir().entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList{u"Bluetooth_Logs.sqlite"_s});
}

void test_show::damaged_database_is_told()
{
    const host_program host;
    QFile file(make_case(host).path());
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(QByteArray(5000, 'x')) == 5000);
    file.close();
    const host_result result = host.run({u"show"_s, u"case"_s, u"--table"_s, u"devices"_s});
    QCOMPARE(result.exit_code, 3);
    QCOMPARE(result.errors,
             u"error: the result database "_s + file.fileName() + u" cannot be read: file is not a database\n"_s);
    const host_result every_table = host.run({u"show"_s, u"case"_s});
    QCOMPARE(every_table.exit_code, 3);
    QVERIFY2(every_table.errors.contains(u"cannot be read: "_s), qPrintable(every_table.errors));
}

void test_show::database_without_tables_is_told()
{
    const host_program host;
    QFile file(make_case(host).path());
    QVERIFY(file.resize(0));
    const host_result result = host.run({u"show"_s, u"case"_s});
    QCOMPARE(result.exit_code, 3);
    QCOMPARE(result.errors, u"error: the result database "_s + file.fileName() + u" holds no result table\n"_s);
}

void test_show::full_disk_is_told()
{
    if (!QFile::exists(u"/dev/full"_s))
        QSKIP("no /dev/full");
    const host_program host;
    make_case(host);
    QProcess process;
    process.setStandardOutputFile(u"/dev/full"_s);
    host.start(process, {u"show"_s, u"case"_s});
    const host_result result = host_program::finish(process);
    QCOMPARE(result.exit_code, 1);
    QCOMPARE(result.errors, u"error: standard output cannot be written\n"_s);
}

void test_show::database_is_shown_too()
{
    const host_program host;
    const sqlite_file database = make_case(host, 3);
    database.execute(u"INSERT INTO devices(device_name) VALUES('a')"_s);
    const QString relative = u"case/Source3/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s;
    const host_result by_case = host.run({u"show"_s, u"case"_s});
    const host_result by_database = host.run({u"show"_s, relative});
    QCOMPARE(by_database.exit_code, 0);
    QCOMPARE(by_database.errors, QString());
    QCOMPARE(by_database.output, by_case.output);

    QVERIFY(QFile::copy(database.path(), host.path(u"alone.sqlite"_s)));
    const host_result alone = host.run({u"show"_s, u"alone.sqlite"_s});
    QCOMPARE(alone.errors, QString());
    QCOMPARE(alone.output, by_case.output);
}

void test_show::every_source_of_a_case_is_shown()
{
    const host_program host;
    make_case(host, 10).execute(u"INSERT INTO devices(device_name) VALUES('ten')"_s);
    make_case(host, 2).execute(u"INSERT INTO paired_devices(device_name) VALUES('two'), ('three')"_s);
    const host_result result = host.run({u"show"_s, u"case"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.output, u"Source2  macOS: /e\\u{1b}\n"
                            "\n"
                            "paired_devices\n"
                            "∅ in every row: bookmark, last_seen_time, source_file, notes\n"
                            "\n"
                            "  INT  device_name\n"
                            "  ───  ───────────\n"
                            "    1  two\n"
                            "    2  three\n"
                            "\n"
                            "Source10  macOS: /e\\u{1b}\n"
                            "\n"
                            "devices\n"
                            "∅ in every row: bookmark, last_seen_time, source_file, notes\n"
                            "\n"
                            "  INT  device_name\n"
                            "  ───  ───────────\n"
                            "    1  ten\n"
                            "\n"_s
                                + legend()
                                + u"Source2  devices         0 rows\n"
                                  "Source2  paired_devices  2 rows\n"
                                  "Source10  devices         1 row\n"
                                  "Source10  paired_devices  0 rows\n"_s);
}

void test_show::an_older_manifest_is_said_to_be_so()
{
    const host_program host;
    host.write_sample();
    QFile list(host.path(u"list.json"_s));
    QVERIFY(list.open(QIODevice::WriteOnly)
            && list.write(R"({"sources": [{"path": "sample/macos", "name": "the laptop"},
                                          {"path": "sample/ios/system.log"}]})")
                   > 0);
    list.close();
    const QStringList extract{u"extract"_s, u"--sources"_s, u"list.json"_s, u"-o"_s, u"case"_s};
    QCOMPARE(host.run(extract + QStringList{u"--only"_s, u"1"_s}).exit_code, 0);
    const QStringList show{u"show"_s, u"case"_s, u"--rows"_s, u"1"_s};
    const host_result begun = host.run(show);
    QCOMPARE(begun.errors, u"warning: the case is incomplete: no run of source 2 began\n"_s);
    QCOMPARE(begun.exit_code, 4);

    QCOMPARE(host.run(extract + QStringList{u"--only"_s, u"2"_s}).exit_code, 0);
    QCOMPARE(host.run({u"collect"_s, u"case"_s}).exit_code, 0);
    const host_result whole = host.run(show);
    QCOMPARE(whole.errors, QString());
    QCOMPARE(whole.exit_code, 0);
    QVERIFY2(whole.output.startsWith(u"Source1  the laptop  macOS: "_s), qPrintable(whole.output));

    QFile log(host.path(u"sample/ios/system.log"_s));
    QVERIFY(log.open(QIODevice::Append) && log.write("May 17 12:11:05 phone kernel[0] <Notice>: more\n") > 0);
    log.close();
    QCOMPARE(host.run(extract + QStringList{u"--only"_s, u"2"_s, u"--force"_s}).exit_code, 0);
    const host_result older = host.run(show);
    QCOMPARE(older.errors, u"warning: the manifest is older than source 2: \"collect\" makes it anew\n"_s);
    QCOMPARE(older.exit_code, 0);
}

void test_show::an_older_report_is_said_to_be_so()
{
    const host_program host;
    host.write_sample();
    const QStringList extract{u"extract"_s, u"-i"_s, u"sample/ios/system.log"_s, u"-o"_s, u"case"_s};
    const QStringList show{u"show"_s, u"case"_s, u"--rows"_s, u"1"_s};
    QCOMPARE(host.run(extract).exit_code, 0);
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"csv"_s}).exit_code, 0);
    QCOMPARE(host.run(show).errors, QString());
    QCOMPARE(host.run(extract + QStringList{u"--force"_s}).exit_code, 0);
    const host_result older = host.run(show);
    QCOMPARE(older.errors, u"warning: the report in Report is older than the manifest, or of another case: "
                           "\"report --force\" makes it anew\n"_s);
    QCOMPARE(older.exit_code, 0);
    QVERIFY(host.run({u"verify"_s, u"case"_s}).errors.contains(older.errors.sliced(sizeof "warning:")));
    QCOMPARE(host.run({u"report"_s, u"case"_s, u"-f"_s, u"csv"_s, u"--force"_s}).exit_code, 0);
    QCOMPARE(host.run(show).errors, QString());
}

/** Rows of a log are sightings; how many devices they are of was counted when they were extracted. */
void test_show::sightings_are_called_so()
{
    const host_program host;
    host.write_sample();
    const host_result extraction = host.run({u"extract"_s, u"-i"_s, u"sample/ios/system.log"_s, u"-o"_s, u"case"_s});
    static const QRegularExpression sightings(u"  50 rows(, 50 sightings of \\d+ devices)\\n"_s);
    const QRegularExpressionMatch match = sightings.match(extraction.output);
    QVERIFY2(match.hasMatch(), qPrintable(extraction.output));
    QVERIFY(host.run({u"show"_s, u"case"_s})
                .output.endsWith(
                    QString(u"\ndevices         50 rows"_s + match.captured(1) + u"\npaired_devices  31 rows\n"_s)));
    QVERIFY(host.run({u"show"_s, u"case"_s, u"--rows"_s, u"2"_s})
                .output.contains(QString(u"\ndevices         50 rows"_s + match.captured(1) + u", 2 shown\n"_s)));
}

void test_show::one_source_on_request()
{
    const host_program host;
    make_case(host, 1).execute(u"INSERT INTO devices(device_name) VALUES('one')"_s);
    make_case(host, 2).execute(u"INSERT INTO devices(device_name) VALUES('two')"_s);
    const host_result result = host.run({u"show"_s, u"case"_s, u"--source"_s, u"2"_s});
    QCOMPARE(result.exit_code, 0);
    QVERIFY(result.output.startsWith(u"devices\n"_s));
    QVERIFY(result.output.contains(u"  two\n"_s) && !result.output.contains(u"  one\n"_s));
    const host_result missing = host.run({u"show"_s, u"case"_s, u"--source"_s, u"3"_s});
    QCOMPARE(missing.exit_code, 2);
    QCOMPARE(missing.errors, u"error: the case has no Source3, only Source1, Source2\n"_s);
}

void test_show::what_became_of_the_run_is_told_data()
{
    QTest::addColumn<QString>("status");
    QTest::addColumn<int>("exit_code");
    QTest::addColumn<QString>("message");

    // clang-format off
    QTest::newRow("partial")          << u"partial"_s          << 0 << u"warning: Source1 is partial: its source.json says what could not be read or written\n"_s;
    QTest::newRow("evidence changed") << u"evidence changed"_s << 0 << u"warning: the evidence of Source1 changed during its run: its source.json says how\n"_s;
    QTest::newRow("killed")           << u"running"_s          << 4 << u"warning: Source1 is incomplete: its run ended as \"interrupted\"\n"_s;
    QTest::newRow("interrupted")      << u"interrupted"_s      << 4 << u"warning: Source1 is incomplete: its run ended as \"interrupted\"\n"_s;
    QTest::newRow("crashed")          << u"crashed"_s          << 4 << u"warning: Source1 is incomplete: its run ended as \"crashed\"\n"_s;
    QTest::newRow("no record")        << QString()             << 0 << u"warning: Source1 has no record of its run: whether its rows are all that there were is not known\n"_s;
    // clang-format on
}

void test_show::what_became_of_the_run_is_told()
{
    QFETCH(QString, status);
    QFETCH(int, exit_code);
    QFETCH(QString, message);

    const host_program host;
    make_case(host, 1, status).execute(u"INSERT INTO devices(device_name) VALUES('a')"_s);
    if (status.isEmpty())
        QVERIFY(QFile::remove(host.path(u"case/Source1/source.json"_s)));
    const host_result result = host.run({u"show"_s, u"case"_s});
    QCOMPARE(result.errors, message);
    QCOMPARE(result.exit_code, exit_code);
    QVERIFY(result.output.endsWith(u"devices         1 row\npaired_devices  0 rows\n"_s));
}

/** A reader could keep the run from writing. */
void test_show::a_run_that_goes_on_is_not_disturbed()
{
    const host_program host;
    make_case(host, 1, u"running"_s).execute(u"INSERT INTO devices(device_name) VALUES('a')"_s);
    QFile lock(host.path(u"case/Source1/.lock"_s));
    QVERIFY(lock.open(QIODevice::ReadWrite));
    QCOMPARE(::flock(lock.handle(), LOCK_EX | LOCK_NB), 0);
    const host_result result = host.run({u"show"_s, u"case"_s});
    QCOMPARE(result.errors, u"warning: Source1 is incomplete: a run works on it\n"_s);
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(result.output, legend());
}

void test_show::first_rows_on_request()
{
    const host_program host;
    make_case(host).execute(u"INSERT INTO devices(bookmark, device_name, source_file) "
                            "VALUES(0, 'a', 's'), (0, 'b', 's'), (1, 'a rather long name', 's')"_s);
    const host_result result = host.run({u"show"_s, u"case"_s, u"--rows"_s, u"2"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.output, u"devices\n"
                            "In every row shown:\n"
                            "  bookmark: 0\n"
                            "  source_file: s\n"
                            "∅ in every row shown: last_seen_time, notes\n"
                            "\n"
                            "  INT  device_name\n"
                            "  ───  ───────────\n"
                            "    1  a\n"
                            "    2  b\n"
                            "\n"_s
                                + legend() + u"devices         3 rows, 2 shown\npaired_devices  0 rows\n"_s);
}

void test_show::rows_as_records()
{
    const host_program host;
    make_case(host).execute(u"INSERT INTO devices(bookmark, device_name, source_file, notes) "
                            "VALUES(0, '', 's', NULL), (0, 'b\u202e', 's', 'n')"_s);
    const host_result result = host.run({u"show"_s, u"case"_s, u"--layout"_s, u"records"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.output, u"devices\n"
                            "In every row:\n"
                            "  bookmark: 0\n"
                            "  source_file: s\n"
                            "∅ in every row: last_seen_time\n"
                            "\n"
                            "row 1\n"
                            "  INT:         1\n"
                            "  device_name: \"\"\n"
                            "  notes:       ∅\n"
                            "\n"
                            "row 2\n"
                            "  INT:         2\n"
                            "  device_name: b\\u{202e}\n"
                            "  notes:       n\n"
                            "\n"_s
                                + legend() + u"devices         2 rows\npaired_devices  0 rows\n"_s);
}

void test_show::layout_follows_the_terminal_data()
{
    QTest::addColumn<int>("terminal"); // columns; -1: no terminal
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QString>("layout");
    QTest::addColumn<bool>("is_table");

    // clang-format off
    QTest::newRow("wide enough")        << 25 << QByteArray()     << u"auto"_s    << true;
    QTest::newRow("too narrow")         << 24 << QByteArray()     << u"auto"_s    << false;
    QTest::newRow("table by force")     << 10 << QByteArray()     << u"table"_s   << true;
    QTest::newRow("records by force")   << 80 << QByteArray()     << u"records"_s << false;
    QTest::newRow("unknown width")      << 0  << QByteArray()     << u"auto"_s    << true;
    QTest::newRow("variable, narrower") << 80 << QByteArray("24") << u"auto"_s    << false;
    QTest::newRow("variable, wider")    << 10 << QByteArray("25") << u"auto"_s    << true;
    QTest::newRow("no number")          << 10 << QByteArray("x")  << u"auto"_s    << false;
    QTest::newRow("no terminal")        << -1 << QByteArray("10") << u"auto"_s    << true;
    // clang-format on
}

void test_show::layout_follows_the_terminal()
{
    QFETCH(int, terminal);
    QFETCH(QByteArray, variable);
    QFETCH(QString, layout);
    QFETCH(bool, is_table);

    const host_program host;
    // Two blanks, three digits' heading, two blanks, eighteen letters: 25 columns.
    make_case(host).execute(u"INSERT INTO devices(device_name) VALUES('eighteen letters..')"_s);
    const QStringList arguments{u"show"_s, u"case"_s, u"--layout"_s, layout};
    if (!variable.isEmpty())
        qputenv("COLUMNS", variable);
    QString output;
    if (terminal == -1) {
        output = host.run(arguments).output;
    } else {
        pseudo_terminal stream(terminal);
        QCOMPARE(stream.run(host, arguments, STDOUT_FILENO).exit_code, 0);
        output = QString::fromUtf8(stream.text());
    }
    qunsetenv("COLUMNS");
    QVERIFY2(output.contains(u"  INT  device_name\n"_s) == is_table, qPrintable(output));
    QVERIFY2(output.contains(u"row 1\n"_s) != is_table, qPrintable(output));
}

/** It would run what the file's author put into it. */
void test_show::a_view_is_no_result_table()
{
    const host_program host;
    const sqlite_file database = make_case(host);
    database.execute(u"DROP TABLE devices"_s);
    database.execute(
        u"CREATE VIEW devices AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i FROM n) SELECT i FROM n"_s);
    const host_result result = host.run({u"show"_s, u"case"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.output, legend() + u"paired_devices  0 rows\n"_s);
    const host_result asked = host.run({u"show"_s, u"case"_s, u"--table"_s, u"devices"_s});
    QCOMPARE(asked.exit_code, 3);
    QCOMPARE(asked.errors, u"error: the result database "_s + database.path() + u" holds no table devices\n"_s);
}

void test_show::many_rows_take_little_memory()
{
    if (is_sanitized)
        QSKIP("the sanitizer takes memory of its own");
    if (!QFile::exists(u"/proc/self/status"_s))
        QSKIP("no /proc");
    constexpr int rows = 100000;
    constexpr int most_kilobytes = 40 * 1024; // 30 of them are the libraries that read images and archives
    const host_program host;
    make_case(host).execute(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < "_s
                            + QString::number(rows)
                            + u") INSERT INTO devices(device_name, last_seen_time, source_file, notes) SELECT "
                              "'Anna’s headphones ' || i, i, '/evidence/source', printf('%0300d', i) FROM n"_s);
    QProcess process;
    host.start(process, {u"show"_s, u"case"_s});
    QVERIFY(process.waitForStarted());
    const QString number = QString::number(process.processId());
    QFile children(u"/proc/"_s + number + u"/task/"_s + number + u"/children"_s); // the one that reads
    QVERIFY(process.waitForReadyRead(60000) && children.open(QIODevice::ReadOnly));
    QFile status(u"/proc/"_s + QString::fromLatin1(children.readAll().trimmed()) + u"/status"_s);
    process.setReadChannel(QProcess::StandardOutput);
    int lines = 0;
    int peak = 0;
    do {
        // It waits for room in the pipe as long as we do not read.
        if (status.open(QIODevice::ReadOnly)) {
            static const QRegularExpression field(u"VmHWM:\\s+(\\d+) kB"_s);
            peak = qMax(peak, field.match(QString::fromLatin1(status.readAll())).captured(1).toInt());
            status.close();
        }
        lines += int(process.readAllStandardOutput().count('\n'));
    } while (process.waitForReadyRead(60000));
    QVERIFY(process.state() == QProcess::NotRunning || process.waitForFinished());
    QCOMPARE(process.exitCode(), 0);
    QVERIFY(lines > rows);
    QVERIFY2(peak > 0 && peak < most_kilobytes, qPrintable(QString::number(peak)));
}

BLUETOOTH_LOGS_TEST(test_show, QCoreApplication)

#include "test_show.moc"
