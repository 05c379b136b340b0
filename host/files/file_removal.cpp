// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/file_removal.h"

#include "host/files/open_without_links.h"
#include "host/files/paths.h"

#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;
namespace filesystem = std::filesystem;

namespace {

bool is_real_folder(const QString &path)
{
    std::error_code error;
    return filesystem::is_directory(filesystem::symlink_status(to_std_path(path), error));
}

/** Whether the way from the root to the file leads through folders alone. */
bool is_reached_without_links(const QString &root, const QString &file)
{
    const QStringList folders = folders_of({file});
    return std::all_of(folders.cbegin(), folders.cend(),
                       [&root](const QString &folder) { return is_real_folder(root + u'/' + folder); });
}

void remove_unless_folder(const QString &path)
{
    if (!is_real_folder(path))
        remove_file(path);
}

/** Adds what lies in a folder, unless something below it is listed already. */
void add_entries(const QString &folder, QStringList &kept)
{
    std::error_code error;
    for (const auto &entry : filesystem::directory_iterator(to_std_path(folder), error)) {
        const QString path = QFile::decodeName(entry.path().c_str());
        const bool is_listed = std::any_of(kept.cbegin(), kept.cend(),
                                           [&path](const QString &listed) { return listed.startsWith(path + u'/'); });
        if (!is_listed)
            kept.append(path);
    }
}

} // namespace

QStringList remove_listed_files(const QString &root, const QStringList &files)
{
    for (const QString &file : files) {
        if (is_reached_without_links(root, file))
            remove_unless_folder(root + u'/' + file);
    }
    QStringList kept;
    QStringList folders = folders_of(files);
    std::reverse(folders.begin(), folders.end());
    for (const QString &folder : std::as_const(folders)) {
        const QString path = root + u'/' + folder;
        if (is_real_folder(path) && folder_entry(path).remove_folder() != 0)
            add_entries(path, kept);
    }
    kept.sort();
    return kept;
}

QStringList folders_of(const QStringList &files)
{
    QStringList folders;
    for (const QString &file : files) {
        for (qsizetype end = file.indexOf(u'/'); end != -1; end = file.indexOf(u'/', end + 1))
            folders.append(file.first(end));
    }
    folders.sort(); // what lies in a folder comes after it
    folders.removeDuplicates();
    return folders;
}
