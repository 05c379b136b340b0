// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_KEPT_FILE_H
#define HOST_CASE_KEPT_FILE_H

#include "host/case/case_layout.h"

#include <QJsonArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/** A file as a record, a manifest or a report lists it. */
struct kept_file
{
    QString path; ///< relative to the case, or to the report's folder
    qint64 size = 0;
    QString sha256;

    bool operator==(const kept_file &) const = default;
};

QJsonArray kept_files_to_json(const QList<kept_file> &files);
QList<kept_file> kept_files_from_json(const QJsonArray &json);

/**
 * The paths of all that lies below @p folder and is no folder, relative to @p root, sorted. Links are not followed: one
 * is a path as any other. At most a million. Throws host_error (incomplete) when a folder cannot be listed to its end.
 */
QStringList paths_below(const QString &root, const QString &folder);

/** The same for a source of a case, without its record and its lock; none where there is no folder. */
QStringList paths_of_source(const case_layout &layout, int number);

/** The file at @p path, relative to @p root, as it is now. Nothing when it is no regular file or cannot be read. */
std::optional<kept_file> look_at_file(const QString &root, const QString &path);

/**
 * Every file of a source of a case but its record and its lock, as it is now: what its record lists. Throws host_error
 * (incomplete), naming the first one that cannot be read.
 */
QList<kept_file> list_files_of_source(const case_layout &layout, int number);

/** Whether @p path, from a file that anybody may have written, leads nowhere but below the folder that it starts from.
 */
bool stays_below(const QString &path);

#endif
