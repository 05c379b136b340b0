// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/sqlite_file.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

class test_show : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void every_value_is_shown();
    void one_table_on_request();
    void no_rows();
    void nothing_of_the_sample_acts_on_the_terminal();
    void database_is_not_written();
    void damaged_database_is_told();
    void database_without_tables_is_told();
    void full_disk_is_told();

private:
    static QString legend()
    {
        return u"∅ is NULL, \"\" an empty text; \\u{1b} stands for a character that is unseen or would act on the "
               "terminal, \\\\ for a backslash.\n\n"_s;
    }
    static sqlite_file make_case(const host_program &host);
};

void test_show::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

sqlite_file test_show::make_case(const host_program &host)
{
    const QString folder = host.path(u"case/Source1/Artifacts_Result/Bluetooth_Logs"_s);
    if (!QDir().mkpath(folder))
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
             u"error: the table devices of "_s + file.fileName() + u" cannot be read: file is not a database\n"_s);
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

QTEST_GUILESS_MAIN(test_show)

#include "test_show.moc"
