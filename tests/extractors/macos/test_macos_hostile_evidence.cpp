// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/file_content.h"
#include "tests/support/log_watch.h"
#include "tests/support/macos_source.h"
#include "tests/support/plugin_run.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString other_name = u"com.apple.MobileBluetooth.ledevices.other.db"_s;
const QString no_such_table =
    u"bluetooth_logs_macos::read_other_devices:  -- READ WARNING -- no such table: OtherDevices Unable to execute statement"_s;

/** The number at @p position in SQLite's variable-length form, and the position behind it. */
std::pair<qint64, qsizetype> read_varint(const QByteArray &bytes, qsizetype position)
{
    qint64 number = 0;
    while (bytes.at(position) & 0x80)
        number = number << 7 | (bytes.at(position++) & 0x7f);
    return {number << 7 | bytes.at(position), position + 1};
}

} // namespace

/** The evidence's author is not on our side: nothing he wrote hangs or crashes the host, or makes it write to him. */
class test_macos_hostile_evidence : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void tables_that_are_not_ordinary_data();
    void tables_that_are_not_ordinary();
    void ordinary_table_in_another_case();
    void damaged_page_data();
    void damaged_page();
    void copy_is_locked_until_the_rows_are_read();
    void damaged_cell();
    void truncated_file();
    void things_that_are_no_files_data();
    void things_that_are_no_files();
    void links_into_the_source_data();
    void links_into_the_source();
    void staged_copy_is_the_sources_own_file_data();
    void staged_copy_is_the_sources_own_file();
    void temporary_folder_reached_through_a_link();
    void result_database_refused_before_the_source_is_known();
    void companions_in_the_source_are_left_alone();

private:
    QStringList reader_lines();
    QStringList devices() const
    {
        return run->database().quoted_rows(u"devices"_s, {u"device_name"_s});
    }

    std::unique_ptr<macos_source> source;
    std::unique_ptr<plugin_run> run;
};

void test_macos_hostile_evidence::init()
{
    strict_test::init();
    source = std::make_unique<macos_source>();
    run = std::make_unique<plugin_run>();
    run->source.source_root_path = source->root();
    run->tabs = QStringList{u"devices"_s};
}

QStringList test_macos_hostile_evidence::reader_lines()
{
    QStringList lines = run->take_messages();
    lines.removeIf([](const QString &line) { return !line.startsWith(u"bluetooth_logs_macos::read_other"_s); });
    return lines;
}

void test_macos_hostile_evidence::tables_that_are_not_ordinary_data()
{
    QTest::addColumn<QStringList>("statements");

    // clang-format off
    QTest::newRow("endless view") << QStringList{u"CREATE VIEW OtherDevices AS WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n) SELECT i AS Name FROM n"_s};
    QTest::newRow("view of another case") << QStringList{u"CREATE VIEW OTHERDEVICES AS SELECT 1 AS Name"_s};
    QTest::newRow("view on a table") << QStringList{u"CREATE TABLE t(Name)"_s, u"INSERT INTO t VALUES('n')"_s, u"CREATE VIEW OtherDevices AS SELECT * FROM t"_s};
    QTest::newRow("virtual table") << QStringList{u"CREATE VIRTUAL TABLE OtherDevices USING fts5(Name)"_s, u"INSERT INTO OtherDevices VALUES('n')"_s};
    // clang-format on
}

void test_macos_hostile_evidence::tables_that_are_not_ordinary()
{
    QFETCH(QStringList, statements);
    const sqlite_file database(source->other_db());
    for (const QString &statement : statements)
        database.execute(statement);
    QElapsedTimer timer;
    timer.start();
    run->run();
    QVERIFY(timer.elapsed() < 10000);
    QCOMPARE(reader_lines().last(),
             u"bluetooth_logs_macos::read_other_devices:  -- READ WARNING -- OtherDevices is not an ordinary table"_s);
    QCOMPARE(devices(), QStringList());
}

void test_macos_hostile_evidence::ordinary_table_in_another_case()
{
    const sqlite_file database(source->other_db());
    database.execute(u"CREATE TABLE otherdevices(Name)"_s);
    database.execute(u"INSERT INTO otherdevices VALUES('n')"_s);
    run->run();
    QCOMPARE(devices(), QStringList{u"'n'"_s});
}

void test_macos_hostile_evidence::damaged_page_data()
{
    QTest::addColumn<int>("damage");
    QTest::newRow("no kind of page") << 0x00;
    QTest::newRow("all bits set") << 0xff;
}

