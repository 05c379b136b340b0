// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_TEXT_FUNCTION_H
#define TESTS_SUPPORT_TEXT_FUNCTION_H

#include <QMetaType>
#include <QString>

/** What most of the library's conversions are: a text goes in, a text comes out. */
using text_function = QString (*)(QString);
Q_DECLARE_METATYPE(text_function)

#endif
