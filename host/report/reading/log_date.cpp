// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/reading/log_date.h"

#include <QRegularExpression>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longest_date = 48;

QString start_of(QByteArrayView line)
{
    return QString::fromLatin1(line.first(qMin(line.size(), longest_date)));
}

} // namespace

QByteArray zoned_date(QByteArrayView line)
{
    static const QRegularExpression form(
        uR"(^(\d{4}-\d\d-\d\d)[ T](\d\d:\d\d:\d\d)([.,]\d{1,9})? ?(Z|[+-]\d\d:?\d\d)(?!\d))"_s);
    if (!line.startsWith('1') && !line.startsWith('2')) // nearly every line
        return {};
    const QRegularExpressionMatch match = form.match(start_of(line));
    if (!match.hasMatch())
        return {};
    QString zone = match.captured(4);
    if (zone.size() == 5)
        zone.insert(3, u':');
    const QString seconds = match.captured(1) + u'T' + match.captured(2);
    if (!QDateTime::fromString(seconds + zone, Qt::ISODate).isValid())
        return {};
    return QString(seconds + match.captured(3).replace(u',', u'.') + zone).toLatin1();
}

std::optional<yearless_date> date_without_year(QByteArrayView line)
{
    static const QRegularExpression form(uR"(^([A-Z][a-z]{2}) +(\d{1,2}) (\d\d:\d\d:\d\d)(?!\d))"_s);
    static const QStringList months{u"Jan"_s, u"Feb"_s, u"Mar"_s, u"Apr"_s, u"May"_s, u"Jun"_s,
                                    u"Jul"_s, u"Aug"_s, u"Sep"_s, u"Oct"_s, u"Nov"_s, u"Dec"_s};
    const QRegularExpressionMatch match = form.match(start_of(line));
    const yearless_date date{int(months.indexOf(match.captured(1))) + 1, match.captured(2).toInt(),
                             QTime::fromString(match.captured(3), Qt::ISODate)};
    if (!match.hasMatch() || date.month == 0 || date.day < 1 || date.day > 31 || !date.time.isValid())
        return {};
    return date;
}
