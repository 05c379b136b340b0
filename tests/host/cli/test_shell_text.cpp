// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/shell_text.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTest>

using namespace Qt::StringLiterals;

class test_shell_text : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void word_data();
    void word();
};

void test_shell_text::word_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("word");

    // clang-format off
    QTest::newRow("plain")         << u"/evidence/mac-1.dd"_s << u"/evidence/mac-1.dd"_s;
    QTest::newRow("empty")         << QString()               << u"''"_s;
    QTest::newRow("blank")         << u"/my case"_s           << u"'/my case'"_s;
    QTest::newRow("quote")         << u"/it's"_s              << u"'/it'\\''s'"_s;
    QTest::newRow("option")        << u"-x"_s                 << u"'-x'"_s;
    QTest::newRow("special")       << u"/$(reboot);`*`"_s     << u"'/$(reboot);`*`'"_s;
    QTest::newRow("home")          << u"~"_s                  << u"'~'"_s;
    QTest::newRow("letters")       << u"/größe 客厅"_s        << u"'/größe 客厅'"_s;
    QTest::newRow("backslash")     << u"/a\\b"_s              << u"$'/a\\\\b'"_s;
    QTest::newRow("control")       << u"/a\x1b'b"_s           << u"$'/a\\x1b\\'b'"_s;
    QTest::newRow("hex digit next") << u"/\x01" "1"_s         << u"$'/\\x011'"_s;
    QTest::newRow("bidi")          << u"/\u202e"_s            << u"$'/\\xe2\\x80\\xae'"_s;
    // clang-format on
}

void test_shell_text::word()
{
    QFETCH(QString, text);
    QFETCH(QString, word);

    QCOMPARE(shell_word(text).to_string(), word);
    const QString bash = QStandardPaths::findExecutable(u"bash"_s);
    if (bash.isEmpty())
        QSKIP("no bash");
    QProcess shell;
    shell.start(bash, {u"-c"_s, u"printf %s "_s + word});
    QVERIFY(shell.waitForFinished());
    QCOMPARE(QString::fromUtf8(shell.readAllStandardOutput()), text);
}

BLUETOOTH_LOGS_TEST(test_shell_text, QCoreApplication)

#include "test_shell_text.moc"
