// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_OUTCOME_CODE_H
#define HOST_CASE_OUTCOME_CODE_H

/** What came of a source or of a case, as the number that records of sources have. */
enum class outcome_code {
    done = 0,
    failed = 1,           ///< nothing was begun
    no_evidence = 3,      ///< missing, unreadable or free of evidence
    partial = 4,          ///< evidence was found, but a part could not be read or written
    evidence_changed = 5, ///< the evidence is not what it was before the run
    interrupted = 130,
};

#endif
