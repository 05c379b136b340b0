// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_HOST_ERROR_H
#define HOST_FILES_HOST_ERROR_H

#include <QString>

#include <exception>

/** What kept the program from its work, as far as a caller acts on it. */
enum class error_kind {
    io,               ///< something cannot be written, started or loaded
    refused,          ///< it cannot be done as it was asked for; nothing was touched
    not_found,        ///< what is to be read is missing, unreadable or something else
    incomplete,       ///< a part of the work could not be done
    evidence_changed, ///< the evidence is not what it was before the run
    interrupted,
};

/** Ends a command: what the examiner reads, and its kind. Thrown by the host's own code only. */
class host_error : public std::exception
{
public:
    host_error(error_kind kind_of_error, const QString &message)
        : error(kind_of_error)
        , text(message)
    {
    }

    error_kind kind() const
    {
        return error;
    }

    QString message() const
    {
        return text;
    }

private:
    error_kind error;
    QString text;
};

#endif