void test_macos_hostile_evidence::damaged_page()
{
    // 3,000 rows fill some hundred pages. A page in the middle is overwritten as a whole: it is no leaf of the table
    // any more, SQLite stops there, and the rows on the pages before it are kept. The log says that rows are missing.
    QFETCH(int, damage);
    const sqlite_file database = source->make_other();
    QList<QVariantList> rows;
    for (int row = 0; row < 3000; ++row)
        rows.append({QString::number(row), QString(100, u'x')});
    database.execute_many(u"INSERT INTO OtherDevices(Name, Tags) VALUES(?, ?)"_s, rows);
    QByteArray content = content_of(source->other_db());
    const qsizetype pages = content.size() / 4096;
    QVERIFY(pages > 50);
    content.replace(pages / 2 * 4096, 4096, QByteArray(4096, char(damage)));
    write_file(source->other_db(), content);

    run->run();
    const QStringList names = devices();
    QVERIFY2(names.size() > 1000 && names.size() < 2000, qPrintable(QString::number(names.size())));
    for (int row = 0; row < names.size(); ++row)
        QCOMPARE(names.at(row), u"'"_s + QString::number(row) + u"'"_s);
    const QString prefix = u"bluetooth_logs_macos::read_other_devices: "_s;
    QCOMPARE(reader_lines().mid(2),
             QStringList({prefix + u" -- READ WARNING -- database disk image is malformed Unable to fetch row"_s,
                          prefix + u"[read_other_devices] end"_s}));
}

void test_macos_hostile_evidence::copy_is_locked_until_the_rows_are_read()
{
    // The reader holds its transaction when it reports that a damaged page has ended the rows.
    const sqlite_file database = source->make_other();
    database.execute_many(u"INSERT INTO OtherDevices(Name, Tags) VALUES('name', ?)"_s,
                          QList<QVariantList>(3000, {QString(100, u'x')}));
    QByteArray content = content_of(source->other_db());
    content.replace(content.size() / 4096 / 2 * 4096, 4096, QByteArray(4096, '\0'));
    write_file(source->other_db(), content);

    QString answer;
    const auto try_to_write = [&](const QString &message) {
        if (!message.startsWith(u" -- READ WARNING -- "_s))
            return;
        QSqlDatabase copy = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"another program"_s);
        copy.setDatabaseName(run->plugin_directory() + u"Logs/"_s + other_name);
        copy.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=0"_s);
        QVERIFY(copy.open());
        QSqlQuery query(copy);
        answer = query.exec(u"BEGIN EXCLUSIVE"_s) ? u"free"_s : query.lastError().databaseText();
    };
    run->prepare();
    watch_log(try_to_write, [this] { run->extract(); });
    QSqlDatabase::removeDatabase(u"another program"_s);
    QCOMPARE(answer, u"database is locked"_s);
}

void test_macos_hostile_evidence::damaged_cell()
{
    // The last cell of a leaf page is said to begin at the page's last byte. Every cell of a page is checked before the
    // first is read: no row of that page arrives, where a lenient reader would give out all but the last.
    const sqlite_file database = source->make_other();
    database.execute_many(u"INSERT INTO OtherDevices(Name, Tags) VALUES('name', ?)"_s,
                          QList<QVariantList>(3000, {QString(100, u'x')}));
    QByteArray content = content_of(source->other_db());
    const qsizetype page = content.size() / 4096 / 2 * 4096;
    constexpr qsizetype header_bytes = 8;
    QCOMPARE(content.at(page), '\x0d'); // a leaf of a table
    const auto number_at = [&content](qsizetype position) {
        return qsizetype(quint8(content.at(position))) << 8 | quint8(content.at(position + 1));
    };
    const qsizetype first_cell = page + number_at(page + header_bytes);
    const qint64 first_row = read_varint(content, read_varint(content, first_cell).second).first;
    const qsizetype last_pointer = page + header_bytes + 2 * (number_at(page + 3) - 1);
    content.replace(last_pointer, 2, QByteArray("\x0f\xff"));
    write_file(source->other_db(), content);

    run->run();
    QVERIFY(first_row > 1000 && first_row < 2000);
    QCOMPARE(devices().size(), first_row - 1);
}

