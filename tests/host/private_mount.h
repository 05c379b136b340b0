// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_PRIVATE_MOUNT_H
#define TESTS_HOST_PRIVATE_MOUNT_H

#include <QString>

/**
 * A file system at a folder, while an object of this class lives. Only this process and its children see it, so that it
 * is gone when the process ends, however it ends. Works for root on Linux.
 */
class private_mount
{
public:
    /** An empty file system in memory that holds about @p kibibytes, at a folder that is made. */
    private_mount(const QString &folder, int kibibytes);

    Q_DISABLE_COPY_MOVE(private_mount)
    ~private_mount();

    /** False where nothing can be mounted; the test is skipped then. */
    bool is_there() const
    {
        return is_mounted;
    }

private:
    QString path;
    bool is_mounted = false;
};

#endif
