// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/property_list_guard.h"

#include <QStringDecoder>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace
{

/** What may still be built of a list before it counts as hostile. */
class tree_budget
{
public:
    /** False when a level is too deep, or when nodes with this many bytes of content are too much. */
    bool spend(int level, quint64 nodes, quint64 content_bytes)
    {
        const quint64 cost = nodes * bytes_per_node + content_bytes;
        if (level > deepest_property_list_level || cost > left)
            return false;
        left -= cost;
        return true;
    }

private:
    static constexpr quint64 bytes_per_node = 64; // about what a parser's object takes
    quint64 left = 64 << 20;
};

// Binary lists: "bplist00", objects, a table of their offsets, and a trailer of 32 bytes that tells where the table is.
// All numbers are big-endian. An object starts with a marker byte: its kind in the upper four bits, its count below.

constexpr quint64 trailer_bytes = 32;

/** What of a binary object matters here. */
struct binary_object {
    quint64 content_bytes = 0;   ///< of a text or data
    quint64 first_reference = 0; ///< position of the references to other objects
    quint64 references = 0;      ///< of an array, a set or a dictionary, whose keys are references too
};

class binary_list
{
public:
    explicit binary_list(const QByteArray &list)
        : bytes(list)
        , size(static_cast<quint64>(list.size()))
    {
        if (size < magic().size() + trailer_bytes)
            return;
        const quint64 trailer = size - trailer_bytes;
        offset_width = number(trailer + 6, 1).value_or(0);
        reference_width = number(trailer + 7, 1).value_or(0);
        object_count = number(trailer + 8, 8).value_or(0);
        top_object = number(trailer + 16, 8).value_or(0);
        table = number(trailer + 24, 8).value_or(0);
    }

    static QByteArrayView magic()
    {
        return "bplist00";
    }

    quint64 top() const
    {
        return top_object;
    }

    std::optional<binary_object> object(quint64 index) const;

    std::optional<quint64> reference(const binary_object &object, quint64 index) const
    {
        return number(object.first_reference + index * reference_width, reference_width);
    }

private:
    std::optional<binary_object> text_object(quint64 content, quint64 characters, quint64 width) const;

    /** The number of @p width bytes at @p position, unless it lies outside or has a width that no writer uses. */
    std::optional<quint64> number(quint64 position, quint64 width) const
    {
        if (width < 1 || (width > 4 && width != 8) || position > size || width > size - position)
            return {};
        quint64 value = 0;
        for (quint64 i = 0; i < width; ++i)
            value = value << 8 | static_cast<quint8>(bytes[static_cast<qsizetype>(position + i)]);
        return value;
    }

    const QByteArray &bytes;
    quint64 size = 0;
    quint64 offset_width = 0;
    quint64 reference_width = 0;
    quint64 object_count = 0;
    quint64 top_object = 0;
    quint64 table = 0;
};

std::optional<binary_object> binary_list::object(quint64 index) const
{
    constexpr quint64 data = 0x4, ascii = 0x5, utf16 = 0x6, array = 0xA, ordered_set = 0xB, set = 0xC, dictionary = 0xD;
    if (index >= object_count || index >= size || table >= size)
        return {};
    const std::optional<quint64> offset = number(table + index * offset_width, offset_width);
    const std::optional<quint64> marker = offset ? number(*offset, 1) : std::nullopt;
    if (!marker)
        return {};

    const quint64 kind = *marker >> 4;
    if (kind < data || (kind > utf16 && kind < array))
        return binary_object(); // a number, a date or the like
    quint64 count = *marker & 0xF;
    quint64 content = *offset + 1;
    if (count == 0xF) { // the count stands behind, as an integer object
        const std::optional<quint64> width_marker = number(content, 1);
        const quint64 width = width_marker && *width_marker >> 4 == 1 ? quint64(1) << (*width_marker & 0xF) : 0;
        count = number(content + 1, width).value_or(size);
        content += 1 + width;
    }
    if (count >= size)
        return {};

    switch (kind) {
    case data:
        return binary_object{count, 0, 0};
    case ascii:
    case utf16:
        return text_object(content, count, kind == ascii ? 1 : 2);
    case array:
    case ordered_set:
    case set:
        return binary_object{0, content, count};
    case dictionary:
        return binary_object{0, content, count * 2};
    default:
        return {};
    }
}

/** Nothing for a text with a NUL: parsers that keep texts as C strings would take it for another, shorter text. */
std::optional<binary_object> binary_list::text_object(quint64 content, quint64 characters, quint64 width) const
{
    for (quint64 i = 0; i < characters; ++i) {
        if (number(content + i * width, width).value_or(0) == 0)
            return {};
    }
    return binary_object{characters * width, 0, 0};
}

/** Visits the objects as a parser does, each as often as it is referred to, but without a stack frame for each level.
 */
bool is_harmless_binary(const QByteArray &bytes)
{
    struct visit {
        quint64 object;
        int level;
    };
    const binary_list list(bytes);
    tree_budget budget;
    std::vector<visit> pending{{list.top(), 1}};
    while (!pending.empty()) {
        const visit next = pending.back();
        pending.pop_back();
        const std::optional<binary_object> object = list.object(next.object);
        if (!object || !budget.spend(next.level, object->references, object->content_bytes))
            return false;
        for (quint64 i = 0; i < object->references; ++i) {
            const std::optional<quint64> reference = list.reference(*object, i);
            if (!reference)
                return false;
            pending.push_back({*reference, next.level + 1});
        }
    }
    return true;
}

/** The text in the encoding that its byte order mark names, UTF-8 without one. */
QString decoded(const QByteArray &bytes)
{
    const auto encoding = QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8);
    return QStringDecoder(encoding)(bytes);
}

/** Whether tags hold so many attributes that comparing each with each, as Qt's reader does, takes too long. */
bool has_crowded_tags(const QString &text)
{
    constexpr qint64 most_comparisons = 10'000'000;
    qint64 attributes = 0;
    qint64 comparisons = 0;
    for (const QChar character : text) {
        if (character == u'<')
            attributes = 0;
        else if (character == u'=')
            comparisons += attributes++;
    }
    return comparisons > most_comparisons;
}

QByteArray rewritten_xml(const QByteArray &bytes)
{
    const QString text = decoded(bytes);
    if (text.contains("<!ENTITY"_L1) || has_crowded_tags(text))
        return {};

    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    QByteArray written;
    QXmlStreamWriter writer(&written);
    writer.writeStartDocument();
    tree_budget budget;
    int level = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (!budget.spend(++level, 1, 0))
                return {};
            writer.writeStartElement(reader.qualifiedName().toString());
            break;
        case QXmlStreamReader::EndElement:
            --level;
            writer.writeEndElement();
            break;
        case QXmlStreamReader::Characters:
            writer.writeCharacters(reader.text().toString());
            break;
        case QXmlStreamReader::EntityReference: // to something undeclared; its text is unknown
            return {};
        default:
            break;
        }
    }
    return reader.hasError() ? QByteArray() : written;
}

} // namespace

QByteArray guarded_property_list(const QByteArray &bytes)
{
    if (bytes.size() > largest_property_list_bytes)
        return {};
    if (!bytes.startsWith(binary_list::magic()))
        return rewritten_xml(bytes);
    return is_harmless_binary(bytes) ? bytes : QByteArray();
}
