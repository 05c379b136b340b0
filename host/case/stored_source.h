// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_STORED_SOURCE_H
#define HOST_CASE_STORED_SOURCE_H

#include "host/case/source_record.h"

#include <QList>
#include <QString>

#include <optional>

/** A source of a case as an earlier run left it, or as a run that goes on works on it. */
struct stored_source
{
    QString name; ///< "Source1"; empty: a result database that lies in no case
    QString result_database;
    std::optional<source_record> record; ///< none: nothing is known of its run
    bool is_locked = false;              ///< a run works on it

    /** "Source1  the laptop  macOS: /mnt/image", as far as the record says. */
    QString title() const;

    /** Whether its run ended by itself and came to the end of the evidence, as far as it could be read. */
    bool is_complete() const;

    /** What stands between its rows and the whole of its evidence, in plain words; empty if its run is done. */
    QString reservation() const;
};

/**
 * The sources of the case at @p place, in the order of their numbers. A result database there is taken for a case of
 * one. Throws host_error (not_found) when there is neither, and when a record cannot be read.
 */
QList<stored_source> stored_sources(const QString &place);

#endif
