// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/html_text.h"

#include "host/text/json_text.h"
#include "host/text/terminal_text.h"
#include "host/text/utf8_text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_shown_characters = 4000; // of one value; the files for programs have all of it
constexpr qint64 largest_exact_number = qint64(1) << 53;

bool is_plain(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return byte >= ' ' && byte < 0x7f && byte != '\\'; });
}

/** Nearly every text: it stands in JSON within a page as it is. */
bool needs_no_escape(QByteArrayView bytes)
{
    return bytes.size() <= most_shown_characters && is_plain(bytes)
           && std::none_of(bytes.begin(), bytes.end(),
                           [](char byte) { return byte == '"' || byte == '<' || byte == '>' || byte == '&'; });
}

QString whole_text(QByteArrayView bytes)
{
    if (!bytes.isValidUtf8())
        return u"x'"_s + QString::fromLatin1(bytes.toByteArray().toHex()) + u'\'';
    const QString text = utf8_text(bytes);
    return is_plain(bytes) ? text : terminal_text(text).to_string();
}

bool is_number(const cell &value)
{
    return value.kind == cell::type::integer || value.kind == cell::type::real;
}

QString cell_text(const cell &value)
{
    if (value.kind == cell::type::blob)
        return page_text(QByteArray(
            "x'" + value.bytes.first(qMin(value.bytes.size(), most_shown_characters)).toByteArray().toHex() + '\''));
    return page_text(value.bytes);
}

/** The one place where markup is escaped. */
QByteArray escaped(const QString &shown)
{
    QByteArray html;
    html.reserve(shown.size());
    for (const char byte : shown.toUtf8()) {
        switch (byte) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\'':
            html += "&#39;";
            break;
        default:
            html += byte;
        }
    }
    return html;
}

} // namespace

QByteArray html_text(const QString &text)
{
    return escaped(terminal_text(text).to_string());
}

QByteArray html_evidence(QByteArrayView bytes)
{
    return "<bdi>" + escaped(page_text(bytes)) + "</bdi>";
}

QByteArray html_cell(const cell &value)
{
    if (value.kind == cell::type::null)
        return "<td><span class=\"null\">\u2205</span></td>";
    if (is_number(value))
        return "<td class=\"number\">" + text_of(value) + "</td>";
    return "<td><bdi>" + escaped(cell_text(value)) + "</bdi></td>";
}

QString page_text(QByteArrayView bytes)
{
    QString text = whole_text(bytes);
    if (text.size() <= most_shown_characters)
        return text;
    const bool ends_in_a_pair = text.at(most_shown_characters - 1).isHighSurrogate();
    return text.first(most_shown_characters - ends_in_a_pair) + u"… (cut; "_s + QString::number(bytes.size())
           + u" bytes)"_s;
}

QByteArray page_json(const QString &shown)
{
    QByteArray json;
    append_json_text(json, shown.toUtf8());
    return json.replace('<', "\\u003c").replace('>', "\\u003e").replace('&', "\\u0026");
}

QByteArray page_json(const cell &value)
{
    if (value.kind == cell::type::null)
        return "null";
    if (value.kind == cell::type::text && needs_no_escape(value.bytes))
        return '"' + value.bytes.toByteArray() + '"';
    if (!is_number(value))
        return page_json(cell_text(value));
    const bool is_exact = value.kind == cell::type::integer && value.integer <= largest_exact_number
                          && value.integer >= -largest_exact_number;
    return is_exact ? QByteArray::number(value.integer) : page_json(QString::fromLatin1(text_of(value)));
}
