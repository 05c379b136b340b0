// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/property_list/property_list_guard.h"

#include "common/property_list/binary_property_list.h"

#include <QStringDecoder>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/** How much a parser may still build before the list is refused. */
class tree_budget
{
public:
    /** False when the level is too deep, or when so many nodes with so many bytes of content are too much. */
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

/** Visits each object as often as others refer to it, as a parser does, but without a stack frame for each level. */
bool is_harmless_binary(const QByteArray &bytes)
{
    struct visit
    {
        quint64 object;
        int level;
    };
    const binary_property_list list(bytes);
    tree_budget budget;
    std::vector<visit> pending{{list.top_object(), 1}};
    while (!pending.empty()) {
        const visit next = pending.back();
        pending.pop_back();
        const std::optional<binary_property_list::object_view> object = list.object(next.object);
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
    if (!binary_property_list::has_magic(bytes))
        return rewritten_xml(bytes);
    return is_harmless_binary(bytes) ? bytes : QByteArray();
}
