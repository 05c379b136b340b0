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
            {u"is_verbose"_s, is_verbose},
            {u"plugin_file"_s, plugin_file},
            {u"memory_limit"_s, memory_limit},
            {u"timeout"_s, timeout},
            {u"max_database"_s, max_database}};
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
    options.is_verbose = json.value("is_verbose"_L1).toBool();
    options.plugin_file = json.value("plugin_file"_L1).toString();
    options.memory_limit = json.value("memory_limit"_L1).toInteger();
    options.timeout = json.value("timeout"_L1).toInteger();
    options.max_database = json.value("max_database"_L1).toInteger();
    return options;
}

QJsonObject source_request::to_json() const
{
    return {{u"kind"_s, QString(source.kind->name)},
            {u"path"_s, source.path},
            {u"root"_s, source.root},
            {u"log_file"_s, source.log_file},
            {u"number"_s, number},
            {u"name"_s, name},
            {u"case"_s, case_directory},
            {u"options"_s, options.to_json()}};
}

source_request source_request::from_json(const QJsonObject &json)
{
    source_request request;
    request.source.kind = source_kind_named(json.value("kind"_L1).toString());
    request.source.path = json.value("path"_L1).toString();
    request.source.root = json.value("root"_L1).toString();
    request.source.log_file = json.value("log_file"_L1).toString();
    request.number = json.value("number"_L1).toInt();
    request.name = json.value("name"_L1).toString();
    request.case_directory = json.value("case"_L1).toString();
    request.options = extraction_options::from_json(json.value("options"_L1).toObject());
    request.source.follow_links = request.options.follow_links;
    return request;
}
