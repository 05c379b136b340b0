// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/property_list/property_list_file.h"
#include "host/sample/sample_parts.h"
#include "tests/host/host_program.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>
#include <QJsonDocument>
#include <QMap>
#include <QTest>

using namespace Qt::StringLiterals;

class test_sample : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void two_runs_write_the_same_bytes();
    void content_stays_what_it_was_data();
    void content_stays_what_it_was();
    void every_file_is_there();
    void containers_are_there_on_request();
    void databases_have_the_real_layout_data();
    void databases_have_the_real_layout();
    void write_ahead_logs_change_rows_data();
    void write_ahead_logs_change_rows();
    void sources_share_devices();
    void log_holds_what_the_extractor_looks_for();
    void a_sample_is_replaced_only_on_request();
    void what_is_no_sample_is_never_removed();
    void force_keeps_what_it_did_not_write();
    void nothing_is_removed_through_a_link();
    void leftovers_of_a_killed_run_go();
    void printed_lines_can_be_pasted();
};

namespace {

QMap<QString, QByteArray> hashes(const QString &folder)
{
    QMap<QString, QByteArray> result;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        QCryptographicHash hash(QCryptographicHash::Sha256);
        if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
            qFatal("%s cannot be read", qPrintable(file.fileName()));
        result.insert(file.fileName().sliced(folder.size()), hash.result());
    }
    return result;
}

using content_function = QByteArray (*)(const host_program &host);

QByteArray rows_of(const QString &file, const QString &table, const QStringList &columns)
{
    return sqlite_file(file).quoted_rows(table, columns).join(u'\n').toUtf8();
}

/** Of a database in the folder, every value; of names the bytes. */
QByteArray devices_in(const QString &folder)
{
    QByteArray rows;
    for (const auto &[file, table] :
         {std::pair(u"other"_s, u"OtherDevices"_s), std::pair(u"paired"_s, u"PairedDevices"_s)})
        rows += rows_of(folder + u"com.apple.MobileBluetooth.ledevices."_s + file + u".db"_s, table,
                        {u"Uuid"_s, u"hex(CAST(Name AS BLOB))"_s, u"NameOrigin"_s, u"Address"_s, u"ResolvedAddress"_s,
                         u"LastSeenTime"_s, u"LastConnectionTime"_s, u"GATTServiceChangeConfig"_s, u"Tags"_s,
                         u"iCloudIdentifier"_s});
    return rows;
}

QByteArray bytes_of_sample(const host_program &host, const QString &file)
{
    return content_of(host.path(u"sample/"_s + file));
}

QString macos_folder(const host_program &host)
{
    return host.path(u"sample/macos/Library/Bluetooth/"_s);
}

/** Without what the logs change. */
QByteArray main_files(const host_program &host)
{
    for (const QString &name : {u"other"_s, u"paired"_s})
        QFile::remove(macos_folder(host) + u"com.apple.MobileBluetooth.ledevices."_s + name + u".db-wal"_s);
    return devices_in(macos_folder(host));
}

QByteArray preferences(const host_program &host)
{
    const QVariant list = read_property_list(
        host.path(u"sample/macos/Library/Preferences/com.apple.Bluetooth.plist"_s));
    return QJsonDocument::fromVariant(list).toJson();
}

/** Where each file of the backup belongs. */
QByteArray backup_index(const host_program &host)
{
    return rows_of(host.path(u"sample/ios_backup/Manifest.db"_s), u"Files"_s,
                   {u"fileID"_s, u"domain"_s, u"relativePath"_s, u"flags"_s, u"file"_s});
}

} // namespace

Q_DECLARE_METATYPE(content_function)

