// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/kept_access_times.h"

kept_access_times::kept_access_times() = default;

kept_access_times::~kept_access_times() = default;
