// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_TEXT_CELL_H
#define HOST_TEXT_CELL_H

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

/** A value as SQLite has them: of a row that was read, or of a column that the program adds. It owns no bytes. */
struct cell
{
    enum class type { null, integer, real, text, blob };

    type kind = type::null;
    qint64 integer = 0;
    double real = 0;
    QByteArrayView bytes; ///< of a text (UTF-8 by rule, not checked) or a blob; whoever made the cell keeps them

    bool is_null() const
    {
        return kind == type::null;
    }

    static cell of_integer(qint64 value)
    {
        return {type::integer, value, 0, {}};
    }

    /** Null where there is no number. */
    static cell of_integer(const std::optional<qint64> &value)
    {
        return value ? of_integer(*value) : cell();
    }

    static cell of_text(QByteArrayView utf8)
    {
        return {type::text, 0, 0, utf8};
    }

    /** Null for an empty text. */
    static cell of_text_or_null(QByteArrayView utf8)
    {
        return utf8.isEmpty() ? cell() : of_text(utf8);
    }

    /** Null for an array that is null; an empty one is an empty text. */
    static cell of_text_if_any(const QByteArray &utf8)
    {
        return utf8.isNull() ? cell() : of_text(utf8);
    }
};

/** A number in digits, a real as short as it can be read back; the bytes of a text or a blob; nothing for null. */
QByteArray text_of(const cell &value);

#endif
