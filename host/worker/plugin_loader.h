// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_WORKER_PLUGIN_LOADER_H
#define HOST_WORKER_PLUGIN_LOADER_H

#include <QString>

#include <memory>

class bluetooth_logs;

/**
 * Loads the plug-in file as the suite does and creates its object through create_object(). The file stays loaded until
 * the program ends. Throws host_error (io).
 */
std::unique_ptr<bluetooth_logs> load_plugin(const QString &file);

#endif
