// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_PROPERTY_LIST_BINARY_PROPERTY_LIST_H
#define COMMON_PROPERTY_LIST_BINARY_PROPERTY_LIST_H

#include <QByteArrayView>

#include <optional>

/**
 * Looks into a binary property list without building anything of it: "bplist00", objects, a table of their offsets, and
 * a trailer of 32 bytes that tells where the table is. All numbers are big-endian; docs/formats.md has the details.
 * Nothing in the list is trusted.
 */
class binary_property_list
{
public:
    /** The parts of an object that decide how much a parser builds from it. */
    struct object_view
    {
        quint64 content_bytes = 0;   ///< of a text or data
        quint64 first_reference = 0; ///< position of the references to other objects
        quint64 references = 0;      ///< of an array, a set or a dictionary, whose keys are references too
    };

    /** Refers to @p list, which must live on. */
    explicit binary_property_list(QByteArrayView list);

    static bool has_magic(QByteArrayView list);

    quint64 top_object() const
    {
        return top;
    }

    /** The object at this place in the table; nothing unless there is a well-formed one. */
    std::optional<object_view> object(quint64 index) const;

    /** The place in the table of the @p index -th object that @p container refers to. */
    std::optional<quint64> reference(const object_view &container, quint64 index) const;

private:
    /** What an object begins with. */
    struct object_header
    {
        quint64 kind = 0;
        quint64 count = 0;   ///< of bytes, characters, entries or pairs, by kind
        quint64 content = 0; ///< position of what follows
    };

    std::optional<object_header> header(quint64 index) const;
    std::optional<quint64> number(quint64 position, quint64 width) const;
    std::optional<object_view> text_object(quint64 content, quint64 characters, quint64 width) const;

    QByteArrayView bytes;
    quint64 size = 0;
    quint64 offset_width = 0;
    quint64 reference_width = 0;
    quint64 object_count = 0;
    quint64 top = 0;
    quint64 table = 0;
};

#endif
