// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/html_parts.h"

#include "host/report/page/html_text.h"

namespace {

QByteArray table_of(const QByteArray &label, const QByteArray &caption, const QByteArrayList &headings,
                    const QByteArray &rows)
{
    return "<div class=\"scroller\" tabindex=\"0\" role=\"region\" aria-label=\"" + label + "\"><table>" + caption
           + "<thead><tr><th scope=\"col\">" + headings.join("</th><th scope=\"col\">")
           + "</th></tr></thead>\n<tbody>\n" + rows + "</tbody></table></div>\n";
}

} // namespace

QByteArray html_section(const QByteArray &id, const QByteArray &title, const QByteArray &content)
{
    return "<section id=\"" + id + "\" aria-labelledby=\"" + id + "-heading\"><h2 id=\"" + id + "-heading\">" + title
           + "</h2>\n" + content + "</section>\n";
}

QByteArray html_static_table(const QByteArray &caption, const QByteArrayList &headings, const QByteArray &rows)
{
    return table_of(caption, "<caption>" + caption + "</caption>", headings, rows);
}

QByteArray html_titled_table(const QByteArray &caption, const QByteArrayList &headings, const QByteArray &rows)
{
    return table_of(caption, "<caption class=\"heard\">" + caption + "</caption>", headings, rows);
}

QByteArray html_figure(const QByteArray &label, const QByteArray &svg, const QByteArray &caption)
{
    return "<figure><div class=\"picture\" tabindex=\"0\" role=\"region\" aria-label=\"" + label + "\">" + svg
           + "</div><figcaption>" + caption + "</figcaption></figure>\n";
}

QByteArray html_row(const QByteArrayList &cells)
{
    return "<tr><td>" + cells.join("</td><td>") + "</td></tr>\n";
}

QByteArray html_fact(const QByteArray &name, const QByteArray &value)
{
    return value.isEmpty() ? QByteArray() : "<dt>" + name + "</dt><dd>" + value + "</dd>\n";
}

QByteArray html_link(const QByteArray &id, const QByteArray &text)
{
    return "<a href=\"#" + id + "\">" + text + "</a>";
}

QByteArray html_whole(const QByteArray &text)
{
    return "<span class=\"whole\">" + text + "</span>";
}

QByteArray html_hash(const QString &hash)
{
    return hash.isEmpty() ? QByteArray("none") : "<span class=\"hash\">" + html_text(hash) + "</span>";
}

QByteArray grouped_digits(qint64 number)
{
    QByteArray digits = QByteArray::number(number);
    const qsizetype first = number < 0 ? 1 : 0;
    for (qsizetype place = digits.size() - 3; place > first; place -= 3)
        digits.insert(place, ',');
    return digits;
}

QByteArray counted(qint64 number, const char *one, const char *many)
{
    return grouped_digits(number) + ' ' + (number == 1 ? one : many);
}
