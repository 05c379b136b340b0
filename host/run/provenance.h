// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_PROVENANCE_H
#define HOST_RUN_PROVENANCE_H

#include <QJsonObject>
#include <QString>

/**
 * What a case was made with: the program's version, commit and SHA-256, the libraries that it is linked
 * with and their versions, and the plug-in's file.
 */
QJsonObject tool_facts(const QString &plugin_file);

/** Where it was made: operating system, kernel, host, user and time zone; null for what the system does not give. */
QJsonObject system_facts();

/** The folder that relative paths of the command line started from; null when it is gone. */
QJsonValue working_folder();

#endif
