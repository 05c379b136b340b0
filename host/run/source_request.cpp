// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/run/source_request.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

QJsonObject extraction_options::to_json() const
{
    return {{u"tables"_s, QJsonArray::fromStringList(tables)},
            {u"engine_type"_s, engine_type},
            {u"display_name"_s, display_name},
            {u"timezone_offset"_s, timezone_offset},
            {u"suite_tables"_s, suite_tables},
            {u"follow_links"_s, follow_links},
            {u"is_live"_s, is_live},
            {u"is_confined"_s, is_confined},
            {u"is_verbose"_s, is_verbose},
            {u"plugin_file"_s, plugin_file},
            {u"memory_limit"_s, memory_limit},
            {u"timeout"_s, timeout},
            {u"max_database"_s, max_database},
            {u"max_log"_s, max_log},
            {u"skips_container_hash"_s, skips_container_hash}};
}

extraction_options extraction_options::from_json(const QJsonObject &json)
{
    extraction_options options;
    options.tables.clear();
    for (const auto table : json.value("tables"_L1).toArray())
        options.tables.append(table.toString());
    options.engine_type = json.value("engine_type"_L1).toInt();
    options.display_name = json.value("display_name"_L1).toString();
    options.timezone_offset = json.value("timezone_offset"_L1).toInteger();
    options.suite_tables = json.value("suite_tables"_L1).toBool();
    options.follow_links = json.value("follow_links"_L1).toBool();
    options.is_live = json.value("is_live"_L1).toBool();
    options.is_confined = json.value("is_confined"_L1).toBool();
    options.is_verbose = json.value("is_verbose"_L1).toBool();
    options.plugin_file = json.value("plugin_file"_L1).toString();
    options.memory_limit = json.value("memory_limit"_L1).toInteger();
    options.timeout = json.value("timeout"_L1).toInteger();
    options.max_database = json.value("max_database"_L1).toInteger();
    options.max_log = json.value("max_log"_L1).toInteger();
    options.skips_container_hash = json.value("skips_container_hash"_L1).toBool();
    return options;
}

namespace {

QString name_of(const source_kind *kind)
{
    return kind ? QString(kind->name) : QString();
}

} // namespace

QJsonObject source_to_json(const evidence_source &source)
{
    return {{u"kind"_s, name_of(source.kind)},
            {u"type"_s, name_of(source.type)},
            {u"path"_s, source.path},
            {u"root"_s, source.root},
            {u"log_file"_s, source.log_file},
            {u"follow_links"_s, source.follow_links},
            {u"is_taken_out"_s, source.is_taken_out},
            {u"container"_s, source.container},
            {u"files_taken_out"_s, QJsonArray::fromStringList(source.files_taken_out)}};
}

evidence_source source_from_json(const QJsonObject &json)
{
    evidence_source source;
    source.kind = source_kind_named(json.value("kind"_L1).toString());
    source.type = source_kind_named(json.value("type"_L1).toString());
    source.path = json.value("path"_L1).toString();
    source.root = json.value("root"_L1).toString();
    source.log_file = json.value("log_file"_L1).toString();
    source.follow_links = json.value("follow_links"_L1).toBool();
    source.is_taken_out = json.value("is_taken_out"_L1).toBool();
    source.container = json.value("container"_L1);
    for (const auto path : json.value("files_taken_out"_L1).toArray())
        source.files_taken_out.append(path.toString());
    return source;
}

QJsonObject source_request::to_json() const
{
    return {{u"source"_s, source_to_json(source)},
            {u"volume"_s, volume},
            {u"member"_s, member},
            {u"number"_s, number},
            {u"name"_s, name},
            {u"case"_s, case_directory},
            {u"options"_s, options.to_json()}};
}

source_request source_request::from_json(const QJsonObject &json)
{
    source_request request;
    request.source = source_from_json(json.value("source"_L1).toObject());
    request.volume = json.value("volume"_L1).toInt();
    request.member = json.value("member"_L1).toString();
    request.number = json.value("number"_L1).toInt();
    request.name = json.value("name"_L1).toString();
    request.case_directory = json.value("case"_L1).toString();
    request.options = extraction_options::from_json(json.value("options"_L1).toObject());
    return request;
}
