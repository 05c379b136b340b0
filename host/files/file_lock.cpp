// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/files/file_lock.h"

#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/files/system_error.h"
#include "host/files/utc_time.h"

#include <QSysInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int most_holder_bytes = 300;
constexpr QByteArrayView holder_start("process ");

/** What the holder wrote about itself. */
QString holder_of(int file)
{
    QByteArray text(most_holder_bytes, '\0');
    const auto size = ::pread(file, text.data(), size_t(text.size()), 0);
    const QString holder = QString::fromUtf8(text.first(qMax<qsizetype>(0, size))).trimmed();
    return holder.isEmpty() ? u"another process"_s : holder;
}

/** Whether the file has one name only, and in it at most what an earlier holder wrote. */
bool is_ours(int file)
{
    struct stat status = {};
    QByteArray start(holder_start.size(), '\0');
    return ::fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_nlink == 1
           && (status.st_size == 0
               || (::pread(file, start.data(), size_t(start.size()), 0) == start.size() && start == holder_start));
}

/** "process 4711 on laptop since 2026-01-31T12:00:00Z". */
QByteArray this_holder()
{
    return holder_start + QByteArray::number(qint64(::getpid())) + " on " + QSysInfo::machineHostName().toUtf8()
           + " since " + utc_now().toUtf8() + '\n';
}

} // namespace

file_lock::file_lock(const QString &path)
    : file(open_without_links(path, O_RDWR | O_CREAT | O_NONBLOCK, 0644))
{
    if (!file.is_open())
        throw host_error(error_kind::io, u"the lock "_s + path + u" cannot be written: "_s + system_error_text(errno));
    if (::flock(file.number(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK)
            throw host_error(error_kind::refused,
                             u"another run works here, "_s + holder_of(file.number()) + u": "_s + path);
        throw host_error(error_kind::io,
                         u"the file system of "_s + path + u" gives no lock: "_s + system_error_text(errno));
    }
    // A full disk keeps the name out, not the lock. A file that others filled stays as it is.
    const QByteArray holder = this_holder();
    if (!is_ours(file.number()))
        return;
    if (::ftruncate(file.number(), 0) == 0)
        static_cast<void>(::pwrite(file.number(), holder.constData(), size_t(holder.size()), 0) == holder.size());
}

bool file_lock::is_held(const QString &path)
{
    const descriptor file = open_without_links(path, O_RDONLY | O_NONBLOCK);
    return file.is_open() && ::flock(file.number(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}
