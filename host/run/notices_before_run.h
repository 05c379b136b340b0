// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_NOTICES_BEFORE_RUN_H
#define HOST_RUN_NOTICES_BEFORE_RUN_H

#include "host/case/run_message.h"
#include "host/run/source_request.h"

#include <QList>

/** What is known before the run: what reading the evidence would change, and what is done to the result tables. */
QList<run_message> notices_before_run(const source_request &request);

#endif
