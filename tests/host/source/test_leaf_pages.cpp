// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/leaf_pages.h"
#include "host/source/salvage.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype page_bytes = 4096;

QByteArray value_text(const cell &value)
{
    switch (value.kind) {
    case cell::type::null:
        return "NULL";
    case cell::type::integer:
        return QByteArray::number(value.integer);
    case cell::type::real:
        return QByteArray::number(value.real);
    case cell::type::text:
        return value.bytes.size() > 100 ? QByteArray::number(value.bytes.size()) + " bytes" : value.bytes.toByteArray();
    case cell::type::blob:
        break;
    }
    return "x'" + value.bytes.toByteArray().toHex() + '\'';
}

QByteArrayList rows_in(const QByteArray &database, qsizetype columns)
{
    QByteArrayList rows;
    for_each_leaf_row(database, [&](const leaf_row &row) {
        QByteArray text = QByteArray::number(row.rowid);
        for (const cell &value : row.values)
            text += ' ' + value_text(value);
        if (row.values.size() == columns)
            rows.append(text);
    });
    return rows;
}

/** A database with rows of eight columns on many pages. */
QByteArray large_database(const QTemporaryDir &folder, int count)
{
    const sqlite_file file(folder.filePath(u"a.db"_s));
    file.execute(u"CREATE TABLE t(a, b, c, d, e, f, g, h)"_s);
    QList<QVariantList> rows;
    for (int i = 1; i <= count; ++i)
        rows.append({i, QString(300, u'x'), {}, {}, {}, {}, {}, {}});
    file.execute_many(u"INSERT INTO t VALUES(?, ?, ?, ?, ?, ?, ?, ?)"_s, rows);
    return content_of(file.path());
}

} // namespace

class test_leaf_pages : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void values();
    void long_rows();
    void damaged_pages();
    void deleted_rows();
    void hostile_data();
    void hostile();
    void written_rows();
};

void test_leaf_pages::values()
{
    const QTemporaryDir folder;
    const sqlite_file file(folder.filePath(u"a.db"_s));
    file.execute(u"CREATE TABLE t(a, b, c, d, e, f, g)"_s);
    file.execute(u"INSERT INTO t VALUES(NULL, 0, 1, -2, 127, 128, -129)"_s);
    file.execute(u"INSERT INTO t VALUES(70000, -8388608, 1234567890, 140737488355327, 9223372036854775807, "
                 "-9223372036854775807 - 1, 0.5)"_s);
    file.execute(u"INSERT INTO t VALUES('', 'ä', x'', x'00ff', 'b', 2.0, -1.5)"_s);
    file.execute(u"INSERT INTO t(rowid, a) VALUES(9223372036854775807, 'last')"_s);
    QCOMPARE(rows_in(content_of(file.path()), 7),
             (QByteArrayList{"1 NULL 0 1 -2 127 128 -129",
                             "2 70000 -8388608 1234567890 140737488355327 9223372036854775807 -9223372036854775808 0.5",
                             "3  \xC3\xA4 x'' x'00ff' b 2 -1.5",
                             "9223372036854775807 last NULL NULL NULL NULL NULL NULL"}));
}

void test_leaf_pages::long_rows()
{
    const QTemporaryDir folder;
    const sqlite_file file(folder.filePath(u"a.db"_s));
    file.execute(u"CREATE TABLE t(a, b, c)"_s);
    for (const int size : {489, 4061, 4062, 8000, 100'000, 2 << 20})
        file.execute(u"INSERT INTO t VALUES(?, 7, 8)"_s, {QString(size, u'x')});
    QCOMPARE(rows_in(content_of(file.path()), 3),
             (QByteArrayList{"1 489 bytes 7 8", "2 4061 bytes 7 8", "3 4062 bytes 7 8", "4 8000 bytes 7 8",
                             "5 100000 bytes 7 8"})); // more than a mebibyte is left out
}

void test_leaf_pages::damaged_pages()
{
    const QTemporaryDir folder;
    QByteArray database = large_database(folder, 900);
    const qsizetype all = rows_in(database, 8).size();
    QCOMPARE(all, 900);
    const qsizetype pages = database.size() / page_bytes;
    for (const qsizetype page : {pages / 4, pages / 2, pages - 1})         // the root of the table is the second page
        database.replace(page * page_bytes + 8, 2, QByteArray(2, '\xff')); // the first cell leads out of the page
    database.replace(page_bytes, page_bytes, QByteArray(page_bytes, 'x'));
    const qsizetype left = rows_in(database, 8).size();
    QVERIFY2(left < 900 && left >= 900 - 3 * 13, QByteArray::number(left).constData());
}

void test_leaf_pages::deleted_rows()
{
    const QTemporaryDir folder;
    large_database(folder, 900);
    const sqlite_file file(folder.filePath(u"a.db"_s));
    file.execute(u"DELETE FROM t WHERE a > 10"_s);
    QCOMPARE(rows_in(content_of(file.path()), 8).size(), 10);
}

void test_leaf_pages::hostile_data()
{
    QTest::addColumn<QByteArray>("database");

    const QTemporaryDir folder;
    const QByteArray database = large_database(folder, 100);
    const auto changed = [&database](qsizetype at, const QByteArray &bytes) {
        QByteArray result = database;
        result.replace(at, bytes.size(), bytes);
        return result;
    };
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("header alone") << database.first(100);
    QTest::newRow("no magic") << changed(0, "x");
    QTest::newRow("page size of 3") << changed(16, QByteArray("\x00\x03", 2));
    QTest::newRow("page size of 0") << changed(16, QByteArray("\x00\x00", 2));
    QTest::newRow("all of a page reserved") << changed(16, QByteArray("\x02\x00\x01\x01\xff", 5));
    QTest::newRow("every page is free") << changed(32, QByteArray("\x00\x00\x00\x02", 4))
                                               .replace(page_bytes, 8, QByteArray("\0\0\0\0\xff\xff\xff\xff", 8));
}

void test_leaf_pages::hostile()
{
    QFETCH(QByteArray, database);
    QVERIFY(rows_in(database, 8).size() < 100);
}

void test_leaf_pages::written_rows()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QString(macos_database_folder)));
    const sqlite_file file(folder.path() + u'/' + path_in_source(other_devices_database));
    file.execute(u"CREATE TABLE OtherDevices(a, b, c, d, e, f, g)"_s);
    file.execute(u"CREATE TABLE CustomProperties(a, b)"_s);
    file.execute(u"INSERT INTO OtherDevices VALUES('u', 'A', NULL, 'x', '', 5, 0)"_s);
    file.execute(u"INSERT INTO CustomProperties VALUES('u', '{}')"_s);
    const QString output = folder.filePath(u"salvage.jsonl"_s);
    QCOMPARE(write_salvage({&other_devices_database}, folder.path(), output), (QJsonObject{{u"devices"_s, 1}}));
    QCOMPARE(
        content_of(output),
        R"({"result_table":"devices","file":"Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db",)"
        R"("table":"OtherDevices","page":2,"rowid":1,"row":{"Uuid":"u","Name":"A","NameOrigin":null,"Address":"x",)"
        R"("ResolvedAddress":"","LastSeenTime":5,"LastConnectionTime":0}})"
        "\n");
    QCOMPARE(write_salvage({}, folder.path(), folder.filePath(u"b"_s)), QJsonObject());
    QVERIFY(!QFile::exists(folder.filePath(u"b"_s)));
}

BLUETOOTH_LOGS_TEST(test_leaf_pages, QCoreApplication)

#include "test_leaf_pages.moc"
