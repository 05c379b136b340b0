// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/plugin_log.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QBuffer>
#include <QCryptographicHash>
#include <QTest>

using namespace Qt::StringLiterals;

class test_plugin_log : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void words_data();
    void words();
    void nothing_failed_data();
    void nothing_failed();
    void alike_failures_are_counted();
    void hash_is_of_the_whole_log();
};

namespace {

QString log_of(const QStringList &messages)
{
    QString text;
    for (const QString &message : messages)
        text += u"[2026-Nov-20T12-47-47][KALDO_DESK][Artifacts Extraction][a::b]:-- "_s + message + u'\n';
    return text;
}

QList<logged_failure> failures_in_log(const QString &log, const QStringList &known_paths)
{
    QBuffer file;
    file.setData(log.toUtf8());
    file.open(QIODevice::ReadOnly);
    return read_plugin_log(file, known_paths).failures;
}

QStringList texts(const QList<logged_failure> &failures)
{
    QStringList result;
    for (const logged_failure &failure : failures)
        result.append(QString::number(failure.count) + (failure.is_insert ? u" insert "_s : u" "_s) + failure.text);
    return result;
}

} // namespace

void test_plugin_log::words_data()
{
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<QString>("words");

    // clang-format off
    QTest::newRow("insert")         << QStringList{u" query insert file------FAILED------"_s, u"table devices has no column named model Unable to execute statement"_s, u"insert into devices(?)"_s}
                                    << u"1 insert a row could not be written: table devices has no column named model"_s;
    QTest::newRow("iOS insert")     << QStringList{u" query insert file------FAILED------/case/x.sqlite"_s, u"no column"_s, u"insert"_s}
                                    << u"1 insert a row could not be written: no column"_s;
    QTest::newRow("read warning")   << QStringList{u" -- READ WARNING -- no such table: OtherDevices"_s}
                                    << u"1 a source database could not be read, or not to its end: no such table: OtherDevices"_s;
    QTest::newRow("source log")     << QStringList{u" source file open ------FAILED-------/evidence/log"_s, u" Error :- Permission denied"_s}
                                    << u"1 the log text could not be opened: Error :- Permission denied"_s;
    QTest::newRow("read error")     << QStringList{u" start"_s, u" Error :- Input/output error"_s, u" end"_s}
                                    << u"1 the log text could not be read to its end: Input/output error"_s;
    QTest::newRow("result, macOS")  << QStringList{u"[extract_paired_devices] Destination Db opening ----FAILED---- "_s, u"unable to open database file"_s, u"/case/x.sqlite"_s}
                                    << u"1 the result database could not be opened: unable to open database file"_s;
    QTest::newRow("result, iOS")    << QStringList{u" Destination Db opening ---FAILED--- /case/x.sqlite"_s, u"unable to open"_s}
                                    << u"1 the result database could not be opened: unable to open"_s;
    QTest::newRow("copy")           << QStringList{u"[read_other_devices] Source Db opening ----FAILED---- "_s, u"unable to open"_s}
                                    << u"1 the copy of a source database could not be opened: unable to open"_s;
    QTest::newRow("table")          << QStringList{u"table creation -----FAILED---- devices"_s}
                                    << u"1 a result table could not be created"_s;
    QTest::newRow("unknown")        << QStringList{u"  something new ---FAILED--- "_s}
                                    << u"1 something new ---FAILED---"_s;
    // clang-format on
}

void test_plugin_log::words()
{
    QFETCH(QStringList, messages);
    QFETCH(QString, words);

    QCOMPARE(texts(failures_in_log(log_of(messages), {})), QStringList{words});
}

void test_plugin_log::nothing_failed_data()
{
    QTest::addColumn<QString>("log");

    // clang-format off
    QTest::newRow("empty")              << QString();
    QTest::newRow("steps")              << log_of({u"[find_source_file] start"_s, u"[find_source_file] end"_s});
    QTest::newRow("path of the source") << log_of({u"[find_source_file] file found: /e/--FAILED-- READ WARNING/Library/x.db"_s});
    QTest::newRow("not of the log")     << u"-----FAILED-----\n"_s;
    // clang-format on
}

void test_plugin_log::nothing_failed()
{
    QFETCH(QString, log);

    QCOMPARE(texts(failures_in_log(log, {u"/e/--FAILED-- READ WARNING"_s})), QStringList());
}

void test_plugin_log::alike_failures_are_counted()
{
    const QStringList insert{u" query insert file------FAILED------"_s, u"no column"_s, u"insert"_s};
    const QStringList warning{u" -- READ WARNING -- malformed"_s};
    QCOMPARE(texts(failures_in_log(log_of(insert + warning + insert + insert), {})),
             QStringList({u"3 insert a row could not be written: no column"_s,
                          u"1 a source database could not be read, or not to its end: malformed"_s}));
}

void test_plugin_log::hash_is_of_the_whole_log()
{
    QByteArray log = log_of({u"one"_s, u"two"_s}).toUtf8() + "without an end";
    QBuffer file(&log);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(read_plugin_log(file, {}).sha256,
             QString::fromLatin1(QCryptographicHash::hash(log, QCryptographicHash::Sha256).toHex()));
}

BLUETOOTH_LOGS_TEST(test_plugin_log, QCoreApplication)

#include "test_plugin_log.moc"
