// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/evidence_export.h"
#include "host/files/sha256.h"
#include "host/sample/sample.h"
#include "host/sample/sample_parts.h"
#include "host/source/macos_databases.h"
#include "tests/support/archive_bytes.h"
#include "tests/support/file_content.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList files_below(const QString &folder)
{
    QStringList files;
    QDirIterator all(folder, QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext())
        files.append(all.next());
    return files;
}

QString sha256_of_file(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? sha256::of(file.readAll()) : QString();
}

} // namespace

/** When the files of a container are hashed. */
class test_evidence_export : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void files_are_hashed_before_evidence_is_taken_out();
    void archive_is_hashed_once();
    void backup_in_an_archive_is_read_in_few_passes();
    void doubled_names_are_told();
    void no_hash_where_none_is_wanted();
    void encrypted_evidence_is_none();
    void surveys_of_archives_data();
    void surveys_of_archives();
    void what_is_no_container();
    void damage_is_an_error();
    void volumes_data();
    void volumes();
    void evidence_that_cannot_be_put_into_the_case();

private:
    exported_source export_from(const QString &container, const container_observers &observers);

    QTemporaryDir folder;
    QString staging;
    int exports = 0;
};

void test_evidence_export::initTestCase()
{
    sample_content content;
    content.has_containers = true;
    QCOMPARE(write_sample(folder.filePath(u"sample"_s), content, false), QStringList());
}

exported_source test_evidence_export::export_from(const QString &container, const container_observers &observers)
{
    container_choice choice;
    choice.path = folder.filePath(u"sample/"_s + container);
    const QString place = folder.filePath(u"export"_s + QString::number(++exports));
    staging = place + u"/taken"_s;
    return export_evidence(choice, {staging, place + u"/evidence"_s}, observers);
}

void test_evidence_export::files_are_hashed_before_evidence_is_taken_out()
{
    QStringList staged;
    container_observers observers;
    observers.hashed = [&](qint64) { staged += files_below(staging); };
    const exported_source taken = export_from(ios_backup_sample, observers);
    QCOMPARE(staged, QStringList());
    QVERIFY(!taken.files.isEmpty());
    QCOMPARE(taken.warnings, QStringList());
    for (const auto file : taken.container[u"files"_s].toArray())
        QCOMPARE(file[u"sha256"_s].toString(), sha256_of_file(file[u"path"_s].toString()));
}

void test_evidence_export::archive_is_hashed_once()
{
    qint64 hashed = 0;
    container_observers observers;
    observers.hashed = [&hashed](qint64 bytes) { hashed += bytes; };
    const exported_source taken = export_from(packed_sample, observers);
    const QString path = folder.filePath(u"sample/"_s + packed_sample);
    QCOMPARE(hashed, QFile(path).size());
    const QJsonArray files = taken.container[u"files"_s].toArray();
    QCOMPARE(files.size(), 1);
    QCOMPARE(files.first()[u"sha256"_s].toString(), sha256_of_file(path));
    QCOMPARE(taken.errors, QStringList());
    QCOMPARE(taken.warnings, QStringList());
}

/** A tar is appended to: the later one is what the earlier one became. */
void test_evidence_export::doubled_names_are_told()
{
    const QString name = u"macos/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;
    write_packed_sample(folder.filePath(u"sample/doubled.tar.gz"_s), folder.filePath(u"sample/"_s), {name, name, name});
    const exported_source taken = export_from(u"doubled.tar.gz"_s, {});
    QCOMPARE(taken.warnings,
             QStringList{u"the container holds 3 files of the name "_s + name + u": the last one was taken"_s});
}

/** As many as it takes to know that it is one, and one more; where it is known, one. */
void test_evidence_export::backup_in_an_archive_is_read_in_few_passes()
{
    const QString archive = folder.filePath(u"backup.tar"_s);
    QCOMPARE(QProcess::execute(u"tar"_s, {u"-cf"_s, archive, u"-C"_s, folder.filePath(u"sample"_s), ios_backup_sample}),
             0);
    for (const source_kind *kind : {&ios_backup_kind, static_cast<const source_kind *>(nullptr)}) {
        qint64 read = 0;
        qint64 hashed = 0;
        container_observers observers;
        observers.read = [&read](qint64 bytes) { read += bytes; };
        observers.hashed = [&hashed](qint64 bytes) { hashed += bytes; };
        container_choice choice;
        choice.path = archive;
        choice.kind = kind;
        const QString place = folder.filePath(u"export"_s + QString::number(++exports));
        const exported_source taken = export_evidence(choice, {place + u"/taken"_s, place + u"/evidence"_s}, observers);
        QCOMPARE(taken.kind, &ios_backup_kind);
        QCOMPARE(taken.files.size(), 5);
        for (const collected_file &file : taken.files)
            QCOMPARE(file.objection, QString());
        QCOMPARE(read, QFile(archive).size() * (kind ? 1 : 2));
        QCOMPARE(hashed, QFile(archive).size());
    }
}

