// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_SHARED_RECORDS_H
#define COMMON_SHARED_RECORDS_H

#include <QList>
#include <QString>
#include <QStringList>

/**
 * The plain value records that every plug-in of the suite shares. The host fills them, hands them over by value and
 * never gets them back. Field names, order and types are the binary interface to the host: they must not change.
 * A record that nobody has filled holds empty texts, false and 0.
 */

/** One user account found on the source. */
struct struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_system_account
{
    QString system_user;
    QString system_account_home_path; ///< home folder on the source
};

/** The evidence source that is being examined. Fields that are not described are carried and not read. */
struct struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info
{
    QString source_root_path; ///< where the source's file system is reachable, ends with "/"
    QString source_path_2;
    QString os_scheme_display;  ///< operating-system name as shown in every result row
    QString os_scheme_internal; ///< "macOS", "iOS_UID" or "winOS": chooses the extractor
    QString os_version_full;
    QList<struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_system_account> system_account_list;
    QString source_text_7;
    QString source_text_8;
    QStringList source_path_list;
    QString source_log_file_path; ///< system-log text of an iOS source
    QString source_text_11;
    QString source_text_12;
    QString source_text_13;
};

/** General case and logging settings. */
struct struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info
{
    bool general_flag_1 = false;
    bool debug_mode_status = false;       ///< debug logging as a whole
    bool debug_print_on_terminal = false; ///< log lines go to the debug output
    bool debug_print_in_file = false;     ///< log lines go to debug_file_path
    bool general_flag_5 = false;
    QString debug_file_path; ///< the host creates this file, the plug-in only appends
};

/** The machine that the examiner works on. */
struct struct_GLOBAL_KALDO_AND_ARTIFACT_COMMON_examiner_machine_info
{
    qint64 timezone_offset = 0; ///< seconds east of UTC
    QString os_version_full;
};

/** The examiner's desktop. */
struct struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_desktop_info
{
    QString desktop_text_1;
    QString desktop_text_2;
    bool desktop_flag = false;
    QString desktop_text_4;
    QString desktop_text_5;
};

/** A source file as result rows name it. */
struct struct_GLOBAL_ARTIFACT_artifact_source_file
{
    QString artifact_source_file;      ///< relative to the source, begins with "/"
    QString complete_source_file_path; ///< the path as given; only for the kind "macOS_Home_Directory"
};

/** The used dates of a file in its Spotlight metadata, as Unix seconds in decimal text. */
struct struct_GLOBAL_ARTIFACT_used_dates
{
    QString last_used_date;      ///< metadata key kMDItemLastUsedDate
    QStringList used_dates_list; ///< metadata key kMDItemUsedDates, in the metadata's order
    QString first_used_date;
    QString last_entry_used_date;
};

/** The times of a file in the file system, in Unix seconds (UTC); 0 where there is none. */
struct struct_GLOBAL_ARTIFACT_posix_timestamp
{
    qint64 birth_time = 0;
    qint64 last_access_time = 0;
    qint64 last_modification_time = 0;
};

#endif
