// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CASE_CHECK_H
#define HOST_CASE_CASE_CHECK_H

#include "host/case/case_layout.h"
#include "host/case/outcome_code.h"

#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

/** What to compare a case with. */
struct check_request
{
    QString directory;           ///< absolute
    QString manifest_sha256;     ///< from the examiner's notes; empty: the file beside the manifest tells
    QMap<int, QString> moved_to; ///< where the evidence of a source lies now
    bool leaves_out_evidence = false;
};

/** What was found. */
struct check_outcome
{
    QStringList differences; ///< something is not as recorded
    QStringList incomplete;  ///< the case was never whole
    QStringList missing;     ///< evidence that is not there to be looked at
    QStringList notes;       ///< other times, for instance: content counts
    qint64 files_compared = 0;

    /** 5 with differences, 4 for an incomplete case, 3 without the evidence, else 0. */
    outcome_code code() const;
};

/**
 * Hashes evidence, working copies and results of a case again and compares them with its manifest, by content. Reads
 * and never writes. Throws host_error (not_found) when there is no such case.
 */
check_outcome check_case(const check_request &request);

#endif
