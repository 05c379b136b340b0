// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/page_head.h"

#include "host/report/page/evidence_section.h"
#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"
#include "host/report/page/page_parts.h"
#include "host/text/terminal_text.h"

#include <QCryptographicHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QByteArray policy_hash(QByteArrayView part)
{
    return "'sha256-" + QCryptographicHash::hash(part, QCryptographicHash::Sha256).toBase64() + '\'';
}

/** A string of a style sheet: nothing but letters and digits stands for itself. */
QByteArray style_string(const QString &text)
{
    QByteArray string = "\"";
    for (const char32_t character : terminal_text(text).to_string().toUcs4()) {
        const bool is_plain = (character >= '0' && character <= '9') || (character >= 'a' && character <= 'z')
                              || (character >= 'A' && character <= 'Z') || character == ' ';
        string += is_plain ? QByteArray(1, char(character)) : '\\' + QByteArray::number(character, 16) + ' ';
    }
    return string + '"';
}

/** What every printed page says of the case. */
QByteArray paper_style(const report_case &the_case)
{
    QStringList words;
    const QString number = the_case.heading.value("case_number"_L1).toString();
    const QString examiner = the_case.heading.value("examiner"_L1).toString();
    if (!number.isEmpty())
        words.append(u"Case "_s + number.left(60));
    if (!examiner.isEmpty())
        words.append(u"Examiner "_s + examiner.left(60));
    const QString manifest = the_case.manifest_sha256.isEmpty() ? u"No manifest"_s
                                                                : u"Manifest "_s + the_case.manifest_sha256.left(16);
    return "@page{@top-left{content:" + style_string(words.join(u", "_s))
           + "}@top-right{content:" + style_string(manifest) + "}}";
}

QByteArray state_sentence(const report_case &the_case)
{
    const QByteArray sources = counted(the_case.sources.size(), "source", "sources");
    const QByteArray read = the_case.sources.size() == 1 ? ", read to its end" : ", each read to its end";
    return sources + read + "; nothing changed.";
}

QByteArray shortcomings_part(const QStringList &shortcomings, const shortcomings_form &form, bool is_unchanged)
{
    QByteArray html = "<div class=\"alarm\"><p><strong>This case is not complete.</strong>"
                      + QByteArray(is_unchanged ? "" : " Evidence changed while it was read.") + "</p><ul>";
    for (const QString &text : shortcomings.first(std::min(shortcomings.size(), form.most)))
        html += "<li>" + (form.most_columns > 0 ? html_evidence(text.toUtf8(), form.most_columns) : html_text(text))
                + "</li>";
    if (shortcomings.size() > form.most)
        html += "<li>and " + grouped_digits(shortcomings.size() - form.most) + " more</li>";
    return html + "</ul></div>\n";
}

} // namespace

QByteArray document_start(const report_case &the_case, const QByteArray &title, bool has_script)
{
    const QByteArray style = page_style + paper_style(the_case);
    const QByteArray script = has_script ? "; script-src " + policy_hash(page_script) : QByteArray();
    return "<!DOCTYPE html>\n<html lang=\"en\" dir=\"ltr\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src "
           + policy_hash(style) + script
           + "; base-uri 'none'; form-action 'none'\">\n"
             "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
             "<meta name=\"referrer\" content=\"no-referrer\">\n<title>"
           + title + "</title>\n<style>" + style + "</style>\n</head>\n<body data-case=\""
           + html_text(the_case.heading.value("case_number"_L1).toString()) + "\" data-manifest=\""
           + html_text(the_case.manifest_sha256) + "\">\n";
}

QByteArray case_heading(const report_case &the_case, const QByteArray &title, const QStringList &shortcomings,
                        const shortcomings_form &form)
{
    const auto fact = [&the_case](const char *name, QLatin1StringView member) {
        const QString text = the_case.heading.value(member).toString();
        return text.isEmpty() ? QByteArray()
                              : "<span>" + QByteArray(name) + " <bdi>" + html_text(text) + "</bdi></span> ";
    };
    const bool is_unchanged = is_evidence_unchanged(the_case);
    return "<h1>" + title + "</h1>\n<p class=\"case\">" + fact("Case", "case_number"_L1)
           + fact("Examiner", "examiner"_L1) + "</p>\n"
           + (shortcomings.isEmpty() && is_unchanged ? "<p class=\"state\">" + state_sentence(the_case) + "</p>\n"
                                                     : shortcomings_part(shortcomings, form, is_unchanged));
}

QByteArray page_tools()
{
    return "<noscript><p class=\"alarm\">Without script the tables show their first 200 rows, and neither sort nor "
           "filter nor search.</p></noscript>\n"
           "<div class=\"tools with-script\" role=\"search\" hidden><label for=\"search\">Search everything</label>"
           "<input id=\"search\" type=\"search\" autocomplete=\"off\" spellcheck=\"false\">"
           "<span id=\"search-status\" role=\"status\"></span>"
           "<span class=\"printers\"><button type=\"button\" id=\"print\">Print</button> "
           "<button type=\"button\" id=\"print-all\">Print every value</button></span></div>\n"
           "<aside id=\"search-results\" aria-label=\"What the search finds\" hidden></aside>\n";
}

QByteArray navigation(const QList<section_link> &sections)
{
    QByteArray items;
    for (const section_link &section : sections)
        items += "<li>" + html_link(section.id, section.title) + "</li>";
    return "<nav class=\"sections\" aria-label=\"Sections\"><ul>" + items + "</ul></nav>\n";
}
