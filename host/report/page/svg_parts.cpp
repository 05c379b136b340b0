// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/svg_parts.h"

#include "host/report/page/html_text.h"

QByteArray svg_number(qint64 value)
{
    return QByteArray::number(value);
}

QByteArray svg_line(const char *style, qint64 x1, qint64 y1, qint64 x2, qint64 y2)
{
    return "<line class=\"" + QByteArray(style) + "\" x1=\"" + svg_number(x1) + "\" y1=\"" + svg_number(y1) + "\" x2=\""
           + svg_number(x2) + "\" y2=\"" + svg_number(y2) + "\"/>";
}

QByteArray svg_text(qint64 x, qint64 y, const char *anchor, const QByteArray &text)
{
    return "<text x=\"" + svg_number(x) + "\" y=\"" + svg_number(y) + "\" text-anchor=\"" + anchor + "\">" + text
           + "</text>";
}

QByteArray svg_device_name(qint64 number, QByteArrayView name, qsizetype columns)
{
    return svg_number(number) + ' '
           + (name.isEmpty() ? QByteArray("no name") : page_text(name, columns).toHtmlEscaped().toUtf8());
}
