// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/evidence_collector.h"
#include "host/files/host_error.h"
#include "host/files/sha256.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
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
    void usual_limits();
    void limits_data();
    void limits();
    void most_roots();
    void most_files_of_a_root();
    void most_names_to_choose_from_data();
    void most_names_to_choose_from();
    void room_for_copies();
    void order_of_sources_data();
    void order_of_sources();
    void nothing_found_data();
    void nothing_found();
    void log_that_breaks_off_data();
    void log_that_breaks_off();
    void long_text_is_written_aside();
    void log_twice();
    void flags_are_kept();
    void disk_that_does_not_take_it();
    void what_is_only_listed_data();
    void what_is_only_listed();
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

void test_evidence_collector::usual_limits()
{
    QCOMPARE(collection_limits().most_database_bytes, 1073741824);
    QCOMPARE(collection_limits().most_log_bytes, 68719476736);
}

void test_evidence_collector::limits_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("bytes"); // of which 500 are allowed
    QTest::addColumn<int>("said");  // -1: the container does not say
    QTest::addColumn<QString>("objection");

    const QString database = u"Library/Bluetooth/"_s + other;
    // clang-format off
    QTest::newRow("a database, just not too large") << database  << 500 << 500 << QString();
    QTest::newRow("unsaid, not too large")          << database  << 500 << -1  << QString();
    QTest::newRow("too large")                      << database  << 501 << 501 << u"it has 501 bytes, more than the 0 MiB that --max-database allows"_s;
    QTest::newRow("unsaid, too large")              << database  << 501 << -1  << u"it has more than the 500 bytes that --max-database allows"_s;
    QTest::newRow("a log, just not too large")      << u"a.log"_s << 500 << 500 << QString();
    QTest::newRow("a log, unsaid, not too large")   << u"a.log"_s << 500 << -1  << QString();
    QTest::newRow("a log, too large")               << u"a.log"_s << 501 << 501 << u"it has more than the 500 bytes that --max-log allows"_s;
    QTest::newRow("a log, unsaid, too large")       << u"a.log"_s << 501 << -1  << u"it has more than the 500 bytes that --max-log allows"_s;
    // clang-format on
}

void test_evidence_collector::limits()
{
    QFETCH(const QString, path);
    QFETCH(const int, bytes);
    QFETCH(const int, said);
    QFETCH(const QString, objection);
    collection_limits most;
    most.most_database_bytes = 500;
    most.most_log_bytes = 500;
    collection given({}, most);
    given.give(path, log_line + QByteArray(bytes - log_line.size(), 'x'),
               said < 0 ? std::optional<qint64>() : std::optional<qint64>(said));
    const collected_file file = given.only_file();
    QCOMPARE(file.objection, objection);
    QCOMPARE(file.is_refused, !objection.isEmpty());
    QCOMPARE(file.size, said < 0 && !objection.isEmpty() ? 0 : bytes);
    QCOMPARE(given.staged().size(), objection.isEmpty() ? 1 : 0);
}

void test_evidence_collector::most_roots()
{
    collection given;
    for (int i = 0; i < 64; ++i)
        given.give(QString::number(i) + u"/Library/Bluetooth/"_s + other, "x"_ba);
    given.give(u"0/Library/Bluetooth/"_s + other + u"-wal"_s, "y"_ba);
    QVERIFY(given.failure_of_choice(error_kind::refused).endsWith(u" and 44 more"_s));
    try {
        given.give(u"64/Library/Bluetooth/"_s + other, "x"_ba);
        QFAIL("it was taken");
    } catch (const host_error &error) {
        QCOMPARE(error.message(), u"the container holds evidence in more than 64 folders"_s);
        QCOMPARE(error.kind(), error_kind::not_found);
    }
}

