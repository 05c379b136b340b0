// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SQLITE_SQLITE_H
#define HOST_SQLITE_SQLITE_H

#include "host/text/cell.h"

#include <QByteArray>
#include <QString>

#include <exception>
#include <memory>

struct sqlite3;
struct sqlite3_stmt;

/** What SQLite refused, in its own words: "database disk image is malformed". */
class sqlite_error : public std::exception
{
public:
    sqlite_error(int result_code, const QString &message)
        : code(result_code)
        , text(message)
    {
    }

    /** SQLite's extended result code, https://www.sqlite.org/rescode.html. */
    int result_code() const
    {
        return code;
    }

    QString message() const
    {
        return text;
    }

    bool is_out_of_memory() const;

    /** Whether the system failed, and not the file: it says nothing of what the file holds. */
    bool is_of_the_system() const;

private:
    int code;
    QString text;
};

struct sqlite_time_limit;

/** SQLite opens no file whose path has more bytes: https://www.sqlite.org/src/file/src/os_unix.c, MAX_PATHNAME. */
inline constexpr qsizetype longest_sqlite_path = 504;

/** Where SQLite sorts what is too much for its memory, in files that have no name: elsewhere it may not write. */
void sort_in_folder(const QString &folder);

/** An open database file. Every function throws sqlite_error. */
class sqlite_database
{
public:
    enum class access {
        read_only,
        main_file_alone, ///< read-only, and a -wal or a journal beside the file is left out of account
        read_write,
        create
    };

    sqlite_database(const QString &file, access mode);
    /** What a database file holds, read-only; without the log where it has a write-ahead log. */
    explicit sqlite_database(QByteArray content);
    sqlite_database(sqlite_database &&other) noexcept;
    ~sqlite_database();

    /** Runs statements that give no rows. */
    void execute(const char *statements);

    /**
     * Call before reading an untrusted file: allows plain table reads, five minutes of SQLite's own work.
     * https://www.sqlite.org/security.html
     */
    void distrust();

    /**
     * Whether @p name is an ordinary table: a view or a virtual table would run what the file's author put into it.
     * Letter case is ignored, as SQLite does for names.
     */
    bool has_table(QLatin1StringView name) const;

    sqlite3 *handle() const
    {
        return database.get();
    }

private:
    friend class sqlite_statement;

    QByteArray in_memory; ///< a database without a file; it outlives the connection
    std::unique_ptr<sqlite3, int (*)(sqlite3 *)> database;
    std::unique_ptr<sqlite_time_limit> time_limit; ///< none before distrust()
};

/** A statement and the row that it stands at. Parameters and columns count from 0 here. Throws sqlite_error. */
class sqlite_statement
{
public:
    sqlite_statement(const sqlite_database &database, const QByteArray &sql);

    void bind_null(int parameter);
    void bind(int parameter, qint64 value);
    void bind(int parameter, const QString &value);
    void bind_bytes(int parameter, QByteArrayView value);
    /** A text that is no UTF-8 becomes a blob. The bytes are needed until the statement has run. */
    void bind(int parameter, const cell &value);

    /** Goes to the next row. False when there is none. */
    bool next();
    /** Ends the run, so that the statement can run again with other values. */
    void reset();

    int column_count() const;
    QString column_name(int column) const;
    /** The first column of this name, letter case aside; -1: there is none. */
    int column_named(QLatin1StringView name) const;
    cell::type column_type(int column) const;
    /** Bytes of a text or a blob are valid until the next call of next(). */
    cell value_of(int column) const;
    qint64 integer(int column) const;
    double real(int column) const;
    /** The bytes of a text (UTF-8 by SQLite's rule, not checked) or a blob; valid until the next call of next(). */
    QByteArrayView bytes(int column) const;
    /** A text as it can be shown: bytes that are no UTF-8 are replaced by U+FFFD. */
    QString text(int column) const;

private:
    void check(int result) const;

    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> statement;
    sqlite_time_limit *time_limit; ///< of the database, which outlives its statements
};

#endif
