// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_SOURCE_OUTCOME_H
#define HOST_RUN_SOURCE_OUTCOME_H

#include "host/case/outcome_code.h"
#include "host/case/source_record.h"
#include "host/run/source_request.h"
#include "host/run/worker_report.h"

#include <QList>
#include <QString>

/** Something that the examiner must know of a run. */
struct run_message
{
    enum class weight { note, warning, error };

    weight importance = weight::note;
    QString text;
};

/** What the run of one source gave. */
struct source_outcome
{
    source_record record; ///< with its status, its exit code and the texts of the messages
    QList<run_message> messages;

    outcome_code code() const
    {
        return outcome_code(record.exit_code.value_or(int(outcome_code::failed)));
    }

    /** Adds an error to a run that was judged already: one that was done is partial then. */
    void fail(const QString &text);
};

/**
 * Judges a run by all that is known of it. It is done only if all that was there was read, all that was read was
 * stored, and nothing was touched; everything else is told. @p record is what was known before the run.
 */
source_outcome judge_source(const source_request &request, const source_record &record, const worker_report &report,
                            bool is_interrupted);

/** What can be told before the run: limits of what the plug-in reads, and what reading the evidence would change. */
QList<run_message> messages_before_run(const source_request &request);

#endif
