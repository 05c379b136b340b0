// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/archive_input.h"
#include "tests/support/test_entry.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 mebibyte = 1 << 20;

/** Bytes whose place can be told from them. */
QByteArray content_of(qint64 size)
{
    QByteArray content(size, '\0');
    for (qint64 i = 0; i < size; ++i)
        content[i] = char(i * 7 + i / 251);
    return content;
}

/** How many bytes this process has read so far; nothing where the system does not say. */
std::optional<qint64> bytes_read()
{
    QFile counters(u"/proc/self/io"_s);
    if (!counters.open(QIODevice::ReadOnly))
        return {};
    return counters.readAll().split('\n').first().split(' ').last().toLongLong();
}

} // namespace

class test_archive_input : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void blocks_follow_each_other();
    void passed_over_is_not_read();
    void end_is_not_passed();
    void every_byte_is_hashed_once();
    void going_back_keeps_the_hash();
    void unreadable_file_has_no_hash();

private:
    QByteArray read(archive_input &input, qint64 most) const;

    QTemporaryDir folder;
    QByteArray content = content_of(4 * mebibyte + 321);
    QString path = folder.filePath(u"file"_s);
};

void test_archive_input::initTestCase()
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

/** At least so many bytes from the present place, unless the file ends. */
QByteArray test_archive_input::read(archive_input &input, qint64 most) const
{
    QByteArray bytes;
    while (bytes.size() < most) {
        const std::optional<QByteArrayView> block = input.next();
        if (!block || block->isEmpty())
            break;
        bytes.append(*block);
    }
    return bytes;
}

void test_archive_input::blocks_follow_each_other()
{
    archive_input input(path, {});
    QVERIFY(input.is_open());
    QCOMPARE(input.size(), content.size());
    QCOMPARE(read(input, content.size() + 1), content);
    QCOMPARE(input.position(), content.size());
}

void test_archive_input::passed_over_is_not_read()
{
    const std::optional<qint64> before = bytes_read();
    archive_input input(path, {});
    const qint64 start = read(input, 512).size();
    QCOMPARE(input.skip(3 * mebibyte), 3 * mebibyte);
    const QByteArray bytes = read(input, 512);
    QCOMPARE(bytes, content.sliced(start + 3 * mebibyte, bytes.size()));
    if (before)
        QVERIFY(*bytes_read() - *before < 64 * 1024);
}

void test_archive_input::end_is_not_passed()
{
    archive_input input(path, {});
    QCOMPARE(input.skip(content.size() - 10), content.size() - 10);
    QCOMPARE(input.skip(100), 10);
    QCOMPARE(input.skip(100), 0);
    input.go_to(2 * content.size());
    QCOMPARE(input.position(), content.size());
    QVERIFY(input.next()->isEmpty());
}

void test_archive_input::every_byte_is_hashed_once()
{
    const std::optional<qint64> before = bytes_read();
    qint64 told = 0;
    archive_input input(path, [&told](qint64 bytes) { told += bytes; });
    read(input, 10'000);
    input.skip(mebibyte);
    const qint64 place = input.position();
    const QByteArray bytes = read(input, 512);
    QCOMPARE(bytes, content.sliced(place, bytes.size()));
    QCOMPARE(told, input.position()); // also what was passed over
    container_file file;
    input.finish_hash(file);
    QCOMPARE(file.sha256, sha256::of(content));
    QCOMPARE(file.problem, QString());
    QCOMPARE(told, content.size());
    if (before)
        QVERIFY(*bytes_read() - *before < content.size() + 64 * 1024);
}

void test_archive_input::going_back_keeps_the_hash()
{
    qint64 told = 0;
    archive_input input(path, [&told](qint64 bytes) { told += bytes; });
    input.go_to(content.size() - 100); // as for the list at the end of a zip
    QCOMPARE(read(input, 100), content.last(100));
    QCOMPARE(told, content.size());
    input.go_to(5);
    const QByteArray bytes = read(input, 10'000);
    QCOMPARE(bytes, content.sliced(5, bytes.size()));
    container_file file;
    input.finish_hash(file);
    QCOMPARE(file.sha256, sha256::of(content));
    QCOMPARE(told, content.size());
}

void test_archive_input::unreadable_file_has_no_hash()
{
    archive_input input(folder.path(), [](qint64) {}); // the system reads no bytes of a folder
    QVERIFY(!input.next());
    container_file file;
    input.finish_hash(file);
    QCOMPARE(file.sha256, QString());
    QCOMPARE(file.problem, u"is a directory"_s);
}

BLUETOOTH_LOGS_TEST(test_archive_input, QCoreApplication)
#include "test_archive_input.moc"
