// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/devices/registry_devices.h"

#include "host/devices/assigned_numbers.h"
#include "host/devices/filetime.h"
#include "host/devices/registry_hive.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

constexpr QByteArrayView signature("regf");
constexpr qsizetype header_bytes = 512;
constexpr int deepest_subkey = 4;

const QStringList parameters_path{u"Services"_s, u"BTHPORT"_s, u"Parameters"_s};

/** A key or a value that stands for a device is named by its address alone. */
bool is_address(const QString &name)
{
    static const QRegularExpression form(u"^[0-9A-Fa-f]{12}$"_s);
    return form.match(name).hasMatch();
}

/** A text as Windows keeps the names of devices: UTF-8 bytes that end with a zero, or a text value. */
QVariant name_of(const QVariant &data)
{
    if (data.typeId() != QMetaType::QByteArray)
        return data;
    QByteArray bytes = data.toByteArray();
    while (bytes.endsWith('\0'))
        bytes.chop(1);
    return bytes.isValidUtf8() ? QVariant(QString::fromUtf8(bytes)) : QVariant();
}

/** Eight bytes or a QWORD. */
std::optional<quint64> filetime_of(const QVariant &data)
{
    if (data.typeId() == QMetaType::ULongLong)
        return data.toULongLong();
    const QByteArray bytes = data.typeId() == QMetaType::QByteArray ? data.toByteArray() : QByteArray();
    if (bytes.size() != 8)
        return {};
    return qFromLittleEndian<quint64>(bytes.constData());
}

device_time time_of(const QString &name, const std::optional<quint64> &filetime, const QVariant &raw,
                    const QString &meaning)
{
    return {name, filetime ? QVariant(*filetime) : raw, filetime ? filetime_text(*filetime) : QString(), true, meaning};
}

/** What the keys of one adapter name, by the lower case address. */
struct paired_names
{
    QHash<QString, QStringList> classic; ///< the adapters' keys
    QHash<QString, QStringList> le;
    QList<host_device> devices; ///< one for each name, for those that stand nowhere else
};

/** Reads the devices of one control set. */
class control_set_reader
{
public:
    control_set_reader(registry_hive &opened, const registry_hive::key &key, const std::optional<bool> &current)
        : hive(opened)
        , set(key)
        , is_current(current)
    {
    }

    QList<host_device> read()
    {
        const std::optional<registry_hive::key> parameters = hive.key_at(set, parameters_path);
        if (!parameters)
            return {};
        const QString path = set.name + u'\\' + parameters_path.join(u'\\') + u'\\';
        const std::optional<registry_hive::key> keys = hive.key_below(*parameters, u"Keys"_s);
        has_keys = keys.has_value();
        if (keys)
            read_paired(*keys, path + keys->name + u'\\');
        QList<host_device> devices;
        QSet<QString> known;
        if (const std::optional<registry_hive::key> list = hive.key_below(*parameters, u"Devices"_s)) {
            const QList<registry_hive::key> entries = hive.keys_below(*list);
            for (const registry_hive::key &entry : entries) {
                if (!is_address(entry.name))
                    continue;
                known.insert(entry.name.toLower());
                devices.append(device_of(entry, path + list->name + u'\\' + entry.name));
            }
        }
        for (const host_device &device : std::as_const(paired.devices)) {
            if (known.contains(device.address.toLower()))
                continue;
            known.insert(device.address.toLower());
            devices.append(device);
            add_pairing(devices.last());
        }
        return devices;
    }

private:
    void read_paired(const registry_hive::key &keys, const QString &path)
    {
        const QList<registry_hive::key> adapters = hive.keys_below(keys);
        for (const registry_hive::key &adapter : adapters) {
            const QString place = path + adapter.name + u'\\';
            for (const registry_hive::value &value : hive.values_of(adapter)) {
                if (is_address(value.name))
                    add_paired(paired.classic, adapter, value.name, place, {});
            }
            for (const registry_hive::key &key : hive.keys_below(adapter)) {
                if (is_address(key.name))
                    add_paired(paired.le, adapter, key.name, place, hive.last_write(key));
            }
        }
    }

    void add_paired(QHash<QString, QStringList> &names, const registry_hive::key &adapter, const QString &address,
                    const QString &place, const std::optional<quint64> &written)
    {
        names[address.toLower()].append(u"Keys\\"_s + adapter.name);
        host_device device;
        device.address = address;
        device.path = place + address;
        if (written)
            device.times.append(
                time_of(u"key"_s, written, {}, u"last write of the device's key below Keys in the registry"_s));
        paired.devices.append(device);
    }

    /** What Keys say of the device, and with it what kind it is. */
    void add_pairing(host_device &device) const
    {
        const QString address = device.address.toLower();
        const bool is_le = paired.le.contains(address) || has_le_member(device.raw.toMap());
        const bool is_classic = paired.classic.contains(address) || device.class_of_device;
        device.kind = is_le && is_classic ? "both"_L1
                      : is_le             ? "le"_L1
                      : is_classic        ? "classic"_L1
                                          : QLatin1StringView();
        device.listed_in = paired.classic.value(address) + paired.le.value(address);
        device.listed_in.removeDuplicates();
        if (has_keys)
            device.is_paired = !device.listed_in.isEmpty();
        device.is_current = is_current;
    }

