// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/report_database.h"

#include "host/files/finished_file.h"
#include "host/files/host_error.h"
#include "host/files/open_without_links.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** Columns of any table that hold names of devices. */
const QByteArrayList name_columns{"device_name", "host_name", "host_preferences_name", "names", "name"};
/** Columns of any table that examiners look things up by. */
const QByteArrayList indexed_columns{"uuid",         "address",        "device_address",
                                     "sf_device_id", "address_normal", "host_resolved_address"};

QByteArray quoted(QByteArray name)
{
    return '"' + name.replace('"', "\"\"") + '"';
}

/** SQLite knows columns by their names whatever their letter case. */
QByteArray distinct(const QByteArray &name, const QByteArrayList &others)
{
    const auto is_taken = [&others](const QByteArray &one) {
        return std::any_of(others.cbegin(), others.cend(),
                           [&one](const QByteArray &other) { return one.compare(other, Qt::CaseInsensitive) == 0; });
    };
    QByteArray result = name;
    for (int number = 2; is_taken(result); ++number)
        result = name + '_' + QByteArray::number(number);
    return result;
}

} // namespace

report_database::report_database(const QString &file)
    : path(file)
    , temporary(file + u".new"_s)
    , unfinished(QFile::encodeName(temporary))
{
    folder_entry(temporary).remove();
    sort_in_folder(path.left(path.lastIndexOf(u'/')));
    try {
        database = std::make_unique<sqlite_database>(temporary, sqlite_database::access::create);
        database->execute("PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF; PRAGMA page_size=4096; BEGIN");
        database->execute("CREATE VIRTUAL TABLE names USING fts5(name, source UNINDEXED, source_table UNINDEXED, "
                          "source_rowid UNINDEXED)");
    } catch (const sqlite_error &error) {
        throw host_error(error_kind::io, path + u" cannot be written: "_s + error.message());
    }
}

report_database::~report_database()
{
    insert.reset();
    database.reset();
    if (!temporary.isEmpty())
        folder_entry(temporary).remove();
}

void report_database::execute(const QByteArray &statement)
{
    try {
        database->execute(statement.constData());
    } catch (const sqlite_error &error) {
        throw host_error(error_kind::io, path + u" cannot be written: "_s + error.message());
    }
}

void report_database::begin_table(const QString &name, const QList<report_column> &table_columns)
{
    insert.reset();
    places.clear();
    QByteArrayList names;
    QByteArrayList definitions;
    for (qsizetype place = 0; place < table_columns.size(); ++place) {
        if (!table_columns.at(place).is_cell())
            continue;
        places.append(place);
        names.append(distinct(table_columns.at(place).cell_name(), names));
        definitions.append(quoted(names.last()));
    }
    columns.insert(name, names);
    execute("CREATE TABLE " + quoted(name.toUtf8()) + '(' + definitions.join(", ") + ')');
    const QByteArray values = QByteArray("?, ").repeated(names.size()).chopped(2);
    try {
        insert = std::make_unique<sqlite_statement>(*database,
                                                    "INSERT INTO " + quoted(name.toUtf8()) + " VALUES(" + values + ')');
    } catch (const sqlite_error &error) {
        throw host_error(error_kind::io, path + u" cannot be written: "_s + error.message());
    }
}

void report_database::add(const line_cells &cells)
{
    try {
        for (int i = 0; i < places.size(); ++i)
            insert->bind(i, cells[std::size_t(places.at(i))]);
        insert->next();
        insert->reset();
    } catch (const sqlite_error &error) {
        throw host_error(error_kind::io, path + u" cannot be written: "_s + error.message());
    }
}

QByteArray report_database::column_or_null(const QString &table, const QByteArray &column) const
{
    return columns.value(table).contains(column) ? quoted(column) : QByteArray("NULL");
}

/** Of several columns the first that holds anything. */
QByteArray report_database::first_filled(const QString &table, const QByteArrayList &names) const
{
    QByteArray expression = "coalesce(";
    for (const QByteArray &name : names)
        expression += "nullif(" + column_or_null(table, name) + ", ''), ";
    return expression + "NULL)";
}

void report_database::add_names(const QString &table)
{
    for (const QByteArray &column : name_columns) {
        if (columns.value(table).contains(column) && columns.value(table).contains("source"))
            execute("INSERT INTO names SELECT " + quoted(column) + ", source, '" + table.toUtf8() + "', rowid FROM "
                    + quoted(table.toUtf8()) + " WHERE nullif(" + quoted(column) + ", '') IS NOT NULL ORDER BY rowid");
    }
}

