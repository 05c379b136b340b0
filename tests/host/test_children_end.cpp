// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

/** The processes that were started with this in their environment, and still run. */
QStringList processes_with(const QByteArray &variable)
{
    QStringList found;
    const QStringList numbers = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &number : numbers) {
        QFile environment(u"/proc/"_s + number + u"/environ"_s);
        if (environment.open(QIODevice::ReadOnly) && environment.readAll().split('\0').contains(variable))
            found.append(number);
    }
    return found;
}

} // namespace

/** However the program ends, no process of it runs on, and its case says that it is incomplete. */
class test_children_end : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void killed_program_data();
    void killed_program();
};

void test_children_end::init()
{
    strict_test::init();
    if (!QDir(u"/proc/self"_s).exists())
        QSKIP("the system shows no processes");
}

void test_children_end::killed_program_data()
{
    QTest::addColumn<QString>("fault");

    // clang-format off
    QTest::newRow("while the plug-in works")     << u"extraction wait"_s;
    QTest::newRow("while the plug-in is loaded") << u"loading wait"_s;
    // clang-format on
}

void test_children_end::killed_program()
{
    QFETCH(QString, fault);
    host_program host;
    host.write_sample();
    host.set_variable(u"TMPDIR"_s, host.path(u"temporary"_s));
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, fault);
    QVERIFY(QDir().mkpath(host.path(u"temporary"_s)));
    const QStringList extract_sample{u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
    QProcess process;
    host.start(process,
               extract_sample + QStringList{u"--no-confinement"_s, u"--plugin"_s, host_program::faulty_plugin_file()});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(host.path(u"started"_s)), 60000);
    const QByteArray mark = "BLUETOOTH_LOGS_WAITING_PLUGIN_FOLDER=" + QFile::encodeName(host.path(QString()));
    QCOMPARE(processes_with(mark).size(), 2);

    QCOMPARE(::kill(pid_t(process.processId()), SIGKILL), 0);
    QVERIFY(process.waitForFinished());
    QTRY_COMPARE_WITH_TIMEOUT(processes_with(mark), QStringList(), 10000);
    QVERIFY(QDir(host.path(u"temporary"_s)).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    if (fault.startsWith(u"loading"_s)) {
        QVERIFY(!QFile::exists(host.path(u"case"_s)));
        return;
    }
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"running"_s);

    // It may be begun anew, and is whole then.
    const host_result anew = host.run(extract_sample);
    QCOMPARE(anew.errors, QString());
    QCOMPARE(anew.exit_code, 0);
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"done"_s);
    QVERIFY(!QFile::exists(host.path(u"case/Source1/tmp"_s)));
}

BLUETOOTH_LOGS_TEST(test_children_end, QCoreApplication)

#include "test_children_end.moc"