void test_macos_hostile_evidence::truncated_file()
{
    // The header promises more pages than there are: SQLite does not open the schema at all.
    const sqlite_file database = source->make_other();
    QList<QVariantList> rows(3000, {u"name"_s, QString(100, u'x')});
    database.execute_many(u"INSERT INTO OtherDevices(Name, Tags) VALUES(?, ?)"_s, rows);
    const QByteArray content = content_of(source->other_db());
    write_file(source->other_db(), content.first(content.size() / 2));
    run->run();
    QVERIFY(devices().size() < 3000);
    QVERIFY2(run->take_messages().filter(u" -- READ WARNING -- database disk image is malformed"_s).size() == 1,
             "the missing rows are not reported");
}

void test_macos_hostile_evidence::things_that_are_no_files_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("directory") << u"directory"_s;
    QTest::newRow("FIFO") << u"fifo"_s;
    QTest::newRow("link to a FIFO") << u"fifo link"_s;
    QTest::newRow("link to an endless device") << u"device"_s;
}

void test_macos_hostile_evidence::things_that_are_no_files()
{
    QFETCH(QString, kind);
    const QString path = source->other_db();
    if (kind == u"directory"_s) {
        QVERIFY(QDir().mkpath(path));
    } else if (kind == u"device"_s) {
        QVERIFY(QFile::link(u"/dev/zero"_s, path));
    } else {
        const QString fifo = kind == u"fifo"_s ? path : path + u".fifo"_s;
        QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
        if (fifo != path)
            QVERIFY(QFile::link(fifo, path));
    }
    run->run();
    QCOMPARE(reader_lines().last(), no_such_table);
    QCOMPARE(devices(), QStringList());
    // Opening what could not be staged leaves an empty database there.
    QCOMPARE(content_of(run->plugin_directory() + u"Logs/"_s + other_name), "");
}

void test_macos_hostile_evidence::links_into_the_source_data()
{
    QTest::addColumn<QString>("link");   // below the result directory
    QTest::addColumn<QString>("target"); // below the source root
    QTest::newRow("staging folder") << u"Artifacts_Result/Bluetooth_Logs/Logs"_s << u"Library/Bluetooth"_s;
    QTest::newRow("staging folder, elsewhere") << u"Artifacts_Result/Bluetooth_Logs/Logs"_s << u"Library"_s;
    QTest::newRow("staging folder, to be made") << u"Artifacts_Result/Bluetooth_Logs/Logs"_s << u"Library/new"_s;
    QTest::newRow("staged copy") << u"Artifacts_Result/Bluetooth_Logs/Logs/"_s + other_name
                                 << u"Library/Bluetooth/"_s + other_name;
    QTest::newRow("staged copy, to be made")
        << u"Artifacts_Result/Bluetooth_Logs/Logs/"_s + other_name << u"Library/Bluetooth/new.db"_s;
    QTest::newRow("result database") << u"Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s
                                     << u"Library/Bluetooth/"_s + other_name;
    QTest::newRow("result database, to be made")
        << u"Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s << u"Library/Bluetooth/new.db"_s;
    QTest::newRow("temporary folder") << u"Artifacts_Result/Bluetooth_Logs/tmp"_s << u"Library/Bluetooth"_s;
    QTest::newRow("temporary folder, to be made") << u"Artifacts_Result/Bluetooth_Logs/tmp"_s << u"Library/new"_s;
    QTest::newRow("plug-in's folder") << u"Artifacts_Result/Bluetooth_Logs"_s << u"Library/Bluetooth"_s;
    QTest::newRow("artifacts folder") << u"Artifacts_Result"_s << u"Library"_s;
    QTest::newRow("artifacts folder, to be made") << u"Artifacts_Result"_s << u"Library/new"_s;
}

void test_macos_hostile_evidence::links_into_the_source()
{
    QFETCH(QString, link);
    QFETCH(QString, target);
    const sqlite_file database = source->make_other();
    macos_source::add_device(database, u"OtherDevices"_s, {u"u"_s, u"n"_s});
    database.execute(u"CREATE TABLE devices AS SELECT 'evidence that clearing would take'"_s);
    const QString link_path = run->result_directory() + u"/"_s + link;
    QVERIFY(QDir().mkpath(QFileInfo(link_path).path()));
    QVERIFY(QFile::link(source->root() + target, link_path));
    const QStringList tree = tree_of(source->root());
    const QByteArray content = content_of(source->other_db());

    run->prepare();
    run->frame.pub_set_clear_db(true);
    run->extract();

    QCOMPARE(tree_of(source->root()), tree);
    QCOMPARE(content_of(source->other_db()), content);
    QVERIFY(QFileInfo(link_path).isSymLink() || link.endsWith(u"tmp"_s));

    const QStringList lines = run->take_messages();
    const bool is_staging = link.contains(u"Logs/Logs"_s);
    QCOMPARE(lines.contains(no_such_table), is_staging);
    const bool is_database = !is_staging && !link.endsWith(u"tmp"_s);
    QCOMPARE(lines.contains(u"bluetooth_logs::create_db_tables: [create_db_tables]Destination Db "
                            "opening------FAILED-------<case>/Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"_s),
             is_database);
    QCOMPARE(lines.contains(u"bluetooth_logs_macos::extract_connected_devices: [extract_connected_devices] "
                            "Destination Db opening ----FAILED---- "_s),
             is_database);
}

