// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/wal_changes.h"

#include "host/files/host_error.h"
#include "host/files/new_file.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "host/files/system_error.h"
#include "host/files/transfer.h"
#include "host/source/macos_databases.h"
#include "host/source/working_copy.h"
#include "host/sqlite/sqlite.h"
#include "host/text/json_text.h"

#include <QFile>
#include <QJsonObject>
#include <QtEndian>

#include <cerrno>
#include <memory>
#include <optional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView log_ending("-wal");
constexpr quint32 wal_version = 3007000; // https://www.sqlite.org/fileformat2.html#walformat

/** A folder for copies that SQLite may put its index of the log beside. Goes with all that is in it. */
class scratch_folder
{
public:
    explicit scratch_folder(const QString &path)
        : folder(path)
    {
        make_folder(folder);
    }

    ~scratch_folder()
    {
        folder_entry(folder).remove_tree();
    }
    Q_DISABLE_COPY_MOVE(scratch_folder)

    QString add_copy(const QString &file, const QString &name) const
    {
        QString copy = folder + u'/' + name;
        QFile source;
        if (const QString problem = open_case_file(source, file); !problem.isEmpty())
            throw host_error(error_kind::io, file + u" cannot be copied: "_s + problem);
        working_copy target(copy, S_IRUSR | S_IWUSR);
        if (!read_blocks(source.handle(), [&target](QByteArrayView block) { target.add(block); }))
            throw host_error(error_kind::io, file + u" cannot be copied: "_s + system_error_text(errno));
        return copy;
    }

private:
    QString folder;
};

/** The rows of a table in the order of their rowids, one after the other. */
class table_reader
{
public:
    table_reader(const QString &file, sqlite_database::access mode, QLatin1StringView table)
        : database(file, mode)
    {
        database.distrust();
        if (!database.has_table(table))
            return; // no rows
        const QByteArray name(table.data(), table.size());
        const QByteArray rowid = rowid_name(sqlite_statement(database, "SELECT * FROM " + name));
        rows = std::make_unique<sqlite_statement>(database,
                                                  "SELECT " + rowid + ", * FROM " + name + " NOT INDEXED ORDER BY 1");
        next();
    }

    bool has_table() const
    {
        return bool(rows);
    }

    bool is_at_row() const
    {
        return has_row;
    }

    void next()
    {
        has_row = rows->next();
    }

    qint64 rowid() const
    {
        return rows->integer(0);
    }

    bool has_same_content(const table_reader &other) const
    {
        if (rows->column_count() != other.rows->column_count())
            return false;
        for (int column = 1; column < rows->column_count(); ++column) {
            if (rows->column_name(column) != other.rows->column_name(column) || !has_same_value(other, column))
                return false;
        }
        return true;
    }

    QByteArray row_as_json() const
    {
        QByteArray json = "{";
        for (int column = 1; column < rows->column_count(); ++column) {
            if (column > 1)
                json.append(',');
            append_json_text(json, rows->column_name(column).toUtf8());
            json.append(':');
            append_json_value(json, rows->value_of(column));
        }
        return json + '}';
    }

private:
    bool has_same_value(const table_reader &other, int column) const
    {
        const cell one = rows->value_of(column);
        const cell two = other.rows->value_of(column);
        return one.kind == two.kind && one.integer == two.integer && !(one.real < two.real) && !(one.real > two.real)
               && one.bytes == two.bytes;
    }

    /** Any column may hide one of the names that SQLite has for it. */
    static QByteArray rowid_name(const sqlite_statement &table)
    {
        QStringList names;
        for (int column = 0; column < table.column_count(); ++column)
            names.append(table.column_name(column));
        for (const char *name : {"rowid", "_rowid_", "oid"}) {
            if (!names.contains(QLatin1StringView(name), Qt::CaseInsensitive))
                return name;
        }
        throw sqlite_error(0, u"its columns hide the row numbers"_s);
    }

