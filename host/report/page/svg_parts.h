// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_SVG_PARTS_H
#define HOST_REPORT_PAGE_SVG_PARTS_H

#include <QByteArray>

// Pieces that pictures are made of. @p style is a class of the page's style sheet.

inline constexpr int svg_names_width = 230; ///< of the column that names devices

QByteArray svg_number(qint64 value);
QByteArray svg_line(const char *style, qint64 x1, qint64 y1, qint64 x2, qint64 y2);
/** @p anchor is "start", "middle" or "end"; @p text is HTML already. */
QByteArray svg_text(qint64 x, qint64 y, const char *anchor, const QByteArray &text);
/** A device's number and what of its name fits these columns, in HTML. */
QByteArray svg_device_name(qint64 number, QByteArrayView name, qsizetype columns);

#endif
