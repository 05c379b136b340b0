// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/page_column.h"

#include "host/report/page/html_text.h"

#include <QtEndian>

namespace {

// No value has either in it: every blank but U+0020 is shown as an escape, and a backslash is doubled.
constexpr QByteArrayView value_separator("\u00a0");
constexpr QByteArrayView null_value("\\N");

constexpr qsizetype most_different_values = 0x10000;
constexpr qsizetype most_narrow_places = 0x100;

bool has_digits(const cell &value)
{
    return value.kind == cell::type::integer || value.kind == cell::type::real;
}

QByteArray base64_of(const std::vector<quint16> &places, bool is_wide)
{
    QByteArray bytes;
    bytes.reserve(qsizetype(places.size()) * (is_wide ? 2 : 1));
    for (const quint16 place : places) {
        bytes.append(char(place & 0xff));
        if (is_wide)
            bytes.append(char(place >> 8));
    }
    return bytes.toBase64();
}

} // namespace

qsizetype page_column::place_of(const QByteArray &value)
{
    if (!places.empty() && different.at(places.back()) == value)
        return places.back(); // what most columns have row after row
    const auto found = known.constFind(value);
    if (found != known.cend())
        return *found;
    const qsizetype place = different.size();
    different.append(value);
    known.insert(value, place);
    return place;
}

void page_column::add(const cell &value)
{
    const QByteArray shown = page_value(value);
    has_value = has_value || !value.is_null();
    has_text = has_text || !(value.is_null() || has_digits(value));
    if (first_rows.size() < rows_without_script)
        first_rows.append(shown);
    const QByteArray kept = value.is_null() ? null_value.toByteArray() : shown;
    if (different.size() == most_different_values)
        keep_all();
    ++count;
    if (all.isEmpty()) {
        places.push_back(quint16(place_of(kept)));
        return;
    }
    all.append(value_separator);
    all.append(kept);
}

QByteArrayList page_column::values_of_rows() const
{
    QByteArrayList values;
    values.reserve(count);
    for (const quint16 place : places)
        values.append(different.at(place));
    return values;
}

void page_column::keep_all()
{
    all = values_of_rows().join(value_separator);
    different.clear();
    known.clear();
    places = {};
}

bool page_column::is_same_as(const page_column &other) const
{
    // The same rows in the same order make the same list of different values.
    return count == other.count && all == other.all && places == other.places && different == other.different;
}

QByteArray page_column::json() const
{
    if (!all.isEmpty())
        return "\"text\":" + page_json(all);
    if (different.size() == 1)
        return "\"same\":" + page_json(different.first());
    const bool is_wide = different.size() > most_narrow_places;
    if (is_wide && different.size() * 3 > count)
        return "\"text\":" + page_json(values_of_rows().join(value_separator));
    return "\"values\":" + page_json(different.join(value_separator)) + ",\"rows\":\"" + base64_of(places, is_wide)
           + '"' + (is_wide ? ",\"wide\":true" : "");
}