void test_evidence_collector::most_files_of_a_root()
{
    collection given;
    for (int i = 0; i < 1001; ++i) {
        stored_file file = file_at(u"Library/Bluetooth/"_s + other + u'.' + QString::number(i) + u".corrupt"_s);
        file.objection = u"x"_s;
        given.collector.take(file, nullptr);
        if (i == 0)
            given.collector.take(file_at(u"Library/Bluetooth/"_s + other), nullptr);
    }
    QCOMPARE(given.collector.chosen().files.size(), 1000);
    QVERIFY(given.collector.chosen().files.lastKey().endsWith(u".998.corrupt"_s));
}

void test_evidence_collector::most_names_to_choose_from_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("ending");

    QTest::newRow("all") << 20 << u", --member 18.txt, --member 19.txt"_s;
    QTest::newRow("one more") << 21 << u", --member 19.txt and 1 more"_s;
    QTest::newRow("two more") << 22 << u", --member 19.txt and 2 more"_s;
}

void test_evidence_collector::most_names_to_choose_from()
{
    QFETCH(const int, count);
    QFETCH(const QString, ending);
    collection given;
    for (int i = 0; i < count; ++i)
        given.give(QString::number(i) + u".txt"_s, log_line);
    const QString message = given.failure_of_choice(error_kind::refused);
    QVERIFY2(message.startsWith(u"there are several device logs, choose one: --member 0.txt, --member 1.txt, "_s),
             qPrintable(message));
    QVERIFY2(message.endsWith(ending), qPrintable(message));
}

/** A database is copied twice more by the run, each of them. */
void test_evidence_collector::room_for_copies()
{
    collection_limits most;
    most.most_database_bytes = qint64(1) << 60;
    most.most_log_bytes = qint64(1) << 60;
    const auto needed = [&most](const QString &path) {
        collection given({}, most);
        given.give(u"Library/Bluetooth/"_s + other, "content"_ba, 7);
        try {
            given.give(path, log_line, qint64(1) << 50);
        } catch (const host_error &error) {
            return error.kind() == error_kind::incomplete ? error.message().section(u" and "_s, 0, 0)
                                                          : u"another kind"_s;
        }
        return u"none"_s;
    };
    const QString text = u"there is no room in the case to copy the evidence: %1 bytes are needed"_s;
    const qint64 said = qint64(1) << 50;
    QCOMPARE(needed(u"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db"_s),
             text.arg(3 * (said + 7) - 7));
    QCOMPARE(needed(u"Library/Bluetooth/"_s + other + u"-wal"_s), text.arg(said + 14));
    collection log({}, most);
    QVERIFY_THROWS_EXCEPTION(host_error, log.give(u"a.log"_s, log_line, said));
    QCOMPARE(log.staged(), QStringList());
}

void test_evidence_collector::order_of_sources_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QString>("chosen"); // its kind and root, or what is said

    const QString mac = u"Library/Bluetooth/"_s + other;
    const QString phone = u"containers/Shared/SystemGroup/x/Library/Database/"_s + other;
    const QString hive = u"Windows/System32/config/SYSTEM"_s;
    // clang-format off
    QTest::newRow("macOS before iOS")     << QStringList{phone, u"a/b/"_s + mac} << u"macOS a/b"_s;
    QTest::newRow("iOS before a backup")  << QStringList{u"Manifest.db"_s, u"a/"_s + phone} << u"iOS_files a/containers/Shared/SystemGroup/x"_s;
    QTest::newRow("a backup before Windows") << QStringList{hive, u"a/Manifest.db"_s} << u"iOS_backup a"_s;
    QTest::newRow("the volume's own root") << QStringList{u"a/"_s + mac, mac} << u"macOS "_s;
    QTest::newRow("the higher folder")    << QStringList{u"a/b/"_s + mac, u"c/"_s + mac} << u"macOS c"_s;
    QTest::newRow("folders of one height") << QStringList{u"c/d/"_s + mac, u"a/b/"_s + mac, u"x/"_s + hive} << u"there is evidence in several folders, choose one: --member a/b, --member c/d"_s;
    QTest::newRow("no sign")              << QStringList{mac + u"-wal"_s} << u"there is no evidence in it"_s;
    // clang-format on
}

