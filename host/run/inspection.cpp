// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/inspection.h"

#include "host/case/result_database.h"
#include "host/devices/host_devices_file.h"
#include "host/files/file_hash.h"
#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/run/ios_rows.h"
#include "host/run/taken_evidence.h"
#include "host/source/evidence_files.h"
#include "host/source/macos_databases.h"
#include "host/source/salvage.h"
#include "host/source/wal_changes.h"
#include "host/text/json_member.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include <algorithm>
#include <functional>
#include <optional>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

/**
 * Rows of the device table in the main file of the working copy, without what its write-ahead log says. Whole rows
 * are counted, not entries of an index, which a hostile file may lack.
 */
qint64 count_rows(const QString &copy, const macos_database &database)
{
    sqlite_database opened(copy, sqlite_database::access::main_file_alone);
    opened.distrust();
    if (!opened.has_table(database.device_table))
        throw sqlite_error(0, database.device_table + u" is no ordinary table of it"_s);
    sqlite_statement statement(opened,
                               "SELECT count(*) FROM " + QByteArray(database.device_table.data()) + " NOT INDEXED");
    statement.next();
    return statement.integer(0);
}

void count_found(inspection &result, table_rows &rows, const source_request &request,
                 QList<const macos_database *> &damaged)
{
    if (request.source.kind == &winos_kind)
        rows.found = 0; // none are looked for
    if (request.source.kind != &macos_kind)
        return;
    const auto database = std::find_if(std::begin(macos_databases), std::end(macos_databases),
                                       [&rows](const auto *known) { return rows.table == known->result_table; });
    if (database == std::end(macos_databases))
        return;
    const evidence_file *file = result.evidence.file_named(path_in_source(**database));
    if (!file || file->state == evidence_file::presence::absent) {
        rows.found = 0;
        return;
    }
    if (file->copy_sha256.isEmpty() || file->state != evidence_file::presence::present)
        return;
    try {
        rows.found = count_rows(request.layout().evidence_folder() + u'/' + file->path, **database);
    } catch (const sqlite_error &error) {
        result.is_out_of_memory = result.is_out_of_memory || error.is_out_of_memory();
        result.problems.append(u"the rows of "_s + file->path + u" cannot be counted: "_s + error.message());
        if ((error.result_code() & 0xff) == SQLITE_CORRUPT)
            damaged.append(*database);
    }
}

void count_stored(inspection &result, const source_request &request)
{
    const QString path = request.layout().result_database();
    try {
        const result_database database(path);
        for (table_rows &rows : result.rows)
            rows.stored = database.row_count(rows.table);
    } catch (const host_error &error) {
        result.problems.append(error.message().replace(path, request.layout().relative_to_case(path)));
    }
}

using damaged_databases = QList<const macos_database *>;

/** The rows on intact pages of databases that SQLite calls damaged. */
/** What the host reads beside the plug-in must not keep it from looking at what the plug-in did. */
void attempt(inspection &result, const std::function<void()> &reading)
{
    try {
        reading();
    } catch (const host_error &error) {
        result.problems.append(error.message());
    }
}

void salvage_rows(inspection &result, const source_request &request, const damaged_databases &damaged)
{
    const QJsonObject counts = write_salvage(damaged, request.layout().evidence_folder(), request.layout().salvage());
    for (auto count = counts.begin(); count != counts.end(); ++count) {
        if (count->toInteger() == 0)
            continue;
        result.warnings.append(u"rows of the table "_s + count.key() + u" on intact pages of its damaged database: "_s
                               + QString::number(count->toInteger())
                               + u"; they are in salvage.jsonl and not in the result"_s);
    }
    result.salvaged = counts.isEmpty() ? QJsonValue() : QJsonValue(counts);
}

void read_host_devices(inspection &result, const source_request &request)
{
    const host_device_findings devices = write_host_devices(result.evidence, request.layout().evidence_folder(),
                                                            request.number, request.layout().host_devices());
    result.host_devices = devices.count ? QJsonValue(*devices.count) : QJsonValue();
    result.problems += devices.problems;
    result.notes += devices.notes;
}

