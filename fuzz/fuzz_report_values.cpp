// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "fuzz/fuzzer.h"
#include "host/report/page/html_text.h"
#include "host/report/tables/separated_cell.h"
#include "host/text/json_text.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

/** What a reader of separated values makes of a line of one cell. */
QByteArray read_back(QByteArrayView line)
{
    if (!line.startsWith('"'))
        return line.toByteArray();
    return line.sliced(1, line.size() - 2).toByteArray().replace("\"\"", "\"");
}

/** The text or the bytes of a JSON value as reports write it. */
QByteArray bytes_of(const QByteArray &json)
{
    const QJsonValue value =
        QJsonDocument::fromJson("{\"value\":" + json + '}').object().value(QLatin1StringView("value"));
    if (value.isString())
        return value.toString().toUtf8();
    return QByteArray::fromBase64(value.toObject().value(QLatin1StringView("base64")).toString().toLatin1());
}

} // namespace

/** The input is a text of the evidence. */
int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    for (const char separator : {',', '\t'}) {
        const separated_cell cell = make_text_cell(text, false);
        QByteArray line;
        append_quoted(line, cell.text, separator);
        require(read_back(line) == cell.text, "a cell is not read back");
        require(!looks_like_formula(cell.text), "a cell looks like a formula");
    }
    QByteArray json;
    append_json_bytes(json, text);
    require(bytes_of(json) == text, "a JSON text is not read back");

    const QByteArray html = html_evidence(text);
    QByteArray content = html.sliced(5, html.size() - 11);                // between <bdi> and </bdi>
    content.replace("<span class=\"blank\">", "").replace("</span>", ""); // around blanks at the ends
    require(!content.contains('<') && !content.contains('>') && !content.contains('"'), "markup is not escaped");
    const QByteArray shown = page_json(page_text(text).toUtf8());
    require(!shown.contains('<') && !shown.contains('>') && !shown.contains('&'), "the data block is not escaped");
    return 0;
}
