// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/arguments.h"
#include "host/cli/commands.h"
#include "host/cli/note_command.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 highest_note = 1000000000;

/** Throws host_error (refused) unless exactly one thing is asked for, with what it needs. */
void require_sense(const note_options &options)
{
    const case_note &note = options.note;
    const bool is_made = note.is_flag || !note.text.isEmpty();
    const bool has_place = note.row || !note.device.isEmpty();
    const int asked = int(is_made) + int(options.lists) + int(options.remove.has_value());
    if (asked != 1)
        throw host_error(error_kind::refused, u"one of --flag or --text, --list and --remove is needed"_s);
    if (is_made && !has_place)
        throw host_error(error_kind::refused, u"a note needs --device or --row"_s);
    if ((note.row && !note.device.isEmpty()) || (!is_made && has_place))
        throw host_error(error_kind::refused, u"--device or --row is given once, with --flag or --text"_s);
}

} // namespace

std::shared_ptr<const note_options> add_note_command(CLI::App &app, command_line &line)
{
    const auto options = std::make_shared<note_options>();
    CLI::App &note = *app.add_subcommand("note", "Note something of a device or of a row, beside the case's results");
    add_place(note, {"CASE", "PATH", "The case's folder"}, options->directory)->required();
    const argument device{"--device",
                          "ADDRESS|UUID",
                          "The device that is meant",
                          {"bluetooth-logs note case --device b4:c2:6a:7f:d3:7a --flag --text \"the suspect's\""}};
    add_value(note, device, [options, device](const QString &text) {
        const std::optional<QString> known = normal_device(text);
        if (!known)
            refuse(device, text + u" is no address of 12 hexadecimal digits and no UUID"_s);
        options->note.device = *known;
    });
    const argument row{"--row",
                       "SOURCE:TABLE:ROWID",
                       "The row that is meant: source, result table and INT",
                       {"bluetooth-logs note case --row 1:paired_devices:3 --text \"seized, exhibit 7\""}};
    add_value(note, row, [options, row](const QString &text) {
        options->note.row = row_named(text);
        if (!options->note.row)
            refuse(row, text + u" is no row such as 1:devices:17"_s);
    });
    add_flag(note, {"--flag", "", "Flag it"}, options->note.is_flag);
    add_text(note, {"--text", "TEXT", "What is noted"}, options->note.text);
    add_text(note, {"--by", "NAME", "Who notes it (default: the case's examiner, else the user of the system)"},
             options->note.author);
    add_flag(note, {"--list", "", "Show the notes with their numbers", {"bluetooth-logs note case --list"}},
             options->lists);
    add_number(note, {"--remove", "N", "Remove the note of this number; that it was there is kept"}, 1, highest_note,
               options->remove);
    note.final_callback([options, &line] {
        require_sense(*options);
        line.command = [options](console &out) { return run_note(*options, out); };
    });
    return options;
}
