// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_VENDOR_LIST_H
#define HOST_REPORT_READING_VENDOR_LIST_H

#include <QByteArray>
#include <QHash>
#include <QString>

#include <initializer_list>

/** Who has bought which range of addresses, as a file of the examiner's says; oui.txt of Debian's ieee-data is one. */
class vendor_list
{
public:
    vendor_list() = default;

    /** Throws host_error (refused) when the file cannot be read or names nobody. */
    explicit vendor_list(const QString &file);

    /** The vendor of the first of the texts that is a public address; empty: the list does not say. */
    QByteArray vendor_of_first_public(std::initializer_list<QByteArrayView> texts) const;

    /** What the report says of the list: its name, hash and date. Empty without one. */
    QString description() const
    {
        return description_text;
    }

private:
    void add(const QByteArray &prefix, const QByteArray &name);

    QHash<QByteArray, QByteArray> names; ///< by the first three bytes: "b4:c2:6a"
    QString description_text;
};

#endif
