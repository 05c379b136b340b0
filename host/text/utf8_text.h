// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_TEXT_UTF8_TEXT_H
#define HOST_TEXT_UTF8_TEXT_H

#include <QString>

/**
 * A text of the evidence. QString::fromUtf8() leaves out a U+FEFF at its start, as the byte order mark of a file: in a
 * name it is a character. Bytes that are no UTF-8 become U+FFFD.
 */
inline QString utf8_text(QByteArrayView bytes)
{
    const QString text = QString::fromUtf8(bytes);
    return bytes.startsWith("\xEF\xBB\xBF") ? u'\uFEFF' + text : text;
}

#endif
