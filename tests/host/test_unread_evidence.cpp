// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/evidence_names.h"
#include "tests/host/host_program.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/** Puts something else in the place of a file of the evidence. */

void put_nothing(const QString &path)
{
    QVERIFY(QFile::remove(path));
}

void put_a_folder(const QString &path)
{
    QVERIFY(QFile::remove(path) && QDir().mkpath(path));
}

void put_a_fifo(const QString &path)
{
    QVERIFY(QFile::remove(path) && ::mkfifo(QFile::encodeName(path).constData(), 0600) == 0);
}

void put_an_empty_file(const QString &path)
{
    QVERIFY(QFile::resize(path, 0));
}

void put_other_bytes(const QString &path)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite) && file.write("no database, this") > 0);
}

void put_a_link_to_nowhere(const QString &path)
{
    QVERIFY(QFile::remove(path) && QFile::link(u"nowhere"_s, path));
}

void put_a_link_out(const QString &path)
{
    QVERIFY(QFile::remove(path) && QFile::link(u"/etc/passwd"_s, path));
}

void put_a_link_inside(const QString &path)
{
    QVERIFY(QFile::rename(path, path + u".real"_s) && QFile::link(QFileInfo(path).fileName() + u".real"_s, path));
}

} // namespace

/** Absent, unreadable and refused are three things, each told with the file's name and the reason. */
class test_unread_evidence : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void one_of_two_data();
    void one_of_two();
    void both_data();
    void both();
    void link_out_is_read_when_it_may_be();
    void linked_folder_is_no_way_out();
    void preferences_behind_a_link();
    void closed_folder_is_not_absence();

private:
    const QStringList extract_sample = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
};

void test_unread_evidence::one_of_two_data()
{
    QTest::addColumn<file_change>("replace");
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("reason");

    // clang-format off
    QTest::newRow("nothing")         << &put_nothing           << u"absent"_s     << QString();
    QTest::newRow("folder")          << &put_a_folder          << u"refused"_s    << u"it is not a regular file"_s;
    QTest::newRow("FIFO")            << &put_a_fifo            << u"refused"_s    << u"it is not a regular file"_s;
    QTest::newRow("empty file")      << &put_an_empty_file     << u"unreadable"_s << u"it is empty, and no database"_s;
    QTest::newRow("other bytes")     << &put_other_bytes       << u"unreadable"_s << u"it is no SQLite database"_s;
    QTest::newRow("link to nowhere") << &put_a_link_to_nowhere << u"unreadable"_s << u"it is a link that leads nowhere"_s;
    QTest::newRow("link out")        << &put_a_link_out        << u"refused"_s    << u"it is reached by a link that leads out of the source, to /etc/passwd: --follow-links reads it nevertheless"_s;
    QTest::newRow("link inside")     << &put_a_link_inside     << u"present"_s    << QString();
    // clang-format on
}

void test_unread_evidence::one_of_two()
{
    QFETCH(file_change, replace);
    QFETCH(QString, state);
    QFETCH(QString, reason);
    const host_program host;
    host.write_sample();
    replace(host.path(u"sample/macos/"_s + database_folder + other_name));
    const host_result result = host.run(extract_sample);
    if (state == "present"_L1)
        QCOMPARE(result.errors, QString());
    else if (state == "absent"_L1)
        QCOMPARE(result.errors, u"note: the source holds no database for the table devices\n"_s);
    else
        QCOMPARE(result.errors, u"error: "_s + database_folder + other_name + u" was not read: "_s + reason + u'\n');
    QCOMPARE(result.exit_code, reason.isEmpty() ? 0 : 4);
    QVERIFY2(result.output.contains(u"        paired_devices         20 rows\n"_s), qPrintable(result.output));

    const QJsonObject file = host.source_record().value("evidence"_L1).toArray().at(0).toObject();
    QCOMPARE(file.value("path"_L1).toString(), database_folder + other_name);
    QCOMPARE(file.value("state"_L1).toString(), state);
    QCOMPARE(file.value("reason"_L1).toString(), reason);
}

void test_unread_evidence::both_data()
{
    QTest::addColumn<file_change>("replace");
    QTest::addColumn<bool>("is_told_before"); // the case is not made

    // clang-format off
    QTest::newRow("FIFO")            << &put_a_fifo            << true;
    QTest::newRow("link to nowhere") << &put_a_link_to_nowhere << true;
    QTest::newRow("link out")        << &put_a_link_out        << true;
    QTest::newRow("empty file")      << &put_an_empty_file     << false;
    QTest::newRow("other bytes")     << &put_other_bytes       << false;
    // clang-format on
}

