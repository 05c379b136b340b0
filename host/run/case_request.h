// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_CASE_REQUEST_H
#define HOST_RUN_CASE_REQUEST_H

#include "host/case/case_sources.h"
#include "host/run/source_request.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/** What the examiner asked of one case. */
struct case_request
{
    /** What to do with the result of an earlier run. */
    enum class earlier_run {
        refused,
        removed,   ///< --force
        continued, ///< --resume
        added_to,  ///< --add
    };

    QList<named_source> sources; ///< all of the case; of those that are added to one, the new ones
    QString directory;           ///< absolute
    extraction_options options;
    earlier_run earlier = earlier_run::refused;
    std::optional<int> only; ///< this source alone, without touching anything outside its folder
    int jobs = 1;            ///< sources side by side
    QStringList arguments;   ///< of the program, for the record
    QString examiner;
    QString case_number;
};

#endif
