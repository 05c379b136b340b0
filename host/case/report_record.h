// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_REPORT_RECORD_H
#define HOST_CASE_REPORT_RECORD_H

#include "host/case/case_layout.h"
#include "host/case/kept_file.h"

#include <QList>
#include <QString>
#include <QStringList>

/** report.json of the folder of a report: what was written there, and from which manifest. */
struct report_record
{
    QString manifest_sha256; ///< empty: the case had no manifest
    QList<kept_file> files;
};

inline constexpr QLatin1StringView report_record_name("report.json");

/** Reads it. Throws host_error (not_found) when it is missing, or was not written by this program. */
report_record read_report_record(const QString &folder);

/** The folders right below the case that hold a report.json, by name. */
QStringList report_folders_of(const case_layout &layout);

/** What is said of such a report that was made from another manifest than the case has now. */
QString older_report_text(const QString &folder);

/** Those of them whose report was made from another manifest than the one with this hash. */
QStringList outdated_reports(const case_layout &layout, const QString &manifest_sha256);

#endif
