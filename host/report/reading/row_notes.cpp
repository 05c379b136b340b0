// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/row_notes.h"

#include "host/devices/device_address.h"
#include "host/text/json_text.h"

#include <algorithm>

namespace {

/** As normal_device() writes what a note is on. */
QByteArray normal_name(QByteArrayView name)
{
    const std::optional<device_address> address = parse_device_address(name);
    return (address ? address->bytes : name.trimmed().toByteArray()).toUpper();
}

} // namespace

void add_notes(notes_of_one &notes, const notes_of_one &others)
{
    for (const case_note *note : others) {
        const auto place = std::lower_bound(notes.begin(), notes.end(), note,
                                            [](const case_note *one, const case_note *two) {
                                                return one->number < two->number;
                                            });
        if (place == notes.end() || *place != note)
            notes.insert(place, note);
    }
}

note_marks::note_marks(const notes_of_one &notes)
{
    json = "[";
    for (const case_note *note : notes) {
        is_flagged = is_flagged || note->is_flag;
        if (note->text.isEmpty())
            continue;
        const QByteArray utf8 = note->text.toUtf8();
        text += (text.isEmpty() ? "" : " | ") + utf8;
        json += json.size() > 1 ? "," : "";
        append_json_bytes(json, utf8);
    }
    json += ']';
}

note_list::note_list(const QList<case_note> &of_case)
    : notes(of_case)
{
    for (const case_note &note : std::as_const(notes)) {
        if (!note.device.isEmpty())
            by_device[note.device.toUtf8()].append(&note);
    }
}

notes_of_one note_list::of_device(const QByteArrayList &names) const
{
    notes_of_one found;
    if (by_device.isEmpty())
        return found;
    for (const QByteArray &name : names)
        add_notes(found, by_device.value(normal_name(name)));
    return found;
}

notes_of_one note_list::of_row(const noted_row &row) const
{
    notes_of_one found;
    for (const case_note &note : notes) {
        if (note.row == row)
            found.append(&note);
    }
    return found;
}
