// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_EXTRACTION_H
#define HOST_WORKER_EXTRACTION_H

#include "host/run/source_request.h"
#include "host/run/worker_protocol.h"

#include <QObject>
#include <QString>
#include <QStringList>

class bluetooth_logs;

/** Turns the plug-in's signals into events for the process that watches this one. */
class extraction_observer : public QObject
{
    Q_OBJECT

public:
    using line_sender = void (*)(QByteArrayView line);

    /** @p tables are done in this order. */
    extraction_observer(const QStringList &tables, line_sender send);

public Q_SLOTS:
    void take_records(qint64 records);
    void take_tables(int count);

private:
    QStringList tables;
    line_sender send;
    qint64 records = 0;
    qint64 records_before_table = 0;
};

/**
 * Drives the plug-in through one run, in the order that it relies on. SIGINT cancels it. @p without_memory is called
 * when there is no memory for what it reads, as sqlite_memory_watch says. Throws host_error.
 */
plugin_log_end run_extraction(bluetooth_logs &plugin, const source_request &request, extraction_observer &observer,
                              void (*without_memory)());

#endif
