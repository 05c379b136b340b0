// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/taken_evidence.h"

#include "host/container/container_file.h"
#include "host/files/paths.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

container_choice choice_of(const source_request &request)
{
    container_choice choice;
    choice.path = request.source.path;
    choice.kind = request.source.type;
    choice.volume = request.volume;
    choice.member = request.member;
    choice.follow_links = request.options.follow_links;
    choice.limits.most_database_bytes = request.options.max_database << 20;
    choice.limits.most_log_bytes = request.options.max_log;
    return choice;
}

evidence_source unopened_container(const QString &path, const source_kind *kind, bool follow_links)
{
    evidence_source source;
    source.type = kind;
    source.path = path;
    source.follow_links = follow_links;
    source.is_taken_out = true;
    return source;
}

evidence_source source_taken_out(const source_request &request, const exported_source &taken)
{
    evidence_source source = request.source;
    source.type = taken.kind;
    source.kind = &plugin_kind(*taken.kind);
    source.root = request.layout().evidence_folder() + u'/';
    source.log_file = taken.log_name.isEmpty() ? QString() : source.root + taken.log_name;
    source.container = taken.container;
    for (const collected_file &file : taken.files)
        source.files_taken_out.append(file.target);
    return source;
}

void add_origins(evidence_state &evidence, const exported_source &taken)
{
    for (const collected_file &file : taken.files) {
        const auto known = std::find_if(evidence.files.begin(), evidence.files.end(),
                                        [&file](const evidence_file &one) { return one.path == file.target; });
        if (known == evidence.files.end())
            continue;
        known->origin = file.origin.to_json();
        if (!file.objection.isEmpty()) {
            known->state = file.is_refused ? evidence_file::presence::refused : evidence_file::presence::unreadable;
            known->reason = file.objection;
        } else if (!known->before || known->before->sha256 != file.sha256) {
            throw host_error(error_kind::io, u"the case does not hold what was copied into it: "_s + file.target);
        }
    }
}

QStringList container_changes(const QJsonValue &container)
{
    QStringList changes;
    for (const auto value : container.toObject().value("files"_L1).toArray()) {
        const QJsonObject before = value.toObject();
        const QString path = before.value("path"_L1).toString();
        if (!path_exists(path)) {
            changes.append(path + u": it is gone"_s);
            continue;
        }
        const container_file now = file_now(path);
        if (now.size != before.value("size"_L1).toInteger())
            changes.append(path + u": its size was "_s + QString::number(before.value("size"_L1).toInteger())
                           + u" bytes and is "_s + QString::number(now.size));
        else if (now.modified != before.value("modified"_L1).toString())
            changes.append(path + u": it was modified"_s);
    }
    return changes;
}
