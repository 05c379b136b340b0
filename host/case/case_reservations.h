// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CASE_RESERVATIONS_H
#define HOST_CASE_CASE_RESERVATIONS_H

#include "host/case/case_layout.h"

#include <QStringList>

/** What stands between the folders of a case and the case as a whole, in plain words. */
struct case_reservations
{
    QStringList incomplete; ///< sources of the case that no run began
    QStringList manifest;   ///< sources whose records are not what it says, or why it cannot be read
    QStringList reports;    ///< reports in the case that were made of another manifest
};

/** Nothing of a folder that holds no record of a source. Throws host_error (not_found) when one cannot be read. */
case_reservations reservations_of(const case_layout &layout);

#endif