void test_evidence_export::no_hash_where_none_is_wanted()
{
    for (const QLatin1StringView container : {ios_backup_sample, packed_sample}) {
        const exported_source taken = export_from(container, {});
        for (const auto file : taken.container[u"files"_s].toArray())
            QVERIFY(file[u"sha256"_s].isNull());
    }
}

/** Each file is named with its reason; a hive that cannot be read still makes a source of Windows. */
void test_evidence_export::encrypted_evidence_is_none()
{
    const QByteArray database = "Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db";
    write_file(folder.filePath(u"sample/secret.zip"_s),
               encrypted_zip_member(database) + encrypted_zip_member(database + "-wal"));
    const QString path = folder.filePath(u"sample/secret.zip"_s);
    try {
        export_from(u"secret.zip"_s, {});
        QFAIL("it was taken");
    } catch (const host_error &error) {
        const QString reason = QString::fromLatin1(database) + u": it is encrypted; "_s + QString::fromLatin1(database)
                               + u"-wal: it is encrypted"_s;
        QVERIFY2(error.message().startsWith(QString(path + u": the evidence cannot be read: "_s + reason)),
                 qPrintable(error.message()));
        QCOMPARE(error.kind(), error_kind::not_found);
    }
    write_file(folder.filePath(u"sample/hive.zip"_s), encrypted_zip_member("Windows/System32/config/SYSTEM"));
    const exported_source taken = export_from(u"hive.zip"_s, {});
    QCOMPARE(taken.kind, &winos_kind);
    QCOMPARE(taken.files.size(), 1);
    QCOMPARE(taken.files.first().objection, u"it is encrypted"_s);
}

/** What would be taken, and what is said of the rest. */
void test_evidence_export::surveys_of_archives_data()
{
    QTest::addColumn<QByteArray>("archive");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("evidence"); // "path, bytes"
    QTest::addColumn<QString>("problem");
    QTest::addColumn<int>("reason");
    QTest::addColumn<QStringList>("warnings");

    const QByteArray end(1024, '\0');
    const QByteArray database = "Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db";
    const QByteArray paired = "Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db";
    const QByteArray hive = "Windows/System32/config/SYSTEM";
    const QByteArray line = "May 17 12:11:05 p s[1] <Notice>: x\n";
    const auto name = [](const QByteArray &path) { return QString::fromLatin1(path); };
    const QString above = u" is not read: its name leads to a folder above"_s;
    const QString fifo = u" is not read: it is not a regular file"_s;
    const int complete = int(error_kind::incomplete);
    const int nothing = int(error_kind::not_found);
    const QString cut = u"the container cannot be read to its end: truncated"_s;
    // clang-format off
    QTest::newRow("databases")      << tar_member(database, "d") + tar_member(paired, "pp") + end << u"macOS"_s
        << QStringList{name(database) + u", 1"_s, name(paired) + u", 2"_s} << QString() << complete << QStringList();
    QTest::newRow("one is refused") << tar_member(database, "d") + tar_member("../" + paired, "pp") + end << u"macOS"_s
        << QStringList{name(database) + u", 1"_s, u"../"_s + name(paired) + u", 2"_s} << QString(u"../"_s + name(paired) + above) << complete << QStringList();
    QTest::newRow("all are refused") << tar_member("../" + database, "d") + tar_member(paired, {}, '6') + end << u"macOS"_s
        << QStringList{u"../"_s + name(database) + u", 1"_s, name(paired) + u", 0"_s} << QString(u"../"_s + name(database) + above + u"; "_s + name(paired) + fifo) << nothing << QStringList();
    QTest::newRow("a log beside none") << tar_member(database + "-wal", "w") + tar_member(database, {}, '6') + end << u"macOS"_s
        << QStringList{name(database) + u", 0"_s, name(database) + u"-wal, 1"_s} << QString(name(database) + fifo) << nothing << QStringList();
    QTest::newRow("a hive")         << tar_member(hive, {}, '6') + end << u"winOS"_s << QStringList{name(hive) + u", 0"_s} << QString(name(hive) + fifo) << complete << QStringList();
    QTest::newRow("a device's log") << tar_member("x/a.log", line) + end << u"iOS_UID"_s << QStringList{u"x/a.log, 35"_s} << QString() << complete << QStringList();
    QTest::newRow("nothing")        << tar_member("a", "b") + end << QString() << QStringList() << u"there is no evidence in it: as a log text, no line of it looks like one of a device's log"_s << nothing << QStringList();
    QTest::newRow("a choice")       << tar_member("a", line) + tar_member("b", line) + end << QString() << QStringList() << u"there are several device logs, choose one: --member a, --member b"_s << int(error_kind::refused) << QStringList();
    QTest::newRow("other letters")  << tar_member(database.toLower(), "d") + tar_member(paired, "p") + end << u"macOS"_s << QStringList{name(paired) + u", 1"_s} << QString() << complete
        << QStringList{u"passed over in the archive, it is named as evidence but for letter case or the form of Unicode: "_s + name(database).toLower()};
    QTest::newRow("cut behind it")  << QByteArray(tar_member(database, "d") + tar_member("a", QByteArray(9000, 'x'))).chopped(5000) << u"macOS"_s << QStringList{name(database) + u", 1"_s} << cut << complete << QStringList();
    QTest::newRow("cut, and refused") << QByteArray(tar_member("../" + database, "d") + tar_member("a", QByteArray(9000, 'x'))).chopped(5000) << u"macOS"_s
        << QStringList{u"../"_s + name(database) + u", 1"_s} << QString(u"../"_s + name(database) + above + u"; "_s + cut) << nothing << QStringList();
    // clang-format on
}

