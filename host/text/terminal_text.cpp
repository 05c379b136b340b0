// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/text/terminal_text.h"

#include <QList>

#include <algorithm>

#include <utf8proc.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char32_t zero_width_joiner = 0x200d;
constexpr char32_t text_selector = 0xfe0e;
constexpr char32_t emoji_selector = 0xfe0f;
constexpr int most_marks = 8; // on one base; more would run over the lines above and below

const utf8proc_property_t &property(char32_t character)
{
    return *utf8proc_get_property(utf8proc_int32_t(character));
}

bool is_pictograph(char32_t character)
{
    return property(character).boundclass == UTF8PROC_BOUNDCLASS_EXTENDED_PICTOGRAPHIC;
}

bool is_mark(char32_t character)
{
    const auto category = property(character).category;
    return category == UTF8PROC_CATEGORY_MN || category == UTF8PROC_CATEGORY_MC || category == UTF8PROC_CATEGORY_ME;
}

bool is_unseen(char32_t character)
{
    switch (property(character).category) {
    case UTF8PROC_CATEGORY_CC:
    case UTF8PROC_CATEGORY_CF:
    case UTF8PROC_CATEGORY_CS:
    case UTF8PROC_CATEGORY_CN:
    case UTF8PROC_CATEGORY_ZL:
    case UTF8PROC_CATEGORY_ZP:
        return true;
    case UTF8PROC_CATEGORY_ZS:
        return character != U' ';
    default:
        return property(character).ignorable;
    }
}

/** Walks through a text and says which of its characters can be shown as they are. */
class visibility
{
public:
    bool shows(char32_t character, char32_t next)
    {
        const bool joins = joins_emoji(character, next);
        const bool marks = is_mark(character);
        mark_count = marks ? mark_count + 1 : 0;
        const bool shown = joins || (!is_unseen(character) && !(marks && (is_first || mark_count > most_marks)));
        if (is_pictograph(character))
            in_emoji = true;
        else if (!joins && property(character).boundclass != UTF8PROC_BOUNDCLASS_EXTEND)
            in_emoji = false; // a skin tone extends
        previous = character;
        is_first = false;
        return shown;
    }

private:
    bool joins_emoji(char32_t character, char32_t next) const
    {
        if (!in_emoji)
            return false;
        if (character == zero_width_joiner)
            return is_pictograph(next);
        return (character == text_selector || character == emoji_selector) && is_pictograph(previous);
    }

    bool is_first = true;
    bool in_emoji = false;
    int mark_count = 0;
    char32_t previous = 0;
};

bool is_printable_ascii(QChar character)
{
    return character >= u' ' && character <= u'~';
}

QString escape_of(char32_t character)
{
    return u"\\u{"_s + QString::number(uint(character), 16) + u'}';
}

/** What a terminal draws as one character. */
struct piece
{
    qsizetype size = 0; ///< in code units
    qsizetype columns = 0;
};

QList<piece> pieces_of(const QString &text)
{
    QList<piece> pieces;
    utf8proc_int32_t state = 0;
    utf8proc_int32_t previous = -1;
    const QList<uint> characters = text.toUcs4();
    for (const char32_t character : characters) {
        const auto next = utf8proc_int32_t(character);
        if (previous == -1 || utf8proc_grapheme_break_stateful(previous, next, &state))
            pieces.append(piece());
        previous = next;
        const int columns = character == emoji_selector ? 2 : utf8proc_charwidth(next);
        pieces.last().columns = std::min<qsizetype>(2, pieces.last().columns + columns);
        pieces.last().size += QChar::requiresSurrogates(character) ? 2 : 1;
    }
    return pieces;
}

QLatin1StringView sequence_of(terminal_style style)
{
    switch (style) {
    case terminal_style::bold:
        return "\033[1m"_L1;
    case terminal_style::error:
        return "\033[1;31m"_L1;
    case terminal_style::warning:
        return "\033[1;33m"_L1;
    }
    return {};
}

} // namespace

terminal_text terminal_text::escape(char32_t character)
{
    return ascii(escape_of(character));
}

terminal_text terminal_text::ascii(const QString &text)
{
    terminal_text result;
    const QList<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        if (character < 128 && is_printable_ascii(QChar(character)))
            result.safe += QChar(character);
        else
            result.safe += escape_of(character);
    }
    return result;
}

terminal_text terminal_text::styled(terminal_style style) const
{
    terminal_text result;
    result.safe = sequence_of(style) + safe + "\033[0m"_L1;
    return result;
}

qsizetype terminal_text::width() const
{
    if (std::all_of(safe.cbegin(), safe.cend(), is_printable_ascii))
        return safe.size();
    qsizetype width = 0;
    for (const piece &next : pieces_of(safe))
        width += next.columns;
    return width;
}

terminal_text terminal_text::first_columns(qsizetype columns) const
{
    qsizetype size = 0;
    for (const piece &next : pieces_of(safe)) {
        columns -= next.columns;
        if (columns < 0)
            break;
        size += next.size;
    }
    terminal_text result;
    result.safe = safe.first(size);
    return result;
}

QString terminal_text::escaped(const QString &text)
{
    const auto stays = [](QChar character) { return is_printable_ascii(character) && character != u'\\'; };
    if (std::all_of(text.cbegin(), text.cend(), stays))
        return text;
    const QList<uint> characters = text.toUcs4();
    visibility visible;
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < characters.size(); ++i) {
        const char32_t character = characters.at(i);
        if (!visible.shows(character, characters.value(i + 1)))
            result += escape_of(character);
        else if (character == U'\\')
            result += u"\\\\"_s;
        else
            result += QString::fromUcs4(&character, 1);
    }
    return result;
}

terminal_text joined(const terminal_texts &texts, const terminal_text &separator)
{
    terminal_text result;
    for (qsizetype i = 0; i < texts.size(); ++i)
        result += i == 0 ? texts.at(i) : separator + texts.at(i);
    return result;
}
