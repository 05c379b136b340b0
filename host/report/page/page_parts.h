// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_PAGE_PARTS_H
#define HOST_REPORT_PAGE_PAGE_PARTS_H

// Files of host/report/page that pages have in them.

extern const char *const page_style;
extern const char *const page_script;
extern const char *const page_prose_glossary;
extern const char *const page_prose_joining;
extern const char *const page_prose_limitations;
extern const char *const page_prose_signatures;
extern const char *const page_prose_signs;

#endif
