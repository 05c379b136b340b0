// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_EVIDENCE_SOURCE_H
#define HOST_SOURCE_EVIDENCE_SOURCE_H

#include "host/source/source_kinds.h"

#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <optional>

/** A source of evidence, as far as it is known without opening its evidence. */
struct evidence_source
{
    const source_kind *kind = nullptr; ///< that the plug-in takes it for; null: a container that was not opened yet
    const source_kind *type = nullptr; ///< of the evidence, where that is another; null: kind, or to be recognized
    QString path;                      ///< what the examiner gave, absolute; nothing is ever written at it or below
    QString root;                      ///< the folder that the evidence stands in; ends with "/"
    QString log_file;                  ///< iOS only: the log text
    bool follow_links = false;         ///< evidence may be read that a link in the source has elsewhere

    bool is_taken_out = false;   ///< what @p path holds is copied into the case, and root is the folder there
    QJsonValue container;        ///< what it was taken out of, as records have it; null: a folder, or nothing
    QStringList files_taken_out; ///< relative to root, also those that could not be taken

    /** What records call the source; null: not known yet. */
    const source_kind *recorded_kind() const
    {
        return type ? type : kind;
    }
};

/**
 * Recognizes what stands at the absolute @p path. @p kind is null where the examiner left it open. Throws host_error
 * (not_found) when there is nothing to extract for the result tables @p tables, or when it cannot be read.
 */
evidence_source find_source(const QString &path, const source_kind *kind, const QStringList &tables,
                            bool follow_links = false);

/** Where @p path, which is below the root by its name, really is, if a link leads it out of the source. */
std::optional<QString> link_out_of_source(const evidence_source &source, const QString &path);

/** Why such a path is not read, nothing if it may be. */
std::optional<QString> refused_link(const evidence_source &source, const QString &path);

/** The folders that hold the evidence of the source: even of a live system nothing is written below them. */
QStringList evidence_folders(const evidence_source &source);

#endif
