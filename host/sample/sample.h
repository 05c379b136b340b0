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

/**
 * Writes a synthetic source of each kind below @p directory, the same bytes every time. Gives the paths of what stays
 * there because this program did not write it. Throws host_error (refused) when a sample is there already and is not to
 * be @p replaced, or something else stands in the way; io when it cannot be written.
 */
QStringList write_sample(const QString &directory, sample_names names, bool replaced);

#endif
