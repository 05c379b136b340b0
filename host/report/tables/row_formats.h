// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_ROW_FORMATS_H
#define HOST_REPORT_TABLES_ROW_FORMATS_H

#include "host/report/reading/report_row.h"
#include "host/report/tables/separated_files.h"

#include <QLatin1StringView>

#include <functional>

enum class report_format { html, csv, tsv, jsonl, timeline, sqlite, xlsx };

/** A format that programs read. */
struct program_format
{
    report_format format;
    QLatin1StringView suffix;
    char separator; ///< of values; 0: they are no separated ones
};

inline constexpr program_format program_formats[] = {
    {report_format::csv, QLatin1StringView(".csv"), ','},
    {report_format::tsv, QLatin1StringView(".tsv"), '\t'},
    {report_format::jsonl, QLatin1StringView(".jsonl"), 0},
};

/** A format that is one file, or few, for the whole case. */
struct case_format
{
    report_format format;
    QLatin1StringView name; ///< on the command line
};

inline constexpr case_format case_formats[] = {
    {report_format::html, QLatin1StringView("html")},
    {report_format::timeline, QLatin1StringView("timeline")},
    {report_format::sqlite, QLatin1StringView("sqlite")},
    {report_format::xlsx, QLatin1StringView("xlsx")},
};

/** "csv": how the format is called on the command line. */
inline QString format_name(const program_format &format)
{
    return QString(format.suffix.sliced(1));
}

/** How texts stand in separated values. */
struct cell_options
{
    bool is_raw = false;   ///< texts that look like formulas stay as they are
    bool has_mark = false; ///< a byte order mark stands in front
};

separated_form form_of(const program_format &format, const cell_options &options);

using row_writer = std::function<void(const report_row &row)>;

/**
 * Returns a function that writes each row of a result table to @p sink. Writes the header at once. @p columns are those
 * of the result.
 */
row_writer make_row_writer(const program_format &format, const cell_options &options, const QStringList &columns,
                           const QString &table, const byte_sink &sink, changed_cells &changes);

#endif
