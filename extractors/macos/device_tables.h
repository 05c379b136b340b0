// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_MACOS_DEVICE_TABLES_H
#define EXTRACTORS_MACOS_DEVICE_TABLES_H

#include "common/function_log.h"

#include <QJsonValue>
#include <QLatin1StringView>
#include <QStringView>
#include <QVariant>

#include <span>

// What differs between the other-devices and the paired-devices database. The work on them is written once. The texts
// are part of the log format, odd blanks included.

struct staging_texts
{
    function_log log;
    QStringView found_list_empty;
};

struct reading_texts
{
    function_log log;
    QStringView start;
    QStringView file; ///< followed by the path
    QStringView open_failed;
    QStringView table_name; ///< in the evidence
    QStringView select_statement;
    QJsonValue (*to_json)(const QVariant &value);
    QStringView end;
};

struct writing_texts
{
    function_log log; ///< its function also names the connection to the result database
    QStringView start;
    QStringView copied_list_empty;
    QStringView open_failed;
    QStringView insert_statement;
    std::span<const QLatin1StringView> members; ///< of a device object, bound behind the source file
    QStringView end;
};

struct device_table
{
    QStringView tab;       ///< result table, as the examiner selects it
    QStringView file_name; ///< of the database in the source and of its staged copy
    staging_texts staging;
    reading_texts reading;
    writing_texts writing;

    static const device_table other;
    static const device_table paired;
};

#endif
