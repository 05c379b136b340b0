// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_FAULTS_FAULT_COUNTS_H
#define TESTS_FAULTS_FAULT_COUNTS_H

#include <atomic>
#include <cstdint>

/** The calls that can fail; those of one group count together. */
enum class fault_call {
    write,
    pwrite,
    fsync,
    open,
    read,
    pread,
    lseek,
    mmap,
    rename,
    unlink,
    mkdir,
    close,
    stat,
    readdir,
    fork,
    malloc,
    count
};

inline constexpr const char *fault_call_names[] = {"write", "pwrite",  "fsync",  "open",   "read",  "pread",
                                                   "lseek", "mmap",    "rename", "unlink", "mkdir", "close",
                                                   "stat",  "readdir", "fork",   "malloc"};

inline constexpr int fault_processes = 8; ///< of those that are started after them no calls are counted

/** What the library leaves in a file that it shares with the test: 64-bit numbers in this order. */
struct fault_counts
{
    std::atomic<std::uint64_t> is_met;
    std::atomic<std::int64_t> descriptor; ///< of the call that failed; -1: it had none
    std::atomic<std::uint64_t> calls[fault_processes][int(fault_call::count)];
};

#endif
