// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_HTML_TABLE_H
#define HOST_REPORT_PAGE_HTML_TABLE_H

#include "host/sqlite/sqlite.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/** A table of a page whose rows stand in the page's data block; the first ones are there without script too. */
class html_table
{
public:
    static constexpr qsizetype rows_without_script = 200;

    html_table(const QString &id, const QString &heading, const QString &caption);

    /** Begins a row. Its cells follow by their columns' names; columns that it does not name are NULL there. */
    void begin_row();
    void add(const QString &column, const cell &value);
    void add(const QString &column, const std::optional<qint64> &number);
    void add(const QString &column, QByteArrayView text);

    qsizetype row_count() const
    {
        return rows.size();
    }
    void set(qsizetype row, const QString &column, const std::optional<qint64> &number);
    void add_to_caption(const QString &sentence)
    {
        caption_text += QLatin1Char(' ') + sentence;
    }

    QByteArray section() const;
    /** {"id":…,"columns":[…],"rows":[…]} for the data block; [] is the value in the row above. */
    QByteArray data() const;

    QString id() const
    {
        return section_id;
    }
    QString title() const
    {
        return heading_text;
    }

private:
    qsizetype place_of(const QString &column);
    QList<qsizetype> filled_columns() const;

    QString section_id;
    QString heading_text;
    QString caption_text;
    QStringList columns;
    QList<bool> is_filled;           ///< by column: some row has a value there
    QList<QByteArrayList> rows;      ///< of JSON; shorter than columns where the last ones are NULL
    QList<QByteArrayList> html_rows; ///< of cells, for the first rows
};

#endif
