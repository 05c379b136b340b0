// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/run/scripted_worker.h"

#include "tests/support/test_entry.h"

#include <QFile>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/** Byte by byte: what comes behind the line is the script's. */
QByteArray line_from_input()
{
    QByteArray line;
    char byte = 0;
    while (::read(STDIN_FILENO, &byte, 1) == 1 && byte != '\n')
        line.append(byte);
    return line;
}

int run_script(int, char **)
{
    const QByteArray line = line_from_input();
    const worker_order order = worker_order::from_line(line);
    const QString &plugin = order.request.options.plugin_file;
    const QByteArray script = QFile::encodeName(plugin.isEmpty() ? order.request.source.path + u".worker"_s : plugin);
    const QByteArray number = QByteArray::number(order.request.number);
    const char *const tasks[] = {"extract", "inspect", "settle", "survey"};
    const char *const environment[] = {"PATH=/usr/bin:/bin", nullptr};
    ::execle("/bin/sh", "sh", script.constData(), tasks[int(order.to_do)], number.constData(), line.constData(),
             nullptr, environment);
    return 127;
}

const test_entry worker_entry("worker", run_script);

} // namespace

QByteArray saying(QByteArrayView line)
{
    return "cat <<'END_OF_LINE'\n" + line.toByteArray() + "END_OF_LINE\n";
}
