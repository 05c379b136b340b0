// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_COMMON_COLUMNS_H
#define HOST_REPORT_READING_COMMON_COLUMNS_H

#include "host/report/reading/report_column.h"

// Columns that several kinds of lines have.

/** The source of a line that has a report_source "source". */
template<typename Line>
line_columns<Line> source_columns()
{
    using namespace Qt::StringLiterals;
    using group = column_group;
    return {
        {{"source"_ba, group::source, {}, {}, "Source"_L1, "the number of the source in the case"_L1},
         [](const Line &line) { return cell::of_integer(line.source.record.number); }},
        {{"source_name"_ba,
          group::source,
          {},
          {},
          "Source name"_L1,
          "the name that the examiner gave, else Source and the number"_L1},
         [](const Line &line) { return cell::of_text(line.source.utf8_name); }},
    };
}

/** Where the evidence has what a line says, for lines with a function "place". */
template<typename Line>
line_columns<Line> place_columns()
{
    using namespace Qt::StringLiterals;
    using group = column_group;
    using use = column_use;
    return {
        {{"file"_ba, group::locator, {}, {}, "File"_L1, "the file of the evidence, relative to the source"_L1},
         [](const Line &line) { return cell::of_text_or_null(line.place().file); }},
        {{"table"_ba, group::locator, use::table_places, {}, "Table"_L1, "the table of the evidence"_L1},
         [](const Line &line) { return cell::of_text_or_null(line.place().table); }},
        {{"rowid"_ba,
          group::locator,
          use::table_places,
          {},
          "Row number"_L1,
          "SQLite's number of the row in that table"_L1},
         [](const Line &line) { return cell::of_integer(line.place().rowid); }},
        {{"line"_ba, group::locator, use::log_places, {}, "Line"_L1, "the line of the log, from 1"_L1},
         [](const Line &line) { return cell::of_integer(line.place().line); }},
        {{"offset"_ba,
          group::locator,
          use::log_places,
          {},
          "Byte offset"_L1,
          "where the line's first byte stands in the log"_L1},
         [](const Line &line) { return cell::of_integer(line.place().offset); }},
    };
}

#endif
