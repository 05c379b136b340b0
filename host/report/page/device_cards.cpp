// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/device_cards.h"

#include "host/report/page/column_words.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct card
{
    const report_case &the_case;
    const device_facts &facts;
    bool is_all_compared;
    const joined_device &device = *facts.device;
};

/** A column of the cards and its text; empty where it has none. */
struct card_column
{
    const char *name;
    QByteArray (*text)(const card &card);
};

template<QByteArray device_appearance::*Text>
QByteArray texts(const card &card)
{
    return texts_of(card.device, Text);
}

constexpr card_column text_columns[] = {
    {"flag", [](const card &card) { return QByteArray(note_marks(card.facts.notes).is_flagged ? "flagged" : ""); }},
    {"note", [](const card &card) { return note_marks(card.facts.notes).text; }},
    {"device_name", texts<&device_appearance::name>},
    {"host_name", texts<&device_appearance::host_name>},
    {"host_preferences_name", texts<&device_appearance::preferences_name>},
    {"address", texts<&device_appearance::address>},
    {"host_address_kind", texts<&device_appearance::address_kind>},
    {"host_resolved_address", texts<&device_appearance::resolved_address>},
    {"host_vendor", texts<&device_appearance::vendor>},
    {"known_as", [](const card &card) { return known_as(card.facts); }},
    {"link", [](const card &card) { return link_strength(card.the_case, card.facts); }},
    {"sources", [](const card &card) { return source_numbers(card.the_case, card.device.sources); }},
    {"host_wal", [](const card &card) { return log_changes_of(card.device); }},
    {"lists", [](const card &card) { return lists_of(card.device); }},
    {"icloud_identifier", texts<&device_appearance::icloud_identifier>},
    {"uuid", texts<&device_appearance::uuid>},
    {"joined_across_sources_by", [](const card &card) { return keys_text(card.device); }},
    {"not_joined_because", [](const card &card) { return why_not_joined(card.device, card.is_all_compared); }},
};

/** What examiners add has columns only where they added anything. */
bool is_on_page(const report_case &the_case, const card_column &column)
{
    const QLatin1StringView name(column.name);
    return !the_case.notes->is_empty() || (name != "flag"_L1 && name != "note"_L1);
}

/** Both sides of a row that a log changes are that row. */
qsizetype row_count(const joined_device &device)
{
    return std::count_if(device.appearances.cbegin(), device.appearances.cend(),
                         [](const device_appearance &one) { return one.found_in == "row"_L1; });
}

} // namespace

html_table device_cards(const report_case &the_case, const QList<device_facts> &devices, bool is_all_compared)
{
    html_table
        table("cards", "All devices",
              "What the sources know of each device; the number in front opens a page of its own. Devices with a "
              "name, paired ones and those in more than one source come first. Several texts are separated by |.");
    table.set_opens("device");
    page_column &number = table.add_column(about_own_column("device"));
    std::vector<page_column *> texts;
    for (const card_column &column : text_columns)
        texts.push_back(is_on_page(the_case, column) ? &table.add_column(about_own_column(column.name)) : nullptr);
    page_column &rows = table.add_column(about_own_column("rows"));
    page_column &shared = table.add_column(about_own_column("shared_device"));
    for (const bool is_of_note : {true, false}) {
        for (const device_facts &facts : devices) {
            if (facts.is_of_note() != is_of_note)
                continue;
            const card card{the_case, facts, is_all_compared};
            number.add(cell::of_integer(facts.number));
            for (std::size_t i = 0; i < texts.size(); ++i) {
                if (texts[i])
                    texts[i]->add(cell::of_text_or_null(text_columns[i].text(card)));
            }
            rows.add(cell::of_integer(row_count(*facts.device)));
            const qint64 shared_number = facts.device->shared_number;
            shared.add(shared_number > 0 ? cell::of_integer(shared_number) : cell());
        }
    }
    return table;
}
