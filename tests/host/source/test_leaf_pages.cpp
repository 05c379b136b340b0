// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/leaf_pages.h"
#include "host/source/salvage.h"
#include "host/sqlite/sqlite.h"
#include "tests/support/file_content.h"
#include "tests/support/sqlite_file.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QDir>
#include <QFile>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtEndian>
#include <QTest>

#include <optional>

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

/** A database of pages of 512 bytes; behind the first one, which holds no rows, what is given. */
QByteArray small_database(const QByteArrayList &pages, char reserved = 0, quint32 free_page = 0)
{
    QByteArray file("SQLite format 3\0", 16);
    file += QByteArray("\x02\x00\x01\x01", 4) + reserved + QByteArray(11, '\0');
    file.resize(512, '\0');
    qToBigEndian(free_page, file.data() + 32);
    for (const QByteArray &page : pages)
        file += page + QByteArray(512 - page.size(), '\0');
    return file;
}

/** A leaf page with cells at its end, the first one behind the others; or at places. */
QByteArray leaf(const QByteArrayList &cells, QList<qsizetype> places = {}, qsizetype usable = 512)
{
    QByteArray page(512, '\0');
    page[0] = '\x0d';
    qToBigEndian(quint16(cells.size()), page.data() + 3);
    qsizetype end = usable;
    for (qsizetype i = 0; i < cells.size(); ++i) {
        end = i < places.size() ? places.at(i) : end - cells.at(i).size();
        page.replace(end, cells.at(i).size(), cells.at(i));
        qToBigEndian(quint16(end), page.data() + 8 + 2 * i);
    }
    page.truncate(512);
    return page;
}

/** A cell with a row of one number of a byte. */
QByteArray number_cell(char rowid, char number)
{
    return QByteArray("\x03", 1) + rowid + QByteArray("\x02\x01", 2) + number;
}

