// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/tables/workbook.h"

#include "host/files/finished_file.h"
#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "host/files/system_error.h"
#include "host/files/unfinished_file.h"
#include "host/report/tables/separated_cell.h"

#include <QFile>
#include <QRegularExpression>

#include <cerrno>
#include <ctime>

#include <fcntl.h>
#include <xlsxwriter.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype most_characters = 32767;
constexpr qint64 largest_exact_number = qint64(1) << 53;
constexpr double column_width = 20;

/** Characters that neither XML nor the library has a form for. */
constexpr QChar formless[] = {QChar(0), QChar(0xfffe), QChar(0xffff)};

/** Excel counts UTF-16 units. What no cell takes is cut, and ends with a sign of it. */
QString cut_text(const QString &text, workbook_notes &notes)
{
    if (text.size() <= most_characters)
        return text;
    ++notes.cut;
    static const QRegularExpression half_an_escape(u"_(x(0(0(5F?)?)?)?)?$"_s);
    QString start = text.first(most_characters - 1).remove(half_an_escape);
    if (start.back().isHighSurrogate())
        start.chop(1);
    return start + u'…';
}

QString spelled_out(QString text, workbook_notes &notes)
{
    bool is_spelled = false;
    for (const QChar character : formless) {
        if (!text.contains(character))
            continue;
        is_spelled = true;
        text.replace(character, u"\\u{"_s + QString::number(character.unicode(), 16) + u'}');
    }
    notes.spelled += is_spelled ? 1 : 0;
    return text;
}

/** "_x0041_" in a cell is an A (ECMA-376 part 1, 22.4.2.4): an underscore in front of such a text is written in that
 * form. */
QString escaped(QString text)
{
    static const QRegularExpression looks_escaped(u"_(?=x[0-9A-Fa-f]{4}_)"_s);
    if (text.contains("_x"_L1))
        text.replace(looks_escaped, u"_x005F_"_s);
    return text;
}

/** A text as the library takes it, UTF-8 without a NUL. It counts what is escaped here as it stands. */
QByteArray text_for_sheet(const QByteArray &utf8, workbook_notes &notes)
{
    return cut_text(escaped(spelled_out(QString::fromUtf8(utf8), notes)), notes).toUtf8();
}

class workbook : public table_store
{
public:
    workbook(const QString &file, workbook_notes &book_notes, lxw_row_t rows_of_sheet)
        : path(file)
        , temporary(file + u".new"_s)
        , unfinished(QFile::encodeName(temporary))
        , parts_folder(file + u".parts"_s)
        , unfinished_parts(QFile::encodeName(parts_folder))
        , sheet_rows(rows_of_sheet)
        , notes(book_notes)
    {
        // The library would write into whatever stands there, also by a link.
        folder_entry(temporary).remove();
        if (const descriptor ours = open_without_links(temporary, O_WRONLY | O_CREAT | O_EXCL, 0644); !ours.is_open())
            fail(system_error_text(errno));
        folder_entry(parts_folder).remove_tree(); // of a report that was killed
        make_folder(parts_folder);
        lxw_workbook_options options = {};
        options.constant_memory = LXW_TRUE; // rows go to the disk one after the other
        QByteArray folder = QFile::encodeName(parts_folder);
        options.tmpdir = folder.data(); // the process that reads a case writes nowhere else
        book = workbook_new_opt(QFile::encodeName(temporary).constData(), &options);
        if (!book)
            fail(u"libxlsxwriter cannot begin it"_s);
        lxw_doc_properties properties = {};
        properties.created = 1; // 1970: the same case gives the same bytes
        workbook_set_properties(book, &properties);
        heading = workbook_add_format(book);
        format_set_bold(heading);
    }

    ~workbook() override
    {
        if (book)
            workbook_close(book);
        if (!temporary.isEmpty())
            folder_entry(temporary).remove();
        folder_entry(parts_folder).remove_tree();
    }
    Q_DISABLE_COPY_MOVE(workbook)

