// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/parse_log_line.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype date_length = 15; // "May 17 12:11:05"

/** Like QString::remove() of the first characters: nothing is left of a shorter text, and that is not a null text. */
QStringView without_start(QStringView text, qsizetype length)
{
    return text.sliced(qMin(text.size(), length));
}

/** The value of a part "Nm 'name'": what follows its two letters and the character behind them. */
QString named_value(QStringView part)
{
    return without_start(part, 3).toString();
}

/** The log escapes the bytes of a right single quotation mark; other escapes stay as they are. */
QString with_plain_quotes(QString text)
{
    return text.replace(uR"(\M-b\M^@\M^Y)"_s, u"'"_s);
}

QString unquoted(QString text)
{
    if (text.startsWith(u'\''))
        text.remove(0, 1);
    if (text.endsWith(u'\''))
        text.chop(1);
    return text;
}

QString status_before(QLatin1StringView end, QStringView words)
{
    QString status = words.toString();
    // Without the end the position is -1, which remove() counts from the end: the last character goes.
    status.remove(status.indexOf(end), status.size());
    return status.trimmed();
}

} // namespace

log_line_fields parse_log_line(const QString &line, const log_line_format &format)
{
    const qsizetype start = line.indexOf(format.start) + format.start.size() + 1;
    const QStringView words = without_start(line, start).trimmed();

    log_line_fields fields;
    fields.status = status_before(format.status_end, words);
    fields.date = line.first(qMin(line.size(), date_length));
    // The first part begins with the status words, so that a field right behind the status is not seen.
    for (const QStringView part : words.tokenize(QStringView(u", "))) {
        if (part.startsWith(format.identifier))
            fields.identifier = without_start(part, format.identifier.size()).toString();
        else if (part.startsWith("Nm"_L1))
            fields.device_name = unquoted(with_plain_quotes(named_value(part)));
        else if (part.startsWith("Md"_L1))
            fields.model = unquoted(named_value(part)); // escapes stay, unlike in the name
    }
    return fields;
}
