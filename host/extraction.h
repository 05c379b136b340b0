// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_EXTRACTION_H
#define HOST_EXTRACTION_H

#include "host/console.h"
#include "host/evidence.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

class bluetooth_logs;

/** All that the plug-in is told about one run. */
struct extraction_settings
{
    source evidence;
    QString case_directory;
    QStringList tables;
    int engine_type = 0;
    int source_number = 1;
    QString display_name;
    qint64 timezone_offset = 0; ///< seconds east of UTC
    QString log_file;           ///< exists already: the plug-in never creates it
    bool log_on_terminal = false;
};

/** Turns the plug-in's signals into a line on the terminal. */
class extraction_progress : public QObject
{
    Q_OBJECT

public:
    extraction_progress(const console &out, qsizetype tables);

public Q_SLOTS:
    void show_records(qint64 records);
    void show_tables(int count);

private:
    void show() const;

    const console &out;
    qsizetype table_count;
    qint64 records = 0;
    int tables_done = 0;
};

/**
 * Drives the plug-in through one run, in the order that it relies on, and tells @p progress. @p tables_created is
 * called once the result tables are there and before anything is extracted. True when Ctrl-C ended the run early.
 */
bool run_extraction(bluetooth_logs &plugin, const extraction_settings &settings, extraction_progress &progress,
                    const std::function<void()> &tables_created);

#endif
