// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_LOG_WATCH_H
#define TESTS_SUPPORT_LOG_WATCH_H

#include <QString>

#include <functional>

/**
 * Calls @p on_message at the moment when the code under test writes a message to the debug log, or Qt warns, while
 * @p work runs. The run context must have debugging on.
 */
void watch_log(const std::function<void(const QString &message)> &on_message, const std::function<void()> &work);

/** Runs @p work with more than a second of waiting at each message that ends with @p end: progress is due then. */
void slow_down_at(const QString &end, const std::function<void()> &work);

#endif