void report_database::add_indexes(const QString &table)
{
    for (const QByteArray &column : indexed_columns) {
        if (columns.value(table).contains(column))
            execute("CREATE INDEX " + quoted("i_" + table.toUtf8() + '_' + column) + " ON " + quoted(table.toUtf8())
                    + '(' + quoted(column) + ')');
    }
}

void report_database::add_views()
{
    const auto row_of = [this](const QString &table, const QByteArray &more) -> QByteArray {
        return "SELECT source, source_name, '" + table.toUtf8() + "' AS source_table, rowid AS source_rowid, "
               + first_filled(table, {"device_name", "host_name", "host_preferences_name"}) + " AS name, "
               + first_filled(table, {"address", "device_address"}) + " AS address, "
               + first_filled(table, {"uuid", "sf_device_id"}) + " AS identifier" + more + " FROM "
               + quoted(table.toUtf8());
    };
    const QByteArray lists = "SELECT source, source_name, 'host_devices', rowid, names, coalesce(address_normal, "
                             "address), NULL";
    const auto last_seen = [this, &row_of](const QString &table) {
        return row_of(table, ", " + column_or_null(table, "host_last_seen_time") + " AS last_seen_counter, "
                                 + column_or_null(table, "rank_last_seen") + " AS rank, "
                                 + first_filled(table, {"host_date", "date"})
                                 + " AS line_date, NULL AS last_time, NULL AS meaning, NULL AS timestamp");
    };
    // The other columns are those of the largest: https://www.sqlite.org/lang_select.html#bareagg
    const QByteArray times_of_lists =
        "SELECT h.source, h.source_name, 'host_devices', h.rowid, h.names, coalesce(h.address_normal, h.address), "
        "NULL, "
        "NULL, NULL, NULL, t.datetime, t.timestamp_desc, max(t.timestamp) FROM host_devices h JOIN timeline t ON "
        "t.address = coalesce(h.address_normal, h.address) AND t.source = h.source AND t.locator = h.host_file || ' ' "
        "|| "
        "h.host_path AND t.timestamp_desc GLOB 'Last*' GROUP BY h.rowid";
    execute("CREATE VIEW v_shared_devices AS SELECT device, joined_by, count(DISTINCT source) AS sources, "
            "count(*) AS appearances, group_concat(DISTINCT source) AS source_numbers, "
            "max(coalesce(nullif(device_name, ''), host_preferences_name)) AS name FROM shared GROUP BY device, "
            "joined_by ORDER BY device");
    execute("CREATE VIEW v_paired_devices AS " + row_of(u"paired_devices"_s, ", 'table of paired devices' AS known_as")
            + " UNION ALL " + lists + ", list || ' list' FROM host_devices WHERE is_paired = 'true'");
    execute("CREATE VIEW v_named_devices AS SELECT * FROM (" + row_of(u"devices"_s, {}) + " UNION ALL "
            + row_of(u"paired_devices"_s, {}) + " UNION ALL " + lists
            + " FROM host_devices) WHERE nullif(name, '') IS NOT NULL");
    // The lines of a log stand there in their order, and their dates are no numbers.
    execute(
        "CREATE VIEW v_last_seen AS SELECT source, source_name, source_table, source_rowid, name, address, identifier, "
        "last_seen_counter, rank, line_date, last_time, meaning FROM ("
        + last_seen(u"devices"_s) + " UNION ALL " + last_seen(u"paired_devices"_s) + " UNION ALL " + times_of_lists
        + ") ORDER BY source, source_table, rank IS NULL, rank, timestamp DESC, CASE WHEN line_date IS NULL THEN "
          "source_rowid ELSE -source_rowid END");
    execute("CREATE VIEW v_sources AS SELECT s.*, (SELECT count(*) FROM devices d WHERE d.source = s.source) AS "
            "devices, (SELECT count(*) FROM paired_devices p WHERE p.source = s.source) AS paired_devices, (SELECT "
            "count(*) FROM host_devices h WHERE h.source = s.source) AS host_devices FROM sources s");
}

void report_database::commit()
{
    insert.reset();
    for (auto table = columns.cbegin(); table != columns.cend(); ++table) {
        add_names(table.key());
        add_indexes(table.key());
    }
    add_views();
    execute("COMMIT");
    database.reset();
    put_in_place(temporary, path);
    temporary.clear();
}