void test_evidence_collector::order_of_sources()
{
    QFETCH(const QStringList, paths);
    collection given;
    for (const QString &path : paths)
        given.give(path, "x"_ba);
    QString chosen;
    try {
        const collected_source &source = given.collector.chosen();
        chosen = source.kind->name + u" "_s + source.root;
    } catch (const host_error &error) {
        chosen = error.message();
    }
    QTEST(chosen, "chosen");
    QCOMPARE(given.collector.has_found(), !chosen.startsWith(u"there is no"_s));
}

void test_evidence_collector::nothing_found_data()
{
    QTest::addColumn<QString>("member");
    QTest::addColumn<QStringList>("contents");
    QTest::addColumn<QString>("message");

    const QString none = u"there is no evidence in it"_s;
    // clang-format off
    QTest::newRow("nothing")    << QString() << QStringList() << none;
    QTest::newRow("one text")   << QString() << QStringList{u"a\n"_s} << QString(none + u": as a log text, no line of it looks like one of a device's log"_s);
    QTest::newRow("two texts")  << QString() << QStringList{u"a\n"_s, u"b\n"_s} << none;
    QTest::newRow("empty file") << QString() << QStringList{QString()} << QString(none + u": as a log text, it is empty"_s);
    QTest::newRow("the member") << u"0"_s    << QStringList{u"a\n"_s} << u"there is no device log and no evidence with the name of --member: 0 (no line of it looks like one of a device's log)"_s;
    QTest::newRow("no member")  << u"1"_s    << QStringList{u"a\n"_s} << u"there is no device log and no evidence with the name of --member: 1"_s;
    // clang-format on
}

void test_evidence_collector::nothing_found()
{
    QFETCH(const QString, member);
    QFETCH(const QStringList, contents);
    QFETCH(const QString, message);
    collection given(member);
    for (qsizetype i = 0; i < contents.size(); ++i)
        given.give(QString::number(i), contents.at(i).toUtf8());
    QCOMPARE(given.failure_of_choice(member.isEmpty() ? error_kind::not_found : error_kind::refused), message);
    QCOMPARE(given.staged(), QStringList());
    QVERIFY(!given.collector.has_found());
}

void test_evidence_collector::log_that_breaks_off_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<qint64>("said");
    QTest::addColumn<QString>("failure");
    QTest::addColumn<QString>("objection"); // of the log; empty: it is not known to be one

    const QByteArray much(3 << 20, 'x');
    QTest::newRow("behind its first line")
        << QByteArray(log_line + much) << qint64(-1) << u"it is cut off"_s << u"it is cut off"_s;
    QTest::newRow("before it") << much << qint64(-1) << u"it is cut off"_s << QString();
    QTest::newRow("another size") << log_line << qint64(5) << QString()
                                  << u"its container says that it has 5 bytes, and holds %1"_s.arg(log_line.size());
}

void test_evidence_collector::log_that_breaks_off()
{
    QFETCH(const QByteArray, content);
    QFETCH(const qint64, said);
    QFETCH(const QString, failure);
    QFETCH(const QString, objection);
    collection given;
    given.give(u"a"_s, content, said < 0 ? std::optional<qint64>() : std::optional<qint64>(said), failure);
    QCOMPARE(given.staged(), QStringList());
    QCOMPARE(given.collector.log_objection(), failure.isEmpty() ? objection : failure);
    if (objection.isEmpty()) {
        QCOMPARE(given.failure_of_choice(error_kind::not_found),
                 QString(u"there is no evidence in it: as a log text, "_s + failure));
        return;
    }
    QCOMPARE(given.only_file().objection, objection);
    QCOMPARE(given.only_file().target, u"a"_s);
    QVERIFY(!given.only_file().is_refused);
}

