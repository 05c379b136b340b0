// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QTest>

using namespace Qt::StringLiterals;

/** The plug-in tells of failures in its log alone: a log that lost a line is a failure. */
class test_plugin_log_is_whole : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void stands_in_the_case_and_has_its_end();
    void harmed_log_is_told_data();
    void harmed_log_is_told();
    void plugin_that_stops_early_is_told();
    void odd_texts_are_whole();

private:
    static QString log(const host_program &host)
    {
        return host.path(u"case/Source1/plugin.log"_s);
    }

    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
};

void test_plugin_log_is_whole::stands_in_the_case_and_has_its_end()
{
    host_program host;
    host.write_sample();
    host.set_variable(u"TMPDIR"_s, host.path(u"nowhere"_s));
    QCOMPARE(host.run(extract_sample).exit_code, 0);
    QFile file(log(host));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    QVERIFY(text.endsWith('\n'));
    QCOMPARE(text.count("[pub_extract_artifacts] - END\n"), 1);
    QVERIFY(!QFile::exists(host.path(u"nowhere"_s)));
}

void test_plugin_log_is_whole::harmed_log_is_told_data()
{
    QTest::addColumn<QString>("harm");

    for (const char *harm : {"truncate", "remove", "cut its end", "add a line", "replace", "make it a folder"})
        QTest::newRow(harm) << QString::fromLatin1(harm);
}

void test_plugin_log_is_whole::harmed_log_is_told()
{
    QFETCH(QString, harm);
    const host_program host;
    host.write_sample();
    const host_result result = host.run_meanwhile(extract_sample, u"removal"_s, [&] {
        QFile file(log(host));
        if (harm == "truncate"_L1)
            QVERIFY(file.resize(0));
        else if (harm == "cut its end"_L1)
            QVERIFY(file.resize(file.size() - 1));
        else if (harm == "add a line"_L1)
            QVERIFY(file.open(QIODevice::Append) && file.write("x\n") == 2);
        else
            QVERIFY(file.remove());
        if (harm == "replace"_L1)
            QVERIFY(QFile::copy(host.path(u"sample/README.txt"_s), log(host)));
        if (harm == "make it a folder"_L1)
            QVERIFY(QDir().mkpath(log(host)));
    });
    QCOMPARE(result.exit_code, 4);
    QCOMPARE(result.errors, u"error: the plug-in's log, plugin.log, does not hold all that the plug-in wrote into it: "
                            "failures may be missing there\n"_s);
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"partial"_s);
}

void test_plugin_log_is_whole::plugin_that_stops_early_is_told()
{
    host_program host;
    host.write_sample();
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN"_s, u"skipped"_s);
    const host_result result = host.run(extract_sample
                                        + QStringList{u"--plugin"_s, host_program::faulty_plugin_file()});
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.startsWith(
                 u"error: the plug-in's log has no line that ends it: the plug-in stopped early\n"_s),
             qPrintable(result.errors));
}

void test_plugin_log_is_whole::odd_texts_are_whole()
{
    // Line ends, brackets and stray bytes of the source's path stand in the log, and are no fault of it.
    const host_program host;
    host.write_sample();
    const QString odd = host.path(u"a]:-- b\n[c]\u0085\U0001F600\n-FAILED-"_s);
    QVERIFY(QFile::rename(host.path(u"sample/macos"_s), odd));
    const host_result result = host.run({u"extract"_s, u"-i"_s, odd, u"-o"_s, u"case"_s});
    QCOMPARE(result.errors, QString());
    QCOMPARE(result.exit_code, 0);
}

BLUETOOTH_LOGS_TEST(test_plugin_log_is_whole, QCoreApplication)

#include "test_plugin_log_is_whole.moc"
