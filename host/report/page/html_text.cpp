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

bool is_plain(QByteArrayView bytes)
{
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char byte) { return byte >= ' ' && byte < 0x7f && byte != '\\'; });
}

QString whole_text(QByteArrayView bytes)
{
    if (!bytes.isValidUtf8())
        return u"x'"_s + QString::fromLatin1(bytes.toByteArray().toHex()) + u'\'';
    const QString text = utf8_text(bytes);
    return is_plain(bytes) ? text : terminal_text(text).to_string();
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
    return shown.toHtmlEscaped().toUtf8();
}

QByteArray blanks(QStringView text)
{
    return text.isEmpty() ? QByteArray() : "<span class=\"blank\">" + text.toUtf8() + "</span>";
}

QByteArray evidence(const QString &shown)
{
    const auto is_blank = [](QChar character) { return character == u' '; };
    const auto first = std::find_if_not(shown.cbegin(), shown.cend(), is_blank) - shown.cbegin();
    const auto last = shown.crend() - std::find_if_not(shown.crbegin(), shown.crend(), is_blank);
    const auto end = std::max<qsizetype>(last, first);
    const QStringView view(shown);
    return "<bdi>" + blanks(view.first(first)) + escaped(shown.sliced(first, end - first)) + blanks(view.sliced(end))
           + "</bdi>";
}

} // namespace

QByteArray html_text(const QString &text)
{
    return escaped(terminal_text(text).to_string());
}

QByteArray html_evidence(QByteArrayView bytes, qsizetype columns)
{
    return evidence(columns > 0 ? page_text(bytes, columns) : page_text(bytes));
}

QByteArray html_name(QByteArrayView name, qsizetype columns)
{
    return name.isEmpty() ? QByteArray("<span class=\"quiet\">no name</span>") : html_evidence(name, columns);
}

QByteArray html_shown(QByteArrayView shown)
{
    return evidence(QString::fromUtf8(shown));
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

QString page_text(QByteArrayView bytes, qsizetype columns)
{
    if (!bytes.isValidUtf8() || is_plain(bytes)) {
        const QString text = whole_text(bytes);
        return text.size() <= columns ? text : text.first(columns - 1) + u'…';
    }
    const terminal_text text(utf8_text(bytes));
    return text.width() <= columns ? text.to_string() : text.first_columns(columns - 1).to_string() + u'…';
}

QByteArray page_value(const cell &value)
{
    if (value.is_null())
        return {};
    if (value.kind == cell::type::integer || value.kind == cell::type::real)
        return text_of(value);
    if (value.kind == cell::type::text && value.bytes.size() <= most_shown_characters && is_plain(value.bytes))
        return value.bytes.isEmpty() ? QByteArray("") : value.bytes.toByteArray(); // nearly every text
    return cell_text(value).toUtf8();
}

QByteArray page_json(QByteArrayView shown)
{
    QByteArray json;
    json.reserve(shown.size() + 2);
    append_json_text(json, shown);
    for (const auto &[character, escape] :
         {std::pair('<', "\\u003c"), std::pair('>', "\\u003e"), std::pair('&', "\\u0026")}) {
        if (json.contains(character))
            json.replace(character, escape);
    }
    return json;
}
