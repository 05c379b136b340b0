// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"
#include "common/sqlite_connection.h"

#include <QDateTime>
#include <QSqlError>

#include <cstdlib>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

// Texts are part of the log format, odd blanks included. Each is followed by what it names.

/** What the log says when a file cannot be opened. */
struct open_report
{
    QStringView path;
    QStringView caller;
    QStringView error;
};

/** What the log says when a statement fails. */
struct statement_report
{
    QStringView path;
    QStringView caller; // null: the report names no caller
    QStringView command;
    QStringView error;
};

struct helper_texts
{
    QStringView signature;
    open_report opening;
    statement_report statement;
    QStringView end;
};

constexpr QStringView statement_failed = u" query  --------FAILED------ db file - ";
constexpr QStringView list_statement_failed = u" query  --------FAILED------db file - ";
constexpr QStringView plain_caller = u"CALLER FUNCTION -  ";
constexpr QStringView reference_caller = u" CALLER FUNCTION -  -  ";
constexpr QStringView command_text = u" command -  ";
constexpr QStringView error_text = u" error -  ";
constexpr QStringView list_error_text = u"error -  ";
constexpr QStringView list_end = u" end ";

constexpr open_report no_opening{};
constexpr open_report file_opening{u" Destination Db opening --------FAILED------ ", plain_caller, error_text};
constexpr open_report list_file_opening{u"Destination Db opening --------FAILED------ ", plain_caller, list_error_text};

constexpr statement_report file_statement{statement_failed, plain_caller, command_text, error_text};
constexpr statement_report bound_file_statement{statement_failed, u" CALLER FUNCTION -  ", command_text, error_text};
constexpr statement_report reference_statement{statement_failed, reference_caller, command_text, error_text};
constexpr statement_report list_reference_statement{list_statement_failed, reference_caller, command_text, error_text};
constexpr statement_report list_file_statement{u"query  --------FAILED------db file - ", plain_caller, u"command -  ",
                                               list_error_text};
constexpr statement_report existence_statement{u"[check_value_existence_in_db_by_dbpath] query --------FAILED------",
                                               {},
                                               u"[check_value_existence_in_db_by_dbpath]command",
                                               u"[check_value_existence_in_db_by_dbpath] error"};

// clang-format off
constexpr helper_texts execute_by_path{
    u"static bool plugin_static_function::execute_db_command_by_dbpath(QString, QString, QString)",
    file_opening, file_statement, {}};
constexpr helper_texts execute_bound_by_path{
    u"static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString, QStringList, QString, QString)",
    file_opening, bound_file_statement, {}};
constexpr helper_texts execute_by_reference{
    u"static bool plugin_static_function::execute_db_command_by_dbreference(QString, QSqlDatabase &, QString)",
    no_opening, reference_statement, {}};
constexpr helper_texts execute_bound_by_reference{
    u"static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference(QString, QStringList, QSqlDatabase &, QString)",
    no_opening, reference_statement, {}};
constexpr helper_texts list_by_path{
    u"static QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(QString, int, QString, QString)",
    list_file_opening, list_file_statement, list_end};
constexpr helper_texts list_bound_by_path{
    u"static QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(QString, QStringList, int, QString, QString)",
    list_file_opening, list_file_statement, u" End "};
constexpr helper_texts list_by_reference{
    u"static QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(QString, int, QSqlDatabase &, QString)",
    no_opening, list_reference_statement, list_end};
constexpr helper_texts list_bound_by_reference{
    u"static QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(QString, QStringList, int, QSqlDatabase &, QString)",
    no_opening, list_reference_statement, list_end};
constexpr helper_texts existence_by_reference{
    u"static bool plugin_static_function::check_value_existence_in_db_by_dbreference(QString, int, QString, QSqlDatabase)",
    no_opening, existence_statement, {}};
constexpr helper_texts table_names_by_path{
    u"static QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString, QString)",
    file_opening, {}, {}};
// clang-format on

enum class outcome { done, failed, cancelled };

void log_line(const helper_texts &texts, const QString &message)
{
    plugin_static_function::app_debug(message, texts.signature.toString());
}

void log_text(const helper_texts &texts, QStringView text, const QString &detail)
{
    log_line(texts, text + detail);
}

/** Opens @p db_path under @p name; a failure is logged. */
QSqlDatabase open_by_path(const helper_texts &texts, const QString &name, const QString &db_path, const QString &caller)
{
    QSqlDatabase database = open_sqlite_connection(name, db_path);
    if (!database.isOpen()) {
        log_text(texts, texts.opening.path, db_path);
        log_text(texts, texts.opening.caller, caller);
        log_text(texts, texts.opening.error, database.lastError().text());
    }
    return database;
}

/** Prepares, binds and executes. The flag is tested before each value; a statement that fails is logged. */
outcome run(const helper_texts &texts, QSqlQuery &query, const QString &command, const QStringList &values,
            const QString &label, const QString &caller)
{
    const bool prepared = query.prepare(command);
    for (const QString &value : values) {
        if (plugin_static_function::bool_cancel_extraction)
            return outcome::cancelled;
        query.addBindValue(value, QSql::In);
    }
    if (prepared && query.exec())
        return outcome::done;

    log_text(texts, texts.statement.path, label);
    if (!texts.statement.caller.isNull())
        log_text(texts, texts.statement.caller, caller);
    log_text(texts, texts.statement.command, command);
    log_text(texts, texts.statement.error, query.lastError().text());
    return outcome::failed;
}

