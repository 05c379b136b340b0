// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_ROW_NOTES_H
#define HOST_REPORT_READING_ROW_NOTES_H

#include "host/case/case_notes.h"
#include "host/report/reading/report_column.h"

#include <QByteArray>
#include <QByteArrayList>
#include <QHash>
#include <QList>

/** The notes of a case that are on one thing, in the order of their numbers. Valid as long as the list they are of. */
using notes_of_one = QList<const case_note *>;

/** Adds those that are not there. */
void add_notes(notes_of_one &notes, const notes_of_one &others);

/** What formats hold of the notes on a line. */
struct note_marks
{
    note_marks() = default;
    explicit note_marks(const notes_of_one &notes);

    QByteArray json = QByteArrayLiteral("[]"); ///< their texts as an array
    QByteArray text;                           ///< the texts joined by " | "; empty: there is none
    bool is_flagged = false;

    cell flag() const
    {
        return cell::of_text(is_flagged ? "true" : "false");
    }
};

/** The notes of a case, to be found by what they are on. */
class note_list
{
public:
    note_list() = default;
    explicit note_list(const QList<case_note> &notes);
    Q_DISABLE_COPY_MOVE(note_list)

    bool is_empty() const
    {
        return notes.isEmpty();
    }

    /** All of them, by number. */
    const QList<case_note> &all() const
    {
        return notes;
    }

    /** @p names: addresses as evidence writes them, UUIDs in any letter case; what is neither has no notes. */
    notes_of_one of_device(const QByteArrayList &names) const;

    notes_of_one of_row(const noted_row &row) const;

private:
    QList<case_note> notes;
    QHash<QByteArray, notes_of_one> by_device;
};

/** The columns "note" and "flag" of lines that have note_marks "marks". */
template<typename Line>
line_columns<Line> note_columns()
{
    using namespace Qt::StringLiterals;
    using group = column_group;
    using use = column_use;
    return {
        {{"note"_ba, group::line, use::members_only, true, "Note"_L1, {}},
         [](const Line &line) { return cell::of_text(line.marks.json); }},
        {{"note"_ba, group::line, use::cells_only, false, "Note"_L1,
          "what an examiner noted of the device or the row"_L1},
         [](const Line &line) { return cell::of_text_or_null(line.marks.text); }},
        {{"flag"_ba, group::line, {}, true, "Flag"_L1, "whether an examiner has flagged the device or the row"_L1},
         [](const Line &line) { return line.marks.flag(); }},
    };
}

#endif
