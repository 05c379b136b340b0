// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_STAGED_FILE_H
#define HOST_CONTAINER_STAGED_FILE_H

#include "host/files/descriptor.h"
#include "host/files/sha256.h"

#include <QString>

/**
 * A file of a container while it is taken out: written where nobody takes it for evidence, hashed on the way, readable
 * by its owner alone. It goes with this object unless it was kept. Every function throws host_error (incomplete) with
 * the system's reason when the disk does not take it.
 */
class staged_file
{
public:
    /** @p path must not be there yet. */
    explicit staged_file(const QString &path);
    ~staged_file();
    Q_DISABLE_COPY_MOVE(staged_file)

    void add(QByteArrayView bytes);

    /** Puts the file on the disk; it stays. Gives its SHA-256. */
    QString keep();

private:
    [[noreturn]] void fail(int error) const;

    QString path;
    descriptor file;
    sha256 hash;
};

#endif
