// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_SHARED_OBSERVER_H
#define HOST_RUN_SHARED_OBSERVER_H

#include "host/run/run_observer.h"

#include <mutex>
#include <utility>

/** Passes on what sources that run side by side report, one call at a time. */
class shared_observer : public run_observer
{
public:
    explicit shared_observer(run_observer &run)
        : observer(run)
    {
    }

    void kept(const QStringList &paths) override
    {
        const std::lock_guard guard(mutex);
        observer.kept(paths);
    }
    void source_started(const source_request &request, const QList<run_message> &messages) override
    {
        const std::lock_guard guard(mutex);
        observer.source_started(request, messages);
    }
    void bytes_hashed(const source_request &request, qint64 bytes) override
    {
        const std::lock_guard guard(mutex);
        observer.bytes_hashed(request, bytes);
    }
    void bytes_read(const source_request &request, qint64 bytes) override
    {
        const std::lock_guard guard(mutex);
        observer.bytes_read(request, bytes);
    }
    void records_announced(const source_request &request, qint64 records, int tables_done) override
    {
        const std::lock_guard guard(mutex);
        observer.records_announced(request, records, tables_done);
    }
    void worker_said(const source_request &request, const QString &line) override
    {
        const std::lock_guard guard(mutex);
        observer.worker_said(request, line);
    }
    void cancelling(const source_request &request) override
    {
        const std::lock_guard guard(mutex);
        if (!std::exchange(is_cancelling, true))
            observer.cancelling(request);
    }
    void source_finished(const source_request &request, const source_record &record) override
    {
        const std::lock_guard guard(mutex);
        observer.source_finished(request, record);
    }
    void case_finished() override
    {
        const std::lock_guard guard(mutex);
        observer.case_finished();
    }

private:
    run_observer &observer;
    std::mutex mutex;
    bool is_cancelling = false;
};

#endif