void test_evidence_export::surveys_of_archives()
{
    QFETCH(const QByteArray, archive);
    QFETCH(const QString, problem);
    const QTemporaryDir place;
    container_choice choice;
    choice.path = place.filePath(u"a.tar"_s);
    write_file(choice.path, archive);
    qint64 read = 0;
    const container_survey found = survey_container(choice, [&read](qint64 bytes) { read += bytes; });
    QTEST(found.kind ? QString(found.kind->name) : QString(), "kind");
    QStringList evidence;
    for (const collected_file &file : found.evidence)
        evidence.append(file.origin.path + u", "_s + QString::number(file.size));
    QTEST(evidence, "evidence");
    const bool is_cut = problem.endsWith("truncated"_L1); // in the words of the library
    QCOMPARE(is_cut ? found.problem.first(qMin(problem.size(), found.problem.size())) : found.problem, problem);
    QCOMPARE(!found.damage.isEmpty(), is_cut);
    QTEST(int(found.reason), "reason");
    QTEST(found.warnings, "warnings");
    QCOMPARE(found.container.kind, u"archive"_s);
    QVERIFY(!found.is_in_place && found.volumes.isEmpty());
    QCOMPARE(read, archive.size());
    QCOMPARE(QDir(place.path()).entryList(QDir::Files), QStringList{u"a.tar"_s});
}

void test_evidence_export::what_is_no_container()
{
    container_choice choice;
    choice.path = folder.filePath(u"text"_s);
    write_file(choice.path, "a text\n");
    try {
        survey_container(choice, [](qint64) {});
        QFAIL("it was opened");
    } catch (const host_error &error) {
        QCOMPARE(error.message(), QString(u"this is no container that is known: "_s + choice.path));
        QCOMPARE(error.kind(), error_kind::not_found);
    }
    choice.path = folder.filePath(u"sample/"_s + ios_files_sample);
    const container_survey found = survey_container(choice, [](qint64) {});
    QVERIFY(found.is_in_place);
    QCOMPARE(found.kind, &ios_files_kind);
}

void test_evidence_export::damage_is_an_error()
{
    const QByteArray database = "Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db";
    const QByteArray cut = QByteArray(tar_member(database, "d") + tar_member("a", QByteArray(9000, 'x'))).chopped(5000);
    write_file(folder.filePath(u"sample/cut.tar"_s), cut);
    const exported_source taken = export_from(u"cut.tar"_s, {});
    QCOMPARE(taken.kind, &macos_kind);
    QCOMPARE(taken.files.size(), 1);
    QCOMPARE(taken.errors.size(), 1);
    QVERIFY(taken.errors.first().startsWith(u"the container cannot be read to its end: truncated"_s));

    write_file(folder.filePath(u"sample/none.tar"_s), tar_member("a", QByteArray(9000, 'x')).chopped(5000));
    try {
        export_from(u"none.tar"_s, {});
        QFAIL("something was taken");
    } catch (const host_error &error) {
        QVERIFY2(error.message().startsWith(folder.filePath(u"sample/none.tar: there is no evidence in it"_s)),
                 qPrintable(error.message()));
        QVERIFY2(error.message().contains(u"; the container cannot be read to its end: truncated"_s),
                 qPrintable(error.message()));
    }
}

