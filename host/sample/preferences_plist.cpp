// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sample/device_names.h"
#include "host/sample/sample_parts.h"
#include "host/sample/sample_random.h"

#include <memory>

#include <plist/plist.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 device_count = 12;
constexpr int32_t first_update = 620000000; // seconds since 2001

void set_text(plist_t dictionary, const char *key, const QString &text)
{
    plist_dict_set_item(dictionary, key, plist_new_string(text.toUtf8().constData()));
}

void set_number(plist_t dictionary, const char *key, qint64 number)
{
    plist_dict_set_item(dictionary, key, plist_new_uint(uint64_t(number)));
}

void set_date(plist_t dictionary, const char *key, qint64 seconds)
{
    plist_dict_set_item(dictionary, key, plist_new_date(int32_t(seconds), 0));
}

/** A device of the list. */
struct listed_device
{
    qint64 paired_row = -1; ///< its row among the paired devices; -1: a classic device, which no database knows
    QStringView name = {};  ///< not every device has given its name
};

// The list keeps a name for the device that has none in the database, and another one for the car kit.
const listed_device listed_devices[device_count] = {
    {headphones_row, paired_device_names[headphones_row]},
    {0, paired_device_names[0]},
    {4, u"Anna\u2019s car"},
    {19, u"Conference speaker"},
    {7},
    {12, paired_device_names[12]},
    {-1, u"Desk keyboard"},
    {-1, u"Клавиатура"},
    {-1},
    {-1, u"Headset; classic"},
    {-1, u"=1+1"},
    {-1},
};

QByteArray listed_address(const listed_device &device, sample_random &random)
{
    const QString address = device.paired_row < 0 ? random.address(u'-') : paired_address(device.paired_row);
    return QString(address).replace(u':', u'-').toLower().toLatin1();
}

/** What macOS remembers of one device. */
plist_t make_device(sample_random &random, QStringView name_of_device, qint64 row)
{
    plist_t device = plist_new_dict();
    if (!name_of_device.isEmpty()) {
        const QString name = name_of_device.toString();
        set_text(device, "Name", name);
        set_text(device, "displayName", name);
    }
    set_number(device, "ClassOfDevice", 0x240404 + row);
    set_number(device, "Manufacturer", 10 + random.below(100));
    set_number(device, "VendorID", random.below(0x10000));
    set_number(device, "ProductID", random.below(0x10000));
    set_number(device, "LMPVersion", 8 + random.below(4));
    plist_dict_set_item(device, "LMPSubversion", plist_new_real(double(random.below(20000))));
    const qint64 updated = first_update + random.below(40000000);
    set_date(device, "LastInquiryUpdate", updated);
    set_date(device, "LastNameUpdate", updated + 2);
    set_date(device, "LastServicesUpdate", updated + 5);
    const QByteArray services = random.hex(12).toLatin1();
    plist_dict_set_item(device, "Services", plist_new_data(services.constData(), uint64_t(services.size())));
    return device;
}

} // namespace

void write_preferences_plist(const QString &path)
{
    const std::unique_ptr<void, decltype(&plist_free)> root(plist_new_dict(), plist_free);
    plist_t cache = plist_new_dict();
    plist_t paired = plist_new_array();
    sample_random random(3);
    for (qint64 row = 0; row < device_count; ++row) {
        const QByteArray address = listed_address(listed_devices[row], random);
        plist_dict_set_item(cache, address.constData(), make_device(random, listed_devices[row].name, row));
        if (row % 2 == 0)
            plist_array_append_item(paired, plist_new_string(address.constData()));
    }
    plist_dict_set_item(root.get(), "DeviceCache", cache);
    plist_dict_set_item(root.get(), "PairedDevices", paired);
    plist_dict_set_item(root.get(), "ControllerPowerState", plist_new_uint(1));

    char *bytes = nullptr;
    uint32_t size = 0;
    plist_to_bin(root.get(), &bytes, &size);
    const std::unique_ptr<char, decltype(&plist_to_bin_free)> owner(bytes, plist_to_bin_free);
    write_sample_file(path, QByteArray(bytes, qsizetype(size)));
}
