// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/sleuth_kit.h"

/** All that the file bluetooth_logs_images gives. */
extern "C" __attribute__((visibility("default"))) const sleuth_kit *bluetooth_logs_sleuth_kit()
{
    static const sleuth_kit functions;
    return &functions;
}
