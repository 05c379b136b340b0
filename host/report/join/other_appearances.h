// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_JOIN_OTHER_APPEARANCES_H
#define HOST_REPORT_JOIN_OTHER_APPEARANCES_H

#include "host/report/join/device_join.h"

#include <functional>

/** What found_in says of a row that the write-ahead log deletes: it is the row of the result once more. */
inline constexpr QLatin1StringView wal_deleted("wal_deleted");

/**
 * What of a source names a device besides the rows of its results, and what device_appearance::found_in says of it:
 * rows that only the write-ahead log has ("wal_added"), both sides of those that it changes ("wal_changed_before",
 * "wal_changed_after"), those that it deletes (wal_deleted), and the devices of lists ("preferences", "mobile_devices",
 * "registry"). The address of a device that a list calls "le" alone may be a random one: it joins nothing unless the
 * list says that it is public.
 *
 * @p source is a place in report_case::sources. Returns why not all could be read, in plain words; empty if all could.
 */
QString for_each_other_appearance(const report_case &the_case, int source,
                                  const std::function<void(const device_appearance &appearance)> &take);

#endif
