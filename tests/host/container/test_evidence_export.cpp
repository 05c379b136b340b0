// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/evidence_export.h"
#include "host/files/sha256.h"
#include "host/sample/sample.h"
#include "host/sample/sample_parts.h"
#include "tests/support/archive_bytes.h"
#include "tests/support/file_content.h"
#include "tests/support/test_entry.h"

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

BLUETOOTH_LOGS_TEST(test_evidence_export, QCoreApplication)
#include "test_evidence_export.moc"
