// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/function_log.h"
#include "common/plugin_static_function.h"
#include "common/sqlite_connection.h"

#include <QDateTime>
#include <QSqlError>

#include <array>
#include <cstdlib>
#include <span>

using namespace Qt::StringLiterals;

namespace {

/** What one function writes to the log. The texts are part of the log format, odd blanks included. */
struct command_texts
{
    function_log log;
    std::array<QStringView, 3> open_failed;  ///< followed by the file, the caller and the error; empty: opens no file
    std::array<QStringView, 4> query_failed; ///< followed by the database, the caller (null: no such line), the command
                                             ///< and the error; empty: runs no command
    QStringView end;                         ///< null: has neither a start nor an end line
};

// clang-format off
constexpr command_texts execute_by_path{
    function_log(u"static bool plugin_static_function::execute_db_command_by_dbpath(QString, QString, QString)"),
    {u" Destination Db opening --------FAILED------ ", u"CALLER FUNCTION -  ", u" error -  "},
    {u" query  --------FAILED------ db file - ", u"CALLER FUNCTION -  ", u" command -  ", u" error -  "},
    {}};
constexpr command_texts execute_bound_by_path{
    function_log(u"static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString, QStringList, QString, QString)"),
    {u" Destination Db opening --------FAILED------ ", u"CALLER FUNCTION -  ", u" error -  "},
    {u" query  --------FAILED------ db file - ", u" CALLER FUNCTION -  ", u" command -  ", u" error -  "},
    {}};
constexpr command_texts execute_by_reference{
    function_log(u"static bool plugin_static_function::execute_db_command_by_dbreference(QString, QSqlDatabase &, QString)"),
    {},
    {u" query  --------FAILED------ db file - ", u" CALLER FUNCTION -  -  ", u" command -  ", u" error -  "},
    {}};
constexpr command_texts execute_bound_by_reference{
    function_log(u"static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference(QString, QStringList, QSqlDatabase &, QString)"),
    {},
    {u" query  --------FAILED------ db file - ", u" CALLER FUNCTION -  -  ", u" command -  ", u" error -  "},
    {}};
constexpr command_texts list_by_path{
    function_log(u"static QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(QString, int, QString, QString)"),
    {u"Destination Db opening --------FAILED------ ", u"CALLER FUNCTION -  ", u"error -  "},
    {u"query  --------FAILED------db file - ", u"CALLER FUNCTION -  ", u"command -  ", u"error -  "},
    u" end "};
constexpr command_texts list_bound_by_path{
    function_log(u"static QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(QString, QStringList, int, QString, QString)"),
    {u"Destination Db opening --------FAILED------ ", u"CALLER FUNCTION -  ", u"error -  "},
    {u"query  --------FAILED------db file - ", u"CALLER FUNCTION -  ", u"command -  ", u"error -  "},
    u" End "};
constexpr command_texts list_by_reference{
    function_log(u"static QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(QString, int, QSqlDatabase &, QString)"),
    {},
    {u" query  --------FAILED------db file - ", u" CALLER FUNCTION -  -  ", u" command -  ", u" error -  "},
    u" end "};
constexpr command_texts list_bound_by_reference{
    function_log(u"static QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(QString, QStringList, int, QSqlDatabase &, QString)"),
    {},
    {u" query  --------FAILED------db file - ", u" CALLER FUNCTION -  -  ", u" command -  ", u" error -  "},
    u" end "};
constexpr command_texts existence_by_reference{ // "_by_dbpath": text is part of the log format
    function_log(u"static bool plugin_static_function::check_value_existence_in_db_by_dbreference(QString, int, QString, QSqlDatabase)"),
    {},
    {u"[check_value_existence_in_db_by_dbpath] query --------FAILED------", {}, u"[check_value_existence_in_db_by_dbpath]command", u"[check_value_existence_in_db_by_dbpath] error"},
    {}};
constexpr command_texts table_names_by_path{
    function_log(u"static QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString, QString)"),
    {u" Destination Db opening --------FAILED------ ", u"CALLER FUNCTION -  ", u" error -  "},
    {},
    {}};
// clang-format on

/** One call of one of the functions. */
struct command_call
{
    const command_texts &texts;
    QString caller;
    QString command = {};
    QStringList values = {};
};

enum class outcome { done, failed, cancelled_while_binding, cancelled_in_rows };

struct column_texts
{
    outcome end = outcome::done;
    QStringList texts = {}; ///< of the rows that were read
};

/** One line for each text that is not null, followed by its detail. */
void log_report(const function_log &log, std::span<const QStringView> texts, const QStringList &details)
{
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (!texts[i].isNull())
            log(texts[i] + details.at(qsizetype(i)));
    }
}

/** Opens @p db_path under @p name; a failure is logged. */
QSqlDatabase open_file(const command_call &call, const QString &name, const QString &db_path)
{
    QSqlDatabase database = open_sqlite_connection(name, db_path);
    if (!database.isOpen())
        log_report(call.texts.log, call.texts.open_failed, {db_path, call.caller, database.lastError().text()});
    return database;
}

