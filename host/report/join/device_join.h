// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_JOIN_DEVICE_JOIN_H
#define HOST_REPORT_JOIN_DEVICE_JOIN_H

#include "host/report/reading/report_row.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QUuid>

#include <vector>

/** A text that joins appearances across sources. */
struct join_key
{
    enum class kind { public_address, icloud_identifier };

    kind what;
    QByteArray value; ///< normalised

    friend bool operator==(const join_key &one, const join_key &two)
    {
        return one.what == two.what && one.value == two.value;
    }
    friend bool operator<(const join_key &one, const join_key &two)
    {
        return one.what != two.what ? one.what < two.what : one.value < two.value;
    }
};

QLatin1StringView join_key_name(join_key::kind kind);

/** One appearance of a device: a row of a result table, or what else of a source names it. */
struct device_appearance
{
    QLatin1StringView found_in = QLatin1StringView("row"); ///< what it is: one of other_appearances.h, else a row
    int source = 0;                                        ///< place in report_case::sources
    QString table;
    row_place place;
    QByteArray uuid;
    QByteArray name;             ///< the result's
    QByteArray host_name;        ///< the evidence's
    QByteArray preferences_name; ///< the preferences list's
    QByteArray address;          ///< as the result has it
    QByteArray resolved_address;
    QByteArray icloud_identifier;
    QByteArray vendor;
    QByteArray address_kind;
    QByteArray local_name;          ///< without UUID and keys: by what else the device is known within its source
    bool is_deleted_by_log = false; ///< a row that the write-ahead log deletes
    bool is_paired = false;         ///< the source has it as paired: in that table, or its list says so
    qsizetype line = -1;            ///< its place among the lines of its list; -1: it is a row
    QList<join_key> keys;
    notes_of_one notes;
};

/** Gives it the keys that its addresses and its iCloud identifier are. */
void add_keys(device_appearance &appearance);

/** Whether it has a name of its device. What a log says in place of a name is none. */
bool is_named(const device_appearance &appearance);

/** @p source is the row's place in report_case::sources. */
device_appearance appearance_of(const report_row &row, int source);

/** What the sources of a case know of one device. */
struct joined_device
{
    qint64 number = 0; ///< from 1, by first appearance; device_numbers gives it
    QList<device_appearance> appearances;
    QList<join_key> keys;     ///< that appear in more than one source; sorted
    QList<int> sources;       ///< places in report_case::sources, ascending
    qint64 shared_number = 0; ///< its number, from 1, among the devices that more than one source knows; 0: it is none
};

/** Numbers the devices that more than one source knows, in the order of the list. */
void number_shared(QList<joined_device> &devices);

/**
 * Joins rows to devices: within a source by UUID, public address or iCloud identifier, across sources by the last two
 * alone, letter case and separators aside. Chains join: A with B by address and B with C by identifier is one device.
 * Empty values, the address of zeros, random addresses and UUIDs join nothing across sources: an operating system gives
 * UUIDs of its own, and a random address may be anybody's tomorrow.
 *
 * The rows are read twice: first their keys are learnt, then each row is asked for its device. So no row is held, and
 * no key twice.
 */
class device_join
{
public:
    void learn(const device_appearance &row);

    /**
     * An opaque key, equal for all rows of a device, when all rows are learnt. Empty:
     * the row is joined with no other.
     */
    QByteArray device_of(const device_appearance &row) const;

    /** The number of the group that joins the row with others by keys; -1: no row of its device has any. */
    qsizetype group_of(const device_appearance &row) const
    {
        return root_of(row);
    }

    /** Whether any device is in more than one source. */
    bool is_any_shared() const
    {
        return is_one_shared;
    }
    /** Whether the row's device is in more than one source. */
    bool is_shared(const device_appearance &row) const;
    bool is_in_several_sources(const join_key &key) const;

private:
    /** An identifier: a key, or a UUID of one source. */
    struct node
    {
        qsizetype parent;
        int source;                    ///< the first one that has it
        bool is_in_several = false;    ///< others have it too
        bool is_device_shared = false; ///< of a root: one of its keys is in several sources
    };

    qsizetype learn_identifier(const QByteArray &identifier, int source);
    qsizetype root_of(qsizetype place) const;
    qsizetype root_of(const device_appearance &row) const;
    void join(qsizetype one, qsizetype two);

    QHash<QByteArray, qsizetype> places;
    mutable std::vector<node> nodes; ///< union-find
    bool is_one_shared = false;
};

/**
 * Numbers the devices of a case from 1 by their first appearances: by source, table and row. Sources that come later,
 * and what else is learnt of a device, change no number.
 */
class device_numbers
{
public:
    /** @p all_rows has learnt every row. */
    explicit device_numbers(const device_join &all_rows)
        : join(all_rows)
    {
    }

    /** The number of the next row's device. Rows come once each, source by source, in the order of the numbers. */
    qint64 next(const device_appearance &row);

    /** How many devices there are so far. */
    qint64 count() const
    {
        return last;
    }

private:
    qint64 &known_number(const device_appearance &row);

    const device_join &join;
    qint64 last = 0;
    QHash<qsizetype, qint64> joined; ///< by device_join::group_of()
    int source = -1;                 ///< that these are of: most devices have nothing but a UUID
    QHash<QUuid, qint64> by_uuid;
    QHash<QByteArray, qint64> by_other_name;
};

/** Puts appearances together to devices, in the order of their first appearances. */
class joined_device_list
{
public:
    /** @p all_rows has learnt every row. */
    explicit joined_device_list(const device_join &all_rows)
        : join(all_rows)
    {
    }

    /** @p number is that of the row's device. */
    void add(const device_appearance &row, qint64 number);

    const QList<joined_device> &devices() const
    {
        return list;
    }

private:
    const device_join &join;
    QList<joined_device> list;
    QHash<qint64, qsizetype> places; ///< by number
};

#endif
