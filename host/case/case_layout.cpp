// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_layout.h"

#include "host/case/case_files.h"
#include "host/case/kept_file.h"
#include "host/files/file_removal.h"
#include "host/files/folder_listing.h"
#include "host/files/paths.h"
#include "host/source/macos_databases.h"
#include "host/source/windows_hive.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

#include <dirent.h>

using namespace Qt::StringLiterals;
namespace filesystem = std::filesystem;

namespace {

bool is_link(const QString &path)
{
    std::error_code error;
    return filesystem::is_symlink(filesystem::symlink_status(to_std_path(path), error));
}

/** Whether a folder stands at the path, whatever leads to it. Throws host_error (io) when the system fails. */
bool is_behind_links(const QString &path)
{
    return path_exists(path) && QFileInfo(path).isDir();
}

/** The copies of what a damaged database left in the evidence, by the folder's own names. */
QStringList leftovers_in(const QString &folder)
{
    QStringList leftovers = names_in(folder);
    leftovers.removeIf([](const QString &name) { return !is_leftover(name); });
    return leftovers;
}

/**
 * What was taken out of a container: the program alone writes files into the folder of the evidence that nobody but
 * their owner reads, and only itself into the folder where they are written first.
 */
QStringList files_taken_out(const QString &source_folder)
{
    constexpr QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
                                          | QFile::WriteOther | QFile::ExeOther;
    QStringList files;
    for (const QLatin1StringView place : {"/Evidence"_L1, "/tmp/taken"_L1})
        files += paths_below(source_folder, source_folder + place);
    files.removeIf([&](const QString &path) {
        const QFileInfo file(source_folder + u'/' + path);
        const QFile::Permissions permissions = file.permissions();
        return file.isSymLink() || !file.isFile() || (permissions & (others | QFile::WriteOwner | QFile::ExeOwner))
               || !(permissions & QFile::ReadOwner);
    });
    return files;
}

/** What the program itself could have written, relative to the folder of the source. */
QStringList files_of_a_run(const QString &source_folder)
{
    const QString copies = u"Evidence/"_s + macos_database_folder;
    QStringList files = case_file_names(&case_file::is_removed);
    for (const QString &name : leftovers_in(source_folder + u'/' + copies))
        files.append(copies + name);
    for (const QString &path : windows_hive_paths(source_folder + u"/Evidence"_s))
        files.append(u"Evidence/"_s + path);
    return files + files_taken_out(source_folder);
}

} // namespace

QString source_name(int number)
{
    return u"Source"_s + QString::number(number);
}

source_layout::source_layout(const QString &case_directory, int number)
    : directory(case_directory)
    , source_folder(case_directory + u'/' + source_name(number))
{
}

QString source_layout::folder() const
{
    return source_folder;
}

QString source_layout::lock() const
{
    return source_folder + u"/.lock"_s;
}

QString source_layout::record() const
{
    return source_folder + u"/source.json"_s;
}

QString source_layout::plugin_log() const
{
    return source_folder + u"/plugin.log"_s;
}

QString source_layout::evidence_folder() const
{
    return source_folder + u"/Evidence"_s;
}

QString source_layout::wal_changes() const
{
    return source_folder + u"/wal_changes.jsonl"_s;
}

QString source_layout::earlier_wal_changes() const
{
    return source_folder + u"/wal_changes.json"_s;
}

QString source_layout::unparsed_lines() const
{
    return source_folder + u"/unparsed_lines.jsonl"_s;
}

QString source_layout::salvage() const
{
    return source_folder + u"/salvage.jsonl"_s;
}

QString source_layout::host_devices() const
{
    return source_folder + u"/host_devices.jsonl"_s;
}

QString source_layout::ios_lines() const
{
    return source_folder + u"/ios_lines.jsonl"_s;
}

QString source_layout::temporary_folder() const
{
    return source_folder + u"/tmp"_s;
}

QString source_layout::plugin_temporary_folder() const
{
    return result_folder() + u"/tmp"_s;
}

QString source_layout::result_folder() const
{
    return source_folder + u"/Artifacts_Result/Bluetooth_Logs"_s;
}

QString source_layout::result_database() const
{
    return result_folder() + u"/Bluetooth_Logs.sqlite"_s;
}

QString source_layout::relative_to_case(const QString &path) const
{
    return path.startsWith(directory + u'/') ? path.sliced(directory.size() + 1) : path;
}

bool source_layout::holds_a_run() const
{
    const QStringList traces = case_file_names(&case_file::is_trace);
    const bool is_there = std::any_of(traces.cbegin(), traces.cend(), [this](const QString &name) {
        return path_exists(source_folder + u'/' + (name.endsWith(u'/') ? name.chopped(1) : name));
    });
    // A folder that is a link would take the results elsewhere.
    return is_there || is_link(source_folder) || is_link(source_folder + u"/Artifacts_Result"_s);
}

QStringList source_layout::remove_run() const
{
    QStringList names;
    for (const QString &file : files_of_a_run(source_folder))
        names.append(relative_to_case(source_folder + u'/' + file));
    names += folders_of(names); // a link that stands for one of them
    QStringList kept = remove_listed_files(directory, names);
    kept.removeOne(lock());
    return kept;
}

case_layout::case_layout(const QString &directory)
    : case_directory(directory)
{
}

QString case_layout::directory() const
{
    return case_directory;
}

QString case_layout::lock() const
{
    return case_directory + u"/.lock"_s;
}

QString case_layout::manifest() const
{
    return case_directory + u"/manifest.json"_s;
}

QString case_layout::manifest_hash() const
{
    return case_directory + u"/manifest.json.sha256"_s;
}

QString case_layout::notes() const
{
    return case_directory + u"/notes.jsonl"_s;
}

QString case_layout::source_list() const
{
    return case_directory + u"/sources.json"_s;
}

source_layout case_layout::source(int number) const
{
    return source_layout(case_directory, number);
}

QList<int> case_layout::source_numbers() const
{
    static const QRegularExpression form(u"^Source(0|[1-9][0-9]{0,6})$"_s);
    QList<int> numbers;
    for_each_entry_of(case_directory, [&](const dirent &entry) {
        const QString name = QFile::decodeName(entry.d_name);
        const QRegularExpressionMatch match = form.match(name);
        if (match.hasMatch() && (entry.d_type == DT_DIR || is_behind_links(case_directory + u'/' + name)))
            numbers.append(match.captured(1).toInt());
    });
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}
