// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "extractors/ios_uid/parse_log_line.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView notice("<Notice>:");
constexpr QLatin1StringView found_device_markers[] = {"BLE device found:"_L1};
constexpr QLatin1StringView active_device_markers[] = {"active device:"_L1, notice};

// Parts of both kinds of line.
constexpr QLatin1StringView device_name("Nm");
constexpr QLatin1StringView model("Md");
constexpr qsizetype date_length = 15; // "May 17 12:11:05"

/** Removes the first characters, as QString::remove() does: a shorter text becomes empty, and not null. */
QStringView without_start(QStringView text, qsizetype length)
{
    return text.sliced(qMin(text.size(), length));
}

/** The value of a part "Nm 'name'": what follows its two letters and the character behind them. */
QString named_value(QStringView part)
{
    return without_start(part, 3).toString();
}

/** Unescapes the right single quotation marks; other escapes stay as they are. */
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
    // A position of -1 counts from the end of the text: without the end word the last character is removed.
    status.remove(status.indexOf(end), status.size());
    return status.trimmed();
}

} // namespace

const log_line_format log_line_format::found_device = {
    .markers = found_device_markers,
    .start = found_device_markers[0],
    .identifier = "SFDevice ID "_L1,
    .status_end = {},
};

const log_line_format log_line_format::active_device = {
    .markers = active_device_markers,
    .start = notice,
    .identifier = "PI "_L1,
    .status_end = "active device: "_L1, // with its blank, which the line may lack
};

log_line_fields parse_log_line(const QString &line, const log_line_format &format)
{
    const qsizetype start = line.indexOf(format.start) + format.start.size() + 1;
    const QStringView words = without_start(line, start).trimmed();

    log_line_fields fields;
    fields.status = status_before(format.status_end, words);
    fields.date = line.first(qMin(line.size(), date_length));
    // The first part begins with the words of the status: a field that directly follows the status is not found.
    for (const QStringView part : words.tokenize(QStringView(u", "))) {
        if (part.startsWith(format.identifier))
            fields.identifier = without_start(part, format.identifier.size()).toString();
        else if (part.startsWith(device_name))
            fields.device_name = unquoted(with_plain_quotes(named_value(part)));
        else if (part.startsWith(model))
            fields.model = unquoted(named_value(part)); // escapes stay, unlike in the name
    }
    return fields;
}
