// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/plugin_static_function.h"

#include <QDateTime>
#include <QDebug>
#include <QFile>

using namespace Qt::StringLiterals;

namespace {

/** "virtual void a::b(int)" → "a::b". */
QString qualified_function_name(const QString &function_info)
{
    QString name = function_info.trimmed();
    if (name.isEmpty())
        return u"FUNCTION INFO IS EMPTY ---FAILED--- debug!!!"_s;

    // Without a "(" the position is -1, which remove() counts from the end: the last character goes.
    name.remove(name.indexOf(u'('), name.size());
    name = name.trimmed();
    return name.sliced(name.lastIndexOf(u' ') + 1).trimmed();
}

/** The engine's part of a log line, from "[" to "]". */
QString engine_field(int engine_type)
{
    switch (engine_type) {
    case 0:
        return u"[KALDO_DESK]"_s;
    case 1:
        return u"[KALDO_FIELD]"_s;
    case 2:
        return u"[KALDO_BOOT]"_s;
    default:
        return u"[ -----FAILED----- to find Engine Type ]["_s + QString::number(engine_type) + u']';
    }
}

void append_to_file(const QString &path, const QString &line)
{
    if (!QFile::exists(path))
        return;

    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::Append)) {
        qDebug().noquote() << u"Debug File Open ----- FAILED-------   Error - "_s + file.errorString();
        return;
    }
    file.write(line.toLocal8Bit() + '\n');
    file.flush();
}

} // namespace

void plugin_static_function::app_debug(QString message, QString function_info)
{
    if (!debug_mode_status_bool)
        return;

    const QString line = u'[' + QDateTime::currentDateTime().toString(u"yyyy-MMM-ddThh-mm-ss") + u']'
                         + engine_field(type_engine_int) + u"[Artifacts Extraction]["_s
                         + qualified_function_name(function_info) + u"]:-- "_s + message;

    if (debug_print_on_terminal_bool)
        qDebug().noquote() << line;
    if (debug_print_in_file_bool)
        append_to_file(debug_file_path, line);
}
