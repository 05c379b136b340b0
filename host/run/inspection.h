// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_INSPECTION_H
#define HOST_RUN_INSPECTION_H

#include "host/case/source_record.h"
#include "host/run/plugin_log.h"
#include "host/run/source_request.h"
#include "host/source/evidence_look.h"

#include <QJsonObject>

/**
 * What the host itself finds after the plug-in has run, or has failed to: the evidence again, rows counted in the
 * working copies and in the result, the plug-in's log. Made in a process that is watched and limited, since it reads
 * what strangers wrote.
 */
struct inspection
{
    evidence_state evidence;
    QStringList changes;     ///< of the evidence, in plain words
    QList<table_rows> rows;  ///< found and stored; for each table of the request
    QStringList problems;    ///< why a count is missing, in plain words
    QStringList differences; ///< between what the host and what the plug-in read, in plain words
    QStringList warnings;    ///< what the plug-in does not need, and could not be looked into
    QString result_sha256;
    QStringList notes; ///< what the examiner should know of a part that was read as a whole
    QJsonValue wal;    ///< this and the next as in a source_record
    QJsonValue host_devices;
    QJsonValue salvaged;
    log_findings log;
    bool is_out_of_memory = false; ///< a count failed for want of memory

    QJsonObject to_json() const;
    static inspection from_json(const QJsonObject &json);
};

/**
 * The tables of the request whose evidence is there and cannot be read, or is refused: not passed to the plug-in; no
 * rows are expected.
 */
QStringList unread_tables(const source_request &request, const evidence_state &evidence);

/** @p evidence is what look_before() gave; it is completed. */
inspection inspect(const source_request &request, const evidence_state &evidence, const hash_observer &hashed);

/** Whether none of the tables of the request has evidence that can be read. */
bool is_nothing_readable(const source_request &request, const evidence_state &evidence);

/** Rolls back what a plug-in that was stopped left half written in the result, so that no journal stays beside it. */
void settle_result(const source_request &request);

#endif
