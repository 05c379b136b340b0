// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_SQLITE_MEMORY_H
#define HOST_WORKER_SQLITE_MEMORY_H

#include <QtGlobal>

/**
 * Lets sqlite_memory_watch see the memory that SQLite asks for, in whoever's hands it is in this process. To be called
 * before anybody uses SQLite.
 */
void make_sqlite_memory_watchable();

/**
 * While an object lives, @p without_memory is called when the system has no memory for SQLite. SQLite itself gives NULL
 * in place of a text or of a column's name then (https://www.sqlite.org/c3ref/column_blob.html), which somebody who
 * does not ask takes for what the database holds. One at a time.
 */
class sqlite_memory_watch
{
public:
    explicit sqlite_memory_watch(void (*without_memory)());
    ~sqlite_memory_watch();
    Q_DISABLE_COPY_MOVE(sqlite_memory_watch)
};

#endif
