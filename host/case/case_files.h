// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CASE_FILES_H
#define HOST_CASE_CASE_FILES_H

#include <QLatin1StringView>
#include <QString>
#include <QStringList>

/** What may stand beside a file that is, or was, being written: its name and one of these endings. */
enum class companions {
    none,
    unfinished, ///< ".new": it gets its name when it is whole
    sqlite,     ///< "-journal", "-wal" and "-shm"
};

/** A file or a folder that the program writes for a source of a case. */
struct case_file
{
    QLatin1StringView name; ///< relative to the folder of the source; a folder ends with "/"
    bool is_trace;          ///< where it stands, a run was there
    bool is_removed;        ///< --force removes it, for nobody else writes a file of this name
    companions beside = companions::none;
};

// What is_removed says of a folder concerns a link of its name; the folder itself goes when it is empty.
// clang-format off
inline constexpr case_file case_files[] = {
    {QLatin1StringView("source.json"),                              true,  true,  companions::unfinished},
    {QLatin1StringView("plugin.log"),                               true,  true},
    {QLatin1StringView("ios_lines.jsonl"),                          true,  true,  companions::unfinished},
    {QLatin1StringView("unparsed_lines.jsonl"),                     true,  true,  companions::unfinished},
    {QLatin1StringView("wal_changes.json"),                         true,  true,  companions::unfinished},
    {QLatin1StringView("wal_changes.jsonl"),                        true,  true,  companions::unfinished},
    {QLatin1StringView("salvage.jsonl"),                            true,  true,  companions::unfinished},
    {QLatin1StringView("host_devices.jsonl"),                       true,  true,  companions::unfinished},
    {QLatin1StringView("Evidence/"),                                true,  true},
    {QLatin1StringView("Evidence/Library/Bluetooth/"),              true,  true},
    {QLatin1StringView("Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db"),
                                                                    true,  true,  companions::sqlite},
    {QLatin1StringView("Evidence/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.paired.db"),
                                                                    true,  true,  companions::sqlite},
    {QLatin1StringView("Evidence/Library/Preferences/com.apple.Bluetooth.plist"),
                                                                    true,  true},
    {QLatin1StringView("Evidence/Library/Bluetooth/Library/Preferences/com.apple.MobileBluetooth.devices.plist"),
                                                                    true,  true},
    {QLatin1StringView("Artifacts_Result/"),                        false, true},
    {QLatin1StringView("Artifacts_Result/Bluetooth_Logs/"),         true,  true},
    {QLatin1StringView("Artifacts_Result/Bluetooth_Logs/Bluetooth_Logs.sqlite"),
                                                                    true,  true,  companions::sqlite},
    {QLatin1StringView("Artifacts_Result/Bluetooth_Logs/Logs/"),    true,  true},
    {QLatin1StringView("Artifacts_Result/Bluetooth_Logs/Logs/com.apple.MobileBluetooth.ledevices.other.db"),
                                                                    true,  true,  companions::sqlite},
    {QLatin1StringView("Artifacts_Result/Bluetooth_Logs/Logs/com.apple.MobileBluetooth.ledevices.paired.db"),
                                                                    true,  true,  companions::sqlite},
    {QLatin1StringView("Artifacts_Result/Bluetooth_Logs/tmp/"),     true,  true},
    {QLatin1StringView("tmp/"),                                     true,  true},
    {QLatin1StringView("tmp/wal/"),                                 true,  true},
    {QLatin1StringView("tmp/wal/com.apple.MobileBluetooth.ledevices.other.db"),
                                                                    true,  true,  companions::sqlite},
    {QLatin1StringView("tmp/wal/com.apple.MobileBluetooth.ledevices.paired.db"),
                                                                    true,  true,  companions::sqlite},
    {QLatin1StringView(".lock"),                                    false, false},
};
// clang-format on

/** Bytes of the longest name of a database in the table. */
qsizetype longest_database_name();

/** The name of a file of the table and the names that may stand beside it. */
QStringList names_of(const case_file &file);

/** All names of the table whose @p column is true, in its order. */
QStringList case_file_names(bool case_file::*column);

#endif
