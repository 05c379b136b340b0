// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_DEVICE_FACTS_H
#define HOST_REPORT_PAGE_DEVICE_FACTS_H

#include "host/report/join/device_join.h"

#include <QByteArray>
#include <QList>

/** What the findings ask of a device. Number and position are those of the list that it was made of. */
struct device_facts
{
    const joined_device *device;
    qint64 number;              ///< from 1, by first appearance
    bool is_named;              ///< by any source, table or list
    QList<int> paired_in = {};  ///< places of sources that have it as paired: in the table, or by a list; ascending
    QList<int> noticed_in = {}; ///< of those in which "active device" notices of a log alone say so
    QList<int> seen_in = {};    ///< of those in which it has a row that is no pairing, in a log or not; ascending
    notes_of_one notes = {};    ///< of examiners, on any of its names or rows

    bool is_paired() const
    {
        return !paired_in.isEmpty();
    }
    bool is_shared() const
    {
        return device->shared_number > 0;
    }
    /** Whether it comes first in lists. */
    bool is_of_note() const
    {
        return is_named || is_paired() || is_shared() || !notes.isEmpty();
    }
};

/** Of devices in the order of their numbers; the list is pointed into. */
QList<device_facts> facts_of(const QList<joined_device> &devices);

/** The one with that number; null: there is none. */
const device_facts *device_numbered(const QList<device_facts> &devices, qint64 number);

/** The different texts of a device's appearances, as evidence, joined by " | "; no more than a reader takes in. */
QByteArray texts_of(const joined_device &device, QByteArray device_appearance::*text);
/** The same, one by one. */
QByteArrayList list_of(const joined_device &device, QByteArray device_appearance::*text);

/**
 * The name that a reader knows it by: of the evidence, whose escapes are decoded, else of the result, else of a list.
 * Empty: it has none. What a log says in place of a name is none.
 */
QByteArray name_of(const joined_device &device);

/** The lists that name it: "preferences | registry". */
QByteArray lists_of(const joined_device &device);

/** What write-ahead logs make of its rows, as far as they change any: "changed | only in the log". */
QByteArray log_changes_of(const joined_device &device);

/** Whether it is paired, seen or listed, and whether a write-ahead log alone says so. */
QByteArray known_as(const device_facts &facts);

/** How strong the link between the sources of a shared device is, in words; empty for others. */
QByteArray link_strength(const report_case &the_case, const device_facts &facts);

/** What a key is, in words, and what the sources have in common. */
QByteArray key_kind_text(const join_key &key);
QByteArray keys_text(const joined_device &device);

/** Why no other source adds to the device; empty for a shared one. @p is_all_read: nothing of the case was left out. */
QByteArray why_not_joined(const joined_device &device, bool is_all_read);

/** The numbers of sources by their places in the case: "1, 3". */
QByteArray source_numbers(const report_case &the_case, const QList<int> &places);

#endif
