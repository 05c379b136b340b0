// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_DEVICE_CARDS_H
#define HOST_REPORT_PAGE_DEVICE_CARDS_H

#include "host/report/page/device_facts.h"
#include "host/report/page/html_table.h"

/**
 * A card for each device: what the sources of the case know of it. Those with a name, paired or shared come first.
 * @p is_all_compared: every row, write-ahead log and list of every source was.
 */
html_table device_cards(const report_case &the_case, const QList<device_facts> &devices, bool is_all_compared);

#endif
