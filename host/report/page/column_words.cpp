// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/column_words.h"

#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"
#include "host/report/reading/host_device_line.h"
#include "host/report/reading/row_columns.h"
#include "host/report/reading/salvage_line.h"
#include "host/report/reading/unparsed_line.h"
#include "host/report/reading/wal_change.h"

#include <QSet>

#include <algorithm>
#include <span>

namespace {

struct words
{
    QByteArrayView name;
    const char *heading;
    const char *meaning;
    bool is_hidden = false;
};

// clang-format off
constexpr words plugin_words[] = {
    {"bookmark",             "Bookmark",              "The suite's mark of the row; 0 is none.", true},
    {"INT",                  "Number in the result",  "The number of the row in the result table; not one of the evidence.", true},
    {"system_account",       "Account",               "The suite's column for an account; the plug-in leaves it empty here.", true},
    {"uuid",                 "UUID",                  "Uuid of the database: the name that this system has given to the device. It means nothing on another system.", true},
    {"device_name",          "Name",                  "The name that the device gave, or that somebody gave it. Anybody can choose any name."},
    {"address",              "Address",               "Address of the database, with its kind in words. A random address changes and proves no identity."},
    {"device_address",       "Address in the log",    "PI of the line of the log."},
    {"last_seen_time",       "Last seen, counter",    "LastSeenTime of the database: a counter of unknown origin. It orders rows of one source; it is no date."},
    {"last_connection_time", "Last connection, counter", "LastConnectionTime of the database: a counter of unknown origin; 0 is never. It is no date."},
    {"apple_tags",           "Tags",                  "Tags of the database: words of the system for the device."},
    {"icloud_identifier",    "iCloud identifier",     "iCloudIdentifier of the database: the same for the devices of one account. It does not say whose account."},
    {"kaldo_tag_value",      "Tag in the suite",      "The suite's column for tags; the plug-in leaves it empty.", true},
    {"notes_icon",           "Note icon in the suite", "The suite's column; the plug-in leaves it empty.", true},
    {"tags_icon",            "Tag icon in the suite", "The suite's column; the plug-in leaves it empty.", true},
    {"os_scheme_display",    "Kind of system",        "The kind of system that the source was read as.", true},
    {"source_count_name",    "Source in the suite",   "The name of the source in the suite.", true},
    {"source_file",          "Path when read",        "The path of the file when the plug-in read it. The path may be another one now.", true},
    {"artifacts_relation_source_file", "Related file", "The suite's column for related files.", true},
    {"notes",                "Note in the suite",     "The suite's column for notes; the plug-in leaves it empty.", true},
    {"model",                "Model",                 "Md of the line of the log: the model that the device gave."},
    {"sf_device_id",         "SFDevice ID",           "SFDevice ID of the line of the log: a name that the phone gives to a device near by. Several lines with one are sightings of one device; the phone may change it."},
    {"status",               "Status",                "Disconnected where the line of the log says so; an \"active device\" line does not prove a pairing."},
    {"date",                 "Date, without year",    "The first 15 characters of the line of the log. They have no year and no zone: both are the log's, not known from it."},
};

constexpr words own_words[] = {
    {"device",               "Device",                "The device's number in this report: its page says what all sources know of it."},
    {"host_preferences_name", "Name in the preferences", "The name that a Bluetooth preferences list keeps for the device's public address."},
    {"host_name",            "Name in the evidence",  "The name as the host read it in the evidence.", true},
    {"host_address_kind",    "Kind of address",       "public, or what the two highest bits of a random address say: static (11), resolvable (01), non-resolvable (00), reserved (10)."},
    {"host_resolved_address", "Resolved address",     "ResolvedAddress of the database: the public address behind a random one."},
    {"host_vendor",          "Vendor of the address", "Who bought the range of the public address, by the list given. It does not say who made the device."},
    {"known_as",             "Known as",              "Whether the sources have it in the table of paired devices (of a log: as active device), or have only seen it."},
    {"link",                 "Link of sources",       "How strong what joins the sources is. A device that both have only seen may have been near both by chance."},
    {"sources",              "Sources",               "The numbers of the sources that know the device."},
    {"rows",                 "Rows",                  "How many rows all sources have of it. Rows of a log are sightings, not devices."},
    {"shared_device",        "Number in shared.csv",  "Its number among the devices that more than one source knows.", true},
    {"joined_across_sources_by", "Joined across sources by", "The address or identifier that several sources have."},
    {"note",                 "Note",                  "What an examiner noted of the device or of the row, in this program."},
    {"flag",                 "Flag",                  "\"flagged\" where an examiner has flagged the device or the row."},
    {"host_wal",             "In the write-ahead log", "What the logs make of the device's rows: unchanged, changed, deleted, or only in the log."},
    {"lists",                "In the lists",          "The lists that are no databases and name the device: preferences, mobile_devices, registry."},
    {"not_joined_because",   "Not joined because",    "Why no other source adds to it.", true},
};
// clang-format on

const words *words_of(std::span<const words> list, QByteArrayView name)
{
    const auto found = std::find_if(list.begin(), list.end(), [name](const words &one) { return one.name == name; });
    return found == list.end() ? nullptr : &*found;
}

/** Of the host's columns: those that few readers ask for. */
constexpr QByteArrayView hidden_names[] = {
    "source_name",      "host_file",
    "host_table",       "host_offset",
    "host_name_origin", "host_gatt_service_change_config",
    "host_name",        "host_custom_properties",
    "host_aid",         "host_line_text",
    "host_tags",        "host_icloud_identifier",
    "address_normal",   "raw",
};

/** A column of the result with the same values takes its place. */
constexpr std::pair<QByteArrayView, QByteArrayView> twins[] = {
    {"host_last_seen_time", "plugin_last_seen_time"},
    {"host_last_connection_time", "plugin_last_connection_time"},
};

QByteArray group_name(column_group group)
{
    switch (group) {
    case column_group::plugin:
        return "Plug-in";
    case column_group::host:
        return "Host";
    case column_group::locator:
        return "Place";
    case column_group::line:
        return "Host"; // what the host makes of rows and lines
    case column_group::source:
        break;
    }
    return "Report";
}

/** What an examiner added stands with the report's own columns. */
bool is_of_examiner(const report_column &column)
{
    return column.group == column_group::line && (column.name == "note" || column.name == "flag");
}

QByteArray text(QLatin1StringView words)
{
    return QByteArray(words.data(), words.size());
}

/** With a capital in front and a stop behind, as the texts of this file are. */
QByteArray sentence(QByteArray text)
{
    if (text.isEmpty() || text.endsWith('.'))
        return text;
    const bool is_name = text.size() > 1 && text.at(1) >= 'A' && text.at(1) <= 'Z'; // iCloudIdentifier
    if (!is_name && text.at(0) >= 'a' && text.at(0) <= 'z')
        text[0] = char(text.at(0) - 'a' + 'A');
    return text + '.';
}

QByteArray term(const column_about &about)
{
    return html_row({html_text(QString::fromUtf8(about.heading)) + "<small>" + html_text(QString::fromUtf8(about.name))
                         + "</small>",
                     html_text(QString::fromUtf8(about.meaning))});
}

/** Tables of columns; what stands in one of them is not said again. */
class dictionary
{
public:
    void add(const char *caption, const QList<column_about> &columns)
    {
        QByteArray rows;
        for (const column_about &about : columns) {
            if (const QByteArray row = term(about); !listed.contains(row)) {
                rows += row;
                listed.insert(row);
            }
        }
        html += html_static_table(caption, {"Column", "What it says"}, rows);
    }

