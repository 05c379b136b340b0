// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/text/count_text.h"

#include <QLocale>

using namespace Qt::StringLiterals;

QString count_text(qint64 count)
{
    return QLocale(QLocale::English).toString(count);
}

QString count_text(const std::optional<qint64> &count)
{
    return count ? count_text(*count) : u"an unknown number"_s;
}

QString rows_text(qint64 rows)
{
    return count_text(rows) + (rows == 1 ? u" row"_s : u" rows"_s);
}
