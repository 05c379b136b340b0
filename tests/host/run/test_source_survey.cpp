// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_survey.h"

#include "host/source/macos_databases.h"
#include "tests/host/run/scripted_worker.h"
#include "tests/support/file_content.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QJsonDocument>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/** The header of a member of a tar archive with @p content, and the content. */
QByteArray tar_member(const QByteArray &name, const QByteArray &content)
{
    QByteArray header(512, '\0');
    const auto put = [&header](qsizetype place, const QByteArray &text) { header.replace(place, text.size(), text); };
    put(0, name);
    put(100, "0000644");
    put(108, "0000000");
    put(116, "0000000");
    put(124, QByteArray::number(content.size(), 8).rightJustified(11, '0'));
    put(136, "00000000000");
    put(148, "        ");
    put(156, "0");
    put(257, "ustar");
    put(263, "00");
    int sum = 0;
    for (const char byte : std::as_const(header))
        sum += uchar(byte);
    put(148, QByteArray::number(sum, 8).rightJustified(6, '0') + QByteArray(1, '\0') + ' ');
    return header + content + QByteArray((512 - content.size() % 512) % 512, '\0');
}

/** A disk of 64 sectors with a table of two partitions, in which nothing stands. */
QByteArray empty_disk()
{
    QByteArray disk(64 * 512, '\0');
    const auto partition = [&disk](qsizetype place, char type, char first, char size) {
        disk[place + 4] = type;
        disk[place + 8] = first;
        disk[place + 12] = size;
    };
    partition(446, '\x83', 8, 16);
    partition(462, '\x83', 24, 32);
    disk[510] = '\x55';
    disk[511] = '\xaa';
    return disk;
}

} // namespace

/** What a source is said to be before anything is taken from it. */
class test_source_survey : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void in_place_data();
    void in_place();
    void containers_data();
    void containers();
    void answers_data();
    void answers();
    void worker_gets_an_order();

private:
    QString path(const QString &name) const
    {
        return folder->filePath(name);
    }
    QByteArray text_of(const QJsonObject &survey) const
    {
        return QJsonDocument(survey)
            .toJson(QJsonDocument::Compact)
            .replace(QByteArray(folder->path().toUtf8() + '/'), "");
    }

    std::unique_ptr<QTemporaryDir> folder;
};

void test_source_survey::init()
{
    strict_test::init();
    folder = std::make_unique<QTemporaryDir>();
    write_file(path(u"mac/"_s) + path_in_source(*macos_databases[0]), "content");
    write_file(path(u"log"_s), "no log");
    write_file(path(u"a.tar"_s),
               tar_member("root/" + path_in_source(*macos_databases[0]).toUtf8(), "content") + QByteArray(1024, '\0'));
    write_file(path(u"empty.tar"_s), tar_member("root/other", "content") + QByteArray(1024, '\0'));
    write_file(path(u"disk.dd"_s), empty_disk());
}

void test_source_survey::in_place_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("survey");

    // clang-format off
    QTest::newRow("folder") << u"mac"_s
        << R"json({"container":null,"evidence":[{"path":"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db","size":7}],"kind_of_problem":2,"path":"mac","problem":null,"type":"macOS","volumes":[],"warnings":[]})json"_ba;
    QTest::newRow("nothing") << u"none"_s
        << R"json({"container":null,"evidence":[],"kind_of_problem":2,"path":"none","problem":"there is no source at none","type":null,"volumes":[],"warnings":[]})json"_ba;
    // clang-format on
}

void test_source_survey::in_place()
{
    QFETCH(const QString, name);
    container_choice choice;
    choice.path = path(name);
    QTEST(text_of(survey_source(choice, 100, 1)), "survey");
}

void test_source_survey::containers_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("survey"); // "*": a time

    // clang-format off
    QTest::newRow("no container") << u"log"_s
        << R"json({"container":null,"evidence":[],"kind_of_problem":2,"path":"log","problem":"this is no container that is known: log","type":null,"volumes":[],"warnings":[]})json"_ba;
    QTest::newRow("folder") << u"mac"_s
        << R"json({"container":null,"evidence":[],"kind_of_problem":2,"path":"mac","problem":"this is no container that is known: mac","type":null,"volumes":[],"warnings":[]})json"_ba;
    QTest::newRow("container that is gone") << u"none.tar"_s
        << R"json({"container":null,"evidence":[],"kind_of_problem":2,"path":"none.tar","problem":"this is no container that is known: none.tar","type":null,"volumes":[],"warnings":[]})json"_ba;
