// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_IOS_LOG_FILES_H
#define HOST_SOURCE_IOS_LOG_FILES_H

#include "host/source/ios_lines.h"

#include <QJsonObject>
#include <QString>

#include <optional>

/** What the host keeps of a log that is given block by block: the lines that give rows, and those that might have. */
class ios_log_files
{
public:
    /** Paths of ios_lines.jsonl and of unparsed_lines.jsonl; the second is written only where there is such a line. */
    ios_log_files(const QString &lines_file, const QString &unparsed_file);

    void add(QByteArrayView block);

    /** The log has ended: the files get their names. Throws host_error (io). */
    void finish();

    /** How many lines with words of a device give no row, by result table. */
    QJsonObject unparsed_counts() const;

    /** What is odd about the log: zero bytes in it. Empty: nothing. */
    QString oddity() const;

private:
    void take(const ios_line &line);

    ios_line_finder finder;
    ios_line_writer lines;
    std::optional<ios_line_writer> unparsed; ///< once there is such a line
    QString unparsed_path;
    qint64 unparsed_devices = 0;
    qint64 unparsed_paired = 0;
    qint64 size = 0;
    qint64 zeros = 0;
    qint64 first_zero = 0; ///< its offset
};

#endif
