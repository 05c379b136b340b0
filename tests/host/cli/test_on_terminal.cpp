// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/host/pseudo_terminal.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QRegularExpression>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

/** Progress and colours are for terminals; here standard error is one. */
class test_on_terminal : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void standard_error_data();
    void standard_error();
    void progress_keeps_to_the_width();
    void no_color_goes_for_wrong_use_too();

private:
    static QByteArray errors_on_terminal(const host_program &host, const QStringList &arguments,
                                         const QByteArray &variable, int columns, int &exit_code);
};

/** What the program writes to a terminal that is its standard error. @p variable is set to "1", TERM to "dumb". */
QByteArray test_on_terminal::errors_on_terminal(const host_program &host, const QStringList &arguments,
                                                const QByteArray &variable, int columns, int &exit_code)
{
    const QByteArray old_term = qgetenv("TERM");
    qputenv("TERM", variable == "TERM" ? "dumb" : "xterm");
    if (variable == "NO_COLOR")
        qputenv(variable.constData(), "1");
    pseudo_terminal terminal(columns);
    exit_code = terminal.run(host, arguments, STDERR_FILENO).exit_code;
    qunsetenv("NO_COLOR");
    qputenv("TERM", old_term);
    return terminal.text();
}

void test_on_terminal::standard_error_data()
{
    QTest::addColumn<QString>("options");
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("part");
    QTest::addColumn<bool>("is_there");

    // clang-format off
    QTest::newRow("progress")                  << u"-i sample/macos -o case"_s            << QByteArray()           << QByteArray("\r\033[KExtracting: table 2 of 2, 1,020 rows") << true;
    QTest::newRow("progress is cleared")       << u"-i sample/macos -o case"_s            << QByteArray()           << QByteArray(" left\r\033[K")            << true;
    QTest::newRow("bytes and percent")         << u"-i sample/macos -o case"_s            << QByteArray()           << QByteArray("1,020 rows, 50 % of 2")    << true;
    QTest::newRow("quiet")                     << u"-i sample/macos -o case -q"_s         << QByteArray()           << QByteArray("\033")                     << false;
    QTest::newRow("no progress in the log")    << u"-i sample/macos -o case -v"_s         << QByteArray()           << QByteArray("\033")                     << false;
    QTest::newRow("dumb terminal")             << u"-i sample/macos -o case"_s            << QByteArray("TERM")     << QByteArray("\033")                     << false;
    QTest::newRow("colour")                    << u"-i nothing -o case"_s                 << QByteArray()           << QByteArray("\033[1;31merror:\033[0m there is no source at ") << true;
    QTest::newRow("no colour by option")       << u"-i nothing -o case --no-color"_s      << QByteArray()           << QByteArray("\033")                     << false;
    QTest::newRow("no colour by environment")  << u"-i nothing -o case"_s                 << QByteArray("NO_COLOR") << QByteArray("\033")                     << false;
    QTest::newRow("no colour on dumb")         << u"-i nothing -o case"_s                 << QByteArray("TERM")     << QByteArray("\033")                     << false;
    QTest::newRow("escape in a path")          << u"-i \033[2J -o case --no-color"_s      << QByteArray()           << QByteArray("\\u{1b}[2J")               << true;
    // clang-format on
}

void test_on_terminal::standard_error()
{
    QFETCH(QString, options);
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, part);
    QFETCH(bool, is_there);
    const host_program host;
    host.write_sample();

    int exit_code = -1;
    const QByteArray errors = errors_on_terminal(host, u"extract "_s.append(options).split(u' '), variable, 0,
                                                 exit_code);
    QCOMPARE(exit_code, options.contains(u"sample"_s) ? 0 : 3);
    QVERIFY2(errors.contains(part) == is_there, errors.constData());
}

void test_on_terminal::progress_keeps_to_the_width()
{
    const host_program host;
    host.write_sample();
    int exit_code = -1;
    const QByteArray errors = errors_on_terminal(host, {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s},
                                                 QByteArray(), 20, exit_code);
    QCOMPARE(exit_code, 0);
    static const QRegularExpression line(u"\r\u001b\\[K([^\r\n]*)"_s);
    qsizetype lines = 0;
    for (const QRegularExpressionMatch &match : line.globalMatch(QString::fromUtf8(errors))) {
        QVERIFY2(match.capturedLength(1) < 20, errors.constData());
        lines += match.capturedLength(1) > 0 ? 1 : 0;
    }
    QVERIFY2(lines > 0, errors.constData());
}

void test_on_terminal::no_color_goes_for_wrong_use_too()
{
    const host_program host;
    int exit_code = -1;
    QCOMPARE(errors_on_terminal(host, {u"--no-color"_s, u"shwo"_s}, QByteArray(), 0, exit_code).first(7), "error: ");
    QCOMPARE(exit_code, 2);
    QVERIFY(errors_on_terminal(host, {u"shwo"_s}, QByteArray(), 0, exit_code).startsWith("\033[1;31merror:\033[0m "));
}

BLUETOOTH_LOGS_TEST(test_on_terminal, QCoreApplication)

#include "test_on_terminal.moc"
