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

/** What macOS remembers of one device; not every device has told its name. */
plist_t make_device(sample_random &random, qint64 row)
{
    plist_t device = plist_new_dict();
    if (row % 4 != 3) {
        const QString name = paired_device_names[row].toString();
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
        const QByteArray address = random.address(u'-').toLower().toLatin1();
        plist_dict_set_item(cache, address.constData(), make_device(random, row));
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
