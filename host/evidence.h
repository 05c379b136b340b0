// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_EVIDENCE_H
#define HOST_EVIDENCE_H

#include <QLatin1StringView>
#include <QString>
#include <QStringList>

/** A kind of source that the plug-in knows. */
struct source_kind
{
    QLatin1StringView name;         ///< as the plug-in and --type call it
    QLatin1StringView display_name; ///< as result rows show it
};

inline constexpr source_kind macos_kind = {QLatin1StringView("macOS"), QLatin1StringView("macOS")};
inline constexpr source_kind ios_uid_kind = {QLatin1StringView("iOS_UID"), QLatin1StringView("iOS")};
inline constexpr source_kind winos_kind = {QLatin1StringView("winOS"), QLatin1StringView("Windows")};

/** A source of evidence that can be extracted. */
struct source
{
    const source_kind *kind = nullptr;
    QString given;         ///< the path that the examiner gave, absolute
    QString root;          ///< the folder that the evidence stands in; ends with "/"
    QString off_limits;    ///< at and below this nothing may be written: the folder, or the log text itself
    QString log_file;      ///< iOS only
    QStringList watched;   ///< paths whose files must be the same after the run; they need not exist
    QStringList not_found; ///< result tables without evidence in this source
    QStringList unread;    ///< evidence beside the databases that the plug-in does not read
};

/**
 * Looks at what stands at @p path without opening any evidence. @p type is a kind's name or "auto"; @p tables are the
 * result tables to fill. Throws host_error (input) when there is nothing to extract or it cannot be read.
 */
source find_source(const QString &path, const QString &type, const QStringList &tables);

#endif
