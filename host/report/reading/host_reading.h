// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_HOST_READING_H
#define HOST_REPORT_READING_HOST_READING_H

#include "host/report/reading/report_case.h"
#include "host/sqlite/sqlite.h"

#include <QByteArray>
#include <QLatin1StringView>
#include <QString>

#include <array>
#include <memory>
#include <optional>

/** What the host itself reads of a device in a working copy or a line of a log, beside the plug-in's row. */
enum class host_field {
    resolved_address,
    last_seen_time,
    last_connection_time,
    name_origin,
    gatt_service_change_config,
    custom_properties,
    tags,
    icloud_identifier,
    address_kind,
    name,
    rssi,
    aid,
    line_text,
    preferences_name, ///< that the preferences list has for the public address
    vendor,           ///< of the public address, by the list that the examiner gave
    differs,          ///< the columns of the result, joined by ", ", in which the evidence says something else
};

inline constexpr std::array<QLatin1StringView, 16> host_field_names = {
    QLatin1StringView("resolved_address"),
    QLatin1StringView("last_seen_time"),
    QLatin1StringView("last_connection_time"),
    QLatin1StringView("name_origin"),
    QLatin1StringView("gatt_service_change_config"),
    QLatin1StringView("custom_properties"),
    QLatin1StringView("tags"),
    QLatin1StringView("icloud_identifier"),
    QLatin1StringView("address_kind"),
    QLatin1StringView("name"),
    QLatin1StringView("rssi"),
    QLatin1StringView("aid"),
    QLatin1StringView("line_text"),
    QLatin1StringView("preferences_name"),
    QLatin1StringView("vendor"),
    QLatin1StringView("differs"),
};

/** Where in the evidence a row comes from: a row of a table, or a line. */
struct row_place
{
    QByteArray file; ///< relative to the source; empty: the place is not known
    QByteArray table;
    std::optional<qint64> rowid;
    std::optional<qint64> line; ///< from 1
    std::optional<qint64> offset;
};

/** Follows the rows of one result table in the evidence that they come from, one after the other. */
class host_reading
{
public:
    host_reading() = default;
    virtual ~host_reading() = default;
    Q_DISABLE_COPY_MOVE(host_reading)

    /** Goes to the evidence of the result's next row, @p row. Without any, place() is empty and all values are null. */
    virtual void next(const sqlite_statement &row) = 0;

    /** Valid until the next call of next(). */
    virtual cell value_of(host_field field) const = 0;

    const row_place &place() const
    {
        return current_place;
    }

    /** Why not all of it could be read; empty if all could. */
    QString problem() const
    {
        return problem_text;
    }

protected:
    row_place current_place;
    QString problem_text;
};

/** Never null. @p row is the statement of the result table, before its first row. */
std::unique_ptr<host_reading> open_host_reading(const report_case &that_case, const report_source &source,
                                                const QString &table, const sqlite_statement &row);

#endif
