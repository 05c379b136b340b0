// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/ios_rows.h"

#include "host/case/result_database.h"
#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/source/macos_databases.h"
#include "host/text/count_text.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/** How the lines of one table are read. */
struct row_rule
{
    QLatin1StringView table;
    QLatin1StringView start;      ///< the parts begin one character behind it
    QLatin1StringView identifier; ///< how the part begins that holds it
    QLatin1StringView identifier_column;
    QLatin1StringView status_end; ///< the status stands before it; empty: there is no such column
};

constexpr row_rule row_rules[] = {
    {other_devices_database.result_table, "BLE device found:"_L1, "SFDevice ID "_L1, "sf_device_id"_L1, ""_L1},
    {paired_devices_database.result_table, "<Notice>:"_L1, "PI "_L1, "device_address"_L1, "active device: "_L1},
};

constexpr qsizetype date_length = 15;
constexpr qsizetype part_name_length = 3; // "Nm ", "Md "

const row_rule &rule_of(const QString &table)
{
    return table == row_rules[0].table ? row_rules[0] : row_rules[1];
}

/** SQLite takes U+FEFF at the start of a text for the mark of a file. */
QByteArray without_mark(const QByteArray &utf8)
{
    return utf8.startsWith("\xef\xbb\xbf") ? utf8.sliced(3) : utf8;
}

QString without_quotes(QString text)
{
    if (text.startsWith(u'\''))
        text.remove(0, 1);
    if (text.endsWith(u'\''))
        text.chop(1);
    return text;
}

/** The value of a part: never null, as the part is there. */
QString value_of(QStringView part, qsizetype name_length)
{
    return part.size() > name_length ? part.sliced(name_length).toString() : u""_s;
}

/** Without the words that end it the status lacks its last character. */
QString status_of(const QString &words, QLatin1StringView end)
{
    const qsizetype at = words.indexOf(end);
    const QString status = (at < 0 ? words.chopped(qMin<qsizetype>(1, words.size())) : words.first(at)).trimmed();
    return status.isNull() ? u""_s : status;
}

/** Gives the lines of a file that ios_line_writer wrote. */
class kept_lines
{
public:
    explicit kept_lines(const QString &path)
    {
        if (const QString problem = open_case_file(file, path); !problem.isEmpty())
            throw host_error(error_kind::not_found, path + u" cannot be read: "_s + problem);
    }

    /** The next line of the table; nothing at the end. */
    std::optional<QJsonObject> next(const QString &table)
    {
        for (;;) {
            const QByteArray line = file.readLine();
            if (file.error() != QFileDevice::NoError)
                throw host_error(error_kind::not_found, file.fileName() + u" cannot be read: "_s + file.errorString());
            if (line.isEmpty())
                return {};
            const QJsonObject json = QJsonDocument::fromJson(line).object();
            if (json.value("table"_L1) == table)
                return json;
        }
    }

private:
    QFile file;
};

/** Bytes that are no UTF-8 stand there in base64. */
QByteArray line_bytes(const QJsonValue &text)
{
    return text.isString() ? text.toString().toUtf8() : QByteArray::fromBase64(text["base64"_L1].toString().toLatin1());
}

bool has_cell(const sqlite_statement &row, const expected_cell &expected)
{
    const int column = row.column_named(expected.column);
    if (column < 0)
        return false;
    if (expected.text.isNull())
        return row.column_type(column) == cell::type::null;
    return row.column_type(column) == cell::type::text && row.bytes(column) == without_mark(expected.text.toUtf8());
}

bool is_row_of(const sqlite_statement &row, const QString &table, const QJsonObject &line)
{
    if (line.contains("size"_L1))
        return true; // a line of many megabytes is not kept whole
    const QList<expected_cell> cells = expected_cells(table, line_bytes(line.value("text"_L1)));
    return std::all_of(cells.cbegin(), cells.cend(), [&row](const auto &expected) { return has_cell(row, expected); });
}

/** Where the rows of a table and its lines differ, nothing if nowhere. */
std::optional<QString> difference(const result_database &result, const QString &ios_lines, const QString &table)
{
    kept_lines lines(ios_lines);
    sqlite_statement row = result.rows(table);
    qint64 line_count = 0;
    qint64 row_count = 0;
    qint64 unlike = 0;
    qint64 first_unlike = 0; // the number of its line
    for (bool has_row = true;;) {
        has_row = has_row && row.next(); // a further call would begin anew
        const std::optional<QJsonObject> line = lines.next(table);
        row_count += has_row ? 1 : 0;
        line_count += line ? 1 : 0;
        if (!has_row && !line)
            break;
        if (has_row && line && !is_row_of(row, table, *line) && ++unlike == 1)
            first_unlike = line->value("line"_L1).toInteger();
    }
    if (line_count != row_count)
        return u"the log holds "_s + count_text(line_count) + (line_count == 1 ? u" line"_s : u" lines"_s)
               + u" for the table "_s + table + u", and the result "_s + rows_text(row_count);
    if (unlike > 0)
        return rows_text(unlike) + u" of the table "_s + table
               + (unlike == 1 ? u" is not what the log says in line "_s
                              : u" are not what the log says, the first one in line "_s)
               + count_text(first_unlike);
    return {};
}

} // namespace

QList<expected_cell> expected_cells(const QString &table, const QByteArray &line)
{
    const row_rule &rule = rule_of(table);
    const QString text = QString::fromUtf8(line);
    const qsizetype start = qMin(text.size(), text.indexOf(rule.start) + rule.start.size() + 1);
    const QString words = text.sliced(start).trimmed();
    expected_cell identifier{rule.identifier_column, {}};
    expected_cell name{"device_name"_L1, {}};
    expected_cell model{"model"_L1, {}};
    for (const QString &part : words.split(u", "_s)) {
        if (part.startsWith(rule.identifier))
            identifier.text = value_of(part, rule.identifier.size());
        else if (part.startsWith("Nm"_L1))
            name.text = without_quotes(value_of(part, part_name_length).replace(uR"(\M-b\M^@\M^Y)"_s, u"'"_s));
        else if (part.startsWith("Md"_L1))
            model.text = without_quotes(value_of(part, part_name_length));
    }
    QList<expected_cell> cells{identifier, name, model, {"date"_L1, text.first(qMin(text.size(), date_length))}};
    if (!rule.status_end.isEmpty())
        cells.append({"status"_L1, status_of(words, rule.status_end)});
    return cells;
}

QStringList ios_row_differences(const QString &result_database_file, const QString &ios_lines,
                                const QStringList &tables)
{
    const result_database result(result_database_file);
    QStringList differences;
    for (const QString &table : tables) {
        if (const std::optional<QString> text = difference(result, ios_lines, table))
            differences.append(*text);
    }
    return differences;
}
