// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_SOURCE_REQUEST_H
#define HOST_RUN_SOURCE_REQUEST_H

#include "host/case/case_layout.h"
#include "host/case/result_tables.h"
#include "host/source/evidence_source.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

/** How sources are extracted; the same for all sources of a run. */
struct extraction_options
{
    QStringList tables = result_tables();
    int engine_type = 0;
    QString display_name;              ///< as rows show the operating system; empty: the kind's own
    qint64 timezone_offset = 0;        ///< seconds east of UTC
    bool suite_tables = false;         ///< leave the result tables as the suite makes them, without room for iOS rows
    bool follow_links = false;         ///< read evidence that a link in the source has elsewhere
    bool is_live = false;              ///< the evidence is in use and may change
    bool is_confined = true;           ///< the process that runs the plug-in reads and writes only what it needs
    bool is_verbose = false;           ///< the plug-in's log comes on standard error too
    QString plugin_file;               ///< absolute
    qint64 memory_limit = 2048;        ///< MiB of address space of the process that runs the plug-in
    qint64 timeout = 0;                ///< seconds for one source; 0: none
    qint64 max_database = 1024;        ///< MiB
    qint64 max_log = qint64(64) << 30; ///< bytes of a log that is taken out of a container
    bool skips_container_hash = false; ///< no SHA-256 of the files of containers

    QJsonObject to_json() const;
    static extraction_options from_json(const QJsonObject &json);
};

/** One source to extract, and where its result goes. */
struct source_request
{
    evidence_source source;
    int number = 1;
    QString name;   ///< as the examiner calls it; may be empty
    int volume = 0; ///< of an image; 0: the only one with evidence
    QString member; ///< of an archive; empty: the only one
    QString case_directory;
    extraction_options options;

    source_layout layout() const
    {
        return source_layout(case_directory, number);
    }

    QJsonObject to_json() const;
    static source_request from_json(const QJsonObject &json);
};

/** A source as a line of the talk between the processes has it. */
QJsonObject source_to_json(const evidence_source &source);
evidence_source source_from_json(const QJsonObject &json);

#endif