    sqlite_database database;
    std::unique_ptr<sqlite_statement> rows; ///< none: there is no such table
    bool has_row = false;
};

struct change_counts
{
    qint64 added = 0;
    qint64 changed = 0;
    qint64 deleted = 0;
};

/** Writes the changes of one table, a line each. */
class change_writer
{
public:
    /** @p table_members say which table it is: "result_table":"devices", and so on. */
    change_writer(new_file &output, const QByteArray &table_members)
        : file(output)
        , table(table_members)
    {
    }

    void add(QByteArrayView change, const table_reader *before, const table_reader *after)
    {
        const qint64 rowid = (before ? before : after)->rowid();
        QByteArray json = "{\"change\":\"" + change.toByteArray() + "\"," + table;
        json += ",\"rowid\":" + QByteArray::number(rowid);
        json += ",\"before\":" + (before ? before->row_as_json() : QByteArray("null"));
        json += ",\"after\":" + (after ? after->row_as_json() : QByteArray("null")) + "}\n";
        file.add(json);
    }

private:
    new_file &file;
    QByteArray table;
};

change_counts compare(table_reader &before, table_reader &after, change_writer &writer)
{
    change_counts counts;
    while (before.is_at_row() || after.is_at_row()) {
        const bool is_deleted = !after.is_at_row() || (before.is_at_row() && before.rowid() < after.rowid());
        const bool is_added = !before.is_at_row() || (after.is_at_row() && after.rowid() < before.rowid());
        if (is_deleted) {
            writer.add("deleted", &before, nullptr);
            ++counts.deleted;
        } else if (is_added) {
            writer.add("added", nullptr, &after);
            ++counts.added;
        } else if (!before.has_same_content(after)) {
            writer.add("changed", &before, &after);
            ++counts.changed;
        }
        if (!is_added)
            before.next();
        if (!is_deleted)
            after.next();
    }
    return counts;
}

QByteArray bytes_of(const QString &path, qint64 offset, qint64 count)
{
    QFile file;
    return open_case_file(file, path).isEmpty() && file.seek(offset) ? file.read(count) : QByteArray();
}

/**
 * Whether the pages in the log have the size of those in the database, as they always have while the log belongs to it.
 * Both formats: https://www.sqlite.org/fileformat.html
 */
bool has_pages_of_the_same_size(const QString &database)
{
    const QByteArray in_database = bytes_of(database, 16, 2);
    const QByteArray in_log = bytes_of(database + log_ending, 8, 4);
    if (in_database.size() < 2 || in_log.size() < 4)
        return true; // one of them is empty
    const auto pages = qFromBigEndian<quint16>(in_database.constData());
    return qFromBigEndian<quint32>(in_log.constData()) == (pages == 1 ? 65536u : pages);
}

/** SQLite reads one version, and says of any other that the file cannot be opened. */
bool is_of_another_version(const QString &log)
{
    const QByteArray version = bytes_of(log, 4, 4);
    return version.size() == 4 && qFromBigEndian<quint32>(version.constData()) != wal_version;
}

/** Why there is nothing to compare although there is a log. */
std::optional<QString> objection(const evidence_file *database, const evidence_file &log)
{
    if (!log.reason.isEmpty() || log.copy_sha256.isEmpty())
        return log.reason;
    if (!database || database->state == evidence_file::presence::absent)
        return u"the database that it belongs to is not there"_s;
    if (database->copy_sha256.isEmpty())
        return u"its database was not read: "_s + database->reason;
    return {};
}

class wal_comparison
{
public:
    wal_comparison(const evidence_state &source_evidence, const QString &copy_folder, const QString &scratch_folder,
                   const QString &output_path)
        : evidence(source_evidence)
        , copies(copy_folder)
        , scratch(scratch_folder)
        , output(output_path)
    {
    }

