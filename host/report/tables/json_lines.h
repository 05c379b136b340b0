// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_JSON_LINES_H
#define HOST_REPORT_TABLES_JSON_LINES_H

#include "host/report/reading/report_row.h"

#include <QByteArray>
#include <QList>

/** Makes the lines of devices.jsonl and paired_devices.jsonl; docs/report-formats.md describes them. */
class json_lines
{
public:
    /** One row, with its line end. Valid until the next call. */
    QByteArrayView line(const report_row &row);

private:
    void begin_source(const report_row &row);

    const report_source *source = nullptr; ///< that the texts below are of
    QByteArray start;                      ///< {"source":1,"source_name":"…","table":"…"
    QList<QByteArray> names;               ///< of the plug-in's columns: "uuid":
    QByteArray json;                       ///< keeps its room from row to row
};

/** {"source":1,"source_name":"…","table":"…" without an end. */
QByteArray json_row_start(const report_source &source, const QString &table);

/** "locator":{…} */
void append_json_locator(QByteArray &json, const row_place &place);

/**
 * The lines of wal_changes.jsonl that a source has, each with its line end: the file that the host kept of the source,
 * taken apart again.
 */
void tell_wal_changes(const report_case &that_case, const report_source &source,
                      const std::function<void(QByteArrayView line)> &tell);

#endif
