// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_HTML_TEXT_H
#define HOST_REPORT_PAGE_HTML_TEXT_H

#include "host/text/cell.h"

#include <QByteArray>
#include <QString>

// Every text of a page goes through these functions, whoever wrote it.

/** Text for the content of an element or a quoted attribute: shown as "show" shows it, markup escaped. */
QByteArray html_text(const QString &text);

/**
 * The same for a text of the evidence: isolated, so that its direction of writing moves nothing around it, and with
 * blanks at its ends that can be seen. Cut as page_text() cuts it; 0 @p columns: only a text that is very long.
 */
QByteArray html_evidence(QByteArrayView bytes, qsizetype columns = 0);

/** The same for the name of a device, which many have not. */
QByteArray html_name(QByteArrayView name, qsizetype columns = 0);

/** The same for a text that page_value() or page_text() has made. */
QByteArray html_shown(QByteArrayView shown);

/** Bytes as a page shows them: terminal_text(), x'00ff' for what is no UTF-8, cut after some thousand characters. */
QString page_text(QByteArrayView bytes);

/** Its beginning, as far as this many columns hold it, of which a wide character takes two; "…" says that it is cut. */
QString page_text(QByteArrayView bytes, qsizetype columns);

/** A value of a row as a page shows it, in UTF-8: digits or a page_text(). A null array for NULL. */
QByteArray page_value(const cell &value);

/** A text that is shown already, as a string of the page's data block: no markup in it. */
QByteArray page_json(QByteArrayView shown);

#endif
