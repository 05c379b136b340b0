// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/sample/sample.h"

#include "host/files/file_removal.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"
#include "host/source/macos_databases.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *readme = R"(This folder holds synthetic samples written by "bluetooth-logs sample".

No person, device, address or identifier in it is real: all values come from a random number generator with a
fixed seed, so that every run writes the same bytes. Some names are hostile on purpose.

macos/    the root of a macOS source: two LE device databases, each with a write-ahead log that adds, changes and
          deletes rows, and the Bluetooth preferences, which know some devices by other names
ios/      the system log of an iOS source: half a day, the same devices several times
windows/  the root of a Windows source, with placeholders only
)";
constexpr const char *readme_of_containers = R"(
sample.tar.gz  the macOS source as an archive
ios_backup/    a backup of an iOS device
ios_files/     the file system of an iOS device
)";

constexpr QLatin1StringView readme_name("README.txt");

QStringList macos_files()
{
    QStringList files{macos_sample_folder + macos_preferences_file};
    for (const macos_database *database : macos_databases)
        files += {macos_sample_folder + path_in_source(*database),
                  macos_sample_folder + path_in_source(*database) + "-wal"_L1};
    return files;
}

/** Every name that a sample has, and those that a sample may have that was being written when the program ended. */
QStringList plain_files()
{
    QStringList files{ios_sample_log, macos_sample_folder + macos_preferences_file};
    for (const macos_database *database : macos_databases) {
        for (const QLatin1StringView ending : {""_L1, "-journal"_L1, "-wal"_L1, "-shm"_L1})
            files.append(macos_sample_folder + macos_database_folder + database->file_name + ending);
    }
    for (const QLatin1StringView file : windows_sample_files)
        files.append(windows_sample_folder + file);
    return files;
}

QStringList sample_files()
{
    QStringList files = plain_files() + ios_sample_files();
    files.append(packed_sample);
    files.append(readme_name); // the last one to go: without it nothing is known to be a sample
    return files;
}

bool is_our_sample(const QString &directory)
{
    QFile file(directory + u'/' + readme_name);
    const QByteArray with_containers = QByteArray(readme) + readme_of_containers;
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = file.read(with_containers.size() + 1);
    return text == readme || text == with_containers;
}

/** What stands at a place that the sample needs for something else: a file or a link where it has a folder. */
QStringList obstacles(const QString &directory, const QStringList &files)
{
    QStringList paths;
    for (const QString &folder : folders_of(files)) {
        const QFileInfo place(directory + u'/' + folder);
        if ((place.exists() && !place.isDir()) || place.isSymLink())
            paths.append(place.filePath());
    }
    for (const QString &file : files) {
        const QFileInfo place(directory + u'/' + file);
        if (place.isDir() && !place.isSymLink())
            paths.append(place.filePath());
    }
    return paths;
}

/** The parts of a sample that stand directly in its folder: "macos", "README.txt". */
QStringList present_parts(const QString &directory, const QStringList &files)
{
    QStringList parts;
    for (const QString &file : files) {
        const QString part = directory + u'/' + file.section(u'/', 0, 0);
        if (path_exists(part) && !parts.contains(part))
            parts.append(part);
    }
    return parts;
}

/** Makes room for a sample. Gives what stays because this program did not write it. */
QStringList make_room(const QString &directory, bool replaced)
{
    const QStringList files = sample_files();
    const QStringList present = present_parts(directory, files);
    if (present.isEmpty())
        return {};
    const bool is_ours = is_our_sample(directory);
    const QStringList in_the_way = is_ours ? obstacles(directory, files) : present;
    if (!in_the_way.isEmpty())
        throw host_error(error_kind::refused,
                         u"this stands in the way, and it is no sample of this program: "_s + in_the_way.join(u", "_s));
    if (!replaced)
        throw host_error(error_kind::refused,
                         u"the folder holds a sample already, "_s + directory + u": --force writes it anew"_s);
    return remove_listed_files(directory, files);
}

} // namespace

QStringList write_sample(const QString &directory, const sample_content &content, bool replaced)
{
    QStringList kept = make_room(directory, replaced);
    for (const QString &folder :
         folders_of(content.has_containers ? plain_files() + ios_sample_files() : plain_files()))
        make_folder(directory + u'/' + folder);
    const QString macos = directory + u'/' + macos_sample_folder;
    // First: what is half written can be written anew.
    write_sample_file(directory + u'/' + readme_name,
                      content.has_containers ? QByteArray(readme) + readme_of_containers : QByteArray(readme));
    write_ledevices_databases(macos + macos_database_folder, content.names);
    write_preferences_plist(macos + macos_preferences_file);
    write_ios_log(directory + u'/' + ios_sample_log);
    write_windows_files(directory + u'/' + windows_sample_folder);
    if (content.has_containers) {
        write_ios_sources(directory + u'/', content.names);
        write_packed_sample(directory + u'/' + packed_sample, directory + u'/', macos_files());
    }
    return kept;
}
