// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_TABLES_CONTAINER_LIST_H
#define HOST_REPORT_TABLES_CONTAINER_LIST_H

#include "host/report/reading/report_case.h"
#include "host/report/reading/report_column.h"

#include <QByteArray>
#include <QJsonObject>

#include <functional>
#include <optional>

/** A file of the container that the evidence of a source was taken out of; what is not known is empty. */
struct container_line
{
    /** @p container and one of its files, as the record of the source has them. */
    container_line(const report_source &of_source, const QJsonObject &container, const QJsonObject &file);

    const report_source &source;
    QByteArray kind;
    QByteArray format;
    QByteArray path;
    std::optional<qint64> size;
    QByteArray modified;
    QByteArray sha256;
    QByteArray stored_md5;
    QByteArray stored_sha1;
    std::optional<qint64> volume;
    std::optional<qint64> volume_offset;
    QByteArray volume_file_system;
    QByteArray volume_name;
};

const line_columns<container_line> &container_columns();

/** Whether the evidence of a source of the case was taken out of a container. */
bool has_containers(const report_case &the_case);

/** Gives every file of every container of the case. */
void for_each_container_file(const report_case &the_case, const std::function<void(const container_line &line)> &take);

/** What the containers of the case are, in a text for readers; empty without any. */
QByteArray containers_text(const report_case &the_case);

#endif
