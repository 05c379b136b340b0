// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_BINARY_DICTIONARIES_H
#define HOST_REPORT_BINARY_DICTIONARIES_H

#include <QByteArray>
#include <QByteArrayView>

#include <functional>
#include <optional>

/**
 * The dictionaries and texts of a binary property list, read in place: docs/formats.md has the layout. Nothing is built
 * and nothing followed but what the caller asks for. A small list can refer to the same large things again and again:
 * after a number of steps that no real list needs, all answers are "nothing".
 */
class binary_dictionaries
{
public:
    /** Refers to @p list, which must live on. */
    explicit binary_dictionaries(QByteArrayView list);

    /** The object at the top; nothing unless this is a binary list. */
    std::optional<quint64> top() const
    {
        return top_object;
    }

    /** Tells the pairs of a dictionary, each by its objects. False unless the object is a dictionary. */
    bool for_each(quint64 dictionary, const std::function<void(quint64 key, quint64 value)> &tell) const;

    /** The value of the first pair whose key is this text. */
    std::optional<quint64> value_of(quint64 dictionary, QByteArrayView key) const;

    /** In UTF-8; nothing unless the object is a text. */
    std::optional<QByteArray> text(quint64 object) const;

    /** Whether the list took more steps than any real one. */
    bool is_overwhelming() const
    {
        return steps_left == 0;
    }

private:
    /** What an object begins with. */
    struct header
    {
        int kind = 0;
        quint64 count = 0;    ///< of bytes, characters or pairs, by kind
        quint64 position = 0; ///< of what follows
    };

    std::optional<header> header_of(quint64 object) const;
    std::optional<quint64> number(quint64 position, quint64 width) const;
    std::optional<QByteArrayView> bytes_at(quint64 position, quint64 count) const;
    bool take_steps(quint64 count) const;

    QByteArrayView bytes;
    mutable quint64 steps_left = 16 << 20; ///< pairs, and bytes of texts
    quint64 offset_width = 0;
    quint64 reference_width = 0;
    quint64 object_count = 0;
    quint64 offset_table = 0;
    std::optional<quint64> top_object;
};

#endif
