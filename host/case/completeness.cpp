// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/completeness.h"

#include "host/case/manifest.h"
#include "host/files/host_error.h"
#include "host/files/paths.h"

bool was_left_incomplete(const case_layout &layout, int number)
{
    if (!path_exists(layout.source(number).record()))
        return false;
    try {
        return !is_complete(read_source_record(layout, number).source.status);
    } catch (const host_error &) {
        return false; // a record of somebody else
    }
}