    static bool has_le_member(const QVariantMap &members)
    {
        const auto first = members.lowerBound(u"LE"_s);
        return first != members.cend() && first.key().startsWith("LE"_L1);
    }

    host_device device_of(const registry_hive::key &entry, const QString &path)
    {
        host_device device;
        device.address = entry.name;
        device.path = path;
        const QVariantMap members = members_of(entry, 0);
        device.raw = members;
        for (const QString &name : {u"Name"_s, u"FriendlyName"_s, u"LEName"_s})
            device.add_name(name_of(members.value(name)));
        device.class_of_device = whole_number(members.value(u"COD"_s));
        if (const std::optional<qint64> vendor = whole_number(members.value(u"VID"_s)))
            device.vendor = {*vendor, vendor_source(whole_number(members.value(u"VIDType"_s)))};
        device.product = whole_number(members.value(u"PID"_s));
        for (const QString &name : {u"LMPVersion"_s, u"LmpVersion"_s}) {
            if (!device.lmp_version)
                device.lmp_version = whole_number(members.value(name));
        }
        for (const QString &name : {u"LastSeen"_s, u"LastConnected"_s}) {
            if (members.contains(name))
                device.times.append(
                    time_of(name, filetime_of(members.value(name)), members.value(name), name + u" of the registry"_s));
        }
        if (const std::optional<quint64> written = hive.last_write(entry))
            device.times.append(time_of(u"key"_s, written, {}, u"last write of the device's key in the registry"_s));
        add_pairing(device);
        return device;
    }

    /** Values by their names, keys by theirs with a final backslash. Of two of one name the second has " (2)". */
    QVariantMap members_of(const registry_hive::key &key, int level)
    {
        QVariantMap members;
        const auto add = [&members](const QString &name, const QVariant &value) {
            members.insert(members.contains(name) ? QString(name + u" (2)"_s) : name, value);
        };
        for (const registry_hive::value &value : hive.values_of(key))
            add(value.name, hive.data_of(value));
        const QList<registry_hive::key> below = level < deepest_subkey ? hive.keys_below(key)
                                                                       : QList<registry_hive::key>();
        for (const registry_hive::key &one : below)
            add(one.name + u'\\', members_of(one, level + 1));
        return members;
    }

    registry_hive &hive;
    registry_hive::key set;
    std::optional<bool> is_current;
    bool has_keys = false;
    paired_names paired;
};

/** The number of the control set that the system used last: Select, value Current. */
std::optional<qint64> current_set(registry_hive &hive)
{
    const std::optional<registry_hive::key> select = hive.key_below(hive.root(), u"Select"_s);
    if (!select)
        return {};
    for (const registry_hive::value &value : hive.values_of(*select)) {
        if (value.name.compare("Current"_L1, Qt::CaseInsensitive) == 0)
            return whole_number(hive.data_of(value));
    }
    return {};
}

/** A hive that was closed in order has the same number twice: one is written before the data, one behind it. */
void note_open_end(const QByteArray &bytes, device_list &result)
{
    const auto before = qFromLittleEndian<quint32>(bytes.constData() + 4);
    const auto behind = qFromLittleEndian<quint32>(bytes.constData() + 8);
    if (before != behind)
        result.notes.append(u"the hive is dirty, its two sequence numbers are "_s + QString::number(before) + u" and "_s
                            + QString::number(behind)
                            + u": the newest changes may be in its transaction logs, which are not applied"_s);
}

} // namespace

bool can_read_registry()
{
    return true;
}

device_list read_registry_devices(const QByteArray &bytes)
{
    static const QRegularExpression set_name(u"^ControlSet([0-9]{3})$"_s, QRegularExpression::CaseInsensitiveOption);
    device_list result;
    if (bytes.size() < header_bytes || !bytes.startsWith(signature)) {
        result.problems.append(u"it is no registry hive"_s);
        return result;
    }
    note_open_end(bytes, result);
    registry_hive hive(bytes);
    if (!hive.is_open()) {
        result.problems.append(u"it is damaged, and nothing of it can be read"_s);
        return result;
    }
    const std::optional<qint64> current = current_set(hive);
    const QList<registry_hive::key> keys = hive.keys_below(hive.root());
    for (const registry_hive::key &key : keys) {
        const QRegularExpressionMatch match = set_name.match(key.name);
        if (!match.hasMatch())
            continue;
        const std::optional<bool> is_current = current ? std::optional(match.captured(1).toLongLong() == *current)
                                                       : std::nullopt;
        result.devices += control_set_reader(hive, key, is_current).read();
    }
    if (!current)
        result.problems.append(u"it does not say which control set is the current one"_s);
    if (hive.is_damaged() || hive.unread_count() > 0)
        result.problems.append(u"it is damaged, and was read as far as it goes"_s
                               + (hive.unread_count() > 0 ? u": "_s + QString::number(hive.unread_count())
                                                                + u" keys or values are left out"_s
                                                          : QString()));
    return result;
}
