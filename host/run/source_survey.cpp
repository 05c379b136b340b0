// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_survey.h"

#include "host/case/result_tables.h"
#include "host/container/disk_image.h"
#include "host/run/child_process.h"
#include "host/run/interruption.h"
#include "host/run/taken_evidence.h"
#include "host/run/worker_environment.h"
#include "host/run/worker_protocol.h"
#include "host/source/evidence_files.h"
#include "host/source/evidence_source.h"
#include "host/text/json_member.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

QJsonValue name_or_null(const source_kind *kind)
{
    return kind ? QJsonValue(QString(kind->name)) : QJsonValue();
}

QJsonObject outline(const QString &path)
{
    return {{u"path"_s, path},
            {u"type"_s, QJsonValue()},
            {u"container"_s, QJsonValue()},
            {u"problem"_s, QJsonValue()},
            {u"kind_of_problem"_s, int(error_kind::not_found)},
            {u"volumes"_s, QJsonArray()},
            {u"evidence"_s, QJsonArray()},
            {u"warnings"_s, QJsonArray()}};
}

QJsonArray evidence_array(const QList<collected_file> &files)
{
    QJsonArray list;
    for (const collected_file &file : files)
        list.append(QJsonObject{{u"path"_s, file.origin.path}, {u"size"_s, file.size}});
    return list;
}

QJsonArray volume_array(const QList<looked_volume> &volumes)
{
    QJsonArray list;
    for (const looked_volume &volume : volumes)
        list.append(QJsonObject{{u"number"_s, volume.facts.number},
                                {u"offset"_s, volume.facts.offset},
                                {u"size"_s, volume.facts.size},
                                {u"file_system"_s, text_or_null(volume.facts.file_system)},
                                {u"name"_s, text_or_null(volume.facts.name)},
                                {u"is_encrypted"_s, volume.facts.is_encrypted},
                                {u"type"_s, name_or_null(volume.kind)},
                                {u"evidence"_s, evidence_array(volume.evidence)}});
    return list;
}

/** A folder or a log text that the plug-in reads where it stands. */
QJsonObject survey_in_place(const container_choice &choice)
{
    QJsonObject survey = outline(choice.path);
    try {
        const evidence_source source = find_source(choice.path, choice.kind, result_tables(), choice.follow_links);
        QJsonArray files;
        for (const QString &path : evidence_paths(source)) {
            const QFileInfo file(source.root + path);
            if (file.exists())
                files.append(QJsonObject{{u"path"_s, path}, {u"size"_s, file.size()}});
        }
        survey.insert(u"type"_s, QString(source.kind->name));
        survey.insert(u"evidence"_s, files);
    } catch (const host_error &error) {
        survey.insert(u"problem"_s, error.message());
    }
    return survey;
}

int (*work_of_copy)() = nullptr;

/** What another process says, under the limits of the order: the libraries that open containers run nowhere else. */
QJsonObject answer_of(const worker_order &order, qint64 seconds)
{
    child_process worker = work_of_copy ? child_process(work_of_copy, worker_environment())
                                        : child_process(QCoreApplication::applicationFilePath(), {u"worker"_s},
                                                        worker_environment());
    worker.write(order.to_line());
    worker_report report;
    const child_end end = worker.wait([&report](const QByteArray &line) { report.take(line); },
                                      [](const QByteArray &) {}, seconds, [] { return interruption::times(); });
    if (!report.survey.isEmpty())
        return report.survey;
    QJsonObject survey = outline(order.request.source.path);
    survey.insert(u"kind_of_problem"_s, int(error_kind::incomplete));
    survey.insert(u"problem"_s, report.is_out_of_memory ? u"looking into it needs more memory than is allowed"_s
                                : end.is_timed_out      ? u"looking into it took too long"_s
                                : end.signal != 0
                                    ? u"the process that looked into it crashed with "_s + end.signal_name()
                                    : u"the process that looked into it ended early"_s);
    return survey;
}

} // namespace

void survey_in_copies(int (*work)())
{
    work_of_copy = work;
}

QJsonObject survey_of_container(const container_choice &choice)
{
    QJsonObject survey = outline(choice.path);
    try {
        const container_survey found = survey_container(choice, [](qint64) {});
        survey.insert(u"type"_s, name_or_null(found.kind));
        const bool is_known = !found.is_in_place
                              && !found.container.format.isEmpty(); // a damaged archive is of no format
        survey.insert(u"container"_s, is_known ? QJsonValue(found.container.to_json()) : QJsonValue());
        survey.insert(u"problem"_s, text_or_null(found.problem));
        survey.insert(u"kind_of_problem"_s, int(found.reason));
        survey.insert(u"volumes"_s, volume_array(found.volumes));
        survey.insert(u"evidence"_s, evidence_array(found.evidence));
        survey.insert(u"warnings"_s, QJsonArray::fromStringList(found.warnings));
    } catch (const host_error &error) {
        survey.insert(u"problem"_s, error.message());
        survey.insert(u"kind_of_problem"_s, int(error.kind()));
    }
    return survey;
}

QJsonObject hashes_of_image(const QString &path)
{
    try {
        const ewf_hashes hashes = hashes_of_ewf_content(path);
        return {{u"md5"_s, hashes.md5}, {u"sha1"_s, hashes.sha1}, {u"problem"_s, QJsonValue()}};
    } catch (const host_error &error) {
        return {{u"problem"_s, error.message()}};
    }
}

QJsonObject survey_source(const container_choice &choice, qint64 mebibytes_of_memory, qint64 seconds)
{
    if (!QFileInfo::exists(choice.path) || !is_container(choice.path, choice.kind))
        return survey_in_place(choice);
    worker_order order;
    order.to_do = worker_order::task::survey;
    order.request.source = unopened_container(choice.path, choice.kind, choice.follow_links);
    order.request.volume = choice.volume;
    order.request.member = choice.member;
    order.request.options.memory_limit = mebibytes_of_memory;
    return answer_of(order, seconds);
}
