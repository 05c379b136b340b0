// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/inspect_command.h"

#include "host/run/interruption.h"
#include "host/run/source_survey.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/** "macOS", or what is said where there is nothing. */
QString text_of(const QJsonValue &value, const QString &without)
{
    return value.isString() ? value.toString() : without;
}

terminal_text evidence_line(const QJsonValue &file)
{
    return u"    "_s + file.toObject().value("path"_L1).toString() + u"  "_s
           + QString::number(file.toObject().value("size"_L1).toInteger()) + u" bytes"_s;
}

void print_volume(const QJsonObject &volume, console &out)
{
    QString line = u"  volume "_s + QString::number(volume.value("number"_L1).toInt()) + u"  offset "_s
                   + QString::number(volume.value("offset"_L1).toInteger()) + u", "_s
                   + QString::number(volume.value("size"_L1).toInteger()) + u" bytes, "_s
                   + text_of(volume.value("file_system"_L1), u"no file system that is known"_s);
    const QString name = volume.value("name"_L1).toString();
    if (!name.isEmpty())
        line += u", "_s + name;
    if (volume.value("is_encrypted"_L1).toBool())
        line += u", encrypted"_s;
    line += u": "_s + text_of(volume.value("type"_L1), u"no evidence"_s);
    out.print_line(line);
    for (const auto file : volume.value("evidence"_L1).toArray())
        out.print_line(evidence_line(file));
}

/** The members that programs rely on. */
QJsonObject published(const QJsonObject &survey)
{
    QJsonObject members;
    for (const QLatin1StringView name :
         {"path"_L1, "type"_L1, "container"_L1, "problem"_L1, "volumes"_L1, "evidence"_L1})
        members.insert(name, survey.value(name));
    return members;
}

exit_code code_of(const QList<exit_code> &codes)
{
    const auto is_first = [&codes](exit_code code) { return code == codes.first(); };
    return std::all_of(codes.cbegin(), codes.cend(), is_first) ? codes.first() : exit_code::partial;
}

} // namespace

void print_survey(const QJsonObject &survey, console &out)
{
    out.print_line(out.bold(survey.value("path"_L1).toString()));
    const QJsonObject container = survey.value("container"_L1).toObject();
    out.print_line(u"  type       "_s + text_of(survey.value("type"_L1), u"not recognized"_s));
    if (!container.isEmpty())
        out.print_line(u"  container  "_s + container.value("kind"_L1).toString() + u", "_s
                       + container.value("format"_L1).toString());
    const QJsonArray volumes = survey.value("volumes"_L1).toArray();
    for (const auto volume : volumes)
        print_volume(volume.toObject(), out);
    if (!volumes.isEmpty())
        return;
    for (const auto file : survey.value("evidence"_L1).toArray())
        out.print_line(evidence_line(file));
}

exit_code run_inspect(const inspect_options &options, console &out)
{
    const interruption ctrl_c;
    QJsonArray sources;
    QList<exit_code> codes;
    for (const QString &path : options.paths) {
        container_choice choice;
        choice.path = path;
        const QJsonObject survey = survey_source(choice, options.memory_limit, options.timeout);
        if (interruption::was_asked_for())
            return exit_code::interrupted;
        const QString problem = survey.value("problem"_L1).toString();
        codes.append(problem.isEmpty() ? exit_code::done
                                       : exit_code_of(error_kind(survey.value("kind_of_problem"_L1).toInt())));
        sources.append(published(survey));
        if (!options.json)
            print_survey(survey, out);
        for (const auto warning : survey.value("warnings"_L1).toArray())
            out.warning(warning.toString());
        if (!problem.isEmpty())
            out.error(path + u": "_s + problem);
    }
    if (options.json)
        out.print_bytes(
            QJsonDocument(
                QJsonObject{{u"format"_s, u"bluetooth-logs inspection"_s}, {u"version"_s, 1}, {u"sources"_s, sources}})
                .toJson());
    return code_of(codes);
}
