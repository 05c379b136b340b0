// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_MEMORY_LIMIT_H
#define HOST_WORKER_MEMORY_LIMIT_H

#include <QtGlobal>

/**
 * This process takes no more addresses than @p mebibytes, and leaves no core, in which evidence would be. False where
 * that is not what limits it: a stricter limit holds already, or a sanitizer needs all addresses.
 */
bool limit_memory(qint64 mebibytes);

#endif
