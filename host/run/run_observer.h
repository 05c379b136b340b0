// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_RUN_OBSERVER_H
#define HOST_RUN_RUN_OBSERVER_H

#include "host/case/source_record.h"
#include "host/run/source_request.h"

#include <QString>

/** Sees how a run goes. Sources that run side by side call it one at a time. */
class run_observer
{
public:
    virtual ~run_observer() = default;

    /** Paths that an earlier run's removal left alone. */
    virtual void kept(const QStringList &paths) = 0;
    virtual void source_started(const source_request &request, const QList<run_message> &messages) = 0;
    virtual void bytes_hashed(const source_request &request, qint64 bytes) = 0;
    /** So many more bytes of the container that the source stands in. */
    virtual void bytes_read(const source_request &request, qint64 bytes) = 0;
    /** The plug-in's running total of records, and the result tables that it has done. */
    virtual void records_announced(const source_request &request, qint64 records, int tables_done) = 0;
    /** A line that the process that runs the plug-in wrote to standard error. */
    virtual void worker_said(const source_request &request, const QString &line) = 0;
    /** The examiner cancelled. Called once a run. */
    virtual void cancelling(const source_request &request) = 0;
    virtual void source_finished(const source_request &request, const source_record &record) = 0;
    /** All sources had their turn. */
    virtual void case_finished() = 0;
};

#endif
