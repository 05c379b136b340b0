// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SAMPLE_SAMPLE_PARTS_H
#define HOST_SAMPLE_SAMPLE_PARTS_H

#include <QByteArray>
#include <QLatin1StringView>
#include <QString>
#include <QStringList>

/**
 * The parts of a synthetic source. Each gives the same bytes whenever it is written, into a folder that is there. All
 * throw host_error.
 */

/** Writes a file that must not exist yet. */
void write_sample_file(const QString &path, const QByteArray &content);

/** Which names devices have: as in the street, with some to trouble an examiner; or also those that many tools fail on.
 */
enum class sample_names {
    usual,
    hostile ///< three rows more: a name of 1 MB, one with a NUL, one that is no UTF-8
};

/**
 * The public address of a paired device by its row, from 0: "B4:C2:6A:7F:D3:7A". The preferences, the iOS log and a PC
 * know some of them too.
 */
QString paired_address(qint64 row);

/** The paired device that every source knows, by its row. */
inline constexpr qint64 headphones_row = 1;

/** A device that only the write-ahead log of the paired devices has, and the iOS log. */
inline constexpr QLatin1StringView rental_car_address("3C:28:6D:1A:90:4E");

/**
 * The two LE device databases of macOS, into @p folder, each with a write-ahead log that adds, changes and deletes
 * rows.
 */
void write_ledevices_databases(const QString &folder, sample_names names);

/** The Bluetooth preferences of macOS: a binary property list with a DeviceCache and a PairedDevices list. */
void write_preferences_plist(const QString &path);

/** An iOS system log with some lines about Bluetooth. */
void write_ios_log(const QString &path);

/** Files that make a folder look like a Windows volume, relative to it. */
inline constexpr QLatin1StringView windows_sample_files[] = {
    QLatin1StringView("Users/anna/NTUSER.DAT"),
    QLatin1StringView("Windows/System32/config/SOFTWARE"),
};

/** Writes them below @p folder, which ends with "/". */
void write_windows_files(const QString &folder);

/** Every name, relative to the sample, that write_ios_sources() uses, also for a while. */
QStringList ios_sample_files();

/** A file system of iOS and a backup of the same device, into folders of the sample @p directory, which ends with "/".
 */
void write_ios_sources(const QString &directory, sample_names names);

/** A tar.gz of files of the folder, which ends with "/", under their names relative to it. */
void write_packed_sample(const QString &archive, const QString &folder, const QStringList &files);

#endif
