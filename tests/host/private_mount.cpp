// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/private_mount.h"

#include <QDir>
#include <QFile>

#ifdef Q_OS_LINUX
#include <sched.h>
#include <sys/mount.h>
#endif

#ifdef Q_OS_LINUX

namespace {

/** From here on nobody else sees what this process mounts. */
bool has_private_mounts()
{
    static const bool is_private = ::unshare(CLONE_NEWNS) == 0
                                   && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
    return is_private;
}

} // namespace

private_mount::private_mount(const QString &folder, int kibibytes)
    : path(folder)
{
    const QByteArray options = "size=" + QByteArray::number(kibibytes) + "k";
    is_mounted = has_private_mounts() && QDir().mkpath(folder)
                 && ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, options.constData()) == 0;
}

private_mount::~private_mount()
{
    if (is_mounted)
        ::umount2(QFile::encodeName(path).constData(), MNT_DETACH);
}

#else

private_mount::private_mount(const QString &folder, int)
    : path(folder)
{
}

private_mount::~private_mount() = default;

#endif
