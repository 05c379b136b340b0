// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef EXTRACTORS_MACOS_DEVICE_TABLES_H
#define EXTRACTORS_MACOS_DEVICE_TABLES_H

#include "extractors/macos/bluetooth_logs_macos.h"

#include <QJsonValue>
#include <QLatin1StringView>
#include <QStringView>
#include <QVariant>

#include <span>

/**
 * Everything that differs between the other-devices and the paired-devices database: their lists, texts and statements.
 * The work on them is written once. The texts are part of the log format, odd blanks included.
 */
struct bluetooth_logs_macos::device_table
{
    QStringView tab;       ///< result table, as the examiner selects it
    QStringView file_name; ///< of the database in the source and of its staged copy
    QStringList bluetooth_logs_macos::*found;
    QStringList bluetooth_logs_macos::*copied; ///< entry i is the copy of entry i of the found list
    QString bluetooth_logs_macos::*reader_input;

    struct
    {
        QStringView function_info;
        QStringView found_list_empty;
    } staging;

    struct
    {
        QStringView function_info;
        QStringView start;
        QStringView file; ///< followed by the path
        QStringView open_failed;
        QString bluetooth_logs_macos::*open_failed_detail; ///< a last line of that report, or null
        QStringView device_table_name;
        QStringView select_statement;
        QJsonValue (*to_json)(const QVariant &value);
        QStringView end;
    } reading;

    struct
    {
        QStringView function_info; ///< also the name of the connection to the result database
        QStringView start;
        QStringView copied_list_empty;
        QStringView open_failed;
        QStringView insert_statement;
        std::span<const QLatin1StringView> members; ///< of a device object, bound behind the source file
        QStringView end;
    } writing;

    static const device_table other;
    static const device_table paired;
};

#endif
