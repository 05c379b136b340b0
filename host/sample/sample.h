// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SAMPLE_SAMPLE_H
#define HOST_SAMPLE_SAMPLE_H

#include "host/sample/sample_parts.h"

#include <QLatin1StringView>
#include <QString>
#include <QStringList>

/** Where the sources of a sample are in its folder. */
inline constexpr QLatin1StringView macos_sample_folder("macos/");
inline constexpr QLatin1StringView windows_sample_folder("windows/");
inline constexpr QLatin1StringView ios_sample_log("ios/system.log");
inline constexpr QLatin1StringView packed_sample("sample.tar.gz");
inline constexpr QLatin1StringView ios_backup_sample("ios_backup");
inline constexpr QLatin1StringView ios_files_sample("ios_files");

/** What a sample holds. */
struct sample_content
{
    sample_names names = sample_names::usual;
    bool has_containers = false; ///< also a tar.gz of the macOS source, a backup and a file system of an iOS device
};

/**
 * Writes a synthetic source of each kind below @p directory, the same bytes every time. Gives the paths of what stays
 * there because this program did not write it. Throws host_error (refused) when a sample is there already and is not to
 * be @p replaced, or something else stands in the way; io when it cannot be written.
 */
QStringList write_sample(const QString &directory, const sample_content &content, bool replaced);

#endif
