// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/platform/property_list.h"
#include "common/platform/reference_date.h"
#include "common/platform/xml_property_list.h"

#include <QDateTime>
#include <QtEndian>

#include <cstdlib>
#include <limits>
#include <memory>

#include <plist/plist.h>

using namespace Qt::StringLiterals;

namespace {

struct c_deleter
{
    void operator()(void *memory) const
    {
        std::free(memory);
    }
};
using c_text = std::unique_ptr<char, c_deleter>;
using c_iterator = std::unique_ptr<void, c_deleter>;
using owned_node = std::unique_ptr<void, decltype(&plist_free)>;

/** The library's functions take nodes that are not constant, also where they only read. */
plist_t node_of(const void *object)
{
    return const_cast<plist_t>(object);
}

plist_type type_of(plist_t node)
{
    return node ? plist_get_node_type(node) : PLIST_NONE;
}

/**
 * The node as the first object of a binary list, marker and value: the library's own functions lose the sign of an
 * integer, and dates outside 32 bits.
 */
QByteArray binary_object(plist_t node)
{
    char *bytes = nullptr;
    uint32_t length = 0;
    plist_to_bin(node, &bytes, &length);
    const QByteArray list(bytes, static_cast<qsizetype>(length));
    plist_to_bin_free(bytes);
    return list.mid(QByteArrayView("bplist00").size());
}

QVariant integer_of(plist_t node)
{
    constexpr char unsigned_64_bits = 0x14; // 16 bytes, as eight would be signed
    uint64_t value = 0;
    plist_get_uint_val(node, &value);
    if (value > std::numeric_limits<qint64>::max() && binary_object(node).startsWith(unsigned_64_bits))
        return QVariant::fromValue<quint64>(value);
    return QVariant::fromValue<qint64>(static_cast<qint64>(value));
}

QDateTime date_of(plist_t node)
{
    const QByteArray object = binary_object(node);
    if (object.size() < 1 + qsizetype(sizeof(double)))
        return {};
    return date_of_reference_seconds(qFromBigEndian<double>(object.constData() + 1));
}

QString text_of(plist_t node)
{
    uint64_t length = 0;
    const char *text = plist_get_string_ptr(node, &length);
    return QString::fromUtf8(text, static_cast<qsizetype>(length));
}

QByteArray data_of(plist_t node)
{
    uint64_t length = 0;
    const char *data = plist_get_data_ptr(node, &length);
    return QByteArray(data, static_cast<qsizetype>(length));
}

QVariantList array_of(plist_t node)
{
    plist_array_iter iterator = nullptr;
    plist_array_new_iter(node, &iterator);
    const c_iterator owned(iterator);
    QVariantList list;
    plist_t item = nullptr;
    for (plist_array_next_item(node, iterator, &item); item; plist_array_next_item(node, iterator, &item))
        list.append(property_list_value(item));
    return list;
}

/** Calls @p visit with each key and value, in order. */
template<typename Visit>
void visit_pairs(plist_t dictionary, Visit visit)
{
    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(dictionary, &iterator);
    const c_iterator owned(iterator);
    plist_t value = nullptr;
    char *key = nullptr;
    plist_dict_next_item(dictionary, iterator, &key, &value);
    while (value) {
        const c_text owned_key(key);
        visit(QByteArrayView(key), value);
        key = nullptr;
        plist_dict_next_item(dictionary, iterator, &key, &value);
    }
}

/** Of a doubled key the last value counts. */
QVariantMap dictionary_of(plist_t node)
{
    QVariantMap map;
    visit_pairs(node, [&map](QByteArrayView key, plist_t value) {
        map.insert(QString::fromUtf8(key), property_list_value(value));
    });
    return map;
}

} // namespace

QVariant property_list_value(const void *object)
{
    const plist_t node = node_of(object);
    uint8_t boolean = 0;
    double real = 0;
    switch (type_of(node)) {
    case PLIST_BOOLEAN:
        plist_get_bool_val(node, &boolean);
        return boolean != 0;
    case PLIST_UINT:
        return integer_of(node);
    case PLIST_REAL:
        plist_get_real_val(node, &real);
        return real;
    case PLIST_STRING:
        return text_of(node);
    case PLIST_DATE:
        return date_of(node);
    case PLIST_DATA:
        return data_of(node);
    case PLIST_ARRAY:
        return array_of(node);
    case PLIST_DICT:
        return dictionary_of(node);
    default:
        return {};
    }
}

QVariant property_list_entry(const void *dictionary, const void *key)
{
    const plist_t key_node = node_of(key);
    if (type_of(node_of(dictionary)) != PLIST_DICT || type_of(key_node) != PLIST_STRING)
        return {};
    const QByteArrayView wanted(plist_get_string_ptr(key_node, nullptr));
    plist_t found = nullptr;
    visit_pairs(node_of(dictionary), [&](QByteArrayView candidate, plist_t value) {
        if (candidate == wanted)
            found = value; // the last one counts, as in the dictionary as a whole
    });
    return property_list_value(found);
}

QVariant parse_property_list(const QByteArray &guarded)
{
    const auto length = static_cast<uint32_t>(guarded.size());
    if (!plist_is_binary(guarded.constData(), length))
        return parse_xml_property_list(guarded);
    plist_t root = nullptr;
    plist_from_bin(guarded.constData(), length, &root);
    const owned_node owned(root, plist_free);
    return property_list_value(root);
}
