// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/log_watch.h"

#include "common/plugin_static_function.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const std::function<void(const QString &)> *watcher = nullptr;

} // namespace

void watch_log(const std::function<void(const QString &)> &on_message, const std::function<void()> &work)
{
    watcher = &on_message;
    plugin_static_function::debug_print_on_terminal_bool = true;
    const QtMessageHandler earlier = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &line) { (*watcher)(line.section(u"]:-- "_s, -1)); });
    work();
    qInstallMessageHandler(earlier);
    plugin_static_function::debug_print_on_terminal_bool = false;
}

void slow_down_at(const QString &end, const std::function<void()> &work)
{
    const auto wait = [&end](const QString &message) {
        if (message.endsWith(end))
            QTest::qSleep(1100);
    };
    watch_log(wait, work);
}
