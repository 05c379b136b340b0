// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/evidence.h"

#include "host/host_error.h"
#include "host/ledevices.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <memory>

#include <dirent.h>
#include <fcntl.h>

using namespace Qt::StringLiterals;

namespace {

// Listing a folder must leave its access time alone; systems without the flag keep it by mounting evidence read-only.
#ifdef O_NOATIME
constexpr int keep_access_time = O_NOATIME;
#else
constexpr int keep_access_time = 0;
#endif

/** What SQLite keeps beside a database. */
constexpr QLatin1StringView database_companions[] = {"-wal"_L1, "-shm"_L1, "-journal"_L1};

[[noreturn]] void fail(const QString &message)
{
    throw host_error(exit_code::input, message);
}

/** The entry of a folder whose name is @p name in any case, empty if there is none. */
QString find_entry(const QString &folder, QLatin1StringView name)
{
    const QByteArray path = QFile::encodeName(folder);
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
    int descriptor = ::open(path.constData(), flags | keep_access_time);
    if (descriptor == -1)
        descriptor = ::open(path.constData(), flags); // only the owner may keep the access time
    const std::unique_ptr<DIR, int (*)(DIR *)> directory(::fdopendir(descriptor), ::closedir);
    while (const dirent *entry = directory ? ::readdir(directory.get()) : nullptr) {
        const QString entry_name = QFile::decodeName(entry->d_name);
        if (entry_name.compare(name, Qt::CaseInsensitive) == 0)
            return folder + u'/' + entry_name;
    }
    return {};
}

bool looks_like_macos(const QString &path)
{
    const QString folder = path + u'/' + ledevices_folder;
    return std::any_of(std::begin(ledevices_databases), std::end(ledevices_databases),
                       [&folder](const auto *database) { return QFileInfo::exists(folder + database->file_name); });
}

bool looks_like_windows(const QString &path)
{
    const QString windows = find_entry(path, "Windows"_L1);
    return !windows.isEmpty() && QFileInfo(find_entry(windows, "System32"_L1)).isDir();
}

const source_kind &recognized_kind(const QFileInfo &place)
{
    if (place.isFile())
        return ios_uid_kind;
    if (place.isDir() && looks_like_macos(place.filePath()))
        return macos_kind;
    if (place.isDir() && looks_like_windows(place.filePath()))
        return winos_kind;
    fail(u"this is no source that can be recognized: "_s + place.filePath()
         + u" (a macOS source holds one of the LE device databases in Library/Bluetooth, a Windows source the folder "
           "Windows/System32, an iOS source is a log text file; --type says which it is)"_s);
}

const source_kind &named_kind(const QString &type)
{
    for (const source_kind *kind : {&macos_kind, &ios_uid_kind, &winos_kind}) {
        if (type == kind->name)
            return *kind;
    }
    throw host_error(exit_code::usage, u"there is no type of source named "_s + type);
}

/** Why the plug-in could not read the file, null if it could. Links to a file count as that file. */
QString unreadable_reason(const QFileInfo &file)
{
    if (!file.isFile())
        return u"it is not a regular file"_s;
    return file.isReadable() ? QString() : u"permission denied"_s;
}

void find_macos_evidence(source &found, const QStringList &tables)
{
    const QString folder = found.root + ledevices_folder;
    QStringList problems;
    qsizetype readable = 0;
    for (const ledevices_database *database : ledevices_databases) {
        const QString path = folder + database->file_name;
        found.watched.append(path);
        for (const QLatin1StringView companion : database_companions)
            found.watched.append(path + companion);
        if (!tables.contains(database->result_table))
            continue;
        if (!QFileInfo::exists(path)) {
            found.not_found.append(database->result_table);
            continue;
        }
        const QString problem = unreadable_reason(QFileInfo(path));
        if (problem.isNull())
            ++readable;
        else
            problems.append(path + u": "_s + problem);
        if (QFileInfo(path + u"-wal"_s).size() > 0)
            found.unread.append(path + u"-wal"_s);
    }
    if (!problems.isEmpty() && readable == 0)
        fail(u"the evidence cannot be read: "_s + problems.join(u"; "_s));
    if (readable == 0)
        fail(u"the source holds no LE device database for "_s + found.not_found.join(u" or "_s) + u" in "_s + folder);
}

void require_folder(const source &found)
{
    if (!QFileInfo(found.given).isDir())
        fail(u"a "_s + found.kind->name + u" source is a folder, and this is none: "_s + found.given);
    if (!QFileInfo(found.given).isReadable() || !QFileInfo(found.given).isExecutable())
        fail(u"the source cannot be read: "_s + found.given + u": permission denied"_s);
}

} // namespace

source find_source(const QString &path, const QString &type, const QStringList &tables)
{
    source found;
    found.given = QDir::cleanPath(QDir().absoluteFilePath(path));
    const QFileInfo place(found.given);
    if (path.isEmpty() || !place.exists())
        fail(u"there is no source at "_s + found.given);

    found.off_limits = found.given;
    found.kind = type == "auto"_L1 ? &recognized_kind(place) : &named_kind(type);
    if (found.kind == &ios_uid_kind) {
        const QString problem = unreadable_reason(place);
        if (!problem.isNull())
            fail(u"the log text cannot be read: "_s + found.given + u": "_s + problem);
        found.log_file = found.given;
        found.watched.append(found.given);
        found.root = place.path();
    } else {
        require_folder(found);
        found.root = found.given;
    }
    if (!found.root.endsWith(u'/'))
        found.root += u'/';
    if (found.kind == &macos_kind)
        find_macos_evidence(found, tables);
    return found;
}
