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

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/** One step of somebody who changes evidence while it is read. @p path is a file of the evidence. */

void change_permissions(const QString &path)
{
    QVERIFY(::chmod(QFile::encodeName(path).constData(), 0604) == 0);
}

void add_a_hard_link(const QString &path)
{
    // Outside the folder whose names are compared.
    const QByteArray twin = QFile::encodeName(QFileInfo(path).path() + u"/../twin"_s);
    QVERIFY(::link(QFile::encodeName(path).constData(), twin.constData()) == 0);
}

/** The content of a file is another one, of the same size, and the times of the file are as before. */
void change_content_and_put_times_back(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat before = {};
    QVERIFY(::stat(name.constData(), &before) == 0);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(file.size() - 1) && file.write("X") == 1);
    file.close();
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    QVERIFY(::utimensat(AT_FDCWD, name.constData(), times, 0) == 0);
}

void touch(const QString &path)
{
    QVERIFY(::utimensat(AT_FDCWD, QFile::encodeName(path).constData(), nullptr, 0) == 0);
}

void touch_and_put_back(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat before = {};
    QVERIFY(::stat(name.constData(), &before) == 0);
    touch(path);
    const struct timespec times[2] = {before.st_atim, before.st_mtim};
    QVERIFY(::utimensat(AT_FDCWD, name.constData(), times, 0) == 0);
}

void put_a_file_beside(const QString &path)
{
    QFile file(QFileInfo(path).path() + u"/new.db"_s);
    QVERIFY(file.open(QIODevice::WriteOnly));
}

void remove_the_file(const QString &path)
{
    QVERIFY(QFile::remove(path));
}

void exchange_for_a_link_out(const QString &path)
{
    QVERIFY(QFile::remove(path) && QFile::link(u"/etc/passwd"_s, path));
}

} // namespace

/** What changes in the evidence during a run is told, by content and by what the file system says of its files. */
class test_evidence_change : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void change_is_told_data();
    void change_is_told();
    void record_says_what_stands_there_in_the_end_data();
    void record_says_what_stands_there_in_the_end();
    void what_was_not_hashed_is_told_data();
    void what_was_not_hashed_is_told();
    void evidence_that_vanishes_before_it_is_read_data();
    void evidence_that_vanishes_before_it_is_read();
    void file_that_comes_or_goes_beside();
    void other_files_beside_a_log_are_no_evidence();
    void change_is_told_of_a_plugin_that_crashed();

private:
    const QStringList extract_macos = {u"extract"_s, u"-i"_s, u"sample/macos"_s, u"-o"_s, u"case"_s};
    const QStringList extract_ios = {u"extract"_s, u"-i"_s, u"sample/ios/system.log"_s, u"-o"_s, u"case"_s};
};

void test_evidence_change::change_is_told_data()
{
    QTest::addColumn<QString>("file"); // below the sample
    QTest::addColumn<file_change>("change");
    QTest::addColumn<QString>("words");

    const QString database = u"macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;
    const QString preferences = u"macos/Library/Preferences/com.apple.Bluetooth.plist"_s;
    const QString log = u"ios/system.log"_s;
    const QString entry = u"its entry was changed: permissions, owner, links or times"_s;
    const QString content = u"its content was changed: its SHA-256 was "_s;
    // clang-format off
    QTest::newRow("permissions")                << database    << &change_permissions                << entry;
    QTest::newRow("hard link")                  << database    << &add_a_hard_link                   << entry;
    QTest::newRow("touched")                    << database    << &touch                             << u"it was modified"_s;
    QTest::newRow("touched, times put back")    << database    << &touch_and_put_back                << entry;
    QTest::newRow("content, times put back")    << database    << &change_content_and_put_times_back << content;
    QTest::newRow("removed")                    << database    << &remove_the_file                   << u"it is gone"_s;
    QTest::newRow("preferences, permissions")   << preferences << &change_permissions                << entry;
    QTest::newRow("preferences, content")       << preferences << &change_content_and_put_times_back << content;
    QTest::newRow("log, permissions")           << log         << &change_permissions                << entry;
    QTest::newRow("log, content")               << log         << &change_content_and_put_times_back << content;
    QTest::newRow("log, removed")               << log         << &remove_the_file                   << u"it is gone"_s;
    // clang-format on
}

void test_evidence_change::change_is_told()
{
    QFETCH(QString, file);
    QFETCH(file_change, change);
    QFETCH(QString, words);
    const host_program host;
    host.write_sample();
    const bool is_log = file.startsWith(u"ios"_s);
    const host_result result = host.run_meanwhile(is_log ? extract_ios : extract_macos, u"end"_s,
                                                  [&] { change(host.path(u"sample/"_s + file)); });
    QCOMPARE(result.exit_code, 5);
    const QString name = is_log ? u"system.log"_s : file.sliced("macos/"_L1.size());
    QVERIFY2(result.errors.contains(u"error: the evidence changed during the run: "_s + name + u": "_s + words),
             qPrintable(result.errors));
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"evidence changed"_s);
    QCOMPARE(host.source_record().value("exit_code"_L1).toInt(), 5);
}

void test_evidence_change::record_says_what_stands_there_in_the_end_data()
{
    QTest::addColumn<file_change>("change");
    QTest::addColumn<QString>("reason");

    // clang-format off
    QTest::newRow("nothing")    << &remove_the_file << QString();
    QTest::newRow("a link out") << &exchange_for_a_link_out << u"it is reached by a link that leads out of the source, to /etc/passwd: --follow-links reads it nevertheless"_s;
    // clang-format on
}

