// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sqlite/sqlite.h"

#include "host/text/utf8_text.h"

#include <QFile>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <utility>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

using steady_clock = std::chrono::steady_clock;

constexpr std::chrono::minutes longest_work(5);
constexpr int steps_between_looks = 100000; // of SQLite's virtual machine: some milliseconds
constexpr int busy_timeout = 2000;          // milliseconds

[[noreturn]] void fail(sqlite3 *database, int result)
{
    const QString text = database ? QString::fromUtf8(sqlite3_errmsg(database))
                                  : QString::fromUtf8(sqlite3_errstr(result));
    throw sqlite_error(database ? sqlite3_extended_errcode(database) : result, text);
}

/** file:/path%3fwith%25signs: every byte that a URI gives a meaning to is escaped. */
QByteArray uri_of(const QString &file)
{
    return "file:" + QFile::encodeName(file).toPercentEncoding("/");
}

int authorize_reading(void *, int action, const char *, const char *name, const char *, const char *)
{
    switch (action) {
    case SQLITE_SELECT:
    case SQLITE_READ:
    case SQLITE_TRANSACTION: // only the host's own statements begin one
        return SQLITE_OK;
    case SQLITE_FUNCTION:
        // Those that the host's own queries call.
        return qstricmp(name, "count") == 0 ? SQLITE_OK : SQLITE_DENY;
    default:
        return SQLITE_DENY;
    }
}

} // namespace

/** How long SQLite may still work for one connection. */
struct sqlite_time_limit
{
    steady_clock::duration left = longest_work;
    steady_clock::time_point end; ///< of the step that goes on
};

namespace {

int is_past(void *limit)
{
    return steady_clock::now() > static_cast<const sqlite_time_limit *>(limit)->end;
}

/** Counts the time of one step. */
class counted_step
{
public:
    explicit counted_step(sqlite_time_limit *time_limit)
        : limit(time_limit)
    {
        if (limit)
            limit->end = steady_clock::now() + limit->left;
    }
    ~counted_step()
    {
        if (limit)
            limit->left = limit->end - steady_clock::now();
    }
    counted_step(const counted_step &) = delete;
    counted_step &operator=(const counted_step &) = delete;

private:
    sqlite_time_limit *limit;
};

} // namespace

bool sqlite_error::is_out_of_memory() const
{
    return (code & 0xff) == SQLITE_NOMEM;
}

bool sqlite_error::is_of_the_system() const
{
    constexpr int results[] = {SQLITE_IOERR, SQLITE_FULL, SQLITE_NOMEM, SQLITE_CANTOPEN, SQLITE_PERM, SQLITE_READONLY};
    return std::find(std::begin(results), std::end(results), code & 0xff) != std::end(results);
}

void sort_in_folder(const QString &folder)
{
    sqlite3_free(sqlite3_temp_directory);
    sqlite3_temp_directory = sqlite3_mprintf("%s", QFile::encodeName(folder).constData());
}

sqlite_database::sqlite_database(const QString &file, access mode)
    : database(nullptr, sqlite3_close)
{
    int flags = SQLITE_OPEN_URI | SQLITE_OPEN_NOFOLLOW | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_NOMUTEX;
    QByteArray uri = uri_of(file);
    if (mode == access::read_only || mode == access::main_file_alone)
        flags |= SQLITE_OPEN_READONLY;
    else
        flags |= SQLITE_OPEN_READWRITE | (mode == access::create ? SQLITE_OPEN_CREATE : 0);
    if (mode == access::main_file_alone)
        uri += "?immutable=1"; // https://www.sqlite.org/uri.html: no journal, no log, no lock

    if (const qsizetype bytes = QFile::encodeName(file).size(); bytes > longest_sqlite_path)
        throw sqlite_error(SQLITE_CANTOPEN, u"its path has "_s + QString::number(bytes)
                                                + u" bytes, and SQLite opens none of more than "_s
                                                + QString::number(longest_sqlite_path));
    sqlite3 *opened = nullptr;
    const int result = sqlite3_open_v2(uri.constData(), &opened, flags, nullptr);
    database.reset(opened);
    if (result != SQLITE_OK)
        fail(opened, result);
    sqlite3_busy_timeout(opened, busy_timeout);
}

sqlite_database::sqlite_database(QByteArray content)
    : in_memory(std::move(content))
    , database(nullptr, sqlite3_close)
{
    // Bytes 18 and 19 of the header are 2 in the mode of a write-ahead log, which a database in memory cannot have.
    constexpr qsizetype mode_place = 18;
    if (in_memory.size() > mode_place + 1 && in_memory.at(mode_place) == 2 && in_memory.at(mode_place + 1) == 2)
        in_memory.replace(mode_place, 2, "\1\1");

    sqlite3 *opened = nullptr;
    int result = sqlite3_open_v2(":memory:", &opened, SQLITE_OPEN_READWRITE | SQLITE_OPEN_EXRESCODE, nullptr);
    database.reset(opened);
    if (result == SQLITE_OK)
        result = sqlite3_deserialize(opened, "main", reinterpret_cast<unsigned char *>(in_memory.data()),
                                     in_memory.size(), in_memory.size(), SQLITE_DESERIALIZE_READONLY);
    if (result != SQLITE_OK)
        fail(opened, result);
}

sqlite_database::sqlite_database(sqlite_database &&other) noexcept = default;

sqlite_database::~sqlite_database() = default;