bool execute_on_connection(const helper_texts &texts, const QString &command, const QStringList &values,
                           QSqlDatabase &database, const QString &caller)
{
    QSqlQuery query(database);
    return run(texts, query, command, values, database.databaseName(), caller) == outcome::done;
}

bool execute_on_file(const helper_texts &texts, const QString &command, const QStringList &values,
                     const QString &db_path, const QString &caller)
{
    QSqlDatabase database = open_by_path(texts, texts.signature + caller, db_path, caller);
    if (!database.isOpen())
        return false;

    const outcome result = [&] {
        QSqlQuery query(database);
        return run(texts, query, command, values, db_path, caller);
    }();
    // A cancelled call leaves its connection open; the next call of the same caller replaces it.
    if (result != outcome::cancelled)
        database.close();
    return result == outcome::done;
}

/** Appends one column of every row to @p texts_read; false when the cancel flag stopped the reading. */
bool read_column(QSqlQuery &query, int column, QStringList &texts_read)
{
    while (query.next()) {
        if (plugin_static_function::bool_cancel_extraction)
            return false;
        texts_read.append(query.value(column).toString().trimmed());
    }
    return true;
}

struct list_result
{
    QStringList texts;
    outcome end = outcome::done;    // failed: of the statement
    bool cancelled_in_rows = false; // as opposed to before the statement ran
};

list_result read_list(const helper_texts &texts, const QString &command, const QStringList &values, int column,
                      const QSqlDatabase &database, const QString &label, const QString &caller)
{
    list_result result;
    QSqlQuery query(database);
    query.setForwardOnly(true);
    result.end = run(texts, query, command, values, label, caller);
    if (result.end == outcome::done && !read_column(query, column, result.texts)) {
        result.end = outcome::cancelled;
        result.cancelled_in_rows = true;
    }
    return result;
}

QStringList list_on_connection(const helper_texts &texts, const QString &command, const QStringList &values, int column,
                               QSqlDatabase &database, const QString &caller)
{
    log_line(texts, u" Start "_s);
    const list_result result = read_list(texts, command, values, column, database, database.databaseName(), caller);
    if (result.end == outcome::done)
        log_line(texts, texts.end.toString());
    return result.texts;
}

QStringList list_on_file(const helper_texts &texts, const QString &command, const QStringList &values, int column,
                         const QString &db_path, const QString &caller)
{
    log_line(texts, u" Start "_s);
    const QString name = QString::number(std::rand()) + QString::number(QDateTime::currentMSecsSinceEpoch());
    list_result result;
    {
        QSqlDatabase database = open_by_path(texts, name, db_path, caller);
        if (!database.isOpen())
            result.end = outcome::failed;
        else
            result = read_list(texts, command, values, column, database, db_path, caller);
        if (result.cancelled_in_rows)
            return result.texts; // the connection stays open and registered
        database.close();
    }
    QSqlDatabase::removeDatabase(name);
    if (result.end == outcome::done)
        log_line(texts, texts.end.toString());
    return result.texts;
}

} // namespace

bool plugin_static_function::execute_db_command_by_dbpath(QString command, QString db_path, QString caller)
{
    return execute_on_file(execute_by_path, command, {}, db_path, caller);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString command, QStringList values,
                                                                            QString db_path, QString caller)
{
    return execute_on_file(execute_bound_by_path, command, values, db_path, caller);
}

bool plugin_static_function::execute_db_command_by_dbreference(QString command, QSqlDatabase &database, QString caller)
{
    return execute_on_connection(execute_by_reference, command, {}, database, caller);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference(QString command, QStringList values,
                                                                                 QSqlDatabase &database, QString caller)
{
    return execute_on_connection(execute_bound_by_reference, command, values, database, caller);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(QString command, int column, QString db_path,
                                                                     QString caller)
{
    return list_on_file(list_by_path, command, {}, column, db_path, caller);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(QString command,
                                                                                        QStringList values, int column,
                                                                                        QString db_path, QString caller)
{
    return list_on_file(list_bound_by_path, command, values, column, db_path, caller);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(QString command, int column,
                                                                          QSqlDatabase &database, QString caller)
{
    return list_on_connection(list_by_reference, command, {}, column, database, caller);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(
    QString command, QStringList values, int column, QSqlDatabase &database, QString caller)
{
    return list_on_connection(list_bound_by_reference, command, values, column, database, caller);
}

bool plugin_static_function::check_value_existence_in_db_by_dbreference(QString command, int column, QString value,
                                                                        QSqlDatabase database)
{
    const list_result result = read_list(existence_by_reference, command, {}, column, database,
                                         database.connectionName(), {});
    if (result.end != outcome::done)
        return false;

    const QString wanted = value.trimmed();
    for (const QString &text : result.texts) {
        if (bool_cancel_extraction)
            return false;
        if (text.trimmed() == wanted)
            return true;
    }
    return false;
}

QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString db_path, QString caller)
{
    QSqlDatabase database = open_by_path(table_names_by_path, table_names_by_path.signature + caller, db_path, caller);
    if (!database.isOpen())
        return {};

    QStringList names = database.tables(QSql::Tables);
    database.close();
    return names;
}