/** Rows of a log are sightings: how many devices they name, by identifier, else by address. */
void count_sighted_devices(inspection &result, const source_request &request)
{
    if (request.source.kind != &ios_uid_kind || request.options.suite_tables)
        return;
    for (table_rows &rows : result.rows) {
        if (rows.table != other_devices_database.result_table || !rows.stored)
            continue;
        try {
            const sqlite_database database(request.layout().result_database(), sqlite_database::access::read_only);
            sqlite_statement devices(database, "SELECT count(DISTINCT coalesce(nullif(sf_device_id, ''), "
                                               "nullif(address, ''))) FROM devices");
            devices.next();
            rows.devices = devices.integer(0);
        } catch (const sqlite_error &error) {
            result.problems.append(u"the devices of the log cannot be counted: "_s + error.message());
        }
    }
}

/** Rows of a log are made of the lines that the host found in it; what fails to be written is reported elsewhere. */
void compare_ios_rows(inspection &result, const source_request &request)
{
    const bool has_rows = !result.rows.isEmpty() && result.rows.first().stored;
    if (request.source.kind != &ios_uid_kind || request.options.suite_tables || !has_rows)
        return;
    try {
        result.differences = ios_row_differences(request.layout().result_database(), request.layout().ios_lines(),
                                                 request.options.tables);
    } catch (const host_error &error) {
        result.problems.append(error.message());
    } catch (const sqlite_error &error) {
        result.is_out_of_memory = result.is_out_of_memory || error.is_out_of_memory();
        result.problems.append(u"the rows cannot be compared with the log's lines: "_s + error.message());
    }
}

/**
 * Copies of the evidence, the host's and the plug-in's, that hold something else than what was hashed. One that is cut
 * off, on a full disk for instance, says nothing of the evidence: the plug-in's log and the rows that are missing do.
 */
QStringList unlike_copies(const source_request &request, const evidence_state &evidence)
{
    QStringList texts;
    if (request.source.kind != &macos_kind)
        return texts;
    for (const evidence_file &file : evidence.files) {
        if (file.before && !file.copy_sha256.isEmpty() && file.copy_sha256 != file.before->sha256)
            texts.append(file.path + u": its working copy is not what was hashed"_s);
    }
    for (const macos_database *database : macos_databases) {
        const evidence_file *file = evidence.file_named(path_in_source(*database));
        const QString copy = request.layout().result_folder() + u"/Logs/"_s + database->file_name;
        if (file && file->before && QFileInfo(copy).size() < file->before->size)
            continue;
        const std::optional<QString> hash = hash_of_file(copy);
        if (hash && (!file || !file->before || *hash != file->before->sha256))
            texts.append(path_in_source(*database) + u": what the plug-in copied is not what was hashed"_s);
    }
    return texts;
}

/** The file that the rows of a table come from, relative to the source; empty for a kind that has none. */
QString file_of_table(const source_request &request, const QString &table)
{
    if (request.source.kind == &ios_uid_kind)
        return evidence_paths(request.source).value(0);
    for (const macos_database *database : macos_databases) {
        if (request.source.kind == &macos_kind && table == database->result_table)
            return path_in_source(*database);
    }
    return {};
}

/** The tables of the request whose file is in a state that @p is_meant. */
QStringList tables_whose_file(const source_request &request, const evidence_state &evidence,
                              bool (*is_meant)(evidence_file::presence state))
{
    QStringList tables;
    for (const QString &table : request.options.tables) {
        const evidence_file *file = evidence.file_named(file_of_table(request, table));
        if (file && is_meant(file->state))
            tables.append(table);
    }
    return tables;
}

} // namespace

QStringList unread_tables(const source_request &request, const evidence_state &evidence)
{
    QStringList tables = tables_whose_file(request, evidence, [](evidence_file::presence state) {
        return state == evidence_file::presence::refused || state == evidence_file::presence::unreadable;
    });
    // The plug-in would take the names of paired devices from wherever the link leads.
    const QString preferences = request.source.root + macos_preferences_file;
    const QString paired = paired_devices_database.result_table;
    if (request.options.tables.contains(paired) && !tables.contains(paired) && QFileInfo::exists(preferences)
        && refused_link(request.source, preferences))
        tables.append(paired);
    return tables;
}

