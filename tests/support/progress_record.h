// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_PROGRESS_RECORD_H
#define TESTS_SUPPORT_PROGRESS_RECORD_H

#include "plugin/bluetooth_logs.h"

/** What the host saw of the progress, in order: "records 3", "tabs 1". */
class progress_record
{
public:
    explicit progress_record(bluetooth_logs &frame)
    {
        QObject::connect(&frame, &bluetooth_logs::signal_extracted_records_of_plugin_overall, &frame,
                         [this](qint64 records) {
                             events.append(QStringLiteral("records ") + QString::number(records));
                         });
        QObject::connect(&frame, &bluetooth_logs::signal_tab_processed_of_plugin_overall, &frame,
                         [this](int tabs) { events.append(QStringLiteral("tabs ") + QString::number(tabs)); });
    }

    QStringList events;
};

#endif
