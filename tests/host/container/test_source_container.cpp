// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/source_container.h"
#include "host/files/host_error.h"
#include "host/files/sha256.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString mac_database = u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"_s;
const QString phone_database = u"private/var/containers/Shared/SystemGroup/x/Library/Database/"
                               "com.apple.MobileBluetooth.ledevices.other.db"_s;

void make_backup_in(const QString &folder)
{
    sqlite_file(folder + u"/Manifest.db"_s).execute(u"CREATE TABLE Files(fileID, domain, relativePath)"_s);
    write_file(folder + u"/Manifest.plist"_s, R"(<?xml version="1.0"?><plist version="1.0"><dict/></plist>)");
}

using content_of_source = void (*)(const QString &folder);

/** What is opened at a path: "backup", "folder", "nothing", or why it is not. */
QString opened_at(const QString &path, const source_kind *kind)
{
    opening how;
    how.kind = kind;
    try {
        const auto container = open_container(path, how);
        if (!container)
            return u"nothing"_s;
        return container->kind() == &ios_backup_kind ? u"backup"_s : u"folder"_s;
    } catch (const host_error &error) {
        return QString::number(int(error.kind())) + u' ' + error.message().replace(path, u"$"_s);
    }
}

} // namespace

Q_DECLARE_METATYPE(content_of_source)

/** What counts as a container, and what records say of one. */
class test_source_container : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void records_data();
    void records();
    void files_of_a_container();
    void folders_data();
    void folders();
    void files_that_are_none();
    void evidence_of_a_folder();
};

void test_source_container::records_data()
{
    QTest::addColumn<container_facts>("facts");
    QTest::addColumn<QByteArray>("json");

    container_facts image;
    image.kind = u"image"_s;
    image.format = u"ewf"_s;
    container_file file;
    file.path = u"/a.E01"_s;
    file.size = 5;
    image.files = {file};
    file.path = u"/a.E02"_s;
    file.modified = u"2024"_s;
    file.sha256 = u"abc"_s;
    file.problem = u"p"_s;
    image.files.append(file);
    image.md5 = u"m"_s;
    image.volume = volume_facts();
    container_facts other = image;
    other.files.clear();
    other.md5.clear();
    other.sha1 = u"s"_s;
    other.volume->number = 3;
    other.volume->offset = 512;
    other.volume->size = 7;
    other.volume->file_system = u"apfs"_s;
    other.volume->name = u"Data"_s;
    // clang-format off
    QTest::newRow("nothing known") << container_facts() << QByteArray(R"({"files":[],"format":"","kind":"","stored_hashes":null,"volume":null})");
    QTest::newRow("image") << image << QByteArray(R"({"files":[{"modified":null,"path":"/a.E01","sha256":null,"size":5},{"modified":"2024","path":"/a.E02","sha256":"abc","size":5}],)"
        R"("format":"ewf","kind":"image","stored_hashes":{"md5":"m","sha1":null},"volume":{"file_system":null,"name":null,"number":1,"offset":0}})");
    QTest::newRow("volume") << other << QByteArray(R"({"files":[],"format":"ewf","kind":"image","stored_hashes":{"md5":null,"sha1":"s"},)"
        R"("volume":{"file_system":"apfs","name":"Data","number":3,"offset":512}})");
    // clang-format on
}

void test_source_container::records()
{
    QFETCH(const container_facts, facts);
    QTEST(QJsonDocument(facts.to_json()).toJson(QJsonDocument::Compact), "json");
}

void test_source_container::files_of_a_container()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a"_s);
    write_file(path, "content");
    container_file file = file_now(path);
    QCOMPARE(file.path, path);
    QCOMPARE(file.size, 7);
    QVERIFY(file.modified.endsWith(u'Z'));
    QCOMPARE(file.sha256, QString());
    qint64 bytes = 0;
    hash_file(file, [&bytes](qint64 more) { bytes += more; });
    QCOMPARE(file.sha256, sha256::of("content"));
    QCOMPARE(file.problem, QString());
    QCOMPARE(bytes, 7);

    container_file none = file_now(folder.filePath(u"none"_s));
    QCOMPARE(none.path, folder.filePath(u"none"_s));
    QCOMPARE(none.size, 0);
    QCOMPARE(none.modified, QString());
    hash_file(none, [](qint64) {});
    QCOMPARE(none.sha256, QString());
    QCOMPARE(none.problem, u"no such file or directory"_s);
}

