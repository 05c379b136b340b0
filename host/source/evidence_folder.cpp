// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/evidence_folder.h"

#include "host/files/access_time.h"
#include "host/files/folder_listing.h"
#include "host/files/host_error.h"
#include "host/files/system_error.h"

#include <QFile>

#include <algorithm>
#include <cerrno>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int reading = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

} // namespace

QString evidence_name_text(QByteArrayView name)
{
    QString text = QString::fromUtf8(name);
    if (text.toUtf8() == name)
        return text;
    QString escaped;
    for (const char byte : name) {
        const auto value = static_cast<unsigned char>(byte);
        escaped += value < 0x80 ? QString(QLatin1Char(byte)) : u"\\x"_s + QString::number(value, 16);
    }
    return escaped;
}

descriptor open_evidence(const QString &path, int more_flags)
{
    const QByteArray name = QFile::encodeName(path);
    const int file = ::open(name.constData(), reading | more_flags | keep_access_time());
    if (file == -1 && errno == EPERM)
        return descriptor(::open(name.constData(), reading | more_flags)); // only the owner may keep the access time
    return descriptor(file);
}

QStringList entry_names(const QString &folder)
{
    descriptor opened = open_evidence(folder, O_DIRECTORY);
    QStringList names;
    if (!opened.is_open() && (errno == ENOENT || errno == ENOTDIR || errno == EACCES))
        return names;
    const int error = opened.is_open() ? for_each_entry(std::move(opened),
                                                        [&names](const dirent &entry) {
                                                            names.append(evidence_name_text(entry.d_name));
                                                        })
                                       : errno;
    if (error != 0)
        throw host_error(error_kind::incomplete, folder + u" cannot be listed: "_s + system_error_text(error));
    names.sort();
    return names;
}

std::optional<QString> closed_folder(const QString &path, const QString &listed)
{
    for (qsizetype end = path.indexOf(u'/', 1);; end = path.indexOf(u'/', end + 1)) {
        const QString folder = end < 0 ? path : path.first(end);
        struct stat status = {};
        const QByteArray name = QFile::encodeName(folder);
        if (::stat(name.constData(), &status) != 0 || !S_ISDIR(status.st_mode))
            return {};
        const bool is_listed = !listed.isEmpty() && folder.startsWith(listed);
        if (::faccessat(AT_FDCWD, name.constData(), is_listed ? R_OK | X_OK : X_OK, AT_EACCESS) != 0 && errno == EACCES)
            return folder;
        if (end < 0)
            return {};
    }
}

QString find_entry(const QString &folder, const QString &name)
{
    const QStringList names = entry_names(folder);
    const auto found = std::find_if(names.cbegin(), names.cend(), [&name](const QString &entry) {
        return entry.compare(name, Qt::CaseInsensitive) == 0;
    });
    return found == names.cend() ? QString() : *found;
}

bool reading_changes_access_time(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct statvfs system = {};
    if (::statvfs(name.constData(), &system) == 0 && (system.f_flag & ST_RDONLY) != 0)
        return false;
    if (has_no_access_times(system))
        return false;
    if (keep_access_time() == 0)
        return true;
    const descriptor file(::open(name.constData(), reading | keep_access_time()));
    return !file.is_open() && errno == EPERM;
}