/** Of rows with so many columns, or of all. */
QByteArrayList rows_in(const QByteArray &database, std::optional<qsizetype> columns = {})
{
    QByteArrayList rows;
    for_each_leaf_row(database, [&](const leaf_row &row) {
        QByteArray text = QByteArray::number(row.rowid);
        for (const cell &value : row.values)
            text += ' ' + value_text(value);
        if (!columns || row.values.size() == *columns)
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
    void pages_data();
    void pages();
    void every_length_data();
    void every_length();
    void longest_row();
    void written_rows();
    void rows_of_devices_data();
    void rows_of_devices();
    void several_databases();
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

void test_leaf_pages::pages_data()
{
    QTest::addColumn<QByteArray>("database");
    QTest::addColumn<QByteArrayList>("rows");

    const auto one_cell = [](const char *bytes, qsizetype size) {
        return small_database({leaf({QByteArray(bytes, size)})});
    };
    const auto cells = [](const QByteArrayList &all, const QList<qsizetype> &places = {}) {
        return small_database({leaf(all, places)});
    };
    const QByteArray a = number_cell(1, 5);
    const QByteArray b = number_cell(2, 6);
    const QByteArray c = number_cell(3, 7);
    const QByteArrayList none;
    QByteArray other_kind = leaf({a});
    other_kind[0] = '\x05';
    QByteArray of_index = leaf({a});
    of_index[0] = '\x0a';
    QByteArray many = leaf({a});
    qToBigEndian(quint16(253), many.data() + 3); // places up to the end of the page and beyond
    const auto trunk = [](quint32 next, quint32 count, const QList<quint32> &pages) {
        QByteArray page(512, '\0');
        qToBigEndian(next, page.data());
        qToBigEndian(count, page.data() + 4);
        for (qsizetype i = 0; i < pages.size(); ++i)
            qToBigEndian(pages.at(i), page.data() + 8 + 4 * i);
        return page;
    };
    // A record of 600 bytes, of which 92 stand on the page: 4 bytes that name the next page are behind them.
    const auto long_cell = [](quint32 next) {
        QByteArray cell = QByteArray("\x84\x58\x09\x03\x89\x37", 6) + QByteArray(89, 'r') + QByteArray(4, '\0');
        qToBigEndian(next, cell.data() + 95);
        return cell;
    };
    const QByteArray overflow = QByteArray(4, '\0') + QByteArray(508, 's');

    // clang-format off
    QTest::newRow("no rows")             << cells({}) << none;
    QTest::newRow("three rows")          << cells({a, b, c}) << QByteArrayList{"1 5", "2 6", "3 7"};
    QTest::newRow("two pages")           << small_database({leaf({b}), leaf({a})}) << QByteArrayList{"2 6", "1 5"};
    QTest::newRow("a row number twice")  << cells({a, number_cell(1, 6)}) << none;
    QTest::newRow("in another order")    << cells({b, a}) << none;
    QTest::newRow("cells apart")         << cells({a, b}, {100, 105}) << QByteArrayList{"1 5", "2 6"};
    QTest::newRow("one cell in another") << cells({a, b}, {100, 104}) << none;
    QTest::newRow("right behind the places") << cells({a}, {10}) << QByteArrayList{"1 5"};
    QTest::newRow("within the places")   << cells({a}, {9}) << none;
    QTest::newRow("up to the end")       << cells({a}, {507}) << QByteArrayList{"1 5"};
    QTest::newRow("beyond the end")      << cells({a}, {508}) << none;
    QTest::newRow("no room for places")  << small_database({many}) << none;
    QTest::newRow("a page of an index")  << small_database({of_index}) << none;
    QTest::newRow("an inner page")       << small_database({other_kind}) << none;
    QTest::newRow("NULLs alone")         << one_cell("\x03\x07\x03\0\0", 5) << QByteArrayList{"7 NULL NULL"};
    QTest::newRow("zero and one")        << one_cell("\x03\x07\x03\x08\x09", 5) << QByteArrayList{"7 0 1"};
    QTest::newRow("no values")           << one_cell("\x01\x07\x01", 3) << QByteArrayList{"7"};
    QTest::newRow("type 10")             << one_cell("\x02\x07\x02\x0a", 4) << none;
    QTest::newRow("type 11")             << one_cell("\x02\x07\x02\x0b", 4) << none;
    QTest::newRow("empty blob and text") << one_cell("\x03\x07\x03\x0c\x0d", 5) << QByteArrayList{"7 x'' "};
    QTest::newRow("other rows of a page stay") << cells({a, QByteArray("\x02\x02\x02\x0a", 4), c}) << QByteArrayList{"1 5", "3 7"};
    QTest::newRow("a header of nothing") << one_cell("\x02\x07\x00\x05", 4) << none;
    QTest::newRow("a header too long")   << one_cell("\x02\x07\x03\x08", 4) << none;
    QTest::newRow("a type that is cut")  << one_cell("\x03\x07\x02\x81\x00", 5) << none;
    QTest::newRow("a value too long")    << one_cell("\x03\x07\x02\x02\x05", 5) << none;
    QTest::newRow("a byte too much")     << one_cell("\x04\x07\x02\x01\x05\x05", 6) << none;
    QTest::newRow("an empty record")     << one_cell("\x00\x07", 2) << none;
    QTest::newRow("row number -1")       << one_cell("\x03\xff\xff\xff\xff\xff\xff\xff\xff\xff\x02\x01\x05", 13) << QByteArrayList{"-1 5"};
    QTest::newRow("row number 128")      << one_cell("\x03\x81\x00\x02\x01\x05", 6) << QByteArrayList{"128 5"};
    QTest::newRow("less than nothing")   << one_cell("\xff\xff\xff\xff\xff\xff\xff\xff\xff\x07\x02\x01\x05", 13) << none;
    QTest::newRow("row number that is cut") << cells({QByteArray("\x03\x81", 2)}, {510}) << none;
    QTest::newRow("size that is cut")    << cells({QByteArray("\x83", 1)}, {511}) << none;
    QTest::newRow("32 bytes reserved")   << small_database({leaf({a}, {}, 480)}, 32) << QByteArrayList{"1 5"};
    QTest::newRow("in what is reserved") << small_database({leaf({a}, {}, 481)}, 32) << none;
    QTest::newRow("33 bytes reserved")   << small_database({leaf({a}, {}, 479)}, 33) << none;
    QTest::newRow("half a page behind")  << small_database({leaf({a}), leaf({b})}).chopped(1) << QByteArrayList{"1 5"};
    QTest::newRow("a free page")         << small_database({leaf({a}, {100}), leaf({b}), leaf({c})}, 0, 2) << QByteArrayList{"2 6", "3 7"};
    QTest::newRow("a free leaf")         << small_database({trunk(0, 1, {4}), leaf({b}), leaf({c})}, 0, 2) << QByteArrayList{"2 6"};
    QTest::newRow("two trunks")          << small_database({trunk(3, 0, {}), trunk(0, 1, {4}), leaf({c}), leaf({a})}, 0, 2) << QByteArrayList{"1 5"};
    QTest::newRow("the last page is free") << small_database({leaf({b}), leaf({a})}, 0, 3) << QByteArrayList{"2 6"};
    QTest::newRow("a trunk beyond the end") << small_database({leaf({b})}, 0, 3) << QByteArrayList{"2 6"};
    QTest::newRow("the first page as a trunk") << small_database({leaf({b})}, 0, 1) << QByteArrayList{"2 6"};
    QTest::newRow("a trunk that leads to itself") << small_database({trunk(2, 1, {4}), leaf({b}), leaf({c})}, 0, 2) << QByteArrayList{"2 6"};
    QTest::newRow("a trunk that says too much") << small_database({trunk(0, 0xffffffff, {4}), leaf({b}), leaf({c})}, 0, 2) << QByteArrayList{"2 6"};
    QTest::newRow("a row on two pages")  << small_database({leaf({long_cell(3)}), overflow}) << QByteArrayList{"9 597 bytes"};
    QTest::newRow("its second is the first page") << small_database({leaf({long_cell(1)}), overflow}) << none;
    QTest::newRow("its second is beyond the end") << small_database({leaf({long_cell(4)}), overflow}) << none;
    QTest::newRow("its second is free")  << small_database({leaf({long_cell(3)}), QByteArray(overflow).replace(4, 4, QByteArray(4, '\0'))}, 0, 3) << none;
    // clang-format on
}

void test_leaf_pages::pages()
{
    QFETCH(const QByteArray, database);
    QTEST(rows_in(database), "rows");
}

void test_leaf_pages::every_length_data()
{
    QTest::addColumn<int>("page_size");
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");

    QTest::newRow("512 bytes") << 512 << 0 << 1600;
    QTest::newRow("1,024 bytes") << 1024 << 900 << 2200;
    QTest::newRow("65,536 bytes") << 65536 << 65'480 << 65'520;
}

/** Where a row goes on depends on its length. */
void test_leaf_pages::every_length()
{
    QFETCH(const int, page_size);
    QFETCH(const int, first);
    QFETCH(const int, last);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.db"_s);
    {
        sqlite_database database(path, sqlite_database::access::create);
        database.execute(QByteArray("PRAGMA page_size=" + QByteArray::number(page_size)).constData());
        database.execute("CREATE TABLE t(a)");
    }
    QList<QVariantList> rows;
    for (int length = first; length <= last; ++length)
        rows.append({QByteArray(length, char('a' + length % 26))});
    sqlite_file(path).execute_many(u"INSERT INTO t VALUES(?)"_s, rows);
    int length = first;
    for_each_leaf_row(content_of(path), [&length](const leaf_row &row) {
        if (row.values.size() != 1)
            return; // the schema's
        QCOMPARE(row.values.first().bytes.size(), length);
        QCOMPARE(row.values.first().bytes.count(char('a' + length % 26)), length);
        ++length;
    });
    QCOMPARE(length, last + 1);
}

void test_leaf_pages::longest_row()
{
    const QTemporaryDir folder;
    const sqlite_file file(folder.filePath(u"a.db"_s));
    file.execute(u"CREATE TABLE t(a)"_s);
    constexpr int longest = (1 << 20) - 5; // its record begins with five bytes that say so
    for (const int size : {longest, longest + 1})
        file.execute(u"INSERT INTO t VALUES(?)"_s, {QByteArray(size, 'x')});
    QList<qint64> found;
    for_each_leaf_row(content_of(file.path()), [&found](const leaf_row &row) {
        if (row.values.size() == 1)
            found.append(row.rowid);
    });
    QCOMPARE(found, QList<qint64>{1});
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

/** A row is a device's if it has as many columns as the layouts of the table, from the older one on. */
void test_leaf_pages::rows_of_devices_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<QByteArray>("last_member"); // none: it is not taken

    QTest::newRow("six") << 6 << QByteArray();
    QTest::newRow("seven") << 7 << QByteArray("LastConnectionTime");
    QTest::newRow("eight") << 8 << QByteArray("GATTServiceChangeConfig");
    QTest::newRow("nine") << 9 << QByteArray("Tags");
    QTest::newRow("ten") << 10 << QByteArray("iCloudIdentifier");
    QTest::newRow("eleven") << 11 << QByteArray();
}

void test_leaf_pages::rows_of_devices()
{
    QFETCH(const int, columns);
    QFETCH(const QByteArray, last_member);
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QString(macos_database_folder)));
    const sqlite_file file(folder.path() + u'/' + path_in_source(paired_devices_database));
    QStringList names;
    for (int i = 0; i < columns; ++i)
        names.append(u'c' + QString::number(i));
    file.execute(u"CREATE TABLE t("_s + names.join(u',') + u')');
    file.execute(u"INSERT INTO t(c0, c1) VALUES('u', 'n')"_s);
    const QString output = folder.filePath(u"salvage.jsonl"_s);
    const int count = last_member.isEmpty() ? 0 : 1;
    QCOMPARE(write_salvage({&paired_devices_database}, folder.path(), output),
             QJsonObject({{u"paired_devices"_s, count}}));
    const QByteArray written = content_of(output);
    QCOMPARE(written.count('\n'), count);
    QVERIFY2(written.isEmpty() || written.endsWith(QByteArray(",\"" + last_member + "\":null}}\n")),
             written.constData());
}

void test_leaf_pages::several_databases()
{
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkpath(QString(macos_database_folder)));
    const QList<const macos_database *> both{&paired_devices_database, &other_devices_database};
    for (const macos_database *database : both) {
        const sqlite_file file(folder.path() + u'/' + path_in_source(*database));
        file.execute(u"CREATE TABLE t(a, b, c, d, e, f, g)"_s);
        file.execute(u"INSERT INTO t(a) VALUES('u')"_s);
    }
    const QString output = folder.filePath(u"salvage.jsonl"_s);
    QCOMPARE(write_salvage(both, folder.path(), output), QJsonObject({{u"devices"_s, 1}, {u"paired_devices"_s, 1}}));
    const QByteArray written = content_of(output);
    QCOMPARE(written.count('\n'), 2);
    QVERIFY(written.startsWith("{\"result_table\":\"paired_devices\","));
    QVERIFY(written.contains("\n{\"result_table\":\"devices\","));

    QFile::resize(folder.path() + u'/' + path_in_source(other_devices_database), 0); // and one that is not there
    QFile::remove(folder.path() + u'/' + path_in_source(paired_devices_database));
    QCOMPARE(write_salvage(both, folder.path(), folder.filePath(u"b"_s)),
             QJsonObject({{u"devices"_s, 0}, {u"paired_devices"_s, 0}}));
    QCOMPARE(content_of(folder.filePath(u"b"_s)), QByteArray());
}

BLUETOOTH_LOGS_TEST(test_leaf_pages, QCoreApplication)

#include "test_leaf_pages.moc"
