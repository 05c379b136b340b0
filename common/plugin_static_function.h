// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PLUGIN_STATIC_FUNCTION_H
#define COMMON_PLUGIN_STATIC_FUNCTION_H

#include "common/shared_records.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QWidget>

struct __CFString; // CoreFoundation's string; only ever pointed to

/**
 * The suite's shared utility library: static functions around one process-wide run context.
 *
 * Nothing here throws. A failure is logged where the function says so and shows as false, 0, an empty text or an empty
 * list. Everything runs on the host's thread; the run context is not locked, and two plug-ins in one library share it.
 * The class is never instantiated.
 */
class plugin_static_function : public QWidget
{
    Q_OBJECT

public:
    explicit plugin_static_function(QWidget *parent = nullptr);
    ~plugin_static_function() override;

    // Run context ------------------------------------------------------------------------------------------------

    static QString debug_file_path;
    static int type_engine_int; ///< 0 KALDO_DESK, 1 KALDO_FIELD, 2 KALDO_BOOT; -1 not set
    static int source_count_int;
    static bool bool_cancel_extraction;
    static bool debug_mode_status_bool;
    static bool debug_print_in_file_bool;
    static bool debug_print_on_terminal_bool;
    static qint64 examiner_machine_timezone_offset_qint64; ///< seconds
    static QString examiner_machine_os_version_full;
    static qint64 examiner_selected_timezone_offset_qint64; ///< seconds
    static int examiner_selected_date_format_int;           ///< 0, 1 or 2, see the timestamp functions
    static QString source_os_version_full;
    static QList<struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_system_account> system_account_QList;
    static QStringList system_account_QStringList;
    static QString root_pwd;

