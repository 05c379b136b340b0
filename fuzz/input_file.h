// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef FUZZ_INPUT_FILE_H
#define FUZZ_INPUT_FILE_H

#include <QByteArrayView>
#include <QFile>
#include <QTemporaryDir>

/** A folder of this process, for readers that take a file. It is made once, in memory where the system has such a
 * place. */
inline const QTemporaryDir &input_folder()
{
    static const QTemporaryDir folder(QFile::exists(QStringLiteral("/dev/shm")) ? QStringLiteral("/dev/shm/fuzz-XXXXXX")
                                                                                : QString());
    return folder;
}

/** Puts the bytes into a file of that folder, and gives its path. */
inline QString input_file(const QString &name, QByteArrayView bytes)
{
    const QString path = input_folder().filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes.data(), bytes.size()) != bytes.size())
        qFatal("no input file");
    return path;
}

#endif
