// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_layout.h"

#include "host/files/file_removal.h"
#include "host/files/paths.h"
#include "host/source/macos_databases.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
namespace filesystem = std::filesystem;

namespace {

bool is_link(const QString &path)
{
    std::error_code error;
    return filesystem::is_symlink(filesystem::symlink_status(to_std_path(path), error));
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

/** A database and what SQLite puts beside it. */
QStringList with_companions(const QString &database)
{
    return {database, database + u"-journal"_s, database + u"-wal"_s, database + u"-shm"_s};
}

/** What the program itself could have written, relative to the folder of the source. */
QStringList files_of_a_run(const QString &source_folder)
{
    QStringList files{u"source.json"_s, u"source.json.new"_s, u"plugin.log"_s, u"ios_lines.jsonl"_s,
                      u"wal_changes.json"_s};
    files.append(u"Evidence/Library/Preferences/com.apple.Bluetooth.plist"_s);
    for (const QString &name : working_copy_names(source_folder + u"/Evidence/Library/Bluetooth"_s))
        files.append(u"Evidence/Library/Bluetooth/"_s + name);
    const QString results = u"Artifacts_Result/Bluetooth_Logs/"_s;
    files += with_companions(results + u"Bluetooth_Logs.sqlite"_s);
    for (const macos_database *database : macos_databases) {
        files += with_companions(results + u"Logs/"_s + database->file_name);
        files += with_companions(u"tmp/wal/"_s + database->file_name);
    }
    for (const QLatin1StringView folder : {"Evidence/Library/Bluetooth/"_L1, "Artifacts_Result/Bluetooth_Logs/tmp/"_L1})
        files.append(folder);
    return files;
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
