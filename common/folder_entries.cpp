// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/folder_entries.h"

#include <QFile>

#include <system_error>
#include <utility>

std::filesystem::path to_path(const QString &name)
{
    return std::filesystem::path(QFile::encodeName(name).toStdString());
}

QString to_text(const std::filesystem::path &path)
{
    return QFile::decodeName(QByteArray::fromStdString(path.native()));
}

std::vector<std::filesystem::directory_entry> folder_entries(const std::filesystem::path &folder)
{
    std::vector<std::filesystem::directory_entry> entries;
    std::error_code error;
    std::filesystem::directory_iterator next(folder, error);
    while (!error && next != std::filesystem::directory_iterator()) {
        entries.push_back(*next);
        next.increment(error);
    }
    return entries;
}

bool is_real_folder(const std::filesystem::directory_entry &entry)
{
    std::error_code error;
    return !entry.is_symlink(error) && entry.is_directory(error);
}

bool visit_below(const std::filesystem::path &folder,
                 const std::function<bool(const std::filesystem::directory_entry &)> &visit)
{
    std::vector<std::filesystem::path> pending{folder};
    while (!pending.empty()) {
        const std::filesystem::path next = std::move(pending.back());
        pending.pop_back();
        for (const std::filesystem::directory_entry &entry : folder_entries(next)) {
            if (visit(entry))
                return true;
            if (is_real_folder(entry))
                pending.push_back(entry.path());
        }
    }
    return false;
}