    QByteArray html;

private:
    QSet<QByteArray> listed;
};

QList<column_about> about_columns(const QList<report_column> &columns)
{
    QList<column_about> list;
    for (const report_column &column : columns) {
        if (column.is_cell())
            list.append(about_column(column));
    }
    return list;
}

} // namespace

column_about about_own_column(const QByteArray &name)
{
    const words *own = words_of(own_words, name);
    const words *known = own ? own : words_of(plugin_words, name);
    return known ? column_about{name, known->heading, "Report", known->meaning, known->is_hidden}
                 : column_about{name, name, "Report", {}};
}

column_about about_column(const report_column &column)
{
    const bool is_of_plugin = column.group == column_group::plugin;
    column_about about{is_of_plugin ? "plugin_" + column.name : column.cell_name(), text(column.heading),
                       is_of_examiner(column) ? group_name(column_group::source) : group_name(column.group),
                       sentence(text(column.meaning))};
    if (const words *known = is_of_plugin ? words_of(plugin_words, column.name) : nullptr) {
        about.heading = known->heading;
        about.meaning = known->meaning;
        about.is_hidden = known->is_hidden;
    }
    if (about.heading.isEmpty())
        about.heading = column.name;
    about.is_hidden = about.is_hidden
                      || std::find(std::begin(hidden_names), std::end(hidden_names), about.name)
                             != std::end(hidden_names);
    for (const auto &[name, twin] : twins) {
        if (about.name == name)
            about.twin = twin.toByteArray();
    }
    return about;
}

QByteArray terms_section()
{
    QList<column_about> plugin;
    for (const words &one : plugin_words)
        plugin.append({"plugin_" + one.name.toByteArray(), one.heading, {}, one.meaning});
    QList<column_about> own;
    for (const words &one : own_words)
        own.append({one.name.toByteArray(), one.heading, {}, one.meaning});
    dictionary terms;
    terms.add("The report's own columns", own);
    terms.add("Columns of the plug-in's result", plugin);
    terms.add("The host's own reading of the evidence", about_columns(columns_of(host_columns())));
    terms.add("Ranks and readings of the counters", about_columns(columns_of(rank_columns())));
    terms.add("Columns of what write-ahead logs change", about_columns(columns_of(wal_columns())));
    terms.add("Columns of devices in lists, which the tables above have not",
              about_columns(columns_of(host_device_columns())));
    terms.add("Columns of lines without a row, which the tables above have not",
              about_columns(columns_of(unparsed_columns())));
    terms.add("Columns of salvaged rows, which the tables above have not",
              about_columns(columns_of(salvage_columns())));
    return html_section("terms", "What the columns mean", terms.html);
}
