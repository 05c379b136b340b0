// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_HTML_PARTS_H
#define HOST_REPORT_PAGE_HTML_PARTS_H

#include <QByteArray>
#include <QByteArrayList>

#include <optional>

// Pieces that all sections are made of. What they are given is HTML already.

/** A section with its heading, which names it. */
QByteArray html_section(const QByteArray &id, const QByteArray &title, const QByteArray &content);

/** A small table, all of which stands in the document. */
QByteArray html_static_table(const QByteArray &caption, const QByteArrayList &headings, const QByteArray &rows);

/** The same below a heading that says what it is: the caption is for those alone who hear the page. */
QByteArray html_titled_table(const QByteArray &caption, const QByteArrayList &headings, const QByteArray &rows);

/** A picture that may be scrolled sideways, by the keyboard too, and what is to be said of it. */
QByteArray html_figure(const QByteArray &label, const QByteArray &svg, const QByteArray &caption);

QByteArray html_row(const QByteArrayList &cells);

/** A name with its value in a list; nothing for an empty value. */
QByteArray html_fact(const QByteArray &name, const QByteArray &value);

QByteArray html_link(const QByteArray &id, const QByteArray &text);

/** A text that stands in one line: a date, a number. */
QByteArray html_whole(const QByteArray &text);

/** A hash that may be cut between its characters, or "none". */
QByteArray html_hash(const QString &hash);

/** "1,234": as the page's script writes numbers. */
QByteArray grouped_digits(qint64 number);
/** "1 row", "2 rows" */
QByteArray counted(qint64 number, const char *one, const char *many);

#endif
