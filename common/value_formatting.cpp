// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/date_parsing.h"
#include "common/folder_entries.h"
#include "common/function_log.h"
#include "common/platform/reference_date.h"
#include "common/plugin_static_function.h"
#include "common/text_parts.h"

#include <QFileInfo>
#include <QStringTokenizer>
#include <QtNumeric>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 kilobyte = 1024;
constexpr quint64 megabyte = kilobyte * 1024;

constexpr QLatin1StringView escape_mark("\\U");
constexpr qsizetype escape_digits = 4;

struct replacement
{
    QStringView before;
    QStringView after;
};

/** From the description of a list of addresses to its text; the order matters. */
constexpr replacement wherefrom_replacements[] = {
    // clang-format off
    {u"\n",       u""},
    {u"  ",       u""},
    {u"(\"",      u""},
    {u"\")",      u""},
    {u"\",",      u";"},
    {u",",        u"\n"},
    {u"<",        u"("},
    {u">",        u")"},
    {u"\"",       u""},
    {u"\\U2019s", u"'s"},
    // clang-format on
};

/** Replaces in one pass: QString::replace() of Qt 6.4 moves the rest of the text for each find. */
QString replaced(const QString &text, const replacement &texts)
{
    QString result;
    result.reserve(text.size());
    qsizetype copied = 0;
    for (qsizetype at = text.indexOf(texts.before); at != -1; at = text.indexOf(texts.before, copied)) {
        result.append(QStringView(text).sliced(copied, at - copied)).append(texts.after);
        copied = at + texts.before.size();
    }
    return result.append(QStringView(text).sliced(copied));
}

/** All releases of macOS 11 are one version. */
QString macos_version(const QString &version)
{
    return version.startsWith("11"_L1) ? first_part(version, u".") : version;
}

/** What stands behind the first "=" of a description's "]>{…}" part, without the brace. */
QString value_in_braces(const QString &description)
{
    QString value = second_part(second_part(description, u"]>{"), u"=");
    value.chop(1);
    return value;
}

/** The size of everything below a folder; nothing when the cancel flag stopped the walk. */
std::optional<QString> size_below(const std::filesystem::path &folder)
{
    qint64 sum = 0;
    bool does_not_fit = false;
    const bool is_cut_short = visit_below(folder, [&](const std::filesystem::directory_entry &entry) {
        std::error_code error;
        if (!entry.is_symlink(error) && entry.is_regular_file(error))
            does_not_fit = qAddOverflow(sum, static_cast<qint64>(entry.file_size(error)), &sum);
        return plugin_static_function::bool_cancel_extraction || does_not_fit;
    });
    if (does_not_fit)
        return QString();
    return is_cut_short ? std::nullopt : std::optional(QString::number(sum));
}

bool is_hexadecimal_digit(QChar digit)
{
    const char16_t unit = digit.unicode();
    return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'F') || (unit >= u'a' && unit <= u'f');
}

/** The UTF-16 unit of the four digits that @p text begins with. */
std::optional<QChar> escaped_unit(QStringView text)
{
    const QStringView digits = text.left(escape_digits);
    if (digits.size() < escape_digits || !std::all_of(digits.begin(), digits.end(), is_hexadecimal_digit))
        return std::nullopt;
    return QChar(digits.toUShort(nullptr, 16));
}

constexpr function_log log_conversion(u"static QString plugin_static_function::convert_string_to_unicode(QString)");

} // namespace

QString plugin_static_function::human_readable_size(QString bytes)
{
    bytes = bytes.trimmed();
    if (bytes.isEmpty())
        return {};
    const quint64 count = bytes.toULongLong();
    const auto in_units_of = [count](quint64 unit) {
        return QString::number(static_cast<double>(count) / static_cast<double>(unit), 'f', 2);
    };
    if (count < kilobyte)
        return QString::number(count) + u" B"_s;
    if (count < megabyte)
        return in_units_of(kilobyte) + u" KB"_s;
    return in_units_of(megabyte) + u" MB"_s;
}

QString plugin_static_function::mining_suffix(QString path)
{
    path = path.trimmed();
    const qsizetype name = path.lastIndexOf(u'/') + 1;
    const qsizetype point = path.lastIndexOf(u'.');
    return point > name ? path.sliced(point + 1) : QString();
}

QString plugin_static_function::mining_size(QString path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return {};
    const QString own_size = QString::number(info.size());
    return info.isDir() ? size_below(to_path(path)).value_or(own_size) : own_size;
}

QString plugin_static_function::get_examiner_machine_os_scan_version()
{
    return macos_version(examiner_machine_os_version_full).replace(u'.', u'_');
}

QString plugin_static_function::get_source_os_scan_version(QString os_scheme)
{
    QString version = source_os_version_full;
    if (os_scheme == "macOS"_L1)
        version = macos_version(version);
    else if (os_scheme == "iOS"_L1 || os_scheme == "winOS"_L1)
        version = first_part(version, u".");
    return version.replace(u'.', u'_');
}

QString plugin_static_function::get_filtered_number_value(QString description)
{
    if (!description.contains(u','))
        return {};
    return second_part(first_part(description, u","), u"+").trimmed();
}

QString plugin_static_function::get_filtered_boolean_value(QString description)
{
    return value_in_braces(description.trimmed()).trimmed();
}

QString plugin_static_function::get_filtered_cfstring_value(QString description)
{
    return value_in_braces(description.trimmed()).remove(u'"').trimmed();
}

QString plugin_static_function::get_filtered_string_value(QString description)
{
    description.remove(u'(').remove(u')').remove(u'"');
    QString entries;
    entries.reserve(description.size());
    for (const QStringView entry : qTokenize(description, u','))
        entries.append(entry.trimmed()).append(u';');
    entries.chop(1);
    return entries;
}

QString plugin_static_function::get_filtered_wherefrom_value(QString description)
{
    description = description.trimmed();
    for (const replacement &texts : wherefrom_replacements)
        description = replaced(description, texts);
    return description.trimmed();
}

QString plugin_static_function::get_filtered_date_value(QString date)
{
    date = date.trimmed();
    const QDateTime parsed = parse_iso_as_utc(date);
    if (parsed.isValid())
        return whole_seconds_text(parsed);

    bool readable = false;
    qint64 seconds = date.left(qMax(date.indexOf(u'.'), 0)).toLongLong(&readable);
    if (!readable || qAddOverflow(seconds, apple_reference_date, &seconds))
        return {};
    return QString::number(seconds);
}

QString plugin_static_function::convert_string_to_unicode(QString text)
{
    log_conversion(u" : running");
    QString converted;
    qsizetype copied = 0;
    qsizetype steps = 0;
    for (qsizetype at = text.indexOf(escape_mark); at != -1; at = text.indexOf(escape_mark, copied)) {
        // An escape takes several characters, so only a scan that does not advance can pass this bound.
        if (++steps > text.size()) {
            log_conversion(u" : infinite loop cross");
            return text;
        }
        const qsizetype digits = at + escape_mark.size();
        const std::optional<QChar> unit = escaped_unit(QStringView(text).sliced(digits));
        if (bool_cancel_extraction || !unit)
            return text;
        converted.append(QStringView(text).sliced(copied, at - copied)).append(*unit);
        copied = digits + escape_digits;
    }
    return converted.append(QStringView(text).sliced(copied));
}
