// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/evidence_check.h"
#include "host/files/file_times.h"
#include "host/files/sha256.h"
#include "host/files/utc_time.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

void set_time(const QString &path, qint64 seconds)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite)
            && file.setFileTime(QDateTime::fromSecsSinceEpoch(seconds), QFileDevice::FileModificationTime));
}

void set_other_time(const QString &path)
{
    set_time(path, 1'000'000'001);
}

/** A source that was taken out of an image of two segments, and where they lie now. */
struct made_image
{
    made_image()
        : first(folder.filePath(u"disk.001"_s))
        , second(folder.filePath(u"disk.002"_s))
    {
        write_file(first, "one");
        write_file(second, "two!");
        set_time(first, 1'000'000'000);
        set_time(second, 1'000'000'000);
        request.directory = folder.filePath(u"case"_s);
        recorded.number = 3;
        recorded.path = first;
        recorded.container = QJsonObject{{u"files"_s, QJsonArray{state_of(first), state_of(second)}}};
    }

    static QJsonObject state_of(const QString &path)
    {
        struct stat status = {};
        ::stat(QFile::encodeName(path).constData(), &status);
        return {{u"path"_s, path},
                {u"size"_s, qint64(status.st_size)},
                {u"modified"_s, utc_text(modification_time(status))},
                {u"sha256"_s, sha256::of(content_of(path))}};
    }

    /** Its files' hashes were left out when it was read. */
    void without_hashes()
    {
        QJsonArray files = recorded.container[u"files"_s].toArray();
        for (auto file : files) {
            QJsonObject members = file.toObject();
            members.insert(u"sha256"_s, QJsonValue());
            file = members;
        }
        recorded.container = QJsonObject{{u"files"_s, files}};
    }

    void move_to(const QString &name)
    {
        QVERIFY(QDir().mkpath(folder.filePath(name)));
        for (const QString &file : {u"disk.001"_s, u"disk.002"_s})
            QVERIFY(QFile::rename(folder.filePath(file), folder.filePath(name + u'/' + file)));
    }

    check_outcome check() const
    {
        check_outcome outcome;
        check_evidence(request, recorded, outcome);
        return outcome;
    }

    QTemporaryDir folder;
    QString first;
    QString second;
    source_record recorded;
    check_request request;
};

using image_change = std::function<void(made_image &)>;

QList<compared_file::finding> findings_of(const check_outcome &outcome)
{
    QList<compared_file::finding> findings;
    for (const compared_file &file : outcome.files)
        findings.append(file.outcome);
    return findings;
}

using finding = compared_file::finding;

} // namespace

class test_evidence_check : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void container_data();
    void container();
    void stored_hashes_data();
    void stored_hashes();
    void folder_that_evidence_was_taken_out_of();
};

/** "%1" is the first segment, "%2" the second, "%3" the folder. */
void test_evidence_check::container_data()
{
    QTest::addColumn<image_change>("change");
    QTest::addColumn<bool>("is_hashed");
    QTest::addColumn<QList<finding>>("findings");
    QTest::addColumn<QStringList>("differences");
    QTest::addColumn<QStringList>("missing");
    QTest::addColumn<QStringList>("notes");
    const auto change = [](const image_change &made) { return made; };
    const QList<finding> alike{finding::unchanged, finding::unchanged};
    const QList<finding> one_changed{finding::unchanged, finding::changed};
    const image_change other_time = [](made_image &image) { set_other_time(image.second); };
    const image_change longer = [](made_image &image) { write_file(image.second, "longer"); };
    const image_change other_content = [](made_image &image) { write_file(image.second, "2two"); };
    const image_change gone = [](made_image &image) { QVERIFY(QFile::remove(image.second)); };
    const image_change moved = [](made_image &image) {
        image.move_to(u"new"_s);
        set_other_time(image.folder.filePath(u"new/disk.002"_s));
        image.request.moved_to = {{3, image.folder.filePath(u"new/disk.001"_s)}};
    };
    const image_change folder_moved = [](made_image &image) {
        image.move_to(u"new"_s);
        image.request.moved_to = {{3, image.folder.filePath(u"new"_s)}};
    };
    const image_change another_moved = [](made_image &image) {
        set_other_time(image.second);
        image.request.moved_to = {{4, u"/elsewhere"_s}};
    };
    const image_change without_hashes = [](made_image &image) { image.without_hashes(); };
    const QString sizes = u"%2 was changed: it had 4 bytes, and has 6"_s;
    const QString hashes = u"%2 was changed: its SHA-256 was "_s + sha256::of("two!") + u" and is "_s;

    // clang-format off
    QTest::newRow("unchanged")           << change([](made_image &) {}) << false << alike << QStringList{} << QStringList{} << QStringList{};
    QTest::newRow("other time")          << other_time     << false << one_changed << QStringList{u"%2 was modified, by its time"_s} << QStringList{} << QStringList{};
    QTest::newRow("other size")          << longer         << false << one_changed << QStringList{sizes} << QStringList{} << QStringList{};
    QTest::newRow("gone")                << gone           << false << QList<finding>{finding::unchanged} << QStringList{} << QStringList{u"Source3: the evidence is not there: %2"_s} << QStringList{};
    QTest::newRow("moved")               << moved          << false << alike << QStringList{} << QStringList{} << QStringList{u"%3/new/disk.002 was modified, by its time"_s};
    QTest::newRow("folder moved")        << folder_moved   << false << alike << QStringList{} << QStringList{} << QStringList{};
    QTest::newRow("another moved")       << another_moved  << false << one_changed << QStringList{u"%2 was modified, by its time"_s} << QStringList{} << QStringList{};
    QTest::newRow("hashed")              << change([](made_image &) {}) << true << alike << QStringList{} << QStringList{} << QStringList{};
    QTest::newRow("hashed, other time")  << other_time     << true << alike << QStringList{} << QStringList{} << QStringList{u"%2 has other times, and the same size"_s};
    QTest::newRow("hashed, other bytes") << other_content  << true << one_changed << QStringList{hashes + sha256::of("2two")} << QStringList{} << QStringList{u"%2 has other times, and the same size"_s};
    QTest::newRow("hashed, other size")  << longer         << true << one_changed << QStringList{hashes + sha256::of("longer"), sizes} << QStringList{} << QStringList{};
    QTest::newRow("never hashed")        << without_hashes << true << alike << QStringList{} << QStringList{} << QStringList{u"%1 was not hashed when its evidence was taken out"_s, u"%2 was not hashed when its evidence was taken out"_s};
    // clang-format on
}

void test_evidence_check::container()
{
    QFETCH(image_change, change);
    QFETCH(bool, is_hashed);
    QFETCH(QList<finding>, findings);
    QFETCH(QStringList, differences);
    QFETCH(QStringList, missing);
    QFETCH(QStringList, notes);
    made_image image;
    image.request.hashes_containers = is_hashed;
    change(image);
    const check_outcome outcome = image.check();
    const auto said = [&image](const QStringList &texts) {
        return texts.join(u'\n')
            .replace(u"%1"_s, image.first)
            .replace(u"%2"_s, image.second)
            .replace(u"%3"_s, image.folder.path());
    };
    QCOMPARE(findings_of(outcome), findings);
    QCOMPARE(outcome.differences.join(u'\n'), said(differences));
    QCOMPARE(outcome.missing.join(u'\n'), said(missing));
    QCOMPARE(outcome.notes.join(u'\n'), said(notes));
    QCOMPARE(outcome.incomplete, QStringList());
}

void test_evidence_check::stored_hashes_data()
{
    QTest::addColumn<QJsonObject>("found");
    QTest::addColumn<QStringList>("differences");
    QTest::addColumn<QStringList>("notes");
    const QString md5 = u"aa"_s;
    const QString sha1 = u"bb"_s;
    const QString start = u"%1: what it holds "_s;
    // clang-format off
    QTest::newRow("both alike") << QJsonObject{{u"md5"_s, md5}, {u"sha1"_s, sha1}}  << QStringList{} << QStringList{start + u"has the MD5 that stands in it"_s, start + u"has the SHA-1 that stands in it"_s};
    QTest::newRow("one other")  << QJsonObject{{u"md5"_s, md5}, {u"sha1"_s, u"cc"_s}} << QStringList{start + u"has the SHA-1 cc, and not bb, which stands in it"_s} << QStringList{start + u"has the MD5 that stands in it"_s};
    QTest::newRow("unreadable") << QJsonObject{{u"problem"_s, u"no"_s}}             << QStringList{start + u"cannot be hashed: no"_s} << QStringList{};
    // clang-format on
}

void test_evidence_check::stored_hashes()
{
    QFETCH(QJsonObject, found);
    QFETCH(QStringList, differences);
    QFETCH(QStringList, notes);
    made_image image;
    QJsonObject container = image.recorded.container.toObject();
    container.insert(u"stored_hashes"_s, QJsonObject{{u"md5"_s, u"aa"_s}, {u"sha1"_s, u"bb"_s}});
    image.recorded.container = container;
    QStringList asked;
    image.request.rehash_image = [&](const QString &path) {
        asked.append(path);
        return found;
    };
    QCOMPARE(image.check().notes, QStringList()); // the image is not hashed where nobody asks for it
    image.request.hashes_containers = true;
    const check_outcome outcome = image.check();
    QCOMPARE(asked, QStringList{image.first});
    QCOMPARE(outcome.differences, differences.replaceInStrings(u"%1"_s, image.first));
    QCOMPARE(outcome.notes, notes.replaceInStrings(u"%1"_s, image.first));
}

/** As a folder of an iOS file system is, which is no container and does not lie as the plug-in wants it. */
void test_evidence_check::folder_that_evidence_was_taken_out_of()
{
    const QTemporaryDir folder;
    const QString root = folder.filePath(u"system"_s);
    write_file(root + u"/private/a.db"_s, "a");
    evidence_file file;
    file.path = u"Library/Bluetooth/a.db"_s;
    file.state = evidence_file::presence::present;
    file.before = file_state{};
    file.before->sha256 = sha256::of("a");
    file.origin = QJsonObject{{u"path"_s, u"private/a.db"_s}};
    source_record recorded;
    recorded.number = 2;
    recorded.path = root;
    recorded.evidence.files = {file};
    check_request request;
    request.directory = folder.filePath(u"case"_s);
    const auto check = [&] {
        check_outcome outcome;
        check_evidence(request, recorded, outcome);
        return outcome;
    };
    QCOMPARE(findings_of(check()), {finding::unchanged});

    QVERIFY(QFile::rename(root, folder.filePath(u"moved"_s)));
    QCOMPARE(check().differences, QStringList{root + u"/private/a.db is gone"_s});
    request.moved_to = {{2, folder.filePath(u"moved"_s)}};
    QCOMPARE(findings_of(check()), {finding::unchanged});

    write_file(folder.filePath(u"moved/private/a.db"_s), "b");
    QCOMPARE(findings_of(check()), {finding::changed});
}

BLUETOOTH_LOGS_TEST(test_evidence_check, QCoreApplication)

#include "test_evidence_check.moc"
