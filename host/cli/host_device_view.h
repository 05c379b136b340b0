// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_HOST_DEVICE_VIEW_H
#define HOST_CLI_HOST_DEVICE_VIEW_H

#include "host/cli/console.h"
#include "host/cli/show_command.h"

inline constexpr QLatin1StringView host_devices_name("host_devices");

/** Shows the devices of the lists that are no database, safe for the terminal. Throws host_error. */
exit_code show_host_devices(const show_options &options, console &out);

#endif
