// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/file_content.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/** What readelf tells of the headers, the dynamic section and the symbols of a file. */
QString description_of(const QString &file)
{
    QProcess readelf;
    readelf.start(QStringLiteral(READELF), {u"-W"_s, u"-h"_s, u"-l"_s, u"-d"_s, u"--dyn-syms"_s, file});
    if (!readelf.waitForFinished() || readelf.exitCode() != 0)
        return {};
    return QString::fromUtf8(readelf.readAllStandardOutput());
}

} // namespace

/** What the compiler and the linker were told shows in the files that examiners run. */
class test_hardening : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void file_tells_protection_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("pattern");
        const QString program = QStringLiteral(PROGRAM_FILE);
        const QString plugin = QStringLiteral(PLUGIN_FILE);
        // clang-format off
        QTest::newRow("program: any address")             << program << u"Flags: .*\\bPIE\\b"_s;
        QTest::newRow("program: read-only after start")   << program << u"GNU_RELRO"_s;
        QTest::newRow("program: all found at the start")  << program << u"\\(FLAGS\\) .*BIND_NOW"_s;
        QTest::newRow("program: stack is no code")        << program << u"GNU_STACK .* RW "_s;
        QTest::newRow("program: stack protector")         << program << u"__stack_chk_fail"_s;
        QTest::newRow("program: index checks")            << program << u"__glibcxx_assert_fail"_s;
        QTest::newRow("plug-in: any address")             << plugin  << u"Type: *DYN "_s;
        QTest::newRow("plug-in: read-only after start")   << plugin  << u"GNU_RELRO"_s;
        QTest::newRow("plug-in: all found at the start")  << plugin  << u"\\(FLAGS\\) .*BIND_NOW"_s;
        QTest::newRow("plug-in: stack is no code")        << plugin  << u"GNU_STACK .* RW "_s;
        QTest::newRow("plug-in: stack protector")         << plugin  << u"__stack_chk_fail"_s;
        QTest::newRow("plug-in: index checks")            << plugin  << u"__glibcxx_assert_fail"_s;
        if (IS_OPTIMISED) {
            QTest::newRow("program: sizes in C calls")    << program << u"__mem(cpy|set|move)_chk"_s;
            QTest::newRow("plug-in: sizes in C calls")    << plugin  << u"__mem(cpy|set|move)_chk"_s;
        }
        // clang-format on
    }

    void file_tells_protection()
    {
        QFETCH(const QString, file);
        QFETCH(const QString, pattern);
        const QString description = description_of(file);
        QVERIFY(!description.isEmpty());
        QVERIFY2(QRegularExpression(pattern).match(description).hasMatch(), qPrintable(description));
    }

    /** Images and the plug-in's databases are for a few commands: their libraries are loaded by these alone. */
    void program_starts_without_needless_libraries()
    {
        const QString description = description_of(QStringLiteral(PROGRAM_FILE));
        QVERIFY(description.contains(QRegularExpression(u"NEEDED.*Qt6?Core"_s)));
        const QRegularExpression needless(u"NEEDED.*(Qt6?Sql|libtsk|libewf).*"_s);
        QCOMPARE(needless.match(description).captured(), QString());
    }

    /** x86: each function that is called through a pointer begins with this instruction. */
    void indirect_calls_have_marks()
    {
        if (!HAS_BRANCH_MARKS)
            QSKIP("not this processor, or not this compiler");
        const QByteArrayView end_branch("\xf3\x0f\x1e\xfa");
        for (const QString &file : {QStringLiteral(PROGRAM_FILE), QStringLiteral(PLUGIN_FILE)})
            QVERIFY2(content_of(file).count(end_branch) > 100, qPrintable(file));
    }
};

BLUETOOTH_LOGS_TEST(test_hardening, QCoreApplication)
#include "test_hardening.moc"
