// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_CASE_RUN_H
#define HOST_RUN_CASE_RUN_H

#include "host/run/run_observer.h"
#include "host/run/source_request.h"

#include <QList>
#include <QString>

/** A source as the examiner names it. */
struct named_source
{
    QString path;                      ///< absolute
    const source_kind *kind = nullptr; ///< null: to be recognized
    QString name;
    int number = 1;
};

/** What the examiner asked of one case. */
struct case_request
{
    QList<named_source> sources;
    QString directory; ///< absolute
    extraction_options options;
    bool force = false;
    QStringList arguments; ///< of the program, for the record
};

/**
 * Extracts the sources into the case and tells @p observer. Nothing is touched before sources, case and plug-in are
 * known to be usable; throws host_error when the run cannot begin. Gives the code for the whole.
 */
exit_code run_case(const case_request &request, run_observer &observer);

#endif
