// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_LOG_TEXT_H
#define HOST_SOURCE_LOG_TEXT_H

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <optional>

/** Why a file that begins with these bytes is no log text, and what to do about it: "it is a gzip archive: unpack it".
 */
std::optional<QString> why_no_log_text(QByteArrayView start);

/**
 * Whether the line could stand in a device's log: it begins with a time as such logs write it, or it holds one of the
 * phrases that the plug-in looks for. docs/formats.md.
 */
bool is_device_log_line(QByteArrayView line);

/** Whether a stream of bytes is the log text of a device: it has a line that could be of one. */
class device_log_check
{
public:
    /** Whether it is known to be a log by now. What decides that it is none stands in the first block. */
    bool add(QByteArrayView block);
    /** The stream has ended. Whether it is a log. */
    bool finish();

    /** Whether more bytes would change nothing. */
    bool is_decided() const
    {
        return has_line || !objection.isEmpty();
    }

    /** Why it is none. */
    QString reason() const
    {
        return objection;
    }

private:
    QByteArray rest; ///< of a line that the block before began
    QString objection;
    bool is_first = true;
    bool has_line = false;
};

/**
 * Why the regular file at @p path is no log text of a device, with what to do about it. It is read up to its first line
 * that could be of one. Nothing when there is such a line.
 */
std::optional<QString> why_no_device_log(const QString &path);

#endif
