// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_HOST_DEVICE_LINE_H
#define HOST_REPORT_READING_HOST_DEVICE_LINE_H

#include "host/report/reading/kept_lines.h"
#include "host/report/reading/report_case.h"
#include "host/report/reading/report_column.h"
#include "host/report/reading/row_place.h"

#include <QByteArray>
#include <QString>

#include <functional>

/** A device of one of the lists that are no database: property lists, the registry. */
struct host_device_line
{
    const report_source &source;
    const kept_line &kept;
    row_place evidence_place; ///< the file
    QByteArray path;          ///< of the keys
    QByteArray list;
    QByteArray address;
    QByteArray address_normal;
    QByteArray names; ///< joined by " | "
    QByteArray kind;
    QByteArray bluetooth_version;
    notes_of_one notes;
    note_marks marks = note_marks(notes);

    /** Whether the list says so. */
    bool is_paired() const
    {
        return kept.json.value(QStringLiteral("is_paired")).toBool();
    }
    const row_place &place() const
    {
        return evidence_place;
    }
};

const line_columns<host_device_line> &host_device_columns();

/**
 * Gives the devices that the host has read of a source's lists, in the order of its file. Returns why not all of them
 * could be read, in plain words; empty if all could.
 */
QString for_each_host_device(const report_case &the_case, const report_source &source,
                             const std::function<void(const host_device_line &device)> &take);

#endif
