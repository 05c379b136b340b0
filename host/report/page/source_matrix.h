// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_SOURCE_MATRIX_H
#define HOST_REPORT_PAGE_SOURCE_MATRIX_H

#include "host/report/page/device_facts.h"

#include <QByteArray>
#include <QList>

/**
 * A picture of which source knows which device, and how: a line for each device, a column for each source. Only so many
 * of both as can be followed by eye; its caption says what is left out.
 */
QByteArray source_matrix(const report_case &the_case, const QList<const device_facts *> &devices);

#endif
