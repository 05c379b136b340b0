// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/sqlite_memory.h"

#include <atomic>

#include <sqlite3.h>

namespace {

sqlite3_mem_methods usual = {};
std::atomic<void (*)()> end_of_memory = nullptr;

void *seen(void *memory)
{
    if (void (*const end)() = memory ? nullptr : end_of_memory.load())
        end();
    return memory;
}

void *allocate(int bytes)
{
    return seen(usual.xMalloc(bytes));
}

void *resize(void *memory, int bytes)
{
    return seen(usual.xRealloc(memory, bytes));
}

} // namespace

void make_sqlite_memory_watchable()
{
    if (sqlite3_config(SQLITE_CONFIG_GETMALLOC, &usual) != SQLITE_OK || !usual.xMalloc)
        return;
    sqlite3_mem_methods methods = usual;
    methods.xMalloc = allocate;
    methods.xRealloc = resize;
    sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
}

sqlite_memory_watch::sqlite_memory_watch(void (*without_memory)())
{
    end_of_memory = without_memory;
}

sqlite_memory_watch::~sqlite_memory_watch()
{
    end_of_memory = nullptr;
}
