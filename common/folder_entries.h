// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_FOLDER_ENTRIES_H
#define COMMON_FOLDER_ENTRIES_H

#include <QString>

#include <filesystem>
#include <functional>
#include <vector>

// File names are bytes. A QString holds only those that are valid UTF-8, and Qt's own listing leaves the others out:
// walks through evidence use these functions.

/** The name's bytes, as the system takes them. */
std::filesystem::path to_path(const QString &name);

/** The path as logs show it; bytes that are no valid UTF-8 show as U+FFFD. */
QString to_text(const std::filesystem::path &path);

/** Every entry of a folder in no order, without "." and "..". None for a folder that cannot be read. */
std::vector<std::filesystem::directory_entry> folder_entries(const std::filesystem::path &folder);

/** Whether an entry is a folder itself, not a link to one. */
bool is_real_folder(const std::filesystem::directory_entry &entry);

/** Visits everything below a folder, without following links, until a visit returns true. Returns whether one did. */
bool visit_below(const std::filesystem::path &folder,
                 const std::function<bool(const std::filesystem::directory_entry &)> &visit);

#endif
