// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_CONTAINER_FILE_H
#define HOST_CONTAINER_CONTAINER_FILE_H

#include <QJsonObject>
#include <QString>

#include <functional>

/** Called with how many more bytes of a container were read or hashed. */
using read_observer = std::function<void(qint64 bytes)>;

/** Called with how far a container was read and hashed. */
struct container_observers
{
    read_observer read = [](qint64) {};
    read_observer hashed; ///< empty: the files of the container are not hashed
};

/** A file that a container is made of. */
struct container_file
{
    QString path;
    qint64 size = 0;
    QString modified; ///< UTC
    QString sha256;   ///< empty: it was not hashed
    QString problem;  ///< why it could not be hashed to its end, in plain words

    QJsonObject to_json() const;
};

/** The state of the files of a container now; empty members where one is gone. */
container_file file_now(const QString &path);

/** Hashes the file from its start to its end, and says on the way how far it came. */
void hash_file(container_file &file, const read_observer &hashed);

#endif