/** A text is kept in memory until it is known to be a log, but for so much only. */
void test_evidence_collector::long_text_is_written_aside()
{
    class watched_stream : public memory_stream
    {
    public:
        watched_stream(const QByteArray &content, const collection &watched)
            : memory_stream(content)
            , given(watched)
        {
        }
        qsizetype read(char *target, qsizetype most) override
        {
            seen.append(given.staged().size());
            return memory_stream::read(target, most);
        }

        QList<qsizetype> seen;

    private:
        const collection &given;
    };
    collection given;
    watched_stream stream(QByteArray((3 << 20) + 500, 'x') + '\n', given);
    given.collector.take(file_at(u"a"_s), &stream);
    QCOMPARE(stream.seen.at(1100), 0); // blocks of 1,000 bytes: in the second MiB
    QCOMPARE(stream.seen.last(), 1);
    QCOMPARE(given.staged(), QStringList());
}

void test_evidence_collector::log_twice()
{
    collection given(u"a"_s);
    given.give(u"a"_s, log_line);
    given.give(u"a"_s, log_line + "second\n");
    QCOMPARE(given.only_file().sha256, sha256::of(QByteArray(log_line + "second\n")));
    QCOMPARE(given.only_file().earlier, 1);
    QCOMPARE(given.staged().size(), 1);
    given.give(u"a"_s, log_line);
    QCOMPARE(given.only_file().earlier, 2);
}

void test_evidence_collector::flags_are_kept()
{
    collection given;
    stored_file file = file_at(u"Library/Bluetooth/"_s + other, 12);
    file.objection = u"it is encrypted"_s;
    file.is_encrypted = true;
    file.origin.inode = 5;
    file.origin.modified = u"2024"_s;
    given.collector.take(file, nullptr);
    const collected_file kept = given.only_file();
    QVERIFY(kept.is_encrypted && !kept.is_refused);
    QCOMPARE(kept.size, 12);
    QCOMPARE(kept.earlier, 0);
    QCOMPARE(kept.origin.to_json(), QJsonObject({{u"path"_s, QString(u"Library/Bluetooth/"_s + other)},
                                                 {u"inode"_s, 5},
                                                 {u"modified"_s, u"2024"_s},
                                                 {u"size"_s, 12}}));
    QCOMPARE(file_origin().to_json(), QJsonObject({{u"path"_s, QString()},
                                                   {u"inode"_s, QJsonValue()},
                                                   {u"modified"_s, QJsonValue()},
                                                   {u"size"_s, QJsonValue()}}));
}

void test_evidence_collector::disk_that_does_not_take_it()
{
    collection given;
    const QString place = given.folder.filePath(u"0"_s);
    QVERIFY(QDir().mkpath(place));
    try {
        given.give(u"Library/Bluetooth/"_s + other, "content"_ba);
        QFAIL("it was written");
    } catch (const host_error &error) {
        QCOMPARE(error.message(), QString(u"the evidence cannot be copied out of its container into the case: "_s
                                          + place + u": file exists"_s));
        QCOMPARE(error.kind(), error_kind::incomplete);
    }
}

void test_evidence_collector::what_is_only_listed_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("said"); // -1: the container does not say
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("left"); // of the stream, in blocks of 1,000 bytes

    const QString database = u"Library/Bluetooth/"_s + other;
    QTest::newRow("a database") << database << 5 << 5 << 3;
    QTest::newRow("a database, unsaid") << database << -1 << 3000 << 0;
    QTest::newRow("a log") << u"a"_s << 5 << 5 << 0; // less than what is looked at first
    QTest::newRow("a log, unsaid") << u"a"_s << -1 << 3000 << 0;
}

void test_evidence_collector::what_is_only_listed()
{
    QFETCH(const QString, path);
    QFETCH(const int, said);
    evidence_collector collector(evidence_search(), {}, {}, {});
    memory_stream stream(log_line + QByteArray(3000 - log_line.size(), 'x'));
    collector.take(file_at(path, said < 0 ? std::optional<qint64>() : std::optional<qint64>(said)), &stream);
    const collected_file file = collector.chosen().files.first();
    QCOMPARE(file.objection, QString());
    QTEST(int(file.size), "size");
    QByteArray rest(1000, '\0');
    int left = 0;
    while (stream.read(rest.data(), rest.size()) > 0)
        ++left;
    QTEST(left, "left");
}

BLUETOOTH_LOGS_TEST(test_evidence_collector, QCoreApplication)
#include "test_evidence_collector.moc"