/** Opens @p db_path under the function's and the caller's name, which stays registered until they open it again. */
QSqlDatabase open_file_for_caller(const command_call &call, const QString &db_path)
{
    return open_file(call, call.texts.log.function_info() + call.caller, db_path);
}

/** Prepares, binds and executes. A failure is logged with @p database_label. */
outcome run(const command_call &call, QSqlQuery &query, const QString &database_label)
{
    const bool is_prepared = query.prepare(call.command);
    for (const QString &value : call.values) {
        if (plugin_static_function::bool_cancel_extraction)
            return outcome::cancelled_while_binding;
        query.addBindValue(value, QSql::In);
    }
    if (is_prepared && query.exec())
        return outcome::done;

    log_report(call.texts.log, call.texts.query_failed,
               {database_label, call.caller, call.command, query.lastError().text()});
    return outcome::failed;
}

column_texts read_column(const command_call &call, int column, const QSqlDatabase &database,
                         const QString &database_label)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    column_texts read{run(call, query, database_label)};
    while (read.end == outcome::done && query.next()) {
        if (plugin_static_function::bool_cancel_extraction)
            read.end = outcome::cancelled_in_rows;
        else
            read.texts.append(query.value(column).toString().trimmed());
    }
    return read;
}

bool execute_on_connection(const command_call &call, QSqlDatabase &database)
{
    QSqlQuery query(database);
    return run(call, query, database.databaseName()) == outcome::done;
}

bool execute_on_file(const command_call &call, const QString &db_path)
{
    QSqlDatabase database = open_file_for_caller(call, db_path);
    if (!database.isOpen())
        return false;

    const outcome end = [&] {
        QSqlQuery query(database);
        return run(call, query, db_path);
    }();
    if (end != outcome::cancelled_while_binding) // a cancelled call leaves its connection open
        database.close();
    return end == outcome::done;
}

QStringList list_on_connection(const command_call &call, int column, QSqlDatabase &database)
{
    call.texts.log(u" Start ");
    const column_texts read = read_column(call, column, database, database.databaseName());
    if (read.end == outcome::done)
        call.texts.log(call.texts.end);
    return read.texts;
}

QStringList list_on_file(const command_call &call, int column, const QString &db_path)
{
    call.texts.log(u" Start ");
    const QString name = QString::number(std::rand()) + QString::number(QDateTime::currentMSecsSinceEpoch());
    column_texts read{outcome::failed};
    {
        QSqlDatabase database = open_file(call, name, db_path);
        if (database.isOpen())
            read = read_column(call, column, database, db_path);
        if (read.end == outcome::cancelled_in_rows)
            return read.texts; // the connection stays open and registered
        database.close();
    }
    QSqlDatabase::removeDatabase(name);
    if (read.end == outcome::done)
        call.texts.log(call.texts.end);
    return read.texts;
}

} // namespace

bool plugin_static_function::execute_db_command_by_dbpath(QString command, QString db_path, QString caller)
{
    return execute_on_file({execute_by_path, caller, command}, db_path);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString command, QStringList values,
                                                                            QString db_path, QString caller)
{
    return execute_on_file({execute_bound_by_path, caller, command, values}, db_path);
}

bool plugin_static_function::execute_db_command_by_dbreference(QString command, QSqlDatabase &database, QString caller)
{
    return execute_on_connection({execute_by_reference, caller, command}, database);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference(QString command, QStringList values,
                                                                                 QSqlDatabase &database, QString caller)
{
    return execute_on_connection({execute_bound_by_reference, caller, command, values}, database);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(QString command, int column, QString db_path,
                                                                     QString caller)
{
    return list_on_file({list_by_path, caller, command}, column, db_path);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(QString command,
                                                                                        QStringList values, int column,
                                                                                        QString db_path, QString caller)
{
    return list_on_file({list_bound_by_path, caller, command, values}, column, db_path);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(QString command, int column,
                                                                          QSqlDatabase &database, QString caller)
{
    return list_on_connection({list_by_reference, caller, command}, column, database);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(
    QString command, QStringList values, int column, QSqlDatabase &database, QString caller)
{
    return list_on_connection({list_bound_by_reference, caller, command, values}, column, database);
}

bool plugin_static_function::check_value_existence_in_db_by_dbreference(QString command, int column, QString value,
                                                                        QSqlDatabase database)
{
    const column_texts read = read_column({existence_by_reference, {}, command}, column, database,
                                          database.connectionName());
    if (read.end != outcome::done)
        return false;

    const QString wanted = value.trimmed();
    for (const QString &text : read.texts) {
        if (bool_cancel_extraction)
            return false;
        if (text.trimmed() == wanted)
            return true;
    }
    return false;
}

QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString db_path, QString caller)
{
    QSqlDatabase database = open_file_for_caller({table_names_by_path, caller}, db_path);
    if (!database.isOpen())
        return {};

    QStringList names = database.tables(QSql::Tables);
    database.close();
    return names;
}
