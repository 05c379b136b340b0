// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/function_log.h"

#include "common/plugin_static_function.h"

void function_log::operator()(QStringView message) const
{
    operator()(message.toString());
}

void function_log::operator()(const QString &message) const
{
    plugin_static_function::app_debug(message, info.toString());
}