bool is_nothing_readable(const source_request &request, const evidence_state &evidence)
{
    return request.source.kind != &winos_kind
           && tables_whose_file(request, evidence, [](evidence_file::presence state) {
                  return state == evidence_file::presence::present;
              }).isEmpty();
}

void settle_result(const source_request &request)
{
    const QString path = request.layout().result_database();
    if (!QFileInfo::exists(path + u"-journal"_s))
        return;
    try {
        const sqlite_database database(path, sqlite_database::access::read_write);
        sqlite_statement statement(database, "SELECT count(*) FROM sqlite_master");
        statement.next(); // the first reader rolls back what was not finished
    } catch (const sqlite_error &) {
        // What cannot be rolled back cannot be counted either, which is said.
    }
}

inspection inspect(const source_request &request, const evidence_state &evidence, const hash_observer &hashed)
{
    inspection result;
    result.evidence = evidence;
    look_after(result.evidence, request.source, hashed);
    result.changes = result.evidence.changes() + unlike_copies(request, evidence)
                     + container_changes(request.source.container);

    QFile log;
    if (open_case_file(log, request.layout().plugin_log()).isEmpty())
        result.log = read_plugin_log(log, {request.source.path, request.case_directory});
    damaged_databases damaged;
    for (const QString &table : request.options.tables) {
        table_rows rows;
        rows.table = table;
        count_found(result, rows, request, damaged);
        result.rows.append(rows);
    }
    settle_result(request);
    count_stored(result, request);
    count_sighted_devices(result, request);
    compare_ios_rows(result, request);
    const wal_findings wal = write_wal_changes(result.evidence, request.layout().evidence_folder(),
                                               request.layout().temporary_folder(), request.layout().wal_changes());
    result.wal = wal.counts;
    result.warnings = wal.problems;
    result.problems += wal.failures;
    result.is_out_of_memory = result.is_out_of_memory || wal.is_out_of_memory;
    attempt(result, [&] { read_host_devices(result, request); });
    attempt(result, [&] { salvage_rows(result, request, damaged); });
    result.result_sha256 = hash_of_file(request.layout().result_database()).value_or(QString());
    return result;
}

QJsonObject inspection::to_json() const
{
    return {{u"evidence"_s, evidence.to_json()},
            {u"rows"_s, rows_to_json(rows)},
            {u"wal"_s, wal},
            {u"host_devices"_s, host_devices},
            {u"salvaged"_s, salvaged},
            {u"changes"_s, QJsonArray::fromStringList(changes)},
            {u"problems"_s, QJsonArray::fromStringList(problems)},
            {u"differences"_s, QJsonArray::fromStringList(differences)},
            {u"warnings"_s, QJsonArray::fromStringList(warnings)},
            {u"notes"_s, QJsonArray::fromStringList(notes)},
            {u"result_sha256"_s, result_sha256},
            {u"log"_s, log.to_json()},
            {u"is_out_of_memory"_s, is_out_of_memory}};
}

inspection inspection::from_json(const QJsonObject &json)
{
    inspection result;
    result.evidence = evidence_state::from_json(json.value("evidence"_L1).toObject());
    result.rows = rows_from_json(json.value("rows"_L1).toObject());
    result.wal = json.value("wal"_L1);
    result.host_devices = json.value("host_devices"_L1);
    result.salvaged = json.value("salvaged"_L1);
    result.changes = texts_from(json.value("changes"_L1));
    result.problems = texts_from(json.value("problems"_L1));
    result.differences = texts_from(json.value("differences"_L1));
    result.warnings = texts_from(json.value("warnings"_L1));
    result.notes = texts_from(json.value("notes"_L1));
    result.result_sha256 = json.value("result_sha256"_L1).toString();
    result.log = log_findings::from_json(json.value("log"_L1).toObject());
    result.is_out_of_memory = json.value("is_out_of_memory"_L1).toBool();
    return result;
}
