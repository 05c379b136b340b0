// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_SYSTEM_ERROR_H
#define HOST_FILES_SYSTEM_ERROR_H

#include <QString>

#include <cstring>

/** The system's words for an error number, to stand behind a colon: "permission denied". */
inline QString system_error_text(int number)
{
    QString text = QString::fromLocal8Bit(std::strerror(number));
    if (!text.isEmpty())
        text[0] = text.at(0).toLower();
    return text;
}

#endif
