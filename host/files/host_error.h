// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_HOST_ERROR_H
#define HOST_FILES_HOST_ERROR_H

#include <QString>

#include <exception>

/** What the program tells its caller; scripts rely on the numbers. */
enum class exit_code {
    done = 0,
    internal_error = 1,
    usage = 2,
    input = 3,            ///< missing, unreadable or free of evidence
    partial = 4,          ///< evidence was found, but a part could not be read or written
    evidence_changed = 5, ///< the evidence is not what it was before the run
    interrupted = 130,
};

/** Ends a command: what the examiner reads, and the exit code. Thrown by the host's own code only. */
class host_error : public std::exception
{
public:
    host_error(exit_code code, const QString &message)
        : exit(code)
        , text(message)
    {
    }

    exit_code code() const
    {
        return exit;
    }

    QString message() const
    {
        return text;
    }

private:
    exit_code exit;
    QString text;
};

#endif
