// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_PAGE_HEAD_H
#define HOST_REPORT_PAGE_PAGE_HEAD_H

#include "host/report/reading/report_case.h"

#include <QByteArray>
#include <QList>
#include <QStringList>

/** A section of the page, for its navigation. */
struct section_link
{
    QByteArray id;
    QByteArray title;
};

/** Up to and with <body>: the policy lets nothing in but the page's own style and script. */
QByteArray document_start(const report_case &that_case, const QByteArray &title, bool has_script);

/**
 * What the case is and in what state, in one sentence; @p shortcomings are why it is not whole. More than
 * @p most_shortcomings are counted.
 */
QByteArray case_heading(const report_case &that_case, const QByteArray &title, const QStringList &shortcomings,
                        qsizetype most_shortcomings = 1000);

/** Search and buttons, hidden without script, and the way to the sections. */
QByteArray page_tools();
QByteArray navigation(const QList<section_link> &sections);

#endif
