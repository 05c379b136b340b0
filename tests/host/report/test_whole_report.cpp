// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/report_files.h"
#include "host/report/tables/separated_cell.h"
#include "host/sqlite/sqlite.h"
#include "tests/host/report/laid_case.h"
#include "tests/host/report/report_text.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>
#include <QTimeZone>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/** Reports of one case, in a folder beside its sources. */
class written_report
{
public:
    explicit written_report(const QList<report_format> &formats)
    {
        write_file(the_case.path(u"oui.txt"_s), "OUI\nB4-C2-6A   (hex)\t\tSome & Sons\n");
        QFile list(the_case.path(u"oui.txt"_s));
        if (!list.open(QIODevice::ReadWrite)
            || !list.setFileTime(QDateTime(QDate(2026, 2, 3), QTime(4, 5), QTimeZone::utc()),
                                 QFileDevice::FileModificationTime))
            qFatal("the list has no time");
        options.case_directory = the_case.directory();
        options.output = the_case.path(u"Report"_s);
        options.vendors = list.fileName();
        options.formats = formats;
    }

    QByteArray content(const QString &name) const
    {
        return content_of(options.output + u'/' + name);
    }

    /** Those with such names, one after the other. */
    QByteArray contents(const QString &pattern) const
    {
        QByteArray text;
        for (const QString &name : QDir(options.output).entryList({pattern}, QDir::Files, QDir::Name))
            text += "== " + name.toUtf8() + '\n' + content(name).replace("\r\n", "<CRLF>\n");
        return text;
    }

    /** Without what is the same in every page, and what has a text of its own in test_report_texts. */
    QByteArray page(const QString &name) const
    {
        static const QRegularExpression
            repeated(u"(?<=<style>).*?(?=</style>)|(?<=<script>).*?(?=</script>)|(?<=sha256-)[^']*"
                     "|(?<=report.html, SHA-256 <span class=\"hash\">)[^<]*"
                     "|<section id=\"(evidence|provenance|terms|limitations|signatures)\".*?</section>"_s,
                     QRegularExpression::DotMatchesEverythingOption);
        QString html = QString::fromUtf8(content(name));
        return html.remove(repeated).toUtf8();
    }

    laid_case the_case;
    report_options options;
};

/** A run of lines that the whole page has, too, is the number of these lines here. */
QByteArray beside(const QByteArray &page, const QByteArray &whole_page)
{
    const QList<QByteArray> known = whole_page.split('\n');
    QByteArray text;
    qsizetype place = -1;
    qsizetype run = 0;
    const auto end_run = [&text, &run] {
        if (run > 0)
            text += "= " + QByteArray::number(std::exchange(run, 0)) + '\n';
    };
    for (const QByteArray &line : page.split('\n')) {
        const bool goes_on = run > 0 && known.value(place + 1) == line;
        place = goes_on ? place + 1 : known.indexOf(line);
        if (!goes_on)
            end_run();
        if (place == -1)
            text += line + '\n';
        else
            ++run;
    }
    end_run();
    return text;
}

QByteArray text_of_outcome(const report_outcome &outcome)
{
    return ("files: "_L1 + outcome.files.join(u", "_s) + "\nshortcomings:\n"_L1 + outcome.shortcomings.join(u'\n')
            + "\nnotes:\n"_L1 + outcome.notes.join(u'\n') + u'\n')
        .toUtf8();
}

/** "a|1|-" for each row. */
QByteArray rows_of_query(const sqlite_database &database, const QByteArray &query)
{
    QByteArray text;
    sqlite_statement row(database, query);
    while (row.next()) {
        QByteArrayList cells;
        for (int column = 0; column < row.column_count(); ++column)
            cells.append(row.column_type(column) == cell::type::null ? "-"_ba
                                                                     : make_cell(row.value_of(column), true).text);
        text += cells.join('|') + '\n';
    }
    return text;
}

QByteArray text_of_database(const QString &file)
{
    const sqlite_database database(file, sqlite_database::access::read_only);
    QByteArray text = rows_of_query(database, "SELECT sql FROM sqlite_master WHERE sql IS NOT NULL AND name NOT LIKE "
                                              "'names\\_%' ESCAPE '\\' ORDER BY rowid");
    for (const char *name : {"sources", "names", "timeline", "v_shared_devices", "v_paired_devices", "v_named_devices",
                             "v_last_seen", "v_sources"})
        text += "== "_ba + name + '\n' + rows_of_query(database, "SELECT * FROM "_ba + name);
    return text;
}

} // namespace

/** All files of a report of one case, as wholes: texts/report. */
class test_whole_report : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void files_for_programs();
    void database();
    void page();
    void page_for_each_source();
};

void test_whole_report::files_for_programs()
{
    written_report report({report_format::csv, report_format::jsonl, report_format::timeline});
    report.options.times.mobile_epoch = 2001;
    const report_outcome outcome = write_report(report.options);
    compare_with_text(u"report/outcome.txt"_s, text_of_outcome(outcome));
    compare_with_text(u"report/readme.txt"_s, report.content(u"README.txt"_s));
    compare_with_text(u"report/lines.jsonl"_s, report.contents(u"*.jsonl"_s));
    compare_with_text(u"report/cells.csv"_s, report.contents(u"*.csv"_s));
}

void test_whole_report::database()
{
    const written_report report({report_format::sqlite});
    write_report(report.options);
    compare_with_text(u"report/database.txt"_s, text_of_database(report.options.output + u"/report.sqlite"_s));
}

void test_whole_report::page()
{
    written_report report({report_format::html});
    report.options.brief = true;
    write_report(report.options);
    compare_with_text(u"report/page.html"_s, report.page(u"report.html"_s));
    compare_with_text(u"report/brief.html"_s, beside(report.page(u"brief.html"_s), report.page(u"report.html"_s)));
    const QByteArray hash = QCryptographicHash::hash(report.content(u"report.html"_s), QCryptographicHash::Sha256)
                                .toHex();
    const QByteArray annex = "report.html, SHA-256 <span class=\"hash\">" + hash + "</span>";
    QVERIFY(report.content(u"brief.html"_s).contains(annex));
}

void test_whole_report::page_for_each_source()
{
    written_report report({report_format::html});
    write_report(report.options);
    const QByteArray whole_page = report.page(u"report.html"_s);
    report.options.split = true;
    report.options.force = true;
    write_report(report.options);
    compare_with_text(u"report/index.html"_s, beside(report.page(u"report.html"_s), whole_page));
    compare_with_text(u"report/source1.html"_s, beside(report.page(u"report-source1.html"_s), whole_page));
    compare_with_text(u"report/source3.html"_s, beside(report.page(u"report-source3.html"_s), whole_page));
}

BLUETOOTH_LOGS_TEST(test_whole_report, QCoreApplication)

#include "test_whole_report.moc"
