// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/kept_file.h"

#include "host/files/file_hash.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/files/system_error.h"

#include <QFile>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;
namespace filesystem = std::filesystem;

namespace {

constexpr qsizetype most_files = 1000000;

[[noreturn]] void fail(const QString &folder, const QString &reason)
{
    throw host_error(error_kind::incomplete, folder + u" cannot be listed: "_s + reason);
}

} // namespace

QJsonArray kept_files_to_json(const QList<kept_file> &files)
{
    QJsonArray json;
    for (const kept_file &file : files)
        json.append(QJsonObject{{u"path"_s, file.path}, {u"size"_s, file.size}, {u"sha256"_s, file.sha256}});
    return json;
}

QList<kept_file> kept_files_from_json(const QJsonArray &json)
{
    QList<kept_file> files;
    for (const auto value : json) {
        const QJsonObject file = value.toObject();
        files.append({file.value("path"_L1).toString(), file.value("size"_L1).toInteger(-1),
                      file.value("sha256"_L1).toString()});
    }
    return files;
}

QStringList paths_below(const QString &root, const QString &folder)
{
    std::error_code error;
    const filesystem::path start = to_std_path(folder);
    const filesystem::file_status status = filesystem::symlink_status(start, error);
    if (status.type() == filesystem::file_type::not_found)
        return {};
    if (status.type() != filesystem::file_type::directory)
        return {folder.sliced(root.size() + 1)};
    QStringList paths;
    filesystem::recursive_directory_iterator entries(start, error);
    for (; !error && entries != filesystem::recursive_directory_iterator(); entries.increment(error)) {
        if (filesystem::is_directory(entries->symlink_status(error)))
            continue;
        paths.append(QFile::decodeName(entries->path().c_str()).sliced(root.size() + 1));
        if (paths.size() > most_files)
            fail(folder, u"it holds more than a million files"_s);
    }
    if (error)
        fail(folder, system_error_text(error.value()));
    paths.sort();
    return paths;
}

QStringList paths_of_source(const case_layout &layout, int number)
{
    const source_layout source = layout.source(number);
    QStringList paths = paths_below(layout.directory(), source.folder());
    paths.removeOne(source.relative_to_case(source.record()));
    paths.removeOne(source.relative_to_case(source.lock()));
    return paths;
}

std::optional<kept_file> look_at_file(const QString &root, const QString &path)
{
    const std::optional<file_content> content = content_of_file(root + u'/' + path);
    if (!content)
        return {};
    return kept_file{path, content->size, content->sha256};
}

QList<kept_file> list_files_of_source(const case_layout &layout, int number)
{
    QList<kept_file> files;
    for (const QString &path : paths_of_source(layout, number)) {
        const std::optional<kept_file> file = look_at_file(layout.directory(), path);
        if (!file)
            throw host_error(error_kind::incomplete,
                             path + u" cannot be listed with its hash: it is no regular file, or cannot be read"_s);
        files.append(*file);
    }
    return files;
}

bool stays_below(const QString &path)
{
    const QStringList parts = path.split(u'/');
    return !path.contains(QChar::Null) && std::all_of(parts.cbegin(), parts.cend(), [](const QString &part) {
        return !part.isEmpty() && part != u"." && part != u"..";
    });
}
