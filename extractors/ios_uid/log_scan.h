// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_IOS_UID_LOG_SCAN_H
#define EXTRACTORS_IOS_UID_LOG_SCAN_H

#include <QByteArray>
#include <QIODevice>
#include <QLatin1StringView>

#include <functional>
#include <span>

/**
 * Calls @p on_line, in order, for each line of @p file that holds every one of @p markers, with the bytes of the line
 * up to and with its "\n". The result is that of reading line by line; but no other line is ever decoded or held, so
 * that logs of gigabytes cost little more than reading them. The markers hold no line end; the rarest stands first.
 *
 * Works as if @p cancelled were checked before each line, and returns false when that ended the scan. It is in fact
 * checked once a block and around each line found: on this thread only @p on_line can set it, and a signal handler's
 * change is noticed within a block. A flag set while the last line is handled has no effect.
 *
 * A read error ends the log at that place; the file's own error says which. @p block_bytes are read at a time.
 */
bool scan_log(QIODevice &file, std::span<const QLatin1StringView> markers, const bool &cancelled,
              const std::function<void(const QByteArray &line)> &on_line, qsizetype block_bytes = 1 << 16);

#endif