    void begin_table(const QString &name, const QList<report_column> &table_columns) override
    {
        end_sheet();
        table = name;
        columns = table_columns;
        sheets_of_table = 0;
        begin_sheet();
    }

    void add(const line_cells &cells) override
    {
        if (row == sheet_rows) {
            end_sheet();
            begin_sheet();
        }
        lxw_col_t column = 0;
        for (qsizetype i = 0; i < columns.size(); ++i) {
            if (columns.at(i).is_cell())
                write(column++, cells[std::size_t(i)]);
        }
        ++row;
    }

    void commit() override
    {
        end_sheet();
        lxw_workbook *finished = std::exchange(book, nullptr);
        check(workbook_close(finished));
        remove_parts();
        put_in_place(temporary, path);
        temporary.clear();
    }

private:
    /** The library removes its files as soon as it has made them, and says nothing when that fails. */
    void remove_parts() const
    {
        if (const int error = folder_entry(parts_folder).remove_tree(); error != 0)
            fail(u"a temporary file stays: "_s + system_error_text(error));
    }

    [[noreturn]] void fail(const QString &reason) const
    {
        throw host_error(error_kind::io, path + u" cannot be written: "_s + reason);
    }

    void check(lxw_error error) const
    {
        if (error != LXW_NO_ERROR)
            fail(QString::fromUtf8(lxw_strerror(error)));
    }

    void begin_sheet()
    {
        ++sheets_of_table;
        const QString name = sheets_of_table == 1 ? table : table + u" ("_s + QString::number(sheets_of_table) + u')';
        sheet = workbook_add_worksheet(book, name.toUtf8().constData());
        if (!sheet)
            fail(u"libxlsxwriter takes no sheet "_s + name);
        row = 0;
        lxw_col_t column = 0;
        for (const report_column &one : std::as_const(columns)) {
            if (one.is_cell())
                check(worksheet_write_string(sheet, row, column++,
                                             text_for_sheet(make_text_cell(one.cell_name(), true).text, notes)
                                                 .constData(),
                                             heading));
        }
        last_column = lxw_col_t(column - 1);
        check(worksheet_set_column(sheet, 0, last_column, column_width, nullptr));
        worksheet_freeze_panes(sheet, 1, 0);
        ++row;
    }

    void end_sheet()
    {
        if (sheet)
            check(worksheet_autofilter(sheet, 0, 0, row - 1, last_column));
        sheet = nullptr;
    }

    void write(lxw_col_t column, const cell &value)
    {
        if (value.is_null())
            return;
        const bool is_exact = value.kind == cell::type::integer && value.integer <= largest_exact_number
                              && value.integer >= -largest_exact_number;
        if (is_exact)
            check(worksheet_write_number(sheet, row, column, double(value.integer), nullptr));
        else if (value.kind == cell::type::real && qIsFinite(value.real))
            check(worksheet_write_number(sheet, row, column, value.real, nullptr));
        else
            write_text(column, text_for_sheet(make_cell(value, true).text, notes));
    }

    void write_text(lxw_col_t column, const QByteArray &text)
    {
        if (!text.isEmpty())
            check(worksheet_write_string(sheet, row, column, text.constData(), nullptr));
    }

    QString path;
    QString temporary;
    unfinished_file unfinished;
    QString parts_folder; ///< of the library's temporary files
    unfinished_file unfinished_parts;
    lxw_row_t sheet_rows;
    workbook_notes &notes;
    lxw_workbook *book = nullptr;
    lxw_format *heading = nullptr;
    lxw_worksheet *sheet = nullptr;
    QString table;
    QList<report_column> columns;
    int sheets_of_table = 0;
    lxw_row_t row = 0;
    lxw_col_t last_column = 0;
};

} // namespace

bool has_workbooks()
{
    return true;
}

std::unique_ptr<table_store> make_workbook(const QString &path, workbook_notes &notes, int sheet_rows)
{
    return std::make_unique<workbook>(path, notes, lxw_row_t(sheet_rows));
}