    wal_findings run()
    {
        for (const macos_database *database : macos_databases) {
            const QString path = path_in_source(*database);
            const evidence_file *log = evidence.file_named(path + log_ending);
            if (log && log->state != evidence_file::presence::absent)
                add_database(*database, path, *log);
        }
        if (file) {
            file->commit();
            findings.counts = counts;
        }
        return findings;
    }

private:
    void add_database(const macos_database &database, const QString &path, const evidence_file &log)
    {
        if (!file)
            file = std::make_unique<new_file>(output);
        std::optional<QString> problem = objection(evidence.file_named(path), log);
        std::optional<change_counts> found;
        bool is_failure = false;
        if (!problem) {
            try {
                found = compare_database(database, path, *file);
            } catch (const sqlite_error &error) {
                findings.is_out_of_memory = findings.is_out_of_memory || error.is_out_of_memory();
                problem = error.message();
                is_failure = error.is_of_the_system() || can_be_compared(database, path);
            }
        }
        end_table(database, path, found, problem);
        if (problem && problem != log.reason) // which is reported of the file itself
            (is_failure ? findings.failures : findings.problems)
                .append(log.path + u" cannot be compared with its database: "_s + *problem);
    }

    /** SQLite calls a log malformed too that it could not read for a moment. */
    bool can_be_compared(const macos_database &database, const QString &path) const
    {
        try {
            new_file given_up(output + u".again"_s);
            compare_database(database, path, given_up);
            return true;
        } catch (const sqlite_error &) {
            return false;
        }
    }

    change_counts compare_database(const macos_database &database, const QString &path, new_file &changes) const
    {
        const scratch_folder folder(scratch + u"/wal"_s);
        const QString copy = folder.add_copy(copies + u'/' + path, database.file_name);
        folder.add_copy(copies + u'/' + path + log_ending, database.file_name + log_ending);
        if (is_of_another_version(copy + log_ending))
            throw sqlite_error(0, u"it is of another version of the format"_s);
        if (!has_pages_of_the_same_size(copy))
            throw sqlite_error(0, u"its pages have another size: it belongs to another database"_s);
        table_reader before(copy, sqlite_database::access::main_file_alone, database.device_table);
        table_reader after(copy, sqlite_database::access::read_only, database.device_table);
        if (before.has_table() && !after.has_table())
            throw sqlite_error(0, u"with it the table "_s + database.device_table
                                      + u" is gone: it may belong to another database"_s);
        change_writer writer(changes, table_members(database, path));
        return compare(before, after, writer);
    }

    static QByteArray table_members(const macos_database &database, const QString &path)
    {
        return "\"result_table\":\"" + QByteArray(database.result_table.data()) + "\",\"file\":\"" + path.toUtf8()
               + "\",\"table\":\"" + QByteArray(database.device_table.data()) + '"';
    }

    /** What was found before a problem stays in the file: it was in the log. */
    void end_table(const macos_database &database, const QString &path, const std::optional<change_counts> &found,
                   const std::optional<QString> &problem)
    {
        if (problem) {
            QByteArray json = '{' + table_members(database, path) + ",\"problem\":";
            append_json_text(json, problem->toUtf8());
            json += "}\n";
            file->add(json);
        }
        counts.insert(database.result_table, found ? QJsonValue(QJsonObject{{u"added"_s, found->added},
                                                                            {u"changed"_s, found->changed},
                                                                            {u"deleted"_s, found->deleted}})
                                                   : QJsonValue());
    }

    const evidence_state &evidence;
    QString copies;
    QString scratch;
    QString output;
    std::unique_ptr<new_file> file; ///< none as long as no log was seen
    QJsonObject counts;
    wal_findings findings;
};

} // namespace

wal_findings write_wal_changes(const evidence_state &evidence, const QString &copies, const QString &scratch,
                               const QString &file)
{
    return wal_comparison(evidence, copies, scratch, file).run();
}
