// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_SOURCE_RECORD_H
#define HOST_CASE_SOURCE_RECORD_H

#include "host/case/kept_file.h"
#include "host/case/run_message.h"
#include "host/source/evidence_state.h"

#include <QJsonObject>
#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/** How many rows of one result table there are, counted in three places that must agree. */
struct table_rows
{
    QString table;
    std::optional<qint64> found;     ///< in the evidence, by the host's own count; none for a log text
    std::optional<qint64> announced; ///< by the plug-in's signals
    std::optional<qint64> stored;    ///< in the result database, by a fresh connection
    std::optional<qint64> devices{}; ///< of a log, whose rows are sightings: how many devices they name
};

/** "50 sightings of 12 devices", of rows that are sightings; else empty. */
QString sightings_text(const table_rows &rows);

/**
 * {"devices": {"found": 5, "announced": 5, "stored": 5}}: null for a number that is not known; with "devices" where
 * rows are sightings of them.
 */
QJsonObject rows_to_json(const QList<table_rows> &rows);
QList<table_rows> rows_from_json(const QJsonObject &json);

/** How the run of a source ended. */
enum class source_status {
    running,
    done,
    partial,
    failed,
    crashed,
    timed_out,
    out_of_memory,
    interrupted,
    evidence_changed,
    not_run,
};

/** Whether the run finished: its result is final. */
bool is_complete(source_status status);

QLatin1StringView status_name(source_status status);
/** Nothing for a name that no status has. */
std::optional<source_status> status_named(const QString &name);

/** All that is known of one source of a case; source.json holds it, and the manifest takes it from there. */
struct source_record
{
    int number = 1;
    QString name; ///< as the examiner calls it; may be empty
    QString path;
    QString type;
    QString driven_as;    ///< the kind that the plug-in took it for; empty: not known
    QJsonValue container; ///< what the evidence was taken out of; null: it stands in its place
    source_status status = source_status::not_run;
    std::optional<int> exit_code; ///< none before its run has ended
    QList<run_message> messages;
    QString started;  ///< UTC
    QString log_zone; ///< of the times in plugin.log: "Europe/Berlin"; empty in records of version 1
    QString finished;
    QList<table_rows> rows;
    evidence_state evidence;
    QJsonValue wal; ///< rows that a write-ahead log adds, changes and deletes, by result table; null without one
    QJsonValue confinement;  ///< what the process that ran the plug-in was kept by; null: it never came so far
    QJsonValue host_devices; ///< lines of host_devices.jsonl; null where the source has no list of devices
    QJsonValue salvaged;     ///< rows that the host found on intact pages of a damaged database, by result table
    QString result_path;     ///< relative to the case; empty: there is none
    QString result_sha256;
    /** Every file of the source but its record, when its run had ended; none in the records of version 1. */
    std::optional<QList<kept_file>> files;

    /** Adds an error to a run that was judged already: one that was done is partial then, with its exit code. */
    void add_error(const QString &text);

    QJsonObject to_json() const;
    static source_record from_json(const QJsonObject &json);
};

#endif
