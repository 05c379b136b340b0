// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_PAGE_PARTS_H
#define HOST_REPORT_PAGE_PAGE_PARTS_H

/** The page's style and script, as they stand in host/report/page. */
extern const char *const page_style;
extern const char *const page_script;

#endif
