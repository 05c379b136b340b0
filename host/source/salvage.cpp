// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/salvage.h"

#include "host/files/new_file.h"
#include "host/files/open_without_links.h"
#include "host/source/leaf_pages.h"
#include "host/text/json_text.h"

#include <QFile>

#include <optional>

using namespace Qt::StringLiterals;

namespace {

/** The columns of a device table in their order; an older layout ends with LastConnectionTime. */
constexpr QByteArrayView columns[] = {
    "Uuid",
    "Name",
    "NameOrigin",
    "Address",
    "ResolvedAddress",
    "LastSeenTime",
    "LastConnectionTime",
    "GATTServiceChangeConfig",
    "Tags",
    "iCloudIdentifier",
};
constexpr qsizetype fewest_columns = 7;

/** No other table of such a database has as many columns, so that a page need not say whose it is. */
bool is_device(const leaf_row &row)
{
    return row.values.size() >= fewest_columns && row.values.size() <= qsizetype(std::size(columns));
}

QByteArray line_of(const leaf_row &row, const macos_database &database)
{
    QByteArray json = "{\"result_table\":\"" + QByteArray(database.result_table.data()) + "\",\"file\":\"";
    json += path_in_source(database).toUtf8() + "\",\"table\":\"" + QByteArray(database.device_table.data());
    json += "\",\"page\":" + QByteArray::number(row.page) + ",\"rowid\":" + QByteArray::number(row.rowid)
            + ",\"row\":{";
    for (qsizetype i = 0; i < row.values.size(); ++i) {
        if (i > 0)
            json += ',';
        append_json_text(json, columns[i]);
        json += ':';
        append_json_value(json, row.values.at(i));
    }
    return json + "}}\n";
}

qint64 salvage_database(const macos_database &database, const QString &copy, new_file &output)
{
    QFile file;
    if (!open_case_file(file, copy).isEmpty() || file.size() == 0)
        return 0;
    const uchar *bytes = file.map(0, file.size());
    if (!bytes)
        return 0;
    qint64 count = 0;
    for_each_leaf_row(QByteArrayView(bytes, file.size()), [&](const leaf_row &row) {
        if (!is_device(row))
            return;
        output.add(line_of(row, database));
        ++count;
    });
    return count;
}

} // namespace

QJsonObject write_salvage(const QList<const macos_database *> &damaged, const QString &copies, const QString &file)
{
    QJsonObject counts;
    if (damaged.isEmpty())
        return counts;
    new_file output(file);
    for (const macos_database *database : damaged)
        counts.insert(database->result_table,
                      salvage_database(*database, copies + u'/' + path_in_source(*database), output));
    output.commit();
    return counts;
}
