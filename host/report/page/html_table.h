// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_HTML_TABLE_H
#define HOST_REPORT_PAGE_HTML_TABLE_H

#include "host/files/new_file.h"
#include "host/report/page/page_column.h"

#include <QByteArray>
#include <QList>
#include <QString>

#include <deque>

/** What a page says of a column. */
struct column_about
{
    QByteArray name;        ///< as programs call it, in ASCII or the evidence's words
    QByteArray heading;     ///< for readers
    QByteArray group;       ///< columns of one stand beside each other under its name
    QByteArray meaning;     ///< what it says, and what it does not prove; may be empty
    bool is_hidden = false; ///< until the reader asks for it
    QByteArray link = {};   ///< with script its values lead to the pages with that name and number: "device"
    QByteArray twin = {};   ///< a column that it is hidden beside while both have the same values
};

/** A table of a page whose rows stand in the page's data block; the first ones are there without script too. */
class html_table
{
public:
    /** All in the page's own words; @p caption is HTML. */
    html_table(const QByteArray &id, const QByteArray &heading, const QByteArray &caption);

    /** A further column, which stays where it is. Its values are added row by row. */
    page_column &add_column(const column_about &about);

    /** The numbers in that column open a page each: the rows are numbered by it. */
    void set_opens(const QByteArray &column)
    {
        opens = column;
    }
    void add_to_caption(const QByteArray &html)
    {
        caption_html += ' ' + html;
    }

    qsizetype row_count() const;
    QByteArray section() const;
    /** Adds {"id":…,"count":…,"columns":[…]} for the data block, a column at a time: they may be of many MB. */
    void add_data(new_file &file) const;

    const QByteArray &id() const
    {
        return section_id;
    }
    const QByteArray &title() const
    {
        return heading_text;
    }

private:
    struct table_column
    {
        column_about about;
        page_column values;
    };

    QList<const table_column *> filled() const;
    bool is_hidden(const table_column &column) const;
    QByteArray column_about_json(const table_column &column) const;
    QByteArray head(const QList<const table_column *> &shown) const;
    QByteArray rows(const QList<const table_column *> &shown) const;

    QByteArray section_id;
    QByteArray heading_text;
    QByteArray caption_html;
    QByteArray opens;
    std::deque<table_column> columns; ///< whose places in memory stay
};

#endif
