// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/report_readme.h"

#include "host/report/tables/container_list.h"
#include "host/source/source_kinds.h"

#include <algorithm>

namespace {

QByteArray about_cells(const cell_options &cells, const changed_cells &changes)
{
    QByteArray text = "CSV and TSV: RFC 4180, UTF-8";
    text += cells.has_mark ? " with a byte order mark" : "";
    text += ", line ends CRLF; NULL and an empty text are both an empty cell.\n\n";
    text += cells.is_raw ? "Texts stand as they are (--raw-cells). A spreadsheet runs those that start with = + - or @ "
                           "as formulas: open these files with programs that do not.\n\n"
                         : "A text that a spreadsheet would run as a formula has an apostrophe (') in front that is "
                           "not part of it: those whose first character, after blanks and unseen characters, is one of "
                           "= + - @, also full-width, and those that start with a tab or a line end. Numbers stay as "
                           "they are. --raw-cells leaves the apostrophe out.\n\n";
    text += "A value that is no text (a blob, or bytes that are no UTF-8) stands as x'00ff', its bytes in "
            "hexadecimal.\n\n";
    text += "Excel shows at most 1,048,576 rows and 32,767 characters of a cell, rounds numbers to 15 digits and may "
            "take a text for a date: import columns as text. The files in JSON Lines (-f jsonl) are exact.\n\n";
    text += "Changed cells: " + QByteArray::number(changes.count) + '\n';
    if (changes.count > changes.named.size())
        text += "The first " + QByteArray::number(changes.named.size()) + " of them:\n";
    for (const changed_cell &cell : changes.named)
        text += cell.file.toUtf8() + ", row " + QByteArray::number(cell.line) + ", " + cell.column.toUtf8()
                + (cell.change == cell_change::apostrophe ? ": apostrophe\n" : ": hexadecimal\n");
    return text;
}

} // namespace

QByteArray readme(const report_case &the_case, const report_options &options, const changed_cells &changes,
                  const QStringList &notes)
{
    QByteArray text = "These files hold texts that strangers chose.\n\n";
    if (!the_case.manifest_sha256.isEmpty())
        text += "SHA-256 of the case's manifest.json: " + the_case.manifest_sha256.toLatin1() + "\n\n";
    if (!the_case.vendors.description().isEmpty())
        text += "Vendors of public addresses by the list " + the_case.vendors.description().toUtf8() + "\n\n";
    const auto has_hive = [](const report_source &source) { return source.record.type == winos_kind.name; };
    if (std::any_of(the_case.sources.cbegin(), the_case.sources.cend(), has_hive))
        text +=
            "Keys of pairings (link keys, LTKs) are in no report. The copies of registry hives in the case's folders "
            "Evidence/ hold them, and with them a device can be impersonated.\n\n";
    if (const QByteArray containers = containers_text(the_case); !containers.isEmpty())
        text += containers + '\n';
    for (const QString &shortcoming : the_case.shortcomings)
        text += "This case is not complete: " + shortcoming.toUtf8() + "\n\n";
    for (const QString &note : notes)
        text += note.toUtf8() + "\n\n";
    const bool has_cells = options.formats.contains(report_format::csv) || options.formats.contains(report_format::tsv)
                           || options.formats.contains(report_format::timeline);
    return has_cells ? text + about_cells(options.cells, changes) : text;
}
