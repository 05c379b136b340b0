// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/sleuth_kit.h"

#include "host/files/program_part.h"

const sleuth_kit &tsk()
{
    static const sleuth_kit &functions = *function_of_part<const sleuth_kit *()>(BLUETOOTH_LOGS_IMAGES_FILE,
                                                                                 "bluetooth_logs_sleuth_kit")();
    return functions;
}
