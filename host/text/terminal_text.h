// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_TEXT_TERMINAL_TEXT_H
#define HOST_TEXT_TERMINAL_TEXT_H

#include <QList>
#include <QString>

#include <concepts>

enum class terminal_style { bold, error, warning };

/**
 * A line, or a part of one, that steers no terminal. Evidence is written by the other side, so that any text becomes
 * one only by escaping: everything that would act on a terminal, or stay unseen, becomes a visible escape, the code
 * point in hexadecimal: \u{1b}. That is every control, format (bidi too), unassigned and ignorable character, every
 * blank but U+0020, marks without a base and marks piled up on one base. A backslash is doubled, so that no escape can
 * be forged. Joiners and selectors stay where they hold an emoji together.
 */
class terminal_text
{
public:
    terminal_text() = default;

    /** Escapes any text; implicit, so that whatever is printed passes here. */
    template<std::convertible_to<QString> Text>
    terminal_text(const Text &any_text)
        : safe(escaped(any_text))
    {
    }

    /** The escape of one character. */
    static terminal_text escape(char32_t character);

    /** Keeps printable ASCII as it is, the backslash too, and escapes the rest: for lines that are to be pasted. */
    static terminal_text ascii(const QString &text);

    /** The same text in a style of the terminal's, which ends with it. It has no more columns than before. */
    terminal_text styled(terminal_style style) const;

    /** The columns that it takes on a terminal, without a style. */
    qsizetype width() const;

    /** Its beginning, as far as this many columns hold it; an escape may be cut. For a text without a style. */
    terminal_text first_columns(qsizetype columns) const;

    bool is_empty() const
    {
        return safe.isEmpty();
    }

    /** What to write to the terminal. */
    const QString &to_string() const
    {
        return safe;
    }

    terminal_text &operator+=(const terminal_text &other)
    {
        safe += other.safe;
        return *this;
    }

    friend terminal_text operator+(terminal_text left, const terminal_text &right)
    {
        return left += right;
    }

    friend bool operator==(const terminal_text &left, const terminal_text &right) = default;

private:
    static QString escaped(const QString &text);

    QString safe;
};

/** Lines for a terminal, or the parts of one. */
using terminal_texts = QList<terminal_text>;

terminal_text joined(const terminal_texts &texts, const terminal_text &separator);

#endif
