// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_IOS_LINES_H
#define HOST_SOURCE_IOS_LINES_H

#include "host/files/new_file.h"

#include <QByteArray>
#include <QLatin1StringView>

#include <array>
#include <functional>

/** A line of an iOS log with words of a device. */
struct ios_line
{
    qint64 number = 0; ///< from 1
    qint64 offset = 0; ///< of its first byte
    QLatin1StringView table;
    QByteArrayView start; ///< its bytes without the "\n", at most most_bytes; valid during the call
    qint64 size = 0;      ///< of all of them
    bool has_row = true;  ///< whether the plug-in makes a row of it

    static constexpr qint64 most_bytes = qint64(16) << 20;
};

/**
 * Finds in a log that is given block by block the lines that hold the words of a device message (docs/formats.md), in
 * their order; a line with the words of both kinds comes twice. One that lacks "<Notice>:" gives no row. No other line
 * is held, however long it is.
 */
class ios_line_finder
{
public:
    explicit ios_line_finder(std::function<void(const ios_line &line)> on_line);

    void add(QByteArrayView block);

    /** The log has ended: its last line may lack a line end. */
    void finish();

private:
    static constexpr std::size_t marker_count = 3;

    void add_whole_lines(QByteArrayView lines);
    void add_to_open_line(QByteArrayView bytes);
    void end_open_line();
    void emit_line(qint64 line_offset, QByteArrayView start, qint64 size,
                   const std::array<bool, marker_count> &has_marker);

    std::function<void(const ios_line &line)> take;
    qint64 offset = 0; ///< of the next byte
    qint64 number = 1; ///< of the line that holds it

    // The line that the last block ended in.
    QByteArray open_start;
    QByteArray open_end; ///< as long as a marker may reach back
    qint64 open_size = 0;
    std::array<bool, marker_count> open_markers = {};
};

/** Writes lines as JSON Lines, docs/report-formats.md. The file has its name only after commit(). */
class ios_line_writer
{
public:
    explicit ios_line_writer(const QString &path);

    void add(const ios_line &line);
    void commit();

private:
    new_file file;
};

#endif
