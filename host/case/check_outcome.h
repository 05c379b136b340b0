// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CHECK_OUTCOME_H
#define HOST_CASE_CHECK_OUTCOME_H

#include "host/case/outcome_code.h"

#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

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

#endif
