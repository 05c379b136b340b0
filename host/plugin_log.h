// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_PLUGIN_LOG_H
#define HOST_PLUGIN_LOG_H

#include <QList>
#include <QString>
#include <QStringList>

/** A failure that the plug-in logged, once or many times alike. */
struct logged_failure
{
    QString text; ///< in plain words, with the reason that the log gives
    qsizetype count = 0;
    bool is_insert = false; ///< a row that the result table did not take
};

/**
 * The failures in the plug-in's log @p text, in order of their first appearance. The plug-in reports failures nowhere
 * else. @p known_paths stand in messages and may themselves look like a failure; they are not looked at.
 */
QList<logged_failure> failures_in_log(QString text, const QStringList &known_paths);

#endif
