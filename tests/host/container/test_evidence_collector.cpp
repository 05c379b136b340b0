// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/evidence_collector.h"
#include "host/files/host_error.h"
#include "host/files/sha256.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QString other = u"com.apple.MobileBluetooth.ledevices.other.db"_s;
const QByteArray log_line = "May 17 12:11:05 phone-name process(Library)[159] <Notice>: x\n";

/** Bytes, and where @p breaks says so a failure at their end. */
class memory_stream : public byte_stream
{
public:
    explicit memory_stream(const QByteArray &content, const QString &failure = {})
        : bytes(content)
        , breaks(failure)
    {
    }

    qsizetype read(char *target, qsizetype most) override
    {
        const qsizetype count = qMin<qsizetype>(most, qMin<qsizetype>(1000, bytes.size() - place));
        if (count == 0 && !breaks.isEmpty())
            throw stream_failure(breaks);
        std::copy_n(bytes.constData() + place, count, target);
        place += count;
        return count;
    }

private:
    QByteArray bytes;
    QString breaks;
    qsizetype place = 0;
};

stored_file file_at(const QString &path, std::optional<qint64> size = {})
{
    stored_file file;
    file.parts = path.split(u'/');
    file.origin.path = path;
    file.origin.size = size;
    return file;
}

/** A collector with a folder, and what is given to it. */
struct collection
{
    explicit collection(const QString &member = {}, const collection_limits &limits = {})
        : collector(evidence_search(), folder.path(), member, limits)
    {
    }

    void give(const QString &path, const QByteArray &bytes, std::optional<qint64> size = {},
              const QString &failure = {})
    {
        memory_stream stream(bytes, failure);
        collector.take(file_at(path, size), &stream);
    }

    collected_file only_file() const
    {
        return collector.chosen().files.first();
    }

    QStringList staged() const
    {
        return QDir(folder.path()).entryList(QDir::Files);
    }

    QString failure_of_choice(error_kind kind) const
    {
        try {
            collector.chosen();
        } catch (const host_error &error) {
            return error.kind() == kind ? error.message() : u"another kind"_s;
        }
        return {};
    }

    QTemporaryDir folder;
    evidence_collector collector;
};

} // namespace

class test_evidence_collector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void database_is_written_and_hashed();
    void later_file_counts();
    void half_file_is_not_kept();
    void lying_size_is_told();
    void large_file_is_refused();
    void objection_is_kept();
    void shallow_root_wins();
    void roots_of_one_depth_are_a_choice();
    void member_names_a_root();
    void log_is_found_among_others();
    void what_is_no_text_is_not_read_to_its_end();
    void several_logs_are_a_choice();
    void member_names_a_log();
    void missing_member_is_told();
    void evidence_goes_before_logs();
    void reason_of_the_only_file_is_told();
    void nothing_is_written_when_only_looking();
};

void test_evidence_collector::database_is_written_and_hashed()
{
    collection given;
    given.give(u"x/Library/Bluetooth/"_s + other, "content"_ba, 7);
    const collected_source &source = given.collector.chosen();
    QCOMPARE(source.kind, &macos_kind);
    QCOMPARE(source.root, u"x"_s);
    const collected_file file = given.only_file();
    QCOMPARE(file.target, u"Library/Bluetooth/"_s + other);
    QCOMPARE(file.sha256, sha256::of("content"));
    QCOMPARE(file.size, 7);
    QFile written(file.staged);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), "content"_ba);
    QCOMPARE(int(written.permissions() & ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser)),
             int(QFile::ReadOwner));
}

void test_evidence_collector::later_file_counts()
{
    collection given;
    given.give(u"Library/Bluetooth/"_s + other, "first"_ba);
    given.give(u"Library/Bluetooth/"_s + other, "second"_ba);
    QCOMPARE(given.only_file().sha256, sha256::of("second"));
    QCOMPARE(given.only_file().earlier, 1);
    QCOMPARE(given.staged().size(), 1);
}

void test_evidence_collector::half_file_is_not_kept()
{
    collection given;
    given.give(u"Library/Bluetooth/"_s + other, QByteArray(5000, 'x'), {}, u"it is cut off"_s);
    QCOMPARE(given.only_file().objection, u"it is cut off"_s);
    QVERIFY(!given.only_file().is_refused);
    QCOMPARE(given.only_file().staged, QString());
    QCOMPARE(given.staged(), QStringList());
}

void test_evidence_collector::lying_size_is_told()
{
    collection given;
    given.give(u"Library/Bluetooth/"_s + other, "content"_ba, 8);
    QCOMPARE(given.only_file().objection, u"its container says that it has 8 bytes, and holds 7"_s);
    QCOMPARE(given.staged(), QStringList());
}

void test_evidence_collector::large_file_is_refused()
{
    collection_limits limits;
    limits.most_database_bytes = 1 << 20;
    collection said({}, limits);
    said.give(u"Library/Bluetooth/"_s + other, {}, qint64(1) << 50);
    QCOMPARE(said.only_file().objection,
             u"it has 1125899906842624 bytes, more than the 1 MiB that --max-database allows"_s);
    QVERIFY(said.only_file().is_refused);
    collection unsaid({}, limits);
    unsaid.give(u"Library/Bluetooth/"_s + other, QByteArray((1 << 20) + 1, 'x'));
    QCOMPARE(unsaid.only_file().objection, u"it has more than the 1048576 bytes that --max-database allows"_s);
    QCOMPARE(unsaid.staged(), QStringList());
}

