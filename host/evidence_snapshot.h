// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_EVIDENCE_SNAPSHOT_H
#define HOST_EVIDENCE_SNAPSHOT_H

#include <QList>
#include <QString>
#include <QStringList>

#include <filesystem>
#include <optional>

/** What the file system says of some files at one time, without opening them. */
class evidence_snapshot
{
public:
    /** Of the files at these paths; they need not exist. */
    explicit evidence_snapshot(const QStringList &paths);

    /** What is different now, in plain words, one text for each file. Empty when nothing is. */
    QStringList changes_since() const;

private:
    struct file_state
    {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::filesystem::file_time_type modified;
    };
    static std::optional<file_state> look_at(const QString &path);
    static QString difference(const std::optional<file_state> &before, const std::optional<file_state> &now);

    QStringList paths;
    QList<std::optional<file_state>> states;
};

#endif