void test_source_container::folders_data()
{
    QTest::addColumn<content_of_source>("content");
    QTest::addColumn<QString>("kind"); // that was asked for
    QTest::addColumn<bool>("is_there");
    QTest::addColumn<QString>("opened");

    const QString sparse =
        QString::number(int(error_kind::not_found))
        + u" the source cannot be read: $: it is a sparse bundle of macOS, which this program does not read"_s;
    const QString no_backup = QString::number(int(error_kind::not_found))
                              + u" the backup cannot be read: $: it has no Manifest.db"_s;
    const auto empty = content_of_source([](const QString &) {});
    const auto mac = content_of_source([](const QString &folder) { write_file(folder + u'/' + mac_database, "x"); });
    const auto phone = content_of_source(
        [](const QString &folder) { write_file(folder + u'/' + phone_database, "x"); });
    const auto both = content_of_source([](const QString &folder) {
        write_file(folder + u'/' + mac_database, "x");
        write_file(folder + u'/' + phone_database, "x");
    });
    const auto phone_log = content_of_source(
        [](const QString &folder) { write_file(folder + u'/' + phone_database + u"-wal"_s, "x"); });
    const auto backup = content_of_source([](const QString &folder) {
        make_backup_in(folder);
        write_file(folder + u'/' + phone_database, "x");
    });
    const auto bundle = content_of_source([](const QString &folder) {
        QDir(folder).mkdir(u"bands"_s);
        for (const QString &name : {u"Info.plist"_s, u"token"_s})
            write_file(folder + u'/' + name, {});
        make_backup_in(folder);
    });
    const auto half_bundle = content_of_source([](const QString &folder) {
        QDir(folder).mkdir(u"bands"_s);
        write_file(folder + u"/Info.plist"_s, {});
    });
    // clang-format off
    QTest::newRow("empty")                  << empty     << QString()       << false << u"nothing"_s;
    QTest::newRow("macOS")                  << mac       << QString()       << false << u"nothing"_s;
    QTest::newRow("iOS")                    << phone     << QString()       << true  << u"folder"_s;
    QTest::newRow("iOS, no sign")           << phone_log << QString()       << false << u"nothing"_s;
    QTest::newRow("macOS and iOS")          << both      << QString()       << false << u"nothing"_s;
    QTest::newRow("a backup")               << backup    << QString()       << true  << u"backup"_s;
    QTest::newRow("a sparse bundle")        << bundle    << QString()       << true  << sparse;
    QTest::newRow("half a sparse bundle")   << half_bundle << QString()     << false << u"nothing"_s;
    QTest::newRow("asked for as macOS")     << phone     << u"macOS"_s      << false << u"nothing"_s;
    QTest::newRow("asked for as Windows")   << backup    << u"winOS"_s      << false << u"nothing"_s;
    QTest::newRow("asked for as a log")     << phone     << u"iOS_UID"_s    << false << u"nothing"_s;
    QTest::newRow("asked for as iOS files") << both      << u"iOS_files"_s  << true  << u"folder"_s;
    QTest::newRow("a backup as iOS files")  << backup    << u"iOS_files"_s  << true  << u"folder"_s;
    QTest::newRow("asked for as a backup")  << phone     << u"iOS_backup"_s << true  << no_backup;
    QTest::newRow("a sparse bundle as macOS") << bundle  << u"macOS"_s      << false << sparse;
    // clang-format on
}

void test_source_container::folders()
{
    QFETCH(const content_of_source, content);
    QFETCH(const QString, kind);
    const QTemporaryDir folder;
    content(folder.path());
    const source_kind *const asked = kind.isEmpty() ? nullptr : source_kind_named(kind);
    QTEST(is_container(folder.path(), asked), "is_there");
    QTEST(opened_at(folder.path(), asked), "opened");
}

void test_source_container::files_that_are_none()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a"_s);
    QVERIFY(!is_container(path, nullptr));
    QCOMPARE(opened_at(path, nullptr), u"nothing"_s);
    write_file(path, "a text\n");
    QVERIFY(!is_container(path, nullptr));
    QCOMPARE(opened_at(path, nullptr), u"nothing"_s);
    write_file(path, "vhdxfile");
    QVERIFY(is_container(path, nullptr));
    QCOMPARE(opened_at(path, nullptr),
             QString::number(int(error_kind::not_found))
                 + u" the source cannot be read: $: it is a VHDX image, which this program does not read: convert it "
                   "first (qemu-img convert -O raw $ $.raw)"_s);
}

/** It is no container to records: its files are copied from where they stand. */
void test_source_container::evidence_of_a_folder()
{
    const QTemporaryDir folder;
    write_file(folder.filePath(phone_database), "content");
    opening how;
    how.kind = &ios_files_kind;
    const auto container = open_container(folder.path(), how);
    QVERIFY(container);
    QCOMPARE(container->facts().kind, QString());
    QVERIFY(container->facts().files.isEmpty() && container->volumes().isEmpty());
    QCOMPARE(container->kind(), nullptr);
    QCOMPARE(container->damage(), QString());
    QStringList paths;
    container->store(0)->visit(evidence_search(&ios_files_kind),
                               [&paths](const stored_file &file, byte_stream *stream) {
                                   QByteArray content(100, '\0');
                                   content.truncate(stream ? stream->read(content.data(), content.size()) : 0);
                                   paths.append(joined(file.parts) + u' ' + QString::fromUtf8(content));
                               });
    QCOMPARE(paths, QStringList{phone_database + u" content"_s});
}

BLUETOOTH_LOGS_TEST(test_source_container, QCoreApplication)

#include "test_source_container.moc"
