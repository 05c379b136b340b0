// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_WORKER_REPORT_H
#define HOST_RUN_WORKER_REPORT_H

#include "host/run/child_process.h"
#include "host/run/inspection.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/**
 * What the worker process told of one source, line by line; each line is a JSON object whose member "event" is one of
 * these names. The worker gets two lines itself: the request, and, once its case is ready, start_word.
 */
namespace worker_events {
inline constexpr QLatin1StringView loaded("loaded");       ///< the plug-in is there, with "artifact"
inline constexpr QLatin1StringView looked("looked");       ///< "evidence": look_before() is done
inline constexpr QLatin1StringView hashed("hashed");       ///< "bytes" since the last one
inline constexpr QLatin1StringView records("records");     ///< "count": the plug-in's running total
inline constexpr QLatin1StringView table_done("table");    ///< "table", "count": the rows announced for it
inline constexpr QLatin1StringView extracted("extracted"); ///< the plug-in is done; "log": see plugin_log_state
inline constexpr QLatin1StringView inspected("inspected"); ///< "inspection"
inline constexpr QLatin1StringView problem("problem");     ///< "text": the worker gives up
inline constexpr QLatin1StringView no_memory("no memory"); ///< the worker ends for want of memory
inline constexpr QByteArrayView start_word("start");
} // namespace worker_events

struct worker_report
{
    bool is_loaded = false;
    bool is_extracted = false;
    bool is_out_of_memory = false;
    bool log_has_its_end = false; ///< the plug-in came to the line that ends its log
    QString log_sha256;           ///< of the lines that the plug-in gave out, which its log must equal
    std::optional<evidence_state> looked;
    QHash<QString, qint64> announced;
    std::optional<inspection> inspected;
    QStringList problems;
    QStringList refused_tables;
    child_end end;

    /** Takes in a line of the worker's. Gives what it was, empty for none of the above. */
    QString take(const QByteArray &line);

    qint64 last_count = 0; ///< of the last hashed or records event
};

#endif
