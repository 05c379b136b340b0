// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_RESULT_TABLES_H
#define HOST_CASE_RESULT_TABLES_H

#include "host/source/macos_databases.h"

#include <QStringList>

/** The result tables, in the order in which the plug-in fills them. */
inline const QStringList &result_tables()
{
    static const QStringList names{other_devices_database.result_table, paired_devices_database.result_table};
    return names;
}

#endif
