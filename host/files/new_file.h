// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_NEW_FILE_H
#define HOST_FILES_NEW_FILE_H

#include "host/files/descriptor.h"
#include "host/files/unfinished_file.h"

#include <QByteArray>
#include <QString>

#include <optional>

/**
 * Writes "<path>.new"; commit() renames it; else it is removed. Every function throws host_error (io) with the system's
 * reason.
 */
class new_file
{
public:
    explicit new_file(const QString &path);
    ~new_file();
    Q_DISABLE_COPY_MOVE(new_file)

    void add(QByteArrayView bytes);

    /** Puts the file on the disk and in place of an earlier one of that name. */
    void commit();

private:
    [[noreturn]] void fail(int error) const;
    void write(QByteArrayView bytes);

    QString path;
    QString temporary;
    QByteArray buffer;
    descriptor file;
    std::optional<unfinished_file> unfinished; ///< while the file stands as "<name>.new"
};

#endif
