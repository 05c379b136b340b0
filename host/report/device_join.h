// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_DEVICE_JOIN_H
#define HOST_REPORT_DEVICE_JOIN_H

#include "host/report/report_row.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMap>

/** One appearance of a device: a row of a result table. */
struct device_appearance
{
    int source = 0; ///< place in report_case::sources
    QString table;
    qint64 row = 0; ///< of the table, from 0
    row_place place;
    QByteArray uuid;
    QByteArray name;    ///< the result's
    QByteArray address; ///< as the evidence or the result has it
};

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

/** What the sources of a case know of one device. */
struct joined_device
{
    QList<qsizetype> appearances; ///< in the order in which they were added
    QList<join_key> keys;         ///< that appear in more than one source; sorted
    QList<int> sources;           ///< places in report_case::sources, ascending
};

/**
 * Joins rows to devices: within a source by UUID, public address or iCloud identifier, across sources by the last two
 * alone, letter case and separators aside. Chains join: A with B by address and B with C by identifier is one device.
 * Empty values, the address of zeros, random addresses and UUIDs join nothing across sources: an operating system gives
 * UUIDs of its own, and a random address may be anybody's tomorrow.
 */
class device_join
{
public:
    /** @p source is the row's place in report_case::sources, @p index its place in its table. */
    void add(const report_row &row, int source, qint64 index);

    const QList<device_appearance> &appearances() const
    {
        return all;
    }

    /** In the order of their first appearances. */
    QList<joined_device> devices() const;

private:
    qsizetype root_of(qsizetype appearance) const;
    void join(qsizetype one, qsizetype two);
    void add_key(qsizetype appearance, const join_key &key);

    QList<device_appearance> all;
    mutable QList<qsizetype> parents; ///< union-find
    QHash<QByteArray, qsizetype> by_uuid;
    QMap<join_key, QList<qsizetype>> by_key; ///< the first appearance in each source
};

#endif
