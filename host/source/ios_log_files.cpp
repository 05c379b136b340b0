// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/ios_log_files.h"

#include "host/source/macos_databases.h"

#include <algorithm>

using namespace Qt::StringLiterals;

ios_log_files::ios_log_files(const QString &lines_file, const QString &unparsed_file)
    : finder([this](const ios_line &line) { take(line); })
    , lines(lines_file)
    , unparsed_path(unparsed_file)
{
}

void ios_log_files::take(const ios_line &line)
{
    if (line.has_row) {
        lines.add(line);
        return;
    }
    if (!unparsed)
        unparsed.emplace(unparsed_path);
    unparsed->add(line);
    ++(line.table == paired_devices_database.result_table ? unparsed_paired : unparsed_devices);
}

void ios_log_files::add(QByteArrayView block)
{
    if (const qsizetype zero = block.indexOf('\0'); zero >= 0) {
        if (zeros == 0)
            first_zero = size + zero;
        zeros += std::count(block.begin() + zero, block.end(), '\0');
    }
    size += block.size();
    finder.add(block);
}

void ios_log_files::finish()
{
    finder.finish();
    lines.commit();
    if (unparsed)
        unparsed->commit();
}

QJsonObject ios_log_files::unparsed_counts() const
{
    return {{other_devices_database.result_table, unparsed_devices},
            {paired_devices_database.result_table, unparsed_paired}};
}

QString ios_log_files::oddity() const
{
    if (zeros == 0)
        return {};
    return u"it holds "_s + QString::number(zeros) + (zeros == 1 ? u" zero byte"_s : u" zero bytes"_s)
           + u", which no text has, from offset "_s + QString::number(first_zero) + u" on"_s;
}
