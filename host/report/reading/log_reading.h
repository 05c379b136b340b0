// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_LOG_READING_H
#define HOST_REPORT_READING_LOG_READING_H

#include "host/report/reading/log_line.h"
#include "host/report/reading/row_reading.h"

#include <QFile>

/** Reads the lines of an iOS log that the host kept beside the rows that the plug-in made of them, in the same order.
 */
class log_reading : public row_reading
{
public:
    /** @p lines is ios_lines.jsonl, @p log what locators call the log. */
    log_reading(const QString &lines, const QString &log, const QString &table, const sqlite_statement &row,
                const vendor_list &vendors);

    void next(const sqlite_statement &row) override;

private:
    bool advance();
    void describe(const sqlite_statement &row);

    const vendor_list &vendors;
    QFile file;
    QByteArray log_name;
    QString table;
    int date_column = -1;
    int name_column = -1;
    row_place next_place;
    QByteArray line;
    device_line fields;
    QByteArray differs;
    QByteArray vendor;
    QByteArray date;
};

#endif
