// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_REPORT_RECORD_H
#define HOST_REPORT_REPORT_RECORD_H

#include <QLatin1StringView>
#include <QString>
#include <QStringList>

inline constexpr QLatin1StringView report_record_name("report.json");

/**
 * Writes report.json into @p folder: size and SHA-256 of each of @p files, and the hash of the manifest that the report
 * was made of (empty: there was none). What an earlier record says of files of the same manifest that are still there
 * stays. Throws host_error (io).
 */
void write_report_record(const QString &folder, const QString &manifest_sha256, const QStringList &files);

#endif