void test_evidence_collector::objection_is_kept()
{
    collection given;
    stored_file file = file_at(u"../Library/Bluetooth/"_s + other);
    file.parts.removeFirst();
    file.objection = u"its name leads to a folder above"_s;
    file.is_refused = true;
    given.collector.take(file, nullptr);
    QCOMPARE(given.only_file().objection, u"its name leads to a folder above"_s);
    QVERIFY(given.only_file().is_refused);
}

void test_evidence_collector::shallow_root_wins()
{
    collection given;
    given.give(u"System/Volumes/Data/Library/Bluetooth/"_s + other, "deep"_ba);
    given.give(u"Library/Bluetooth/"_s + other, "shallow"_ba);
    QCOMPARE(given.only_file().sha256, sha256::of("shallow"));
}

void test_evidence_collector::roots_of_one_depth_are_a_choice()
{
    collection given;
    given.give(u"a/Library/Bluetooth/"_s + other, "1"_ba);
    given.give(u"b/Library/Bluetooth/"_s + other, "2"_ba);
    QCOMPARE(given.failure_of_choice(error_kind::refused),
             u"there is evidence in several folders, choose one: --member a, --member b"_s);
}

void test_evidence_collector::member_names_a_root()
{
    collection given(u"b"_s);
    given.give(u"a/Library/Bluetooth/"_s + other, "1"_ba);
    given.give(u"b/Library/Bluetooth/"_s + other, "2"_ba);
    QCOMPARE(given.only_file().sha256, sha256::of("2"));
}

void test_evidence_collector::log_is_found_among_others()
{
    collection given;
    given.give(u"readme.txt"_s, "nothing of a log\n"_ba);
    given.give(u"logs/device.txt"_s, log_line);
    given.give(u"image.bin"_s, QByteArray(3000, '\0'));
    QCOMPARE(given.collector.chosen().kind, &ios_uid_kind);
    QCOMPARE(given.only_file().target, u"device.txt"_s);
    QCOMPARE(given.only_file().sha256, sha256::of(log_line));
    QCOMPARE(given.staged().size(), 1);
}

void test_evidence_collector::what_is_no_text_is_not_read_to_its_end()
{
    const QByteArray content = QByteArray(9000, '\0') + '\n' + log_line;
    memory_stream stream(content);
    collection given;
    given.collector.take(file_at(u"picture"_s), &stream);
    QVERIFY(!given.collector.has_found());
    QByteArray rest(content.size(), '\0');
    QCOMPARE(stream.read(rest.data(), rest.size()), 1000); // a block: it is not at its end

    // What the examiner named, and what is all that there is, is.
    collection asked(u"picture"_s);
    asked.give(u"picture"_s, content);
    QCOMPARE(asked.only_file().sha256, sha256::of(content));
    collection alone;
    stored_file file = file_at(u"picture"_s);
    file.is_alone = true;
    memory_stream whole(content);
    alone.collector.take(file, &whole);
    QCOMPARE(alone.only_file().sha256, sha256::of(content));

    const QByteArray text = QByteArray(9000, 'x') + '\n' + log_line;
    collection log; // the start of a text is kept
    log.give(u"a.txt"_s, text);
    QCOMPARE(log.only_file().sha256, sha256::of(text));
}

void test_evidence_collector::several_logs_are_a_choice()
{
    collection given;
    given.give(u"a.txt"_s, log_line);
    given.give(u"b.txt"_s, log_line);
    QCOMPARE(given.failure_of_choice(error_kind::refused),
             u"there are several device logs, choose one: --member a.txt, --member b.txt"_s);
    QCOMPARE(given.staged(), QStringList());
}

void test_evidence_collector::member_names_a_log()
{
    collection given(u"b.txt"_s);
    given.give(u"a.txt"_s, log_line);
    given.give(u"b.txt"_s, log_line + "more\n");
    QCOMPARE(given.only_file().sha256, sha256::of(QByteArray(log_line + "more\n")));
}

void test_evidence_collector::missing_member_is_told()
{
    collection given(u"c.txt"_s);
    given.give(u"a.txt"_s, log_line);
    QCOMPARE(given.failure_of_choice(error_kind::refused),
             u"there is no device log and no evidence with the name of --member: c.txt"_s);
}

void test_evidence_collector::evidence_goes_before_logs()
{
    collection given;
    given.give(u"a.txt"_s, log_line);
    given.give(u"Library/Bluetooth/"_s + other, "1"_ba);
    given.give(u"b.txt"_s, log_line);
    QCOMPARE(given.collector.chosen().kind, &macos_kind);
}

void test_evidence_collector::reason_of_the_only_file_is_told()
{
    collection given;
    given.give(u"a"_s, "SQLite format 3 and more"_ba);
    QCOMPARE(given.failure_of_choice(error_kind::not_found),
             u"there is no evidence in it: as a log text, it is an SQLite database"_s);
}

void test_evidence_collector::nothing_is_written_when_only_looking()
{
    evidence_collector collector(evidence_search(), {}, {}, {});
    memory_stream stream("content"_ba);
    collector.take(file_at(u"Library/Bluetooth/"_s + other), &stream);
    const collected_file file = collector.chosen().files.first();
    QCOMPARE(file.size, 7);
    QCOMPARE(file.staged, QString());
}

BLUETOOTH_LOGS_TEST(test_evidence_collector, QCoreApplication)
#include "test_evidence_collector.moc"
