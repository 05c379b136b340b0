// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include <QtGlobal>

/** A library that has the name which the host asks for, but not for a function. */
extern "C" {
Q_DECL_EXPORT extern const char create_object[];
const char create_object[64] = "no code";
}
