// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SAMPLE_SAMPLE_PARTS_H
#define HOST_SAMPLE_SAMPLE_PARTS_H

#include <QByteArray>
#include <QString>

/** The parts of a synthetic source. Each gives the same bytes whenever it is written. All throw host_error. */

/** Makes a folder with its parents. */
void make_sample_folder(const QString &folder);

/** Writes a file that must not exist yet. */
void write_sample_file(const QString &path, const QByteArray &content);

/** The two LE device databases of macOS, into @p folder. */
void write_ledevices_databases(const QString &folder);

/** The Bluetooth preferences of macOS: a binary property list with a DeviceCache and a PairedDevices list. */
void write_preferences_plist(const QString &path);

/** An iOS system log with some lines about Bluetooth. */
void write_ios_log(const QString &path);

/** A folder that looks like a Windows volume. */
void write_windows_folder(const QString &folder);

#endif
