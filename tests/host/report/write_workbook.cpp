// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// write_workbook FILE        a workbook of values of every kind, in two tables
// write_workbook FILE ROWS   a workbook of a table, at most ROWS rows a sheet, of the texts on standard input: each is
// a
//                            row of hexadecimal digits. Prints how many were cut, and in how many characters are
//                            spelled.

#include "host/report/tables/workbook.h"

#include <QFile>
#include <QTextStream>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

void write_values(table_store &book)
{
    constexpr qint64 largest_exact = qint64(1) << 53;
    book.begin_table(u"values"_s, {{"value"}, {"left out", column_group::line, column_use::members_only}, {"=text"}});
    const auto add = [&book](const cell &value, const char *text) {
        book.add({value, cell::of_text("unseen"), cell::of_text(text)});
    };
    add(cell::of_integer(largest_exact), "largest exact");
    add(cell::of_integer(largest_exact + 1), "beyond it");
    add(cell::of_integer(-largest_exact), "least exact");
    add(cell::of_integer(-largest_exact - 1), "below it");
    add({cell::type::real, 0, 0.5, {}}, "real");
    add({cell::type::real, 0, std::numeric_limits<double>::infinity(), {}}, "infinite");
    add({cell::type::blob, 0, 0, "ab"}, "blob");
    add(cell(), "null");
    add(cell::of_text(""), "");
    book.begin_table(u"nothing"_s, {{"a"}, {"b"}, {"c"}});
    book.commit();
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 2 || argc > 3)
        return 64;
    QFile input;
    if (!has_workbooks() || !input.open(stdin, QIODevice::ReadOnly))
        return 77;
    workbook_notes notes;
    if (argc == 2) {
        write_values(*make_workbook(QFile::decodeName(argv[1]), notes));
        return 0;
    }
    const std::unique_ptr<table_store> book = make_workbook(QFile::decodeName(argv[1]), notes,
                                                            QByteArray(argv[2]).toInt());
    book->begin_table(u"devices"_s, {{"number"}, {"text"}});
    qint64 number = 0;
    for (QByteArray line = input.readLine(); !line.isEmpty(); line = input.readLine()) {
        const QByteArray text = QByteArray::fromHex(line.trimmed());
        book->add({cell::of_integer(++number), cell::of_text(text)});
    }
    book->commit();
    QTextStream(stdout) << notes.cut << ' ' << notes.spelled << '\n';
    return 0;
}
