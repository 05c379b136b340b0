// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/sanitizer.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longest_case_path = 413; // bytes, of a case whose numbers have one digit

QStringList entries_below(const QString &folder)
{
    QStringList entries;
    QDirIterator iterator(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                          QDirIterator::Subdirectories);
    while (iterator.hasNext())
        entries.append(iterator.next());
    entries.sort();
    return entries;
}

} // namespace

/** Where a case may lie, and that nothing leads the program out of it. */
class test_case_place : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void case_behind_a_link_data();
    void case_behind_a_link();
    void longest_path_works();
    void longer_path_is_refused();
    void report_goes_through_no_link_data();
    void report_goes_through_no_link();
    void little_address_space_is_enough_data();
    void little_address_space_is_enough();
};

void test_case_place::case_behind_a_link_data()
{
    QTest::addColumn<QString>("place");

    QTest::newRow("the folder above is a link") << u"link/case"_s;
    QTest::newRow("the case itself is a link") << u"case_link"_s;
}

void test_case_place::case_behind_a_link()
{
    QFETCH(QString, place);
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().mkpath(host.path(u"disk/case"_s)));
    QVERIFY(QFile::link(host.path(u"disk"_s), host.path(u"link"_s)));
    QVERIFY(QFile::link(host.path(u"disk/case"_s), host.path(u"case_link"_s)));
    const QList<QStringList> commands{
        {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, place},
        {u"collect"_s, place},
        {u"verify"_s, place},
        {u"show"_s, place, u"--rows"_s, u"1"_s},
        {u"show"_s, place + u"/Source1/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s, u"--rows"_s, u"1"_s},
        {u"report"_s, place, u"-f"_s, u"html"_s, u"-f"_s, u"sqlite"_s},
        {u"verify"_s, place, u"--record"_s, u"link/verified.json"_s},
    };
    for (const QStringList &command : commands) {
        const host_result result = host.run(command);
        QVERIFY2(result.exit_code == 0, qPrintable(command.join(u' ') + u'\n' + result.errors));
    }
    QVERIFY(QFile::exists(host.path(u"disk/case/manifest.json"_s)));
    QVERIFY(QFile::exists(host.path(u"disk/verified.json"_s)));
}

/** A path below the working folder that has as many bytes as it may. */
static QString path_of_bytes(const host_program &host, qsizetype bytes)
{
    QString path = host.path(u"long"_s);
    while (bytes - path.size() > 201)
        path += u'/' + QString(200, u'x');
    return path + u'/' + QString(bytes - path.size() - 1, u'y');
}

void test_case_place::longest_path_works()
{
    const host_program host;
    host.write_sample();
    const QString place = path_of_bytes(host, longest_case_path);
    for (const QStringList &command : QList<QStringList>{{u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, place},
                                                         {u"verify"_s, place},
                                                         {u"show"_s, place, u"--rows"_s, u"1"_s},
                                                         {u"report"_s, place, u"-f"_s, u"sqlite"_s}}) {
        const host_result result = host.run(command);
        QVERIFY2(result.exit_code == 0, qPrintable(command.first() + u'\n' + result.errors));
    }
}

void test_case_place::longer_path_is_refused()
{
    const host_program host;
    host.write_sample();
    const QString place = path_of_bytes(host, longest_case_path + 1);
    const host_result result = host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, place});
    QCOMPARE(result.errors, u"error: the path of the case has 414 bytes, and at most 413 work: SQLite opens no longer "
                            "paths: "_s
                                + place + u'\n');
    QCOMPARE(result.exit_code, 2);
    QVERIFY(!QFile::exists(host.path(u"long"_s)));
}

void test_case_place::report_goes_through_no_link_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QStringList>("options");

    QTest::newRow("to the evidence") << u"sample/macos"_s << QStringList();
    QTest::newRow("into the evidence") << u"sample/macos/Library"_s << QStringList{u"--force"_s};
    QTest::newRow("elsewhere") << u"elsewhere"_s << QStringList();
    QTest::newRow("to nothing") << u"nothing"_s << QStringList();
    QTest::newRow("by its name") << u"elsewhere"_s << QStringList{u"-o"_s, u"case/Report"_s};
    QTest::newRow("below it") << u"elsewhere"_s << QStringList{u"-o"_s, u"case/Report/tables"_s};
}

void test_case_place::report_goes_through_no_link()
{
    QFETCH(QString, target);
    QFETCH(QStringList, options);
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s}).exit_code, 0);
    QVERIFY(QDir().mkpath(host.path(u"elsewhere"_s)));
    QVERIFY(QFile::link(host.path(target), host.path(u"case/Report"_s)));
    const QStringList before = entries_below(host.path({}));

    const QStringList formats{u"-f"_s, u"html"_s, u"-f"_s, u"csv"_s, u"-f"_s, u"sqlite"_s};
    const host_result result = host.run(QStringList{u"report"_s, u"case"_s} + formats + options);
    QCOMPARE(result.exit_code, 2);
    QVERIFY2(result.errors.contains(u"a link"_s), qPrintable(result.errors));
    QCOMPARE(entries_below(host.path({})), before);
}

void test_case_place::little_address_space_is_enough_data()
{
    QTest::addColumn<QString>("command");

    for (const char *command :
         {"verify case", "show case --rows 1", "collect case", "report case -f csv --force", "note case --list"})
        QTest::newRow(command) << QString::fromLatin1(command);
}

/** Files are read for what they hold, whatever size they might have. */
void test_case_place::little_address_space_is_enough()
{
    if (is_sanitized)
        QSKIP("a sanitizer reserves terabytes");
    QFETCH(QString, command);
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s}).exit_code, 0);
    const host_result result = host.run_in_shell(command, u"ulimit -v 500000"_s); // KiB
    QVERIFY2(result.exit_code == 0, qPrintable(result.errors));
}

BLUETOOTH_LOGS_TEST(test_case_place, QCoreApplication)

#include "test_case_place.moc"