void test_macos_hostile_evidence::staged_copy_is_the_sources_own_file_data()
{
    QTest::addColumn<bool>("hard");
    QTest::newRow("symbolic link") << false;
    QTest::newRow("hard link") << true;
}

void test_macos_hostile_evidence::staged_copy_is_the_sources_own_file()
{
    // In WAL mode: opening it in place would rewrite it, even for reading.
    QFETCH(bool, hard);
    const sqlite_file database = source->make_other();
    database.rows(u"PRAGMA journal_mode=WAL"_s);
    macos_source::add_device(database, u"OtherDevices"_s, {u"u"_s, u"n"_s});
    const QString copy = run->plugin_directory() + u"Logs/"_s + other_name;
    QVERIFY(QDir().mkpath(QFileInfo(copy).path()));
    QCOMPARE(hard ? ::link(QFile::encodeName(source->other_db()).constData(), QFile::encodeName(copy).constData())
                  : ::symlink(QFile::encodeName(source->other_db()).constData(), QFile::encodeName(copy).constData()),
             0);
    struct stat before = {};
    QCOMPARE(::stat(QFile::encodeName(source->other_db()).constData(), &before), 0);
    const QByteArray content = content_of(source->other_db());
    const QStringList tree = tree_of(source->root());

    run->run();
    QCOMPARE(reader_lines().last(), no_such_table);
    QCOMPARE(devices(), QStringList());
    struct stat after = {};
    QCOMPARE(::stat(QFile::encodeName(source->other_db()).constData(), &after), 0);
    QCOMPARE(after.st_mtime, before.st_mtime);
    QCOMPARE(after.st_ctime, before.st_ctime);
    QCOMPARE(content_of(source->other_db()), content);
    QCOMPARE(tree_of(source->root()), tree);
}

void test_macos_hostile_evidence::temporary_folder_reached_through_a_link()
{
    // Removing the temporary folder of this run must not remove a folder of that name in the source.
    write_file(source->root() + u"Library/Bluetooth_Logs/tmp/evidence"_s, "evidence");
    QVERIFY(QDir().mkpath(run->result_directory()));
    QVERIFY(QFile::link(source->root() + u"Library"_s, run->result_directory() + u"/Artifacts_Result"_s));
    const QStringList tree = tree_of(source->root());
    run->run();
    QCOMPARE(tree_of(source->root()), tree);
}

void test_macos_hostile_evidence::result_database_refused_before_the_source_is_known()
{
    // A host that names the result directory first: the folders are guarded once the source is known.
    QVERIFY(QDir().mkpath(run->plugin_directory()));
    source->make_other();
    QVERIFY(QFile::link(source->other_db(), run->db_path()));
    const QByteArray content = content_of(source->other_db());
    run->frame.pub_set_result_directory(run->result_directory());
    run->frame.pub_set_source_info(run->source);
    run->frame.pub_create_db_tables();
    QCOMPARE(content_of(source->other_db()), content);
}

void test_macos_hostile_evidence::companions_in_the_source_are_left_alone()
{
    const sqlite_file database = source->make_other();
    macos_source::add_device(database, u"OtherDevices"_s, {u"u"_s, u"n"_s});
    write_file(source->other_db() + u"-wal"_s, "not a log");
    write_file(source->other_db() + u"-shm"_s, "not an index");
    write_file(source->other_db() + u"-journal"_s, "not a journal");
    const QStringList tree = tree_of(source->root());
    run->run();
    QCOMPARE(tree_of(source->root()), tree);
    QCOMPARE(content_of(source->other_db() + u"-journal"_s), "not a journal");
    QCOMPARE(devices(), QStringList{u"'n'"_s});
}

BLUETOOTH_LOGS_TEST(test_macos_hostile_evidence, QApplication)

#include "test_macos_hostile_evidence.moc"
