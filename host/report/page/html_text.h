// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_HTML_TEXT_H
#define HOST_REPORT_PAGE_HTML_TEXT_H

#include "host/sqlite/sqlite.h"

#include <QByteArray>
#include <QString>

// Every text of a page goes through these functions, whoever wrote it.

/** Text for the content of an element or a quoted attribute: shown as "show" shows it, markup escaped. */
QByteArray html_text(const QString &text);

/** The same for a text of the evidence: isolated, so that its direction of writing moves nothing around it. */
QByteArray html_evidence(QByteArrayView bytes);

/** Bytes as a page shows them: terminal_text(), x'00ff' for what is no UTF-8, cut after some thousand characters. */
QString page_text(QByteArrayView bytes);

/** A value of a row for the page's data block: a number where JavaScript has it exactly, else a text, or null. */
QByteArray page_json(const cell &value);
QByteArray page_json(const QString &shown);

/** The same for the page's rows without script, in a cell. */
QByteArray html_cell(const cell &value);

#endif
