// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_layout.h"

#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/files/system_error.h"
#include "host/source/macos_databases.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
namespace filesystem = std::filesystem;

namespace {

/** Removes the file or the link of this name. A folder of this name stays, as does what is not there. */
void remove_file(const QString &path)
{
    std::error_code error;
    const filesystem::path name = to_std_path(path);
    const filesystem::file_status status = filesystem::symlink_status(name, error);
    if (!filesystem::exists(status) || filesystem::is_directory(status))
        return;
    filesystem::remove(name, error);
    if (error)
        throw host_error(exit_code::internal_error,
                         path + u" cannot be removed: "_s + system_error_text(error.value()));
}

/** Removes the folder if it is empty and no link. Adds to @p kept what stays in it. */
void remove_folder(const QString &path, QStringList &kept)
{
    std::error_code error;
    const filesystem::path name = to_std_path(path);
    if (!filesystem::is_directory(filesystem::symlink_status(name, error)))
        return remove_file(path); // a link to a folder is only a link
    if (filesystem::remove(name, error))
        return;
    for (const auto &entry : filesystem::directory_iterator(name, error)) {
        const QString left = QFile::decodeName(entry.path().c_str());
        const bool is_told = std::any_of(kept.cbegin(), kept.cend(), [&left](const QString &known) {
            return known == left || known.startsWith(left + u'/');
        });
        if (!is_told)
            kept.append(left);
    }
}

/** Whether the path is a folder, and no link to one: nothing is removed through a link. */
bool is_own_folder(const QString &path)
{
    std::error_code error;
    return filesystem::is_directory(filesystem::symlink_status(to_std_path(path), error));
}

bool is_link(const QString &path)
{
    std::error_code error;
    return filesystem::is_symlink(filesystem::symlink_status(to_std_path(path), error));
}

/** Removes the names from a folder, then the folder. */
void remove_names(const QString &folder, const QStringList &names, QStringList &kept)
{
    if (is_own_folder(folder)) {
        for (const QString &name : names)
            remove_file(folder + u'/' + name);
    }
    remove_folder(folder, kept);
}

/** The names that the program itself could have given to a file in the evidence folder of a case. */
QStringList working_copy_names(const QString &folder)
{
    QStringList own;
    const QStringList names = QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System
                                                     | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        for (const macos_database *database : macos_databases) {
            static const QRegularExpression ending(u"^(|-wal|-shm|-journal|\\..*\\.corrupt)$"_s);
            if (name.startsWith(database->file_name)
                && ending.match(name.sliced(database->file_name.size())).hasMatch())
                own.append(name);
        }
    }
    return own;
}

QStringList staged_copy_names()
{
    QStringList names;
    for (const macos_database *database : macos_databases) {
        for (const QLatin1StringView ending : {""_L1, "-journal"_L1, "-wal"_L1, "-shm"_L1})
            names.append(database->file_name + ending);
    }
    return names;
}

} // namespace

source_layout::source_layout(const QString &case_directory, int number)
    : directory(case_directory)
    , source_folder(case_directory + u"/Source"_s + QString::number(number))
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
    return source_folder + u"/wal_changes.json"_s;
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
    const QStringList places{record(),          record() + u".new"_s, plugin_log(),
                             evidence_folder(), temporary_folder(),   result_folder()};
    // A folder that is a link would take the results elsewhere.
    return std::any_of(places.cbegin(), places.cend(), path_exists) || is_link(source_folder)
           || is_link(source_folder + u"/Artifacts_Result"_s);
}

QStringList source_layout::remove_run() const
{
    QStringList kept;
    if (!is_own_folder(source_folder)) {
        remove_file(source_folder);
        return kept;
    }
    const QString results = result_folder();
    if (is_own_folder(source_folder + u"/Artifacts_Result"_s) && is_own_folder(results)) {
        remove_names(results + u"/Logs"_s, staged_copy_names(), kept);
        remove_names(plugin_temporary_folder(), {}, kept);
        for (const QLatin1StringView ending : {""_L1, "-journal"_L1, "-wal"_L1, "-shm"_L1})
            remove_file(result_database() + ending);
    }
    if (is_own_folder(source_folder + u"/Artifacts_Result"_s))
        remove_folder(results, kept);
    remove_folder(source_folder + u"/Artifacts_Result"_s, kept);

    const QString copies = evidence_folder();
    const QString library = copies + u"/Library"_s;
    if (is_own_folder(copies) && is_own_folder(library)) {
        const QString bluetooth = library + u"/Bluetooth"_s;
        remove_names(bluetooth, is_own_folder(bluetooth) ? working_copy_names(bluetooth) : QStringList(), kept);
        remove_names(library + u"/Preferences"_s, {u"com.apple.Bluetooth.plist"_s}, kept);
    }
    if (is_own_folder(copies))
        remove_folder(library, kept);
    remove_folder(copies, kept);
    remove_folder(temporary_folder(), kept);
    for (const QLatin1StringView name :
         {"ios_lines.jsonl"_L1, "wal_changes.json"_L1, "plugin.log"_L1, "source.json"_L1, "source.json.new"_L1})
        remove_file(source_folder + u'/' + name);

    const QStringList left = QDir(source_folder)
                                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : left) {
        const QString path = source_folder + u'/' + name;
        const bool is_told = std::any_of(kept.cbegin(), kept.cend(), [&path](const QString &known) {
            return known == path || known.startsWith(path + u'/');
        });
        if (!is_told && path != lock())
            kept.append(path);
    }
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

source_layout case_layout::source(int number) const
{
    return source_layout(case_directory, number);
}

QList<int> case_layout::source_numbers() const
{
    static const QRegularExpression form(u"^Source(0|[1-9][0-9]{0,6})$"_s);
    QList<int> numbers;
    QDirIterator entries(case_directory, QDir::Dirs | QDir::NoDotAndDotDot); // lists of them would hold each whole
    while (entries.hasNext()) {
        entries.next();
        const QRegularExpressionMatch match = form.match(entries.fileName());
        if (match.hasMatch())
            numbers.append(match.captured(1).toInt());
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}
