// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_SOURCE_KINDS_H
#define HOST_SOURCE_SOURCE_KINDS_H

#include <QLatin1StringView>
#include <QString>

/** A kind of source that the plug-in knows. */
struct source_kind
{
    QLatin1StringView name;         ///< as the plug-in, --type and the records call it
    QLatin1StringView short_name;   ///< what --type understands besides, in any letter case
    QLatin1StringView display_name; ///< as result rows show it
};

inline constexpr source_kind macos_kind = {QLatin1StringView("macOS"), QLatin1StringView("macos"),
                                           QLatin1StringView("macOS")};
inline constexpr source_kind ios_uid_kind = {QLatin1StringView("iOS_UID"), QLatin1StringView("ios"),
                                             QLatin1StringView("iOS")};
inline constexpr source_kind winos_kind = {QLatin1StringView("winOS"), QLatin1StringView("windows"),
                                           QLatin1StringView("Windows")};
inline constexpr const source_kind *source_kinds[] = {&macos_kind, &ios_uid_kind, &winos_kind};

/** The kind of this name, long or short; null if there is none. */
inline const source_kind *source_kind_named(const QString &name)
{
    for (const source_kind *kind : source_kinds) {
        if (name == kind->name || name.compare(kind->short_name, Qt::CaseInsensitive) == 0)
            return kind;
    }
    return nullptr;
}

#endif
