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
QByteArray document_start(const report_case &the_case, const QByteArray &title, bool has_script);

/** How much room there is for what is missing. */
struct shortcomings_form
{
    qsizetype most = 1000;      ///< more are counted
    qsizetype most_columns = 0; ///< of each, of which a wide character takes two; 0: all of it
};

/** What the case is and in what state, in one sentence; @p shortcomings are why it is not whole. */
QByteArray case_heading(const report_case &the_case, const QByteArray &title, const QStringList &shortcomings,
                        const shortcomings_form &form = {});

/** Search and buttons, hidden without script, and the way to the sections. */
QByteArray page_tools();
QByteArray navigation(const QList<section_link> &sections);

#endif
