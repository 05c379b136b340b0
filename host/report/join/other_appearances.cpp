// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/join/other_appearances.h"

#include "host/case/result_tables.h"
#include "host/devices/device_address.h"
#include "host/files/paths.h"
#include "host/report/reading/host_device_line.h"
#include "host/report/reading/wal_change.h"
#include "host/source/macos_databases.h"

#include <QJsonDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using appearance_taker = std::function<void(const device_appearance &appearance)>;

/** What found_in says of a device of a list; a list of another name is none of this program's. */
constexpr QLatin1StringView lists[] = {"preferences"_L1, "mobile_devices"_L1, "registry"_L1};

/** The columns of a database and what they are of an appearance. */
constexpr std::pair<QLatin1StringView, QByteArray device_appearance::*> row_members[] = {
    {"Name"_L1, &device_appearance::name},
    {"Address"_L1, &device_appearance::address},
    {"ResolvedAddress"_L1, &device_appearance::resolved_address},
    {"iCloudIdentifier"_L1, &device_appearance::icloud_identifier},
    {"Uuid"_L1, &device_appearance::uuid},
};

device_appearance in_log(const wal_change &change, int source, QLatin1StringView found_in, const QByteArray &row)
{
    device_appearance one;
    one.found_in = found_in;
    one.source = source;
    one.table = QString::fromUtf8(change.table);
    one.place = change.place();
    const QJsonObject json = QJsonDocument::fromJson(row).object();
    for (const auto &[column, member] : row_members)
        one.*member = bytes_of_json(json.value(column));
    one.uuid = one.uuid.trimmed().toUpper();
    one.is_paired = one.table == result_tables().last();
    one.notes = change.notes;
    add_keys(one);
    return one;
}

QString read_changes(const report_case &the_case, int source, const appearance_taker &take)
{
    qsizetype line = 0;
    return for_each_wal_change(the_case, the_case.sources.at(source), [&](const wal_change &change) {
        const auto take_side = [&](QLatin1StringView found_in, const QByteArray &row) {
            device_appearance one = in_log(change, source, found_in, row);
            one.line = line;
            take(one);
        };
        if (change.change == "added")
            take_side("wal_added"_L1, change.after);
        if (change.change == "changed" || change.change == "deleted")
            take_side(change.change == "changed" ? "wal_changed_before"_L1 : wal_deleted, change.before);
        if (change.change == "changed")
            take_side("wal_changed_after"_L1, change.after);
        ++line;
    });
}

device_appearance in_list(const host_device_line &device, int source, const vendor_list &vendors)
{
    device_appearance one;
    const auto *const list = std::find(std::begin(lists), std::end(lists), QLatin1StringView(device.list));
    one.found_in = list == std::end(lists) ? "list"_L1 : *list;
    one.source = source;
    one.place = device.place();
    one.name = device.names;
    one.address = device.address;
    one.is_paired = device.is_paired();
    one.notes = device.notes;
    const bool may_be_random = device.kind == "le" && !device.address.trimmed().toLower().startsWith("public");
    if (may_be_random) {
        one.local_name = device.address_normal;
        return one;
    }
    one.vendor = vendors.vendor_of_first_public({one.address});
    add_keys(one);
    return one;
}

/** Of a case without lists of devices the names of the preferences are what there is. */
void read_preferences(const report_case &the_case, int source, const appearance_taker &take)
{
    const preferences_names &names = the_case.sources.at(source).preferences;
    for (const QByteArray &address : names.addresses()) {
        device_appearance one;
        one.found_in = lists[0];
        one.source = source;
        one.place.file = macos_preferences_file.data();
        one.address = address;
        one.preferences_name = names.name_of({address});
        one.vendor = the_case.vendors.vendor_of_first_public({address});
        one.notes = the_case.notes->of_device({address});
        add_keys(one);
        take(one);
    }
}

} // namespace

QString for_each_other_appearance(const report_case &the_case, int source, const appearance_taker &take)
{
    const report_source &of_source = the_case.sources.at(source);
    if (of_source.is_locked)
        return {};
    const QString problem = read_changes(the_case, source, take);
    if (!path_exists(the_case.layout.source(of_source.record.number).host_devices()))
        read_preferences(the_case, source, take);
    qsizetype line = 0;
    const QString list_problem = for_each_host_device(the_case, of_source, [&](const host_device_line &device) {
        device_appearance one = in_list(device, source, the_case.vendors);
        one.line = line++;
        take(one);
    });
    return problem.isEmpty() ? list_problem : problem;
}
