// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/report/page/provenance.h"

#include "host/report/page/html_parts.h"
#include "host/report/page/html_text.h"

#include <QJsonArray>
#include <QStringList>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QByteArray text_in(const QJsonObject &object, QLatin1StringView member)
{
    return html_text(object.value(member).toString());
}

QByteArray code(const QByteArray &html)
{
    return html.isEmpty() ? html : "<code>" + html + "</code>";
}

QByteArray plugin_text(const QJsonObject &plugin)
{
    const QByteArray hash = text_in(plugin, "sha256"_L1);
    return text_in(plugin, "path"_L1)
           + (hash.isEmpty() ? QByteArray() : "<br>SHA-256 <span class=\"hash\">" + hash + "</span>");
}

/** Names and versions; a case of an earlier version of the program has two of them as members of their own. */
QByteArray libraries_text(const QJsonObject &tool)
{
    QJsonObject libraries = tool.value("libraries"_L1).toObject();
    if (libraries.isEmpty())
        libraries = {{u"Qt"_s, tool.value("qt"_L1)}, {u"SQLite"_s, tool.value("sqlite"_L1)}};
    QByteArrayList texts;
    for (auto library = libraries.constBegin(); library != libraries.constEnd(); ++library)
        texts.append(html_text(library.key()) + ' ' + html_text(library.value().toString()));
    return texts.join(", ");
}

QByteArray command_line(const QJsonObject &heading)
{
    QStringList words{u"bluetooth-logs"_s};
    for (const QJsonValue word : heading.value("options"_L1).toArray())
        words.append(word.toString());
    if (words.size() == 1)
        return {};
    constexpr qsizetype most_characters = 60; // of a word that stands in one line
    QByteArrayList html;
    for (const QString &word : std::as_const(words))
        html.append(word.size() > most_characters ? html_text(word) : html_whole(html_text(word)));
    return code(html.join(' '));
}

QByteArray hash_text(const QByteArray &html)
{
    return html.isEmpty() ? html : "<span class=\"hash\">" + html + "</span>";
}

} // namespace

QByteArray manifest_facts(const report_case &the_case)
{
    if (the_case.manifest_sha256.isEmpty())
        return "<p>There is no manifest: the case was not collected.</p>\n";
    return "<dl>\n" + html_fact("SHA-256 of manifest.json", html_hash(the_case.manifest_sha256))
           + html_fact("To verify it",
                       code("bluetooth-logs verify CASE --manifest-sha256 " + html_text(the_case.manifest_sha256)))
           + "</dl>\n";
}

QByteArray provenance_section(const report_case &the_case)
{
    const QJsonObject &heading = the_case.heading;
    const QJsonObject tool = heading.value("tool"_L1).toObject();
    const QJsonObject system = heading.value("system"_L1).toObject();
    QByteArray facts = html_fact("Program", html_text(u"bluetooth-logs "_s + tool.value("version"_L1).toString()))
                       + html_fact("Commit", code(text_in(tool, "commit"_L1)))
                       + html_fact("SHA-256 of the program", hash_text(text_in(tool, "sha256"_L1)))
                       + html_fact("Plug-in", plugin_text(tool.value("plugin"_L1).toObject()))
                       + html_fact("Libraries", libraries_text(tool));
    for (const auto &[member, name] :
         {std::pair("os"_L1, "Operating system"), std::pair("kernel"_L1, "Kernel"), std::pair("host"_L1, "Host"),
          std::pair("user"_L1, "User"), std::pair("zone"_L1, "Time zone")})
        facts += html_fact(name, text_in(system, member));
    facts += html_fact("Working folder", code(text_in(heading, "working_folder"_L1)))
             + html_fact("Command line", command_line(heading)) + html_fact("Started", text_in(heading, "started"_L1))
             + html_fact("Finished", text_in(heading, "finished"_L1))
             + html_fact("Vendors by", html_text(the_case.vendors.description()));
    return html_section("provenance", "Provenance", "<dl>\n" + facts + "</dl>\n" + manifest_facts(the_case));
}
