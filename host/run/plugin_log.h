// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_RUN_PLUGIN_LOG_H
#define HOST_RUN_PLUGIN_LOG_H

#include <QIODevice>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

/** A failure that the plug-in logged, once or many times alike. */
struct logged_failure
{
    QString text; ///< in plain words, with the reason that the log gives
    qint64 count = 0;
    bool is_insert = false; ///< a row that the result table did not take
};

/** What the plug-in's log reports. The plug-in reports failures nowhere else. */
struct log_findings
{
    QList<logged_failure> failures; ///< in the order of their first appearance
    qint64 other_failures = 0;      ///< of more kinds than are kept
    QString sha256;                 ///< of the whole log
    bool is_out_of_memory = false;  ///< SQLite ran out of memory somewhere

    QJsonObject to_json() const;
    static log_findings from_json(const QJsonObject &json);
};

/**
 * Reads the plug-in's log to its end, in flat memory. @p known_paths stand in messages and may themselves look like a
 * failure; they are not looked at.
 */
log_findings read_plugin_log(QIODevice &log, const QStringList &known_paths);

/** Whether a text of the plug-in's is a line of its log, and no other text that it prints. */
bool is_log_line(const QString &text);

/** Whether the message of the log line is the one that ends a run's log. */
bool is_last_log_line(const QString &line);

#endif