void test_unread_evidence::both()
{
    QFETCH(file_change, replace);
    QFETCH(bool, is_told_before);
    const host_program host;
    host.write_sample();
    for (const QString &name : {other_name, paired_name})
        replace(host.path(u"sample/macos/"_s + database_folder + name));
    const host_result result = host.run(extract_sample + QStringList{u"-t"_s, u"macOS"_s});
    QCOMPARE(result.exit_code, 3);
    for (const QString &name : {other_name, paired_name})
        QVERIFY2(result.errors.contains(database_folder + name), qPrintable(result.errors));
    QCOMPARE(QFile::exists(host.path(u"case"_s)), !is_told_before);
    QVERIFY(!host.path(u"case"_s).isEmpty());
}

void test_unread_evidence::link_out_is_read_when_it_may_be()
{
    const host_program host;
    host.write_sample();
    const QString evidence = host.path(u"sample/macos/"_s + database_folder + other_name);
    QVERIFY(QFile::rename(evidence, host.path(u"elsewhere.db"_s)));
    QVERIFY(QFile::link(host.path(u"elsewhere.db"_s), evidence));
    const host_result result = host.run(extract_sample + QStringList{u"--follow-links"_s});
    QCOMPARE(result.errors, u"warning: "_s + database_folder + other_name
                                + u": it is reached by a link that leads out of the source, to "_s
                                + host.path(u"elsewhere.db"_s) + u'\n');
    QCOMPARE(result.exit_code, 0);
    QVERIFY(result.output.contains(u"        devices             1,000 rows\n"_s));
    const QJsonObject file = host.source_record().value("evidence"_L1).toArray().at(0).toObject();
    QVERIFY(file.value("reason"_L1).toString().endsWith(host.path(u"elsewhere.db"_s)));
}

void test_unread_evidence::linked_folder_is_no_way_out()
{
    const host_program host;
    host.write_sample();
    QVERIFY(QDir().rename(host.path(u"sample/macos/Library/Bluetooth"_s), host.path(u"elsewhere"_s)));
    QVERIFY(QFile::link(host.path(u"elsewhere"_s), host.path(u"sample/macos/Library/Bluetooth"_s)));
    const host_result result = host.run(extract_sample);
    QCOMPARE(result.exit_code, 3);
    QVERIFY2(result.errors.contains(u": it is reached by a link that leads out of the source, to "_s
                                    + host.path(u"elsewhere/"_s) + other_name),
             qPrintable(result.errors));
    QVERIFY(!QFile::exists(host.path(u"case"_s)));
}

void test_unread_evidence::preferences_behind_a_link()
{
    // Names would come from somewhere else: the rows that need them are not made.
    const host_program host;
    host.write_sample();
    const QString preferences = u"Library/Preferences/com.apple.Bluetooth.plist"_s;
    QVERIFY(QFile::rename(host.path(u"sample/macos/"_s + preferences), host.path(u"elsewhere.plist"_s)));
    QVERIFY(QFile::link(host.path(u"elsewhere.plist"_s), host.path(u"sample/macos/"_s + preferences)));
    const host_result result = host.run(extract_sample);
    QCOMPARE(result.exit_code, 4);
    QVERIFY2(result.errors.startsWith(u"error: "_s + preferences
                                      + u" was not read: it is reached by a link that leads out of the source"_s),
             qPrintable(result.errors));
    QVERIFY2(result.output.contains(u"        paired_devices          0 rows\n"_s), qPrintable(result.output));
}

void test_unread_evidence::closed_folder_is_not_absence()
{
    const host_program host;
    host.write_sample();
    const QString bluetooth = host.path(u"sample/macos/Library/Bluetooth"_s);
    for (const QString &path : {host.path(QString()), host.path(u"sample"_s), host.path(u"sample/macos"_s)})
        QCOMPARE(::chmod(QFile::encodeName(path).constData(), 0777), 0);
    QCOMPARE(::chmod(QFile::encodeName(bluetooth).constData(), 0), 0);
    // Root may look everywhere: another user is asked then.
    const QStringList as_nobody{u"setpriv"_s, u"--reuid=65534"_s, u"--regid=65534"_s, u"--clear-groups"_s};
    const host_result result = host.run_through(::geteuid() == 0 ? as_nobody : QStringList(),
                                                extract_sample + QStringList{u"-t"_s, u"macOS"_s});
    ::chmod(QFile::encodeName(bluetooth).constData(), 0755);
    if (result.exit_code == 126 || result.exit_code == 127 || result.exit_code == -1)
        QSKIP("no other user can run the program here");
    QCOMPARE(result.exit_code, 3);
    QCOMPARE(result.errors, u"error: the evidence cannot be read: "_s + bluetooth + u": permission denied\n"_s);
}

BLUETOOTH_LOGS_TEST(test_unread_evidence, QCoreApplication)

#include "test_unread_evidence.moc"