void sqlite_database::execute(const char *statements)
{
    const counted_step step(time_limit.get());
    const int result = sqlite3_exec(handle(), statements, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
        fail(handle(), result);
}

void sqlite_database::distrust()
{
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(handle(), SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    execute("PRAGMA cell_size_check=ON; PRAGMA mmap_size=0; PRAGMA temp_store=MEMORY");
    time_limit = std::make_unique<sqlite_time_limit>();
    sqlite3_progress_handler(handle(), steps_between_looks, is_past, time_limit.get());
    sqlite3_set_authorizer(handle(), authorize_reading, nullptr);
}

bool sqlite_database::has_table(QLatin1StringView name) const
{
    sqlite_statement statement(*this, "SELECT type, rootpage FROM sqlite_master WHERE name = ? COLLATE NOCASE");
    statement.bind(0, QString(name));
    bool is_table = false;
    while (statement.next()) {
        if (statement.bytes(0) != "table" || statement.integer(1) <= 0)
            return false;
        is_table = true;
    }
    return is_table;
}

sqlite_statement::sqlite_statement(const sqlite_database &database, const QByteArray &sql)
    : statement(nullptr, sqlite3_finalize)
    , time_limit(database.time_limit.get())
{
    const counted_step step(time_limit);
    sqlite3_stmt *prepared = nullptr;
    const int result = sqlite3_prepare_v2(database.handle(), sql.constData(), int(sql.size()), &prepared, nullptr);
    statement.reset(prepared);
    if (result != SQLITE_OK)
        fail(database.handle(), result);
}

void sqlite_statement::check(int result) const
{
    if (result != SQLITE_OK)
        fail(sqlite3_db_handle(statement.get()), result);
}

void sqlite_statement::bind_null(int parameter)
{
    check(sqlite3_bind_null(statement.get(), parameter + 1));
}

void sqlite_statement::bind(int parameter, qint64 value)
{
    check(sqlite3_bind_int64(statement.get(), parameter + 1, value));
}

void sqlite_statement::bind_bytes(int parameter, QByteArrayView value)
{
    check(sqlite3_bind_blob64(statement.get(), parameter + 1, value.data(), sqlite3_uint64(value.size()),
                              SQLITE_TRANSIENT));
}

void sqlite_statement::bind(int parameter, const QString &value)
{
    const QByteArray text = value.toUtf8();
    check(sqlite3_bind_text64(statement.get(), parameter + 1, text.constData(), sqlite3_uint64(text.size()),
                              SQLITE_TRANSIENT, SQLITE_UTF8));
}

void sqlite_statement::bind(int parameter, const cell &value)
{
    const int place = parameter + 1;
    const char *bytes = value.bytes.isEmpty() ? "" : value.bytes.data(); // a null pointer would be NULL
    const auto size = sqlite3_uint64(value.bytes.size());
    switch (value.kind) {
    case cell::type::null:
        return check(sqlite3_bind_null(statement.get(), place));
    case cell::type::integer:
        return check(sqlite3_bind_int64(statement.get(), place, value.integer));
    case cell::type::real:
        return check(sqlite3_bind_double(statement.get(), place, value.real));
    case cell::type::text:
        if (value.bytes.isValidUtf8())
            return check(sqlite3_bind_text64(statement.get(), place, bytes, size, SQLITE_STATIC, SQLITE_UTF8));
        [[fallthrough]];
    case cell::type::blob:
        return check(sqlite3_bind_blob64(statement.get(), place, bytes, size, SQLITE_STATIC));
    }
}

bool sqlite_statement::next()
{
    const counted_step step(time_limit);
    const int result = sqlite3_step(statement.get());
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        fail(sqlite3_db_handle(statement.get()), result);
    return result == SQLITE_ROW;
}

void sqlite_statement::reset()
{
    check(sqlite3_reset(statement.get()));
}

int sqlite_statement::column_count() const
{
    return sqlite3_column_count(statement.get());
}

QString sqlite_statement::column_name(int column) const
{
    return QString::fromUtf8(sqlite3_column_name(statement.get(), column));
}

int sqlite_statement::column_named(QLatin1StringView name) const
{
    for (int column = 0; column < column_count(); ++column) {
        const QByteArrayView here(sqlite3_column_name(statement.get(), column));
        if (here.compare(QByteArrayView(name.data(), name.size()), Qt::CaseInsensitive) == 0)
            return column;
    }
    return -1;
}

cell::type sqlite_statement::column_type(int column) const
{
    switch (sqlite3_column_type(statement.get(), column)) {
    case SQLITE_INTEGER:
        return cell::type::integer;
    case SQLITE_FLOAT:
        return cell::type::real;
    case SQLITE_TEXT:
        return cell::type::text;
    case SQLITE_BLOB:
        return cell::type::blob;
    default:
        return cell::type::null;
    }
}

cell sqlite_statement::value_of(int column) const
{
    cell result;
    result.kind = column_type(column);
    if (result.kind == cell::type::integer)
        result.integer = integer(column);
    else if (result.kind == cell::type::real)
        result.real = real(column);
    else if (result.kind != cell::type::null)
        result.bytes = bytes(column);
    return result;
}

qint64 sqlite_statement::integer(int column) const
{
    return sqlite3_column_int64(statement.get(), column);
}

double sqlite_statement::real(int column) const
{
    return sqlite3_column_double(statement.get(), column);
}

QByteArrayView sqlite_statement::bytes(int column) const
{
    const void *start = column_type(column) == cell::type::blob
                            ? sqlite3_column_blob(statement.get(), column)
                            : static_cast<const void *>(sqlite3_column_text(statement.get(), column));
    sqlite3 *const database = sqlite3_db_handle(statement.get());
    if (!start && sqlite3_errcode(database) == SQLITE_NOMEM) // an empty value is null too
        fail(database, SQLITE_NOMEM);
    return QByteArrayView(static_cast<const char *>(start), sqlite3_column_bytes(statement.get(), column));
}

QString sqlite_statement::text(int column) const
{
    return utf8_text(bytes(column));
}
