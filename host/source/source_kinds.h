// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_SOURCE_KINDS_H
#define HOST_SOURCE_SOURCE_KINDS_H

#include <QLatin1StringView>
#include <QString>

/** A kind of source. */
struct source_kind
{
    QLatin1StringView name;                 ///< as --type and the records call it, and the plug-in if it knows it
    QLatin1StringView short_name;           ///< what --type understands besides
    QLatin1StringView display_name;         ///< as result rows show it
    const source_kind *driven_as = nullptr; ///< the kind that the plug-in takes it for; null: this one
};

inline constexpr source_kind macos_kind = {QLatin1StringView("macOS"), QLatin1StringView("macos"),
                                           QLatin1StringView("macOS")};
inline constexpr source_kind ios_uid_kind = {QLatin1StringView("iOS_UID"), QLatin1StringView("ios"),
                                             QLatin1StringView("iOS")};
inline constexpr source_kind ios_files_kind = {QLatin1StringView("iOS_files"), QLatin1StringView("ios-files"),
                                               QLatin1StringView("iOS"), &macos_kind};
inline constexpr source_kind ios_backup_kind = {QLatin1StringView("iOS_backup"), QLatin1StringView("ios-backup"),
                                                QLatin1StringView("iOS"), &macos_kind};
inline constexpr source_kind winos_kind = {QLatin1StringView("winOS"), QLatin1StringView("windows"),
                                           QLatin1StringView("Windows")};
inline constexpr const source_kind *source_kinds[] = {&macos_kind, &ios_uid_kind, &ios_files_kind, &ios_backup_kind,
                                                      &winos_kind};

/** The kind that the plug-in is given. */
inline const source_kind &plugin_kind(const source_kind &kind)
{
    return kind.driven_as ? *kind.driven_as : kind;
}

/** The kind of this name, long or short, in any letter case; null if there is none. */
inline const source_kind *source_kind_named(const QString &name)
{
    for (const source_kind *kind : source_kinds) {
        if (name.compare(kind->name, Qt::CaseInsensitive) == 0
            || name.compare(kind->short_name, Qt::CaseInsensitive) == 0)
            return kind;
    }
    return nullptr;
}

#endif
