// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CASE_CHECK_H
#define HOST_CASE_CASE_CHECK_H

#include "host/case/case_layout.h"
#include "host/case/outcome_code.h"

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

/** What to compare a case with. */
struct check_request
{
    QString directory;           ///< absolute
    QString manifest_sha256;     ///< from the examiner's notes; empty: the file beside the manifest has it
    QMap<int, QString> moved_to; ///< where the evidence of a source lies now
    QStringList report_folders;  ///< absolute; of reports that lie elsewhere
    bool leaves_out_evidence = false;
    bool hashes_containers = false; ///< images and archives too, which are compared by size and time otherwise
    /** What an EWF holds now: "md5" and "sha1", or the "problem". It is opened in this process. */
    std::function<QJsonObject(const QString &path)> rehash_image;
};

/** A file that was compared, or should have been. */
struct compared_file
{
    enum class place { manifest, result, evidence, report };
    enum class finding { unchanged, changed, missing, added, unreadable };

    place kind = place::result;
    QString path; ///< relative to the case; of evidence, "Source1: " and its path there; of reports elsewhere absolute
    finding outcome = finding::unchanged;
    QString expected; ///< SHA-256; empty: none was recorded
    QString found;    ///< SHA-256; empty: it was not read

    QJsonObject to_json() const;
};

/** What was found. */
struct check_outcome
{
    QString manifest_sha256; ///< of the manifest as it is now; empty without one
    QList<compared_file> files;
    QStringList differences;     ///< something is not as recorded
    QStringList incomplete;      ///< the case was never whole
    QStringList missing;         ///< evidence that is not there to be looked at
    QStringList evidence_places; ///< where the evidence of the sources lies
    QStringList notes;           ///< other times, for instance: content counts

    /** 5 with differences, 4 for an incomplete case, 3 without the evidence, else 0. */
    outcome_code code() const;

    /** How many files of a kind were compared. */
    qsizetype count(compared_file::place kind) const;

    QJsonObject to_json() const;
};

/**
 * Hashes evidence, the files of a case and of its reports again and compares them with its manifest, by content. Reads
 * and never writes. Throws host_error: not_found when there is no such case, refused when the request names a source
 * that the manifest has not.
 */
check_outcome check_case(const check_request &request);

#endif
