// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_EARLIER_CASE_H
#define HOST_RUN_EARLIER_CASE_H

#include "host/case/case_layout.h"
#include "host/case/manifest.h"
#include "host/case/source_record.h"
#include "host/files/host_error.h"

#include <QJsonObject>
#include <QList>
#include <QString>

#include <optional>

/** What an earlier run left of one source: what a later one needs to know of it. */
struct earlier_source
{
    int number = 0;
    bool holds_a_run = false; ///< anything of it is there
    bool has_record = false;
    std::optional<host_error> problem; ///< why its record cannot be read
    QString name;
    QString path;
    QString type;
    source_status status = source_status::not_run;
    int version = case_version; ///< of its record
    QString list_sha256;        ///< of the case's list of sources
    QJsonObject result_options; ///< those that decide what stands in the result

    /** Whether its run did not come to its end, so that what stands there may be made anew. */
    bool was_left_incomplete() const
    {
        return has_record && !problem && !is_complete(status);
    }
};

/** Reads what is there of source @p number. */
earlier_source read_earlier_source(const case_layout &layout, int number);

/** The same for every source of the case, by number. */
QList<earlier_source> read_earlier_sources(const case_layout &layout);

#endif
