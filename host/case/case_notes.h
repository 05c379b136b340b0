// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CASE_NOTES_H
#define HOST_CASE_CASE_NOTES_H

#include "host/case/case_layout.h"

#include <QList>
#include <QString>

#include <optional>

/** A row of a result table. */
struct noted_row
{
    int source = 0;
    QString table;
    qint64 row = 0; ///< its INT

    bool operator==(const noted_row &) const = default;
};

/** What an examiner noted of a device or of a row. */
struct case_note
{
    int number = 0; ///< by which it is removed; given when it is added
    QString time;   ///< UTC; likewise
    QString author;
    QString device;               ///< as normal_device() gives it; empty for a note on a row
    std::optional<noted_row> row; ///< none for a note on a device
    bool is_flag = false;
    QString text; ///< may be empty for a flag
};

/** "B4:C2:6A:7F:D3:7A" of an address in any notation, a UUID in capitals. Nothing for any other text. */
std::optional<QString> normal_device(const QString &text);

/** "1:devices:17". Nothing for any other text, or a table that results have not. */
std::optional<noted_row> row_named(const QString &text);

/**
 * The notes of a case that were not removed, in the order in which they were made; none where there is no notes.jsonl.
 * Throws host_error (not_found) when a line of it is none of this program's.
 */
QList<case_note> read_case_notes(const case_layout &layout);

/**
 * Appends the note, with number and time, and gives its number. Nothing that stands in the file is ever changed. Throws
 * host_error: not_found as above, refused for a row of a source that the case has not, io when it cannot be written.
 */
int add_case_note(const case_layout &layout, const case_note &note);

/** Appends that the note is removed. Throws host_error: refused when there is no such note, else as above. */
void remove_case_note(const case_layout &layout, int number, const QString &author);

/** Who signs a note without a name: the case's examiner, else the user of the system. */
QString default_author(const case_layout &layout);

#endif
