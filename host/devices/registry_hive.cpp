// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/registry_hive.h"

#include "host/files/transfer.h"

#include <QtEndian>

#include <cerrno>
#include <cstdlib>

#include <sys/mman.h>

using namespace Qt::StringLiterals;

namespace {

constexpr size_t most_data_bytes = 64 << 10;
constexpr qint64 most_steps =
    1'000'000; ///< keys and values that are read of a hive; real ones hold some hundred devices

struct c_deleter
{
    void operator()(void *memory) const
    {
        std::free(memory);
    }
};
template<typename Item>
using c_array = std::unique_ptr<Item, c_deleter>;

/** The library takes files by their names alone. */
descriptor file_in_memory(const QByteArray &bytes)
{
    descriptor file(::memfd_create("hive", MFD_CLOEXEC));
    if (!file.is_open() || !write_all(file.number(), bytes))
        return {};
    return file;
}

std::optional<QString> utf_16_text(const QByteArray &bytes)
{
    if (bytes.size() % 2 != 0)
        return {};
    QString text(bytes.size() / 2, Qt::Uninitialized);
    qFromLittleEndian<char16_t>(bytes.constData(), text.size(), text.data());
    if (!text.isValidUtf16())
        return {};
    return text;
}

QVariant without_final_zeros(QString text)
{
    while (text.endsWith(QChar(0)))
        text.chop(1);
    return text;
}

/** A hive may have any number for a type, and the library gives it as it is: no value of its enumeration. */
using type_number = quint32;
static_assert(sizeof(type_number) == sizeof(hive_type));

hive_type *place_of(type_number &type)
{
    return reinterpret_cast<hive_type *>(&type);
}

/** Types of values: winnt.h in Microsoft's documentation. */
QVariant typed(type_number type, const QByteArray &bytes)
{
    if (type == hive_t_REG_DWORD && bytes.size() == 4)
        return qint64(qFromLittleEndian<quint32>(bytes.constData()));
    if (type == hive_t_REG_DWORD_BIG_ENDIAN && bytes.size() == 4)
        return qint64(qFromBigEndian<quint32>(bytes.constData()));
    if (type == hive_t_REG_QWORD && bytes.size() == 8)
        return qFromLittleEndian<quint64>(bytes.constData());
    const bool is_text = type == hive_t_REG_SZ || type == hive_t_REG_EXPAND_SZ || type == hive_t_REG_MULTI_SZ;
    const std::optional<QString> text = is_text ? utf_16_text(bytes) : std::nullopt;
    if (!text)
        return bytes;
    if (type == hive_t_REG_MULTI_SZ)
        return text->split(QChar(0), Qt::SkipEmptyParts);
    return without_final_zeros(*text);
}

} // namespace

registry_hive::registry_hive(const QByteArray &bytes)
    : memory(file_in_memory(bytes))
{
    const QByteArray path = "/proc/self/fd/" + QByteArray::number(memory.number());
    if (!memory.is_open())
        return;
    hive.reset(hivex_open(path.constData(), 0));
    if (hive)
        return;
    is_opened_unsafely = true;
    hive.reset(hivex_open(path.constData(), HIVEX_OPEN_UNSAFE));
}

bool registry_hive::may_go_on()
{
    if (++steps <= most_steps)
        return true;
    ++unread;
    return false;
}

registry_hive::key registry_hive::root()
{
    return {hivex_root(hive.get()), {}};
}

QList<registry_hive::key> registry_hive::keys_below(const key &parent)
{
    QList<key> keys;
    const c_array<hive_node_h> nodes(parent.node == 0 ? nullptr : hivex_node_children(hive.get(), parent.node));
    if (!nodes)
        ++unread;
    for (const hive_node_h *node = nodes.get(); node && *node != 0 && may_go_on(); ++node) {
        const c_array<char> name(hivex_node_name(hive.get(), *node));
        if (name)
            keys.append({*node, QString::fromUtf8(name.get())});
        else
            ++unread;
    }
    return keys;
}

std::optional<registry_hive::key> registry_hive::key_below(const key &parent, const QString &name)
{
    const QList<key> keys = keys_below(parent);
    for (const key &one : keys) {
        if (one.name.compare(name, Qt::CaseInsensitive) == 0)
            return one;
    }
    return {};
}

std::optional<registry_hive::key> registry_hive::key_at(key start, const QStringList &path)
{
    for (const QString &name : path) {
        const std::optional<key> next = key_below(start, name);
        if (!next)
            return {};
        start = *next;
    }
    return start;
}

QList<registry_hive::value> registry_hive::values_of(const key &of)
{
    QList<value> values;
    const c_array<hive_value_h> handles(hivex_node_values(hive.get(), of.node));
    if (!handles)
        ++unread;
    for (const hive_value_h *handle = handles.get(); handle && *handle != 0 && may_go_on(); ++handle) {
        const c_array<char> name(hivex_value_key(hive.get(), *handle));
        if (name)
            values.append({*handle, QString::fromUtf8(name.get())});
        else
            ++unread;
    }
    return values;
}

std::optional<quint64> registry_hive::last_write(const key &of)
{
    const int64_t time = hivex_node_timestamp(hive.get(), of.node);
    if (time < 0) // also where it cannot be read
        return {};
    return quint64(time);
}

QVariant registry_hive::data_of(const value &of)
{
    type_number type = hive_t_REG_NONE;
    size_t size = 0;
    if (hivex_value_type(hive.get(), of.handle, place_of(type), &size) != 0) {
        ++unread;
        return QVariantMap{{u"size"_s, QVariant()}};
    }
    if (size > most_data_bytes) {
        ++unread;
        return QVariantMap{{u"size"_s, qint64(size)}};
    }
    const c_array<char> data(hivex_value_value(hive.get(), of.handle, place_of(type), &size));
    if (!data && size > 0) {
        ++unread;
        return QVariantMap{{u"size"_s, qint64(size)}};
    }
    return typed(type, QByteArray(data.get(), qsizetype(size)));
}