#if READS_ARCHIVES
    QTest::newRow("archive") << u"a.tar"_s
        << R"json({"container":{"files":[{"modified":"*","path":"a.tar","sha256":null,"size":2048}],"format":"tar","kind":"archive","stored_hashes":null,"volume":null},"evidence":[{"path":"root/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db","size":7}],"kind_of_problem":3,"path":"a.tar","problem":null,"type":"macOS","volumes":[],"warnings":[]})json"_ba;
    QTest::newRow("archive without evidence") << u"empty.tar"_s
        << R"json({"container":{"files":[{"modified":"*","path":"empty.tar","sha256":null,"size":2048}],"format":"tar","kind":"archive","stored_hashes":null,"volume":null},"evidence":[],"kind_of_problem":2,"path":"empty.tar","problem":"there is no evidence in it: as a log text, no line of it looks like one of a device's log","type":null,"volumes":[],"warnings":[]})json"_ba;
#endif
#if READS_IMAGES && !BLUETOOTH_LOGS_SANITIZED // the library keeps parts of what it cannot open
    QTest::newRow("disk without evidence") << u"disk.dd"_s
        << R"json({"container":{"files":[{"modified":"*","path":"disk.dd","sha256":null,"size":32768}],"format":"raw","kind":"image","stored_hashes":null,"volume":null},"evidence":[],"kind_of_problem":2,"path":"disk.dd","problem":"there is no evidence in it; these volumes were looked at: volume 1 at 4096 (no file system that is known); volume 2 at 12288 (no file system that is known)","type":null,"volumes":[{"evidence":[],"file_system":null,"is_encrypted":false,"name":null,"number":1,"offset":4096,"size":8192,"type":null},{"evidence":[],"file_system":null,"is_encrypted":false,"name":null,"number":2,"offset":12288,"size":16384,"type":null}],"warnings":[]})json"_ba;
#endif
    // clang-format on
}

void test_source_survey::containers()
{
    QFETCH(const QString, name);
    static const QRegularExpression time(u"\"modified\":\"[-0-9T:.]+Z\""_s);
    container_choice choice;
    choice.path = path(name);
    const QString survey = QString::fromUtf8(text_of(survey_of_container(choice)));
    QTEST(QString(survey).replace(time, u"\"modified\":\"*\""_s).toUtf8(), "survey");
}

void test_source_survey::answers_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("survey");

    QTest::newRow("answer") << saying(surveyed_line({{u"a"_s, 1}})) << R"({"a":1})"_ba;
    QTest::newRow("answer, then a crash") << saying(surveyed_line({{u"a"_s, 1}})) + "kill -SEGV $$\n"
                                          << R"({"a":1})"_ba;
    const QByteArray start = R"({"container":null,"evidence":[],"kind_of_problem":3,"path":"a.tar","problem":")";
    const QByteArray end = R"(","type":null,"volumes":[],"warnings":[]})";
    QTest::newRow("no memory") << saying(no_memory_line)
                               << start + "looking into it needs more memory than is allowed" + end;
    QTest::newRow("no time") << "exec sleep 60\n"_ba << start + "looking into it took too long" + end;
    QTest::newRow("crash") << "kill -SEGV $$\n"_ba
                           << start + "the process that looked into it crashed with SIGSEGV" + end;
    QTest::newRow("end") << "exit 3\n"_ba << start + "the process that looked into it ended early" + end;
}

void test_source_survey::answers()
{
    QFETCH(const QByteArray, script);
    write_file(path(u"a.tar.worker"_s), script);
    container_choice choice;
    choice.path = path(u"a.tar"_s);
    QTEST(text_of(survey_source(choice, 100, 1)), "survey");
}

void test_source_survey::worker_gets_an_order()
{
    container_choice choice;
    choice.path = path(u"a.tar"_s);
    choice.kind = &macos_kind;
    choice.volume = 4;
    choice.member = u"root"_s;
    choice.follow_links = true;
    write_file(path(u"a.tar.worker"_s), "echo \"$1 $3\" >" + QFile::encodeName(path(u"order"_s)));
    survey_source(choice, 100, 1);
    const worker_order order = worker_order::from_line(content_of(path(u"order"_s)).mid(7));
    QVERIFY(content_of(path(u"order"_s)).startsWith("survey "));
    QCOMPARE(order.request.source.path, choice.path);
    QCOMPARE(order.request.source.type, &macos_kind);
    QVERIFY(order.request.source.follow_links && order.request.source.is_taken_out);
    QCOMPARE(order.request.volume, 4);
    QCOMPARE(order.request.member, u"root"_s);
    QCOMPARE(order.request.options.memory_limit, 100);
}

BLUETOOTH_LOGS_TEST(test_source_survey, QCoreApplication)
#include "test_source_survey.moc"