void test_sample::content_stays_what_it_was_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<content_function>("content");
    QTest::addColumn<QByteArray>("sha256");

    const QStringList image{u"--image"_s};
    const QStringList hostile{u"--hostile"_s};
    using host = host_program;
    // clang-format off
    QTest::newRow("readme")       << QStringList() << content_function([](const host &that) { return bytes_of_sample(that, u"README.txt"_s); }) << QByteArray("2aef7b7b4e37096b");
    QTest::newRow("readme of containers") << image << content_function([](const host &that) { return bytes_of_sample(that, u"README.txt"_s); }) << QByteArray("7081a9f1b1cc47f4");
    QTest::newRow("log")          << QStringList() << content_function([](const host &that) { return bytes_of_sample(that, u"ios/system.log"_s); }) << QByteArray("2409892523137a88");
    QTest::newRow("main files")   << QStringList() << content_function(main_files) << QByteArray("135780360ff322aa");
    QTest::newRow("databases with their logs") << QStringList() << content_function([](const host &that) { return devices_in(macos_folder(that)); }) << QByteArray("670f8248d7d51ad5");
    QTest::newRow("hostile names") << hostile      << content_function([](const host &that) { return devices_in(macos_folder(that)); }) << QByteArray("c0cffbab24c97ca1");
    QTest::newRow("preferences")  << QStringList() << content_function(preferences) << QByteArray("c23542daa884d344");
    QTest::newRow("Windows")      << QStringList() << content_function([](const host &that) { return bytes_of_sample(that, u"windows/Windows/System32/config/SOFTWARE"_s); }) << QByteArray("ad829fd52eb78dbf");
    QTest::newRow("index of the backup") << image  << content_function(backup_index) << QByteArray("61dff5cf93fa5ee1");
    QTest::newRow("properties of the backup") << image << content_function([](const host &that) { return bytes_of_sample(that, u"ios_backup/Manifest.plist"_s); }) << QByteArray("7e61ff4558aecb21");
    QTest::newRow("list in the backup") << image   << content_function([](const host &that) { return bytes_of_sample(that, u"ios_backup/35/3563f4a234af8c67a8a6a664d5e70fa131739c2f"_s); }) << QByteArray("04dd8c7d5bdc7f69");
    QTest::newRow("databases of the file system") << image << content_function([](const host &that) { return devices_in(that.path(u"sample/ios_files/private/var/containers/Shared/SystemGroup/5A3C9E10-7B42-4D8F-9C11-0E6D2A7F4B38/Library/Database/"_s)); }) << QByteArray("670f8248d7d51ad5");
    // clang-format on
}

/** Every value is the same in each version: whoever compares two of them with samples sees their differences alone. */
void test_sample::content_stays_what_it_was()
{
    QFETCH(const QStringList, options);
    QFETCH(const content_function, content);
    QFETCH(const QByteArray, sha256);
    const host_program host;
    QCOMPARE(host.run(QStringList{u"sample"_s, u"sample"_s} + options).exit_code, 0);
    const QByteArray found = content(host);
    QVERIFY(found.size() > 50);
    QCOMPARE(QCryptographicHash::hash(found, QCryptographicHash::Sha256).toHex().first(16), sha256);
}

void test_sample::two_runs_write_the_same_bytes()
{
    const host_program host;
    QCOMPARE(host.run({u"sample"_s, u"one"_s}).exit_code, 0);
    QCOMPARE(host.run({u"sample"_s, u"two"_s}).exit_code, 0);
    QCOMPARE(hashes(host.path(u"one"_s)), hashes(host.path(u"two"_s)));
}

void test_sample::every_file_is_there()
{
    const host_program host;
    QCOMPARE(host.run({u"sample"_s, u"sample"_s}).exit_code, 0);
    QCOMPARE(hashes(host.path(u"sample"_s)).keys(),
             QStringList({u"/README.txt"_s, u"/ios/system.log"_s,
                          u"/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s,
                          u"/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db-wal"_s,
                          u"/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db"_s,
                          u"/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db-wal"_s,
                          u"/macos/Library/Preferences/com.apple.Bluetooth.plist"_s,
                          u"/windows/Users/anna/NTUSER.DAT"_s, u"/windows/Windows/System32/config/SOFTWARE"_s}));
    QFile plist(host.path(u"sample/macos/Library/Preferences/com.apple.Bluetooth.plist"_s));
    QVERIFY(plist.open(QIODevice::ReadOnly));
    QCOMPARE(plist.read(8), "bplist00");
    QFile readme(host.path(u"sample/README.txt"_s));
    QVERIFY(readme.open(QIODevice::ReadOnly));
    QVERIFY(readme.readAll().contains("synthetic"));
    write_file(host.path(u"usual"_s), {});
    QCOMPARE(readme.permissions(), QFile::permissions(host.path(u"usual"_s)));
}

