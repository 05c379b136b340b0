// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/log_date.h"

#include <QDate>
#include <QRegularExpression>
#include <QTime>

using namespace Qt::StringLiterals;

QByteArray date_with_zone(QByteArrayView line)
{
    constexpr qsizetype longest = 40;
    static const QRegularExpression form(
        u"^([0-9]{4}-[0-9]{2}-[0-9]{2})[ T]([0-9]{2}:[0-9]{2}:[0-9]{2})([.][0-9]{1,9})?"
        " ?(?:(Z)|([+-](?:0[0-9]|1[0-4])):?([0-5][0-9]))(?![0-9])"_s);
    const QRegularExpressionMatch match = form.match(QString::fromLatin1(line.first(qMin(line.size(), longest))));
    if (!match.hasMatch() || !QDate::fromString(match.captured(1), Qt::ISODate).isValid()
        || !QTime::fromString(match.captured(2), Qt::ISODate).isValid())
        return {};
    const QString zone = match.captured(4).isEmpty() ? QString(match.captured(5) + u':' + match.captured(6)) : u"Z"_s;
    return QString(match.captured(1) + u'T' + match.captured(2) + match.captured(3) + zone).toLatin1();
}