void test_evidence_change::record_says_what_stands_there_in_the_end()
{
    QFETCH(file_change, change);
    QFETCH(QString, reason);
    const host_program host;
    host.write_sample();
    const QString name = u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;
    const host_result result = host.run_meanwhile(extract_macos, u"end"_s,
                                                  [&] { change(host.path(u"sample/macos/"_s + name)); });
    QCOMPARE(result.exit_code, 5);
    QVERIFY2(result.errors.contains(u"error: the evidence changed during the run: "_s + name + u": it is gone\n"_s),
             qPrintable(result.errors));
    const QJsonObject file = host.source_record().value("evidence"_L1).toArray().at(0).toObject();
    QVERIFY(file.value("before"_L1).isObject());
    QVERIFY(file.value("after"_L1).isNull());
    QCOMPARE(file.value("reason"_L1).toString(), reason);
}

void test_evidence_change::what_was_not_hashed_is_told_data()
{
    QTest::addColumn<QString>("file"); // below the sample
    QTest::addColumn<QString>("words");

    // clang-format off
    QTest::newRow("database") << u"macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s
        << u"error: the evidence changed during the run: Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db: what the plug-in copied is not what was hashed\n"_s;
    QTest::newRow("log") << u"ios/system.log"_s << u"error: the log holds 50 lines for the table devices, and the result 0 rows\n"_s;
    // clang-format on
}

/** The host has hashed the evidence when the plug-in begins; what the plug-in reads then is another file. */
void test_evidence_change::what_was_not_hashed_is_told()
{
    QFETCH(QString, file);
    QFETCH(QString, words);
    const host_program host;
    host.write_sample();
    const QString path = host.path(u"sample/"_s + file);
    const bool is_log = file.startsWith(u"ios"_s);
    const host_result result = host.run_meanwhile(is_log ? extract_ios : extract_macos, u"extraction"_s, [&] {
        const QString other = path + u".other"_s;
        QVERIFY(QFile::copy(path, other));
        if (is_log)
            QVERIFY(QFile::resize(other, 0));
        else
            change_content_and_put_times_back(other);
        QVERIFY(QFile::remove(path) && QFile::rename(other, path));
    });
    QCOMPARE(result.exit_code, 5);
    QVERIFY2(result.errors.contains(words), qPrintable(result.errors));
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"evidence changed"_s);
}

void test_evidence_change::evidence_that_vanishes_before_it_is_read_data()
{
    QTest::addColumn<QString>("source");

    QTest::newRow("folder") << u"sample/macos"_s;
    QTest::newRow("log") << u"sample/ios/system.log"_s;
}

void test_evidence_change::evidence_that_vanishes_before_it_is_read()
{
    QFETCH(QString, source);
    const host_program host;
    host.write_sample();
    const host_result result = host.run_meanwhile({u"extract"_s, u"-i"_s, source, u"-o"_s, u"case"_s}, u"loading"_s,
                                                  [&] {
                                                      QVERIFY(QFile::rename(host.path(source), host.path(u"gone"_s)));
                                                  });
    QCOMPARE(result.exit_code, 3);
    QVERIFY2(result.errors.contains(u"error: the evidence is gone: it was there when the run was planned\n"_s),
             qPrintable(result.errors));
}

void test_evidence_change::file_that_comes_or_goes_beside()
{
    const host_program host;
    host.write_sample();
    const QString folder = host.path(u"sample/macos/Library/Bluetooth/"_s);
    QVERIFY(QFile(folder + u"old.db"_s).open(QIODevice::WriteOnly));
    const host_result result = host.run_meanwhile(extract_macos, u"end"_s, [&] {
        put_a_file_beside(folder + u"x"_s);
        remove_the_file(folder + u"old.db"_s);
    });
    QCOMPARE(result.exit_code, 5);
    const QString start = u"error: the evidence changed during the run: Library/Bluetooth/"_s;
    QCOMPARE(result.errors, start + u"new.db: it was not there before\n"_s + start + u"old.db: it is gone\n"_s);
}

void test_evidence_change::other_files_beside_a_log_are_no_evidence()
{
    const host_program host;
    host.write_sample();
    const host_result result = host.run_meanwhile(extract_ios, u"end"_s, [&host] {
        put_a_file_beside(host.path(u"sample/ios/system.log"_s));
    });
    QCOMPARE(result.exit_code, 0);
}

void test_evidence_change::change_is_told_of_a_plugin_that_crashed()
{
    // The crash comes after the wait: another process looks at the evidence then.
    host_program host;
    host.write_sample();
    const QString database = host.path(
        u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s);
    host.set_variable(u"BLUETOOTH_LOGS_FAULTY_PLUGIN_AT_LAST"_s, u"crash"_s);
    const host_result result = host.run_meanwhile(extract_macos, u"removal"_s,
                                                  [&] { change_content_and_put_times_back(database); });
    QCOMPARE(result.exit_code, 5);
    QVERIFY2(result.errors.contains(u"its content was changed: its SHA-256 was "_s), qPrintable(result.errors));
    QVERIFY2(result.errors.contains(u"error: crashed: the process that runs the plug-in ended with SIGSEGV\n"_s),
             qPrintable(result.errors));
    QCOMPARE(host.source_record().value("status"_L1).toString(), u"evidence changed"_s);
}

BLUETOOTH_LOGS_TEST(test_evidence_change, QCoreApplication)

#include "test_evidence_change.moc"