void test_sample::containers_are_there_on_request()
{
    const host_program host;
    QCOMPARE(host.run({u"sample"_s, u"one"_s, u"--image"_s}).exit_code, 0);
    QCOMPARE(host.run({u"sample"_s, u"two"_s, u"--image"_s}).exit_code, 0);
    QCOMPARE(hashes(host.path(u"one"_s)), hashes(host.path(u"two"_s)));
    const QStringList names = hashes(host.path(u"one"_s)).keys();
    QCOMPARE(names.size(), 9 + 1 + 5 + 7);
    for (const QString &name : {u"/sample.tar.gz"_s, u"/ios_backup/Manifest.db"_s, u"/ios_backup/Manifest.plist"_s})
        QVERIFY2(names.contains(name), qPrintable(name));

    // A sample without them takes the place of one with them, and leaves nothing of it.
    QCOMPARE(host.run({u"sample"_s, u"one"_s, u"--force"_s}).exit_code, 0);
    QCOMPARE(hashes(host.path(u"one"_s)).size(), 9);
    QVERIFY(!QFile::exists(host.path(u"one/ios_backup"_s)));
    QVERIFY(!QFile::exists(host.path(u"one/ios_files"_s)));
}

void test_sample::databases_have_the_real_layout_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("table");
    QTest::addColumn<int>("rows");

    // clang-format off
    QTest::newRow("other")  << u"com.apple.MobileBluetooth.ledevices.other.db"_s  << u"OtherDevices"_s  << 1000;
    QTest::newRow("paired") << u"com.apple.MobileBluetooth.ledevices.paired.db"_s << u"PairedDevices"_s << 20;
    // clang-format on
}

void test_sample::databases_have_the_real_layout()
{
    QFETCH(QString, file);
    QFETCH(QString, table);
    QFETCH(int, rows);
    const host_program host;
    host.write_sample();

    const sqlite_file database(host.path(u"sample/macos/Library/Bluetooth/"_s + file));
    QFile header(database.path());
    QVERIFY(header.open(QIODevice::ReadOnly));
    QCOMPARE(header.read(20).last(2), QByteArray("\x02\x02")); // write-ahead log
    QCOMPARE(database.quoted_rows(u"sqlite_schema WHERE sql NOT NULL ORDER BY name"_s, {u"name"_s}),
             QStringList({u"'CustomProperties'"_s, u'\'' + table + u'\'', u"'_SqliteDatabaseProperties'"_s}));
    QCOMPARE(database.quoted_rows(u"_SqliteDatabaseProperties"_s, {u"key"_s, u"value"_s}),
             QStringList{u"'_ClientVersion'|'2'"_s});
    QCOMPARE(database.quoted_rows(table, {u"count(*)"_s}), QStringList{QString::number(rows)});
    QCOMPARE(database.quoted_rows(table
                                      + u" WHERE typeof(LastSeenTime) <> 'integer' OR LastSeenTime > 9999999 "
                                        "OR length(Uuid) <> 36 OR Uuid <> upper(Uuid)"_s,
                                  {u"count(*)"_s}),
             QStringList{u"0"_s});
}

void test_sample::write_ahead_logs_change_rows_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QStringList>("counts"); // rows, rows by the name that the log brings
    QTest::addColumn<QStringList>("counts_with_log");

    // clang-format off
    QTest::newRow("other")  << u"com.apple.MobileBluetooth.ledevices.other.db"_s  << u"OtherDevices"_s  << QStringList{u"1000|0"_s} << QStringList{u"1001|1"_s};
    QTest::newRow("paired") << u"com.apple.MobileBluetooth.ledevices.paired.db"_s << u"PairedDevices"_s << QStringList{u"20|0"_s}   << QStringList{u"20|1"_s};
    // clang-format on
}

