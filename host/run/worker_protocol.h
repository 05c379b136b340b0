// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_WORKER_PROTOCOL_H
#define HOST_RUN_WORKER_PROTOCOL_H

#include "host/files/host_error.h"
#include "host/run/child_process.h"
#include "host/run/inspection.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/**
 * The lines that go between the program and its worker process, both ways. The worker reads the order and, once the
 * case is laid out, start_word; it writes events, JSON objects whose member "event" says which one it is.
 */
inline constexpr QByteArrayView start_word("start\n");

/** What a worker is to do. */
struct worker_order
{
    enum class task {
        extract, ///< load the plug-in, wait for start_word, run it, inspect
        inspect, ///< what a worker that ended early could not look at
        settle,  ///< nothing but settle_result()
        survey,  ///< look into a container; the request names it and its limits, there is no case
    };

    task to_do = task::extract;
    source_request request;
    evidence_state evidence; ///< as look_before() gave it; for an inspection

    QByteArray to_line() const;
    static worker_order from_line(const QByteArray &line);
};

enum class worker_event {
    unknown,   ///< none of these: what the plug-in or a library printed
    loaded,    ///< the plug-in can be used
    confined,  ///< what keeps the process in its place is in force
    taken_out, ///< what the container holds is in the case
    looked,    ///< look_before() is done
    hashed,
    read,       ///< bytes of a container
    records,    ///< the plug-in's running total
    table_done, ///< with the rows announced for it
    extracted,  ///< the plug-in is done
    inspected,
    problem,   ///< the worker gives up
    no_memory, ///< the worker ends for want of memory
    surveyed,
};

/** What was taken out of a container. */
struct taken_evidence
{
    evidence_source source; ///< as the plug-in gets it
    QStringList warnings;
    QStringList errors; ///< what could not be read of the container
};

/** What the plug-in gave out as its log. */
struct plugin_log_end
{
    QString sha256;       ///< of the lines, each with its line end; its log must equal it
    bool is_last = false; ///< the last one is the line that ends its log
};

/** The worker's lines, with their line ends. */
QByteArray loaded_line();
/** What keeps the process in its place from here on, as a record has it. */
QByteArray confined_line(const QJsonObject &confinement);
QByteArray taken_out_line(const taken_evidence &taken);
QByteArray read_line(qint64 more_bytes);
QByteArray surveyed_line(const QJsonObject &survey);
QByteArray looked_line(const evidence_state &evidence);
QByteArray hashed_line(qint64 more_bytes);
QByteArray records_line(qint64 count);
QByteArray table_done_line(const QString &table, qint64 rows);
QByteArray extracted_line(const plugin_log_end &log);
QByteArray inspected_line(const inspection &found);
QByteArray problem_line(const host_error &error);
/** Stands ready: there may be no memory left to make it. */
inline constexpr QByteArrayView no_memory_line("{\"event\":\"no memory\"}\n");

/** All that a worker reported of one source. */
struct worker_report
{
    bool is_loaded = false;
    bool is_out_of_memory = false;
    QJsonValue confinement; ///< of the first process that reported it; null before
    std::optional<evidence_state> looked;
    QHash<QString, qint64> announced;
    std::optional<plugin_log_end> extracted;
    std::optional<inspection> inspected;
    QStringList problems;
    std::optional<error_kind> problem_kind; ///< of the last one
    std::optional<taken_evidence> taken_out;
    QJsonObject survey;
    child_end end;
    qint64 last_count = 0; ///< of the last hashed, read or records event

    /** Takes in a line of the worker's. */
    worker_event take(const QByteArray &line);
};

#endif
