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

} // namespace

QList<QJsonObject> page_rows(const QByteArray &page, const QString &table)
{
    const QJsonObject content = table_of(page, table);
    const QJsonArray columns = content.value("columns"_L1).toArray();
    QList<QJsonObject> rows;
    for (const QJsonValue values : content.value("rows"_L1).toArray()) {
        QJsonObject row;
        for (qsizetype i = 0; i < columns.size(); ++i) {
            const QJsonValue value = values.toArray().at(i);
            const QString column = columns.at(i).toString();
            row.insert(column, value.isArray() ? rows.last().value(column) : value); // [] is the value above
        }
        rows.append(row);
    }
    return rows;
}
