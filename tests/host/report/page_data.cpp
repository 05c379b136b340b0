// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/host/report/page_data.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QJsonObject table_of(const QByteArray &page, const QString &name)
{
    const QByteArray start = "id=\"data\">";
    const qsizetype begin = page.indexOf(start) + start.size();
    const QByteArray block = page.sliced(begin, page.indexOf("</script>", begin) - begin);
    for (const QJsonValue table : QJsonDocument::fromJson(block).object().value("tables"_L1).toArray()) {
        if (table.toObject().value("id"_L1).toString() == name)
            return table.toObject();
    }
    qFatal("the page has no table %s", qPrintable(name));
}

/** Of each row, what script/column.js makes of the column. */
QStringList values_of(const QJsonObject &column, const QJsonArray &columns, qsizetype count)
{
    if (column.contains("as"_L1))
        return values_of(columns.at(column.value("as"_L1).toInt()).toObject(), columns, count);
    if (column.contains("same"_L1))
        return QStringList(count, column.value("same"_L1).toString());
    if (column.contains("text"_L1))
        return column.value("text"_L1).toString().split(u'\u00a0');
    const QStringList different = column.value("values"_L1).toString().split(u'\u00a0');
    const QByteArray places = QByteArray::fromBase64(column.value("rows"_L1).toString().toLatin1());
    const auto byte = [&places](qsizetype place) { return int(static_cast<unsigned char>(places.at(place))); };
    QStringList values;
    for (qsizetype row = 0; row < count; ++row)
        values.append(different.at(column.contains("wide"_L1) ? byte(2 * row) + 256 * byte(2 * row + 1) : byte(row)));
    return values;
}

} // namespace

QList<QJsonObject> page_rows(const QByteArray &page, const QString &table)
{
    const QJsonObject content = table_of(page, table);
    const QJsonArray columns = content.value("columns"_L1).toArray();
    const qsizetype count = content.value("count"_L1).toInteger();
    QList<QJsonObject> rows(count);
    for (const QJsonValue column : columns) {
        const QStringList values = values_of(column.toObject(), columns, count);
        if (values.size() != count)
            qFatal("%lld values for %lld rows", values.size(), count);
        for (qsizetype row = 0; row < count; ++row)
            rows[row].insert(column.toObject().value("name"_L1).toString(),
                             values.at(row) == u"\\N"_s ? QJsonValue() : values.at(row));
    }
    return rows;
}
