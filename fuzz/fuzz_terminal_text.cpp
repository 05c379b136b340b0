// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/text/json_text.h"
#include "host/text/terminal_text.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

/** Controls of ASCII and C1, and what turns the direction of a text. */
bool acts_on_terminals(char32_t character)
{
    return character < 0x20 || (character >= 0x7f && character < 0xa0) || (character >= 0x202a && character <= 0x202e)
           || (character >= 0x2066 && character <= 0x2069) || character == 0x200e || character == 0x200f
           || character == 0x61c;
}

bool is_harmless(const QString &text)
{
    const QList<uint> characters = text.toUcs4();
    return std::none_of(characters.cbegin(), characters.cend(), acts_on_terminals);
}

} // namespace

/** The input is any text, in UTF-8 or not. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString any = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const terminal_text shown(any);
    require(is_harmless(shown.to_string()), "a text acts on the terminal");
    require(is_harmless(terminal_text::ascii(any).to_string()), "a line to paste acts on the terminal");
    for (const qsizetype columns : {0, 1, 7, 80}) {
        const terminal_text start = shown.first_columns(columns);
        require(start.width() <= columns && is_harmless(start.to_string()), "a beginning is wider than asked for");
    }
    QByteArray json;
    append_escaped_json(json, QJsonDocument(QJsonObject{{QStringLiteral("text"), any}}).toJson(QJsonDocument::Compact));
    require(is_harmless(QString::fromUtf8(json)), "an event acts on the terminal");
    require(QJsonDocument::fromJson(json).object().value(QLatin1StringView("text")).toString() == any,
            "an event is not read back");
    return 0;
}
