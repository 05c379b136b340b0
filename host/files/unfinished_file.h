// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_UNFINISHED_FILE_H
#define HOST_FILES_UNFINISHED_FILE_H

#include <QByteArray>
#include <QtGlobal>

#include <atomic>

/**
 * The path of a file, or of a folder that is empty then, that must not stay when a signal ends the process, while an
 * object of this class lives. Only so many are known at a time as a report writes; what is beyond them stays.
 */
class unfinished_file
{
public:
    explicit unfinished_file(const QByteArray &path);
    ~unfinished_file();
    Q_DISABLE_COPY_MOVE(unfinished_file)

    /** SIGINT, SIGTERM and SIGHUP remove these files before they end the process; an ignored one stays ignored. */
    static void remove_on_signals();

private:
    QByteArray path;
    std::atomic<const char *> *place = nullptr;
};

#endif