/** SQLite itself finds the logs in order: it takes a frame with a wrong sum for the end. */
void test_sample::write_ahead_logs_change_rows()
{
    QFETCH(QString, file);
    QFETCH(QString, table);
    const host_program host;
    QCOMPARE(host.run({u"sample"_s, u"sample"_s}).exit_code, 0);
    const QString path = host.path(u"sample/macos/Library/Bluetooth/"_s + file);
    const QStringList columns{u"count(*)"_s, u"sum(Name IS 'Rental car 7')"_s};
    QTEST(sqlite_file(path).quoted_rows(table, columns), "counts_with_log");

    QCOMPARE(host.run({u"sample"_s, u"sample"_s, u"--force"_s}).exit_code, 0);
    QVERIFY(QFile::remove(path + u"-wal"_s));
    QTEST(sqlite_file(path).quoted_rows(table, columns), "counts");
}

/** What joins the sources of a sample, and where they contradict each other. */
void test_sample::sources_share_devices()
{
    const host_program host;
    QCOMPARE(host.run({u"sample"_s, u"sample"_s}).exit_code, 0);
    QFile file(host.path(u"sample/ios/system.log"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray log = file.readAll();
    const QByteArray headphones = paired_address(headphones_row).toLatin1();
    QVERIFY(log.contains(QByteArray(", PI " + headphones + R"(, Nm 'Anna\M-b\M^@\M^Ys headphones')")));
    QVERIFY(log.contains(", PI 3C:28:6D:1A:90:4E, Nm 'Car, front'"));
    QFile plist(host.path(u"sample/macos/Library/Preferences/com.apple.Bluetooth.plist"_s));
    QVERIFY(plist.open(QIODevice::ReadOnly));
    const QByteArray list = plist.readAll();
    QVERIFY(list.contains(QByteArray(headphones).replace(':', '-').toLower()));
    QVERIFY(list.contains("Conference speaker"));
    const sqlite_file paired(
        host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db"_s));
    QCOMPARE(paired.quoted_rows(u"PairedDevices WHERE Address = 'Public "_s + QString::fromLatin1(headphones) + u'\'',
                                {u"Name"_s}),
             QStringList{u"'Anna\u2019s headphones'"_s});
}

void test_sample::log_holds_what_the_extractor_looks_for()
{
    const host_program host;
    host.write_sample();
    QFile file(host.path(u"sample/ios/system.log"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray log = file.readAll();
    QCOMPARE(log.count('\n'), 4000);
    QCOMPARE(log.count("BLE device found: SFDevice ID "), 50);
    QVERIFY(log.startsWith("May 17 12:11:"));
    QVERIFY(log.contains("\nMay 18 00:0")); // half a day
    QVERIFY(log.count(" <Notice>: ") > 1000);
    QVERIFY(log.count("active device: ") > 24);
    QVERIFY(log.contains(R"(Nm 'Anna\M-b\M^@\M^Ys Buds')"));
    QVERIFY(log.contains("<private>"));
}

void test_sample::a_sample_is_replaced_only_on_request()
{
    const host_program host;
    QCOMPARE(host.run({u"sample"_s, u"sample"_s}).exit_code, 0);
    const QMap<QString, QByteArray> first = hashes(host.path(u"sample"_s));
    QFile log(host.path(u"sample/ios/system.log"_s));
    QVERIFY(log.open(QIODevice::Append) && log.write("mine") == 4);
    log.close();

    const host_result refused = host.run({u"sample"_s, u"sample"_s});
    QCOMPARE(refused.exit_code, 2);
    QCOMPARE(refused.output, QString());
    QCOMPARE(refused.errors, u"error: the folder holds a sample already, "_s + host.path(u"sample"_s)
                                 + u": --force writes it anew\n"_s);
    QVERIFY(hashes(host.path(u"sample"_s)) != first);

    QCOMPARE(host.run({u"sample"_s, u"sample"_s, u"--force"_s}).exit_code, 0);
    QCOMPARE(hashes(host.path(u"sample"_s)), first);
}

void test_sample::what_is_no_sample_is_never_removed()
{
    const host_program host;
    QVERIFY(QDir().mkpath(host.path(u"case/macos/Library"_s)));
    const host_result refused = host.run({u"sample"_s, u"case"_s, u"--force"_s});
    QCOMPARE(refused.exit_code, 2);
    QCOMPARE(refused.errors, u"error: this stands in the way, and it is no sample of this program: "_s
                                 + host.path(u"case/macos"_s) + u'\n');
    QVERIFY(QDir(host.path(u"case/macos/Library"_s)).exists());
}

void test_sample::force_keeps_what_it_did_not_write()
{
    const host_program host;
    QCOMPARE(host.run({u"sample"_s, u"sample"_s}).exit_code, 0);
    const QMap<QString, QByteArray> first = hashes(host.path(u"sample"_s));
    QVERIFY(QDir().mkpath(host.path(u"sample/ios/old/logs"_s)));
    for (const QString &name : {u"macos/Library/notes.txt"_s, u"ios/old/logs/a.log"_s, u"mine.txt"_s})
        QVERIFY(QFile(host.path(u"sample/"_s + name)).open(QIODevice::WriteOnly));

    const host_result result = host.run({u"sample"_s, u"sample"_s, u"--force"_s});
    QCOMPARE(result.exit_code, 0);
    const QString stays = u"note: this is not of the earlier sample and stays: "_s + host.path(u"sample/"_s);
    QCOMPARE(result.errors, stays + u"ios/old\n"_s + stays + u"macos/Library/notes.txt\n"_s);
    QMap<QString, QByteArray> now = hashes(host.path(u"sample"_s));
    for (const QString &name : {u"/macos/Library/notes.txt"_s, u"/ios/old/logs/a.log"_s, u"/mine.txt"_s})
        QCOMPARE(now.remove(name), 1);
    QCOMPARE(now, first);
}

void test_sample::nothing_is_removed_through_a_link()
{
    const host_program host;
    QCOMPARE(host.run({u"sample"_s, u"sample"_s}).exit_code, 0);
    QVERIFY(QDir().rename(host.path(u"sample/ios"_s), host.path(u"elsewhere"_s)));
    QVERIFY(QFile::link(host.path(u"elsewhere"_s), host.path(u"sample/ios"_s)));
    const QMap<QString, QByteArray> before = hashes(host.path(u"."_s));
    const host_result result = host.run({u"sample"_s, u"sample"_s, u"--force"_s});
    QCOMPARE(result.exit_code, 2);
    QCOMPARE(result.errors, u"error: this stands in the way, and it is no sample of this program: "_s
                                + host.path(u"sample/ios"_s) + u'\n');
    QCOMPARE(hashes(host.path(u"."_s)), before);
}

void test_sample::leftovers_of_a_killed_run_go()
{
    const host_program host;
    QCOMPARE(host.run({u"sample"_s, u"sample"_s}).exit_code, 0);
    const QMap<QString, QByteArray> first = hashes(host.path(u"sample"_s));
    for (const QString &ending : {u"-wal"_s, u"-shm"_s, u"-journal"_s}) {
        QFile file(
            host.path(u"sample/macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s + ending));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("left") == 4);
    }
    const host_result result = host.run({u"sample"_s, u"sample"_s, u"--force"_s});
    QCOMPARE(result.errors, QString());
    QCOMPARE(hashes(host.path(u"sample"_s)), first);
}

void test_sample::printed_lines_can_be_pasted()
{
    const host_program host;
    const host_result sample = host.run({u"sample"_s, u"it's a 🎧 sample"_s});
    QCOMPARE(sample.exit_code, 0);
    QStringList lines = sample.output.split(u'\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.takeFirst(), QString(u"A synthetic sample is in "_s + host.path(u"it's a 🎧 sample"_s)));
    QCOMPARE(lines.takeFirst(), u"To extract it and to see its rows:"_s);
    QCOMPARE(lines.size(), 5);
    for (const QString &line : std::as_const(lines)) {
        const host_result result = host.run_in_shell(u"--version >/dev/null"_s, line);
        QVERIFY2(result.exit_code == 0 && !result.errors.contains(u"error"_s),
                 qPrintable(line + u'\n' + result.output + result.errors));
        QVERIFY2(!result.output.isEmpty(), qPrintable(line));
    }
}

BLUETOOTH_LOGS_TEST(test_sample, QCoreApplication)

#include "test_sample.moc"
