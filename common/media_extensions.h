// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef COMMON_MEDIA_EXTENSIONS_H
#define COMMON_MEDIA_EXTENSIONS_H

#include <QStringList>

/**
 * The suite's lists of file extensions: lower case with the leading dot, in the suite's order, repeats included. A few
 * extensions stand in more than one list.
 */
QStringList image_extensions();
QStringList audio_extensions();
QStringList video_extensions();

#endif
