// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

/** What the program prints, and that it can print it wherever it is called. */
class test_console : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void help_data();
    void help();
    void help_everywhere_data();
    void help_everywhere();
    void help_creates_nothing();
    void output_that_cannot_be_written_data();
    void output_that_cannot_be_written();
    void closed_streams_catch_no_file();
    void reader_that_goes_ends_the_program();
};

void test_console::help_data()
{
    QTest::addColumn<QString>("file");

    for (const char *command : {"sample", "extract", "collect", "verify", "note", "inspect", "report", "show", "help"})
        QTest::newRow(command) << QString::fromLatin1(command);
    QTest::newRow("") << u"bluetooth-logs"_s;
}

/**
 * Each help as a whole: help/NAME.txt. With BLUETOOTH_LOGS_WRITE_TEXTS in the environment they are written anew; what
 * is different then is to be read.
 */
void test_console::help()
{
    QFETCH(const QString, file);
    const QString path = QStringLiteral(HELP_FOLDER) + u'/' + file + u".txt"_s;
    const host_program host;
    const QString command = QString::fromLatin1(QTest::currentDataTag());
    const host_result result = host.run(command.isEmpty() ? QStringList{u"--help"_s}
                                                          : QStringList{command, u"--help"_s});
    QCOMPARE(result.exit_code, 0);
    QCOMPARE(result.errors, QString());
    if (qEnvironmentVariableIsSet("BLUETOOTH_LOGS_WRITE_TEXTS"))
        write_file(path, result.output.toUtf8());
    const QStringList lines = result.output.split(u'\n');
    QCOMPARE(lines, QString::fromUtf8(content_of(path)).split(u'\n'));
    for (const QString &line : lines) {
        QVERIFY2(line.size() <= 100, qPrintable(line));
        QVERIFY2(!line.endsWith(u' '), qPrintable(line));
    }
    if (command.isEmpty())
        QCOMPARE(host.run({u"-h"_s}).output, result.output);
}

void test_console::help_everywhere_data()
{
    QTest::addColumn<QString>("before");

    // clang-format off
    QTest::newRow("no display")     << u"unset DISPLAY; export QT_QPA_PLATFORM=wayland"_s;
    QTest::newRow("no such plugin") << u"export QT_QPA_PLATFORM=nonsense QT_DEBUG_PLUGINS=1"_s;
    QTest::newRow("fatal warnings") << u"export QT_FATAL_WARNINGS=1 QT_LOGGING_RULES='*=true'"_s;
    QTest::newRow("no home")        << u"unset HOME XDG_RUNTIME_DIR XDG_CONFIG_HOME TMPDIR"_s;
    QTest::newRow("no folder")      << u"mkdir gone; cd gone; rmdir ../gone"_s;
    QTest::newRow("no input")       << u"exec <&-"_s;
    QTest::newRow("no error")       << u"exec 2>&-"_s;
    // clang-format on
}

void test_console::help_everywhere()
{
    QFETCH(QString, before);

    const host_program host;
    for (const QString &command : {u"--version"_s, u"--help"_s, u"extract --help"_s}) {
        const host_result plain = host.run(command.split(u' '));
        const host_result result = host.run_in_shell(command, before);
        QCOMPARE(result.exit_code, 0);
        QCOMPARE(result.errors, QString());
        QVERIFY(!result.output.isEmpty());
        QCOMPARE(result.output, plain.output);
    }
}

void test_console::help_creates_nothing()
{
    const QString strace = QStandardPaths::findExecutable(u"strace"_s);
    if (strace.isEmpty())
        QSKIP("no strace");
    const host_program host;
    for (const QString &command : {u"--version"_s, u"--help"_s, u"show --help"_s}) {
        QVERIFY(QDir().mkpath(host.path(u"runtime"_s)));
        const host_result result =
            host.run_in_shell(command,
                              u"export XDG_RUNTIME_DIR=\"$PWD/runtime\" TMPDIR=\"$PWD/runtime\"; chmod 700 runtime"_s,
                              strace + u" -f -o trace -e trace=%file "_s);
        if (result.errors.contains(u"ptrace"_s))
            QSKIP("strace may not trace here");
        QCOMPARE(result.exit_code, 0);
        QFile file(host.path(u"trace"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString calls = QString::fromUtf8(file.readAll());
        QVERIFY(calls.contains(u"execve("_s));
        static const QRegularExpression making(
            u"O_CREAT|O_WRONLY|O_RDWR|\\b(mkdir|mknod|symlink|link|rename|unlink)(at|at2)?\\("_s);
        const QRegularExpressionMatch match = making.match(calls);
        QVERIFY2(!match.hasMatch(), qPrintable(calls.mid(match.capturedStart() - 100, 200)));
        QCOMPARE(QDir(host.path(u"runtime"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList());
    }
}

void test_console::output_that_cannot_be_written_data()
{
    QTest::addColumn<QString>("before");

    QTest::newRow("full") << u"exec >/dev/full"_s;
    QTest::newRow("closed") << u"exec >&-"_s;
}

void test_console::output_that_cannot_be_written()
{
    QFETCH(QString, before);

    if (!QFile::exists(u"/dev/full"_s))
        QSKIP("no /dev/full");
    const host_program host;
    for (const QString &command : {u"--version"_s, u"--help"_s, u"sample sample --force"_s}) {
        const host_result result = host.run_in_shell(command, before);
        QCOMPARE(result.exit_code, 1);
        QCOMPARE(result.errors, u"error: standard output cannot be written\n"_s);
    }
    QCOMPARE(host.run_in_shell(u"-q sample sample --force"_s, before).exit_code, 0); // nothing to be written
}

/** A file that is opened would get the number of a closed stream, and messages would go into it. */
void test_console::closed_streams_catch_no_file()
{
    const host_program host;
    host.write_sample();
    const host_result result = host.run_in_shell(u"extract -i sample/macos -o case"_s, u"exec <&- >&- 2>&-"_s);
    QCOMPARE(result.exit_code, 1);
    QFile log(host.path(u"case/Source1/plugin.log"_s));
    QVERIFY(log.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(log.readAll());
    QVERIFY(!text.isEmpty());
    QVERIFY2(!text.contains(u"Source  macOS"_s) && !text.contains(u"error: "_s), qPrintable(text));
    QCOMPARE(host.run({u"show"_s, u"case"_s}).exit_code, 0);
}

void test_console::reader_that_goes_ends_the_program()
{
    const host_program host;
    host.write_sample();
    QCOMPARE(host.run({u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s}).exit_code, 0);
    const host_result result = host.run_in_shell(u"show case | head -n 1"_s);
    QCOMPARE(result.output, u"devices\n"_s);
    QCOMPARE(result.errors, QString());
}

BLUETOOTH_LOGS_TEST(test_console, QCoreApplication)

#include "test_console.moc"
