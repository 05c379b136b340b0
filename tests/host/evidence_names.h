// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_EVIDENCE_NAMES_H
#define TESTS_HOST_EVIDENCE_NAMES_H

#include <QMetaType>
#include <QString>

inline const QString database_folder = QStringLiteral("Library/Bluetooth/");
inline const QString other_name = QStringLiteral("com.apple.MobileBluetooth.ledevices.other.db");
inline const QString paired_name = QStringLiteral("com.apple.MobileBluetooth.ledevices.paired.db");

/** What a row of a test does to a file of the evidence. */
using file_change = void (*)(const QString &path);

Q_DECLARE_METATYPE(file_change)

#endif
