// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_LOG_LINE_H
#define HOST_REPORT_READING_LOG_LINE_H

#include <QByteArray>

#include <optional>

/** What the host itself reads in a line of an iOS log about a device; docs/formats.md shows such lines. */
struct device_line
{
    std::optional<QByteArray> name;       ///< up to the quotation mark that ends it, commas included; escapes decoded
    std::optional<QByteArray> identifier; ///< SFDevice ID or PI
    std::optional<QByteArray> rssi;
    std::optional<QByteArray> aid;
    bool is_paired = false; ///< the line says PairedBT
};

device_line read_device_line(QByteArrayView line);

/** Takes back what vis(3) does to bytes outside ASCII: "\M-b\M^@\M^Y" are the three bytes of a quotation mark. */
QByteArray decoded_escapes(QByteArrayView text);

#endif
