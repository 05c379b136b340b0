// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_MANIFEST_H
#define HOST_CASE_MANIFEST_H

#include "host/case/case_layout.h"
#include "host/case/outcome_code.h"
#include "host/case/source_record.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>

/** The version of records and manifests that are written now. Those of version 1 are read; they list no files. */
inline constexpr int case_version = 2;

/** The record of a source as it stands in its folder. */
struct kept_record
{
    QJsonObject members; ///< all of source.json
    source_record source;

    int version() const
    {
        return members.value(QLatin1StringView("version")).toInt();
    }
};

/**
 * Reads the record of a source. One that says "running" though nobody holds its lock is interrupted. Throws host_error
 * (not_found) when it is missing, no record of this program, or forged.
 */
kept_record read_source_record(const case_layout &layout, int number);

/** The numbers of the sources that have a record. */
QList<int> recorded_sources(const case_layout &layout);

/** What became of a case. */
struct case_tally
{
    QMap<source_status, int> sources; ///< how many ended how
    QList<int> not_done;              ///< the numbers of those that are not done
    QMap<outcome_code, int> codes;    ///< how many with which code
    QString manifest_sha256;
    bool is_interrupted = false; ///< before all sources had their turn

    void add(const source_record &source);

    /** The code for the whole, the first that fits: 5, 130, 3 when no source could be read, 4, 0. */
    outcome_code code() const;
};

/**
 * Makes the manifest of a case from the records of its sources, in flat memory, and the file with its hash. Throws
 * host_error: refused when records are of different lists of sources or one of them still runs, not_found when there is
 * no record, io when it cannot be written.
 */
case_tally collect_case(const case_layout &layout);

/** manifest.json as it stands in the case. */
struct manifest_file
{
    QByteArray bytes;
    QString sha256; ///< of the bytes
};

/** Throws host_error (not_found) when the case has none or it cannot be read. */
manifest_file read_manifest_file(const case_layout &layout);

/** Its members. Throws host_error (not_found) when it is no manifest, or one of a version that this program cannot
 * read. */
QJsonObject manifest_members(const manifest_file &file);

/** How the record of a source stands to what the manifest says of the source. */
enum class record_state {
    alike,
    gone,
    newer,     ///< a run worked on the source after the manifest was made, or does now
    different, ///< somebody edited it, or the manifest
    forged,    ///< it cannot be read as a record
};

/** @p entry is one of the manifest's sources. */
record_state compare_record(const case_layout &layout, const QJsonObject &manifest, const QJsonObject &entry);

/** The sources whose records are not what the manifest says of them. */
QList<int> sources_unlike_manifest(const case_layout &layout, const QJsonObject &manifest);

#endif