    static void set_engine_type(int type);
    static void set_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info);
    static void set_examiner_machine_info(struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info info);
    static void set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info);
    static void set_cancel_extraction(bool cancel);
    static void set_source_count(int count);

    /** Label of the current source in every result row: "Source" and the source's number, nothing between. */
    static QString get_source_count_name();

    /** Takes the run context back to its start; the two OS version texts and root_pwd stay. */
    static void set_essentials();

    /** Empties a source record for reuse; its fields 12 and 13 keep their texts. */
    static void
    clear_variables_kaldo_and_artifact_common_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info &info);
    /** Empties a general record for reuse; general_flag_5 keeps its value. */
    static void
    clear_variables_kaldo_and_artifact_common_general_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info &info);
    static void clear_variables_kaldo_and_artifact_common_examiner_machine_info(
        struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info &info);

    // Debug log --------------------------------------------------------------------------------------------------

    /**
     * Writes one line to the debug log while debug mode is on: "[" local time "][" engine name
     * "][Artifacts Extraction][" function name "]:-- " message. @p function_info is the caller's full signature; the
     * line shows its qualified name. The log file is appended to and never created.
     */
    static void app_debug(QString message, QString function_info);

    // SQL commands on SQLite files -------------------------------------------------------------------------------
    //
    // By dbpath: the function opens the file itself. By dbreference: it uses an open connection and leaves it open.
    // Values are bound in order to the "?" of the command; the cancel flag is tested before each of them. `column` is
    // the zero-based result column that is read from every row. `caller` is the calling function's signature, for the
    // log. A failure is logged with the driver's words.

    static bool execute_db_command_by_dbpath(QString command, QString db_path, QString caller);
    static bool execute_db_command_with_addbindvalue_by_dbpath(QString command, QStringList values, QString db_path,
                                                               QString caller);
    static bool execute_db_command_by_dbreference(QString command, QSqlDatabase &database, QString caller);
    static bool execute_db_command_with_addbindvalue_by_dbreference(QString command, QStringList values,
                                                                    QSqlDatabase &database, QString caller);
    /** The trimmed texts of one column; empty texts are kept. Cancelled: what was read so far. */
    static QStringList get_stringlist_from_db_by_dbpath(QString command, int column, QString db_path, QString caller);
    static QStringList get_stringlist_from_db_with_addbindvalues_by_dbpath(QString command, QStringList values,
                                                                           int column, QString db_path, QString caller);
    static QStringList get_stringlist_from_db_by_dbreference(QString command, int column, QSqlDatabase &database,
                                                             QString caller);
    static QStringList get_stringlist_from_db_with_addbindvalues_by_dbreference(QString command, QStringList values,
                                                                                int column, QSqlDatabase &database,
                                                                                QString caller);
    /** Whether a row's column equals @p value; both are trimmed, case matters. */
    static bool check_value_existence_in_db_by_dbreference(QString command, int column, QString value,
                                                           QSqlDatabase database);
    /** Names of the tables that SQLite lists, its own such as "sqlite_sequence" among them; views are left out. */
    static QStringList get_total_tables_list_by_dbpath(QString db_path, QString caller);

    // Timestamps -------------------------------------------------------------------------------------------------
    //
    // Texts of decimal Unix seconds unless said otherwise; an empty text means no time. Inputs are trimmed first and
    // bad input gives an empty text.

    /** A duration in seconds as "hh:mm:ss Hrs", or "mm:ss Min" below one hour. */
    static QString get_human_readable_time(QString seconds);
    /** Display text in the examiner's selected zone and format. */
    static QString convert_epoch_to_custom(QString seconds);
    /** From seconds since 2001-01-01 UTC (Apple reference date); unreadable text counts as 0. */
    static QString convert_apple_time_to_epoch(QString seconds);
    /** From a mail-style date, "Fri, 03 May 2019 10:00:00 GMT"; the zone word is discarded. */
    static QString convert_human_readable_to_epoch(QString date);
    /** From an English 12-hour date, "Jan 5, 2020, 3:04:05 PM UTC"; other zone words mean local time. */
    static QString convert_human_readable_to_epoch_1(QString date);
    /**
     * From "2019-05-03 10:00:00.123 +0530". The zone is what follows the last "+", or else the last "-"; without one
     * that is the "-" of the date, whose day then counts as hours. A text with neither gives an empty text.
     */
    static QString convert_human_readable_to_epoch_2(QString date);
    /** Seconds of a zone text of four digits, hours then minutes. */
    static int convert_timezone_to_seconds_1(QString zone);
    /** Display text in UTC, in the selected format; 32-bit seconds only. */
    static QString convert_timestamp_to_human_readable_in_GMT(QString seconds);
    /** Display text in the machine's local time, in the selected format; 32-bit seconds only. */
    static QString convert_timestamp_to_human_readable_with_timezone(QString seconds);
    /** From an ISO 8601-like text: basic or extended date, "T" or a blank, a time with ":" or "-". */
    static QString convert_T_Z_time_to_epoch(QString date);
    /** From microseconds since 1601-01-01 UTC; a text of 10 characters is Unix seconds already. */
    static QString convert_google_time_to_epoch(QString microseconds);
    /** Birth, access and modification time of the file at @p prefix + @p path; zeros when it does not exist. */
    static struct_GLOBAL_ARTIFACT_posix_timestamp get_posix_timestamp(QString path, QString prefix);
    /** Spotlight's used dates of a file; an empty record where there is no such service. */
    static struct_GLOBAL_ARTIFACT_used_dates extract_used_date(QString path);
    /** Whole Unix seconds of a date object of the platform's property lists; 0 for anything else. */
    static qint64 convert_nsdate_to_epoch(void *date, void *object);

    // Files, directories and paths -------------------------------------------------------------------------------
    //
    // `kind` says in what kind of location a path lies; only "macOS_Home_Directory" is acted upon.

    /** Copies a tree; links are copied as what they point to. Failures are logged and do not stop the rest. */
    static void copy_directory(QString source, QString destination);
    /** Removes a tree with everything in it; links are removed as links. Runs to the end even when cancelled. */
    static void remove_directory(QString dir);
    /** The parent's entries that the child lacks, in the parent's order. */
    static QStringList get_unmatched_varible_list_of_parentlist(QStringList parent, QStringList child);
    /** The account whose folder a path lies in; only the length of @p prefix counts. */
    static struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_system_account extract_user_name_from_sourcefile(QString file_path,
                                                                                                    QString prefix);
    /** A file name that is free in @p dir: the name itself or "1_name", "2_name", …; empty when cancelled. */
    static QString get_available_file(QString file_name, QString dir, QString caller);
    static bool is_file_exist_in_dir(QString dir, QString file_name, QString caller);
    /** Moves a "/Users/<name>/…" path to the home folder of @p user_name; the result begins with "/". */
    static QString get_complete_file_path(QString path, QString user_name, QString kind);
    /** Cuts a path up to and including @p root; the result begins with "/". */
    static QString get_relative_file_path(QString path, QString root, QString kind);
    static struct_GLOBAL_ARTIFACT_artifact_source_file get_final_artifact_source_file(QString path, QString root,
                                                                                      QString kind);

    // Value formatting -------------------------------------------------------------------------------------------

    /** Bytes as "… B", "… KB" or "… MB" (of 1024); there is no larger unit. */
    static QString human_readable_size(QString bytes);
    /** What follows the last "." of the file name; a leading "." does not count. */
    static QString mining_suffix(QString path);
    /** Size in bytes of a file or of everything below a folder. */
    static QString mining_size(QString path);
    /** OS version with "_" for ".", as version-dependent logic is chosen by it. */
    static QString get_examiner_machine_os_scan_version();
    static QString get_source_os_scan_version(QString os_scheme);

    // The text of a value, out of the description that metadata and property-list objects print of themselves.
    static QString get_filtered_number_value(QString description);
    static QString get_filtered_boolean_value(QString description);
    static QString get_filtered_cfstring_value(QString description);
    static QString get_filtered_string_value(QString description);
    static QString get_filtered_wherefrom_value(QString description);
    /** Unix seconds of an ISO date, of "yyyy-MM-dd hh:mm:ss +zzzz" or of Apple reference seconds with a ".". */
    static QString get_filtered_date_value(QString date);
    /** Puts the characters in for "\Uxxxx" escapes; unchanged unless every escape can be read. */
    static QString convert_string_to_unicode(QString text);

    // Property-list values ---------------------------------------------------------------------------------------
    //
    // Keys, dictionaries and values are objects of the platform's property lists: Foundation objects on Apple
    // platforms, libplist nodes elsewhere. The labelled forms give label ":+:" value.

    static QString convert_cfstring_to_qstring(const __CFString *string);
    static QString get_nsstring_values(void *key, void *dictionary);
    static QString get_nsnumber_values(void *key, void *dictionary);
    static QString get_nsnumber_values_yes_no(void *key, void *dictionary);
    static QString get_nsstring_key_and_values(void *key, void *dictionary, QString label);
    static QString get_nsnumber_key_and_values(void *key, void *dictionary, QString label);
    static QString get_nsnumber_key_and_value_yes_no(void *key, void *dictionary, QString label);
    static QString get_nsarray_key_and_values(void *key, void *dictionary, QString label);
};

#endif
