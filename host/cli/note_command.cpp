// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/note_command.h"

#include "host/case/manifest.h"
#include "host/files/file_lock.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"

using namespace Qt::StringLiterals;

namespace {

QString place_of(const case_note &note)
{
    if (!note.row)
        return note.device;
    return QString::number(note.row->source) + u':' + note.row->table + u':' + QString::number(note.row->row);
}

QString line_of(const case_note &note)
{
    return QString::number(note.number) + u"  "_s + note.time + u"  "_s + note.author + u"  "_s + place_of(note)
           + (note.is_flag ? u"  flagged"_s : QString()) + (note.text.isEmpty() ? QString() : u"  "_s + note.text);
}

} // namespace

exit_code run_note(const note_options &options, console &out)
{
    const case_layout layout(options.directory);
    if (recorded_sources(layout).isEmpty())
        throw host_error(error_kind::not_found, u"there is no case in "_s + layout.directory());
    if (options.lists) {
        for (const case_note &note : read_case_notes(layout))
            out.print_line(line_of(note));
        return exit_code::done;
    }
    const file_lock lock(layout.lock());
    case_note note = options.note;
    if (note.author.isEmpty())
        note.author = default_author(layout);
    if (options.remove) {
        remove_case_note(layout, int(*options.remove), note.author);
        out.print_unless_quiet({u"Note "_s + QString::number(*options.remove) + u" removed"_s});
    } else {
        const int number = add_case_note(layout, note);
        out.print_unless_quiet({u"Note "_s + QString::number(number) + u" on "_s + place_of(note)});
    }
    return exit_code::done;
}
