// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_DEVICES_DEVICE_ADDRESS_H
#define HOST_DEVICES_DEVICE_ADDRESS_H

#include <QByteArray>
#include <QLatin1StringView>

#include <optional>

/** A Bluetooth address as evidence writes it: "Public B4:C2:6A:7F:D3:7A", "Random …", or the six bytes alone. */
struct device_address
{
    QByteArray bytes; ///< "b4:c2:6a:7f:d3:7a"
    bool is_random = false;

    /** "public", or for a random one what its two highest bits say: static, resolvable, non-resolvable, reserved. */
    QLatin1StringView kind() const;

    /**
     * Whether it shows that two sources know the same device: a random one cannot, nor can one of zeros alone. Six
     * bytes alone count as public.
     */
    bool joins_sources() const;
};

/** Nothing when the text is no address. Letter case and separators do not matter. */
std::optional<device_address> parse_device_address(QByteArrayView text);

#endif
