// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/taken_evidence.h"

#include "host/container/container_file.h"
#include "host/files/host_error.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

source_request request_of_container()
{
    source_request request;
    request.number = 3;
    request.volume = 2;
    request.member = u"in it"_s;
    request.case_directory = u"/case"_s;
    request.source = unopened_container(u"/evidence/a.zip"_s, &ios_backup_kind, true);
    request.options.max_database = 5;
    request.options.max_log = 6;
    request.options.follow_links = true;
    return request;
}

collected_file taken_file(const QString &target, const QString &sha256)
{
    collected_file file;
    file.target = target;
    file.sha256 = sha256;
    file.origin.path = u"stood/"_s + target;
    return file;
}

evidence_file seen_file(const QString &path, const QString &sha256)
{
    evidence_file file;
    file.path = path;
    file.state = evidence_file::presence::present;
    file.before = file_state{{}, 1, {}, {}, sha256};
    return file;
}

} // namespace

/** What becomes of the evidence of a container on its way to the plug-in. */
class test_taken_evidence : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void choice();
    void source();
    void source_of_a_log();
    void origins();
    void case_that_holds_something_else();
    void changes_of_the_container();
};

void test_taken_evidence::choice()
{
    const container_choice choice = choice_of(request_of_container());
    QCOMPARE(choice.path, u"/evidence/a.zip"_s);
    QCOMPARE(choice.kind, &ios_backup_kind);
    QCOMPARE(choice.volume, 2);
    QCOMPARE(choice.member, u"in it"_s);
    QVERIFY(choice.follow_links);
    QCOMPARE(choice.limits.most_database_bytes, qint64(5) << 20);
    QCOMPARE(choice.limits.most_log_bytes, qint64(6));
}

/** The plug-in takes a backup for what it reads. */
void test_taken_evidence::source()
{
    exported_source taken;
    taken.kind = &ios_backup_kind;
    taken.container = QJsonObject{{u"kind"_s, u"archive"_s}};
    taken.files = {taken_file(u"a.db"_s, u"aa"_s), taken_file(u"b.db"_s, u"bb"_s)};
    const evidence_source source = source_taken_out(request_of_container(), taken);
    QCOMPARE(source.kind, &macos_kind);
    QCOMPARE(source.type, &ios_backup_kind);
    QCOMPARE(source.recorded_kind(), &ios_backup_kind);
    QCOMPARE(source.path, u"/evidence/a.zip"_s);
    QCOMPARE(source.root, u"/case/Source3/Evidence/"_s);
    QCOMPARE(source.log_file, QString());
    QCOMPARE(source.container, taken.container);
    QCOMPARE(source.files_taken_out, QStringList({u"a.db"_s, u"b.db"_s}));
    QVERIFY(source.is_taken_out && source.follow_links);
}

void test_taken_evidence::source_of_a_log()
{
    exported_source taken;
    taken.kind = &ios_uid_kind;
    taken.log_name = u"system.log"_s;
    const evidence_source source = source_taken_out(request_of_container(), taken);
    QCOMPARE(source.kind, &ios_uid_kind);
    QCOMPARE(source.log_file, u"/case/Source3/Evidence/system.log"_s);
}

void test_taken_evidence::origins()
{
    exported_source taken;
    taken.files = {taken_file(u"whole"_s, u"aa"_s), taken_file(u"refused"_s, {}), taken_file(u"unread"_s, {}),
                   taken_file(u"not looked at"_s, {})};
    taken.files[1].objection = u"it is large"_s;
    taken.files[1].is_refused = true;
    taken.files[2].objection = u"it is damaged"_s;
    evidence_state evidence;
    evidence.files = {seen_file(u"other"_s, u"xx"_s), seen_file(u"whole"_s, u"aa"_s), evidence_file(), evidence_file()};
    evidence.files[2].path = u"refused"_s;
    evidence.files[3].path = u"unread"_s;
    add_origins(evidence, taken);
    QStringList accounts;
    for (const evidence_file &file : evidence.files)
        accounts.append(file.path + u' ' + presence_name(file.state) + u' ' + file.origin[u"path"_s].toString() + u' '
                        + file.reason);
    QCOMPARE(accounts, QStringList({u"other present  "_s, u"whole present stood/whole "_s,
                                    u"refused refused stood/refused it is large"_s,
                                    u"unread unreadable stood/unread it is damaged"_s}));
}

void test_taken_evidence::case_that_holds_something_else()
{
    exported_source taken;
    taken.files = {taken_file(u"whole"_s, u"aa"_s)};
    evidence_state changed;
    changed.files = {seen_file(u"whole"_s, u"bb"_s)};
    QVERIFY_THROWS_EXCEPTION(host_error, add_origins(changed, taken));
    evidence_state gone;
    gone.files = {evidence_file()};
    gone.files[0].path = u"whole"_s;
    QVERIFY_THROWS_EXCEPTION(host_error, add_origins(gone, taken));
}

void test_taken_evidence::changes_of_the_container()
{
    const QTemporaryDir folder;
    const QString first = folder.filePath(u"a.E01"_s);
    const QString second = folder.filePath(u"a.E02"_s);
    write_file(first, "one");
    write_file(second, "two");
    const QJsonObject container{{u"files"_s, QJsonArray{file_now(first).to_json(), file_now(second).to_json()}}};
    QCOMPARE(container_changes(QJsonValue()), QStringList());
    QCOMPARE(container_changes(container), QStringList());
    write_file(second, "three");
    QCOMPARE(container_changes(container), QStringList{second + u": its size was 3 bytes and is 5"_s});
    write_file(second, "TWO");
    QFile times(first);
    QVERIFY(times.open(QIODevice::ReadWrite)
            && times.setFileTime(QDateTime::fromSecsSinceEpoch(1000), QFileDevice::FileModificationTime));
    QCOMPARE(container_changes(container),
             QStringList({first + u": it was modified"_s, second + u": it was modified"_s}));
    QVERIFY(QFile::remove(first));
    QCOMPARE(container_changes(container).value(0), QString(first + u": it is gone"_s));
}

BLUETOOTH_LOGS_TEST(test_taken_evidence, QCoreApplication)

#include "test_taken_evidence.moc"
