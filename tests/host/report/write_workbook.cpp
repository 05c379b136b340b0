// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// write_workbook FILE ROWS   a workbook of a table, at most ROWS rows a sheet, of the texts on standard input: each is
// a
//                            row of hexadecimal digits. Prints how many were cut, and in how many characters are
//                            spelled.

#include "host/report/tables/workbook.h"

#include <QFile>
#include <QTextStream>

using namespace Qt::StringLiterals;

int main(int argc, char *argv[])
{
    if (argc != 3)
        return 64;
    QFile input;
    if (!has_workbooks() || !input.open(stdin, QIODevice::ReadOnly))
        return 77;
    workbook_notes notes;
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
