// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_CASE_PREPARATION_H
#define HOST_RUN_CASE_PREPARATION_H

#include "host/files/file_lock.h"
#include "host/run/case_plan.h"
#include "host/run/run_observer.h"

#include <exception>
#include <memory>
#include <mutex>

/** Locks the case and makes room in it, once, when the first plug-in is loaded. Safe to share between threads. */
class case_preparation
{
public:
    case_preparation(const case_request &request, const case_plan &plan, run_observer &observer);

    /** Throws host_error, the same again for every later caller, when the case cannot be made ready. */
    void prepare();

    bool is_done() const;

    /** Removes what was made for a case of one source that came to nothing; the source's own files are gone already. */
    void undo(int number);

private:
    void make_room();
    void remove_earlier_runs(const case_layout &layout) const;
    void remove_other_folders(const case_layout &layout) const;

    const case_request &request;
    const case_plan &plan;
    run_observer &observer;
    mutable std::mutex mutex;
    std::unique_ptr<file_lock> lock;
    std::exception_ptr failure;
    bool is_prepared = false;
    bool was_there = true; ///< the case's folder
};

#endif
