// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/debug_log_capture.h"

#include "common/plugin_static_function.h"

#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

debug_log_capture::debug_log_capture()
{
    QFile file(path());
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot create the debug log of a test");
}

struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info debug_log_capture::general_info() const
{
    struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_general_info info;
    info.debug_mode_status = true;
    info.debug_print_in_file = true;
    info.debug_file_path = path();
    return info;
}

void debug_log_capture::start()
{
    plugin_static_function::set_essentials();
    plugin_static_function::set_general_info(general_info());
    plugin_static_function::set_engine_type(0);
}

QStringList debug_log_capture::take_lines()
{
    QFile file(path());
    if (!file.open(QIODevice::ReadWrite))
        qFatal("cannot read the debug log of a test");
    QString text = QString::fromLocal8Bit(file.readAll());
    file.resize(0);

    static const QRegularExpression time(uR"(^\[\d{4}-[A-Z][a-z]{2}-\d{2}T\d{2}-\d{2}-\d{2}\])"_s,
                                         QRegularExpression::MultilineOption);
    text.replace(time, u"[time]"_s);
    if (text.isEmpty())
        return {};
    text.chop(1); // every line ends with "\n"
    return text.split(u'\n');
}

QStringList debug_log_capture::take_messages()
{
    QStringList lines = take_lines();
    static const QRegularExpression fields(uR"(^\[time\]\[.*\]\[Artifacts Extraction\]\[(.*?)\]:-- )"_s);
    for (QString &line : lines)
        line.replace(fields, u"\\1: "_s);
    return lines;
}

QString debug_log_capture::path() const
{
    return directory.filePath(u"debug.log"_s);
}