/** Which of the volumes of an image is taken. */
void test_evidence_export::volumes_data()
{
    QTest::addColumn<QList<looked_volume>>("looked");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<QString>("chosen"); // its number, or what is said
    QTest::addColumn<QStringList>("unread");

    const auto volume = [](int number, const QString &system, const source_kind *kind, const QString &name = {},
                           const QString &problem = {}, bool is_encrypted = false) {
        looked_volume looked;
        looked.facts.number = number;
        looked.facts.offset = 512 * number;
        looked.facts.file_system = system;
        looked.facts.name = name;
        looked.facts.problem = problem;
        looked.facts.is_encrypted = is_encrypted;
        looked.kind = kind;
        return looked;
    };
    const looked_volume boot = volume(1, u"fat16"_s, nullptr, u"EFI"_s);
    const looked_volume mac = volume(2, u"apfs"_s, &macos_kind, u"Data"_s);
    const looked_volume windows = volume(3, u"ntfs"_s, &winos_kind);
    const looked_volume secret = volume(2, u"apfs"_s, nullptr, u"Data"_s, u"it is encrypted"_s, true);
    const looked_volume unknown = volume(3, {}, nullptr);
    const QStringList unread{u"not looked into: volume 2 at 1024 (apfs, Data): it is encrypted"_s};
    // clang-format off
    QTest::newRow("the only one")     << QList<looked_volume>{boot, mac} << 0 << u"2"_s << QStringList();
    QTest::newRow("asked for")        << QList<looked_volume>{boot, mac, windows} << 3 << u"3"_s << QStringList();
    QTest::newRow("the other")        << QList<looked_volume>{boot, mac, windows} << 2 << u"2"_s << QStringList();
    QTest::newRow("one beside it is encrypted") << QList<looked_volume>{boot, secret, windows} << 0 << u"3"_s << unread;
    QTest::newRow("a choice")         << QList<looked_volume>{boot, mac, windows} << 0
        << u"there is evidence in several volumes, choose one: --volume 2 (macOS, volume 2 at 1024 (apfs, Data)); --volume 3 (winOS, volume 3 at 1536 (ntfs))"_s << QStringList();
    QTest::newRow("no such volume")   << QList<looked_volume>{boot, mac, unknown} << 4
        << u"there is no volume 4, choose one of these by --volume: volume 1 at 512 (fat16, EFI); volume 2 at 1024 (apfs, Data); volume 3 at 1536 (no file system that is known)"_s << QStringList();
    QTest::newRow("without evidence") << QList<looked_volume>{boot, mac} << 1 << u"there is no evidence in volume 1 at 512 (fat16, EFI)"_s << QStringList();
    QTest::newRow("nothing")          << QList<looked_volume>{boot, unknown} << 0
        << u"there is no evidence in it; these volumes were looked at: volume 1 at 512 (fat16, EFI); volume 3 at 1536 (no file system that is known)"_s << QStringList();
    QTest::newRow("nothing, and one is encrypted") << QList<looked_volume>{boot, secret} << 0
        << u"there is no evidence in what can be read, and a volume is encrypted; these were looked at: volume 1 at 512 (fat16, EFI); volume 2 at 1024 (apfs, Data): it is encrypted"_s << unread;
    // clang-format on
}

void test_evidence_export::volumes()
{
    QFETCH(const QList<looked_volume>, looked);
    QFETCH(const int, wanted);
    container_choice choice;
    choice.volume = wanted;
    QString chosen;
    try {
        chosen = QString::number(chosen_volume(looked, choice).facts.number);
    } catch (const host_error &error) {
        chosen = error.message();
        const bool is_choice = chosen.contains(u"choose one"_s);
        QCOMPARE(error.kind(), is_choice ? error_kind::refused : error_kind::not_found);
    }
    QTEST(chosen, "chosen");
    QTEST(unread_volumes(looked), "unread");
}

void test_evidence_export::evidence_that_cannot_be_put_into_the_case()
{
    const QString place = folder.filePath(u"export"_s + QString::number(exports + 1) + u"/evidence/"_s)
                          + path_in_source(other_devices_database);
    QVERIFY(QDir().mkpath(place + u"/in the way"_s));
    try {
        export_from(packed_sample, {});
        QFAIL("it was put there");
    } catch (const host_error &error) {
        QCOMPARE(error.message(),
                 QString(u"the evidence cannot be put into the case: "_s + place + u": is a directory"_s));
        QCOMPARE(error.kind(), error_kind::incomplete);
    }
}

BLUETOOTH_LOGS_TEST(test_evidence_export, QCoreApplication)
#include "test_evidence_export.moc"
