// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/evidence_snapshot.h"

#include "host/paths.h"

#include <QFile>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

evidence_snapshot::evidence_snapshot(const QStringList &files)
    : paths(files)
{
    for (const QString &path : files)
        states.append(look_at(path));
}

QStringList evidence_snapshot::changes_since() const
{
    QStringList changes;
    for (qsizetype i = 0; i < paths.size(); ++i) {
        const QString change = difference(states.at(i), look_at(paths.at(i)));
        if (!change.isNull())
            changes.append(paths.at(i) + u": "_s + change);
    }
    return changes;
}

std::optional<evidence_snapshot::file_state> evidence_snapshot::look_at(const QString &path)
{
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};

    std::error_code error;
    file_state state;
    state.device = std::uint64_t(status.st_dev);
    state.inode = std::uint64_t(status.st_ino);
    state.size = std::int64_t(status.st_size);
    state.modified = std::filesystem::last_write_time(to_std_path(path), error);
    return state;
}

QString evidence_snapshot::difference(const std::optional<file_state> &before, const std::optional<file_state> &now)
{
    if (!before && !now)
        return {};
    if (!before)
        return u"it was not there before"_s;
    if (!now)
        return u"it is gone"_s;
    if (before->device != now->device || before->inode != now->inode)
        return u"it is another file than before"_s;
    if (before->size != now->size)
        return u"its size was "_s + QString::number(before->size) + u" bytes and is "_s + QString::number(now->size);
    if (before->modified != now->modified)
        return u"it was modified"_s;
    return {};
}
