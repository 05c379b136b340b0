// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_PAGE_LOG_TIMELINE_H
#define HOST_REPORT_PAGE_LOG_TIMELINE_H

#include "host/report/page/device_facts.h"
#include "host/text/cell.h"

#include <QByteArray>

#include <optional>
#include <vector>

/** Where a date of a log, "May 17 12:11:05", stands in a year that may have a 29th of February; none for another text.
 */
std::optional<qint64> second_of_year(QByteArrayView date);

/** What the rows of a table are called. */
struct timeline_words
{
    const char *heading = ""; ///< behind the name of the source
    const char *title = "Sightings";
    const char *one = "sighting";
    const char *many = "sightings";
};

/** How much of it is shown. */
struct timeline_form
{
    std::size_t most_logs = 12;
    std::size_t most_lanes = 20; ///< of each log
    bool has_pages = true;       ///< numbers of devices lead to the devices' pages
    qsizetype most_columns = 0;  ///< of a name, of which a wide character takes two; 0: all of it
    timeline_words words = {};
};

/** The sightings of a table's rows, as far as their lines have a date. */
class log_timeline
{
public:
    /** One row after the other; @p date is null where a row has none. */
    void add(const report_source &source, const cell &date, const cell &rssi);

    /**
     * Pictures and tables, by source; @p device_of_row are the numbers of the rows' devices. Empty without a date. What
     * there is no room for in @p form is counted.
     */
    QByteArray html(const QList<device_facts> &devices, const std::vector<qint64> &device_of_row,
                    const timeline_form &form) const;

private:
    struct sighting
    {
        std::size_t row;
        qint64 second; ///< of the log's own years
        std::optional<int> rssi;
    };
    struct dated_log
    {
        const report_source *source;
        qint64 years = 0; ///< how often the dates began anew
        qint64 without_date = 0;
        std::vector<sighting> sightings;
    };

    static QByteArray html_of(const dated_log &log, const QList<device_facts> &devices,
                              const std::vector<qint64> &device_of_row, const timeline_form &form);

    std::vector<dated_log> logs;
    std::size_t rows = 0;
};

#endif
