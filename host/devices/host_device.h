// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_HOST_DEVICE_H
#define HOST_DEVICES_HOST_DEVICE_H

#include <QByteArray>
#include <QDateTime>
#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

/** A time that a list keeps of a device. */
struct device_time
{
    QString name;          ///< of the value, as the list has it
    QVariant raw;          ///< the value itself
    QString utc;           ///< ISO 8601; empty: never, or no time that can be known
    bool is_known = false; ///< whether the list says what the value counts from
    QString meaning;       ///< in words
};

/** Who made a device, by the numbers that it gives of itself. */
struct device_vendor
{
    qint64 id = 0;
    QLatin1StringView source; ///< whose number it is: "SIG" or "USB"; empty: the list does not say
};

/** A device of a list of devices that is no database. What the list does not say stays empty. */
struct host_device
{
    QString address; ///< as the list writes it
    QStringList names;
    QLatin1StringView kind; ///< "classic", "le" or "both"
    std::optional<bool> is_paired;
    std::optional<qint64> class_of_device;
    std::optional<device_vendor> vendor;
    std::optional<qint64> product;
    std::optional<qint64> lmp_version;
    QList<device_time> times;
    QVariant raw;                   ///< all that the list has under the address
    QString path;                   ///< of the keys that lead there, in the list's own form
    std::optional<bool> is_current; ///< whether its control set is the current one
    QStringList listed_in;          ///< the other keys of the list that name the device

    /** Adds a name that is not empty and not there yet. */
    void add_name(const QVariant &name);
};

/** The devices of one list, and what was wrong with it, in plain words: the list may hold more. */
struct device_list
{
    QList<host_device> devices;
    QStringList problems;
    QStringList notes; ///< what the examiner should know of a list that is whole
};

/** Which list a device stands in. */
struct device_list_place
{
    int source = 0;
    QLatin1StringView list; ///< "preferences", "mobile_devices" or "registry"
    QString file;           ///< relative to the source
};

/** A line of JSON Lines, docs/report-formats.md. */
QByteArray host_device_line(const host_device &device, const device_list_place &place);

/** The whole number of a value, unless it is none: true and false are none, a real without a fraction is one. */
std::optional<qint64> whole_number(const QVariant &value);

/** A date of a property list. */
device_time date_time(const QString &name, const QVariant &value, QLatin1StringView list_words);

#endif
