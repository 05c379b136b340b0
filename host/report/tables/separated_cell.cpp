// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/separated_cell.h"

#include <QString>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool is_unseen(QChar character)
{
    const QChar::Category category = character.category();
    return character.isSpace() || category == QChar::Other_Control || category == QChar::Other_Format;
}

} // namespace

bool looks_like_formula(QByteArrayView utf8)
{
    constexpr QStringView starts = u"=+-@\uFF1D\uFF0B\uFF0D\uFF20\t\r\n";
    const QString text = QString::fromUtf8(utf8);
    for (const QChar character : text) {
        if (starts.contains(character))
            return true;
        if (!is_unseen(character))
            return false;
    }
    return false;
}

separated_cell make_text_cell(QByteArrayView utf8, bool is_raw)
{
    if (!utf8.isValidUtf8())
        return {"x'" + utf8.toByteArray().toHex() + '\'', cell_change::hexadecimal};
    if (!is_raw && looks_like_formula(utf8))
        return {'\'' + utf8.toByteArray(), cell_change::apostrophe};
    return {utf8.toByteArray(), cell_change::none};
}

separated_cell make_cell(const cell &value, bool is_raw)
{
    switch (value.kind) {
    case cell::type::integer:
    case cell::type::real:
        return {text_of(value), cell_change::none};
    case cell::type::text:
        return make_text_cell(value.bytes, is_raw);
    case cell::type::blob:
        return {"x'" + value.bytes.toByteArray().toHex() + '\'', cell_change::hexadecimal};
    case cell::type::null:
        break;
    }
    return {};
}

void append_quoted(QByteArray &line, QByteArrayView cell, char separator)
{
    const bool needs_quotes = std::any_of(cell.begin(), cell.end(), [separator](char byte) {
        return byte == separator || byte == '"' || byte == '\r' || byte == '\n';
    });
    if (!needs_quotes) {
        line.append(cell);
        return;
    }
    line.append('"');
    for (const char byte : cell) {
        if (byte == '"')
            line.append('"');
        line.append(byte);
    }
    line.append('"');
}
