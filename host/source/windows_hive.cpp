// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/windows_hive.h"

#include "host/source/evidence_folder.h"

using namespace Qt::StringLiterals;

namespace {

const QString hive_path = u"Windows/System32/config/SYSTEM"_s;
constexpr QLatin1StringView log_endings[] = {".LOG"_L1, ".LOG1"_L1, ".LOG2"_L1};

} // namespace

QStringList windows_hive_paths(const QString &root)
{
    QString folder = root.endsWith(u'/') ? root : root + u'/';
    const qsizetype root_size = folder.size();
    const QStringList parts = hive_path.split(u'/');
    for (const QString &part : parts.first(parts.size() - 1)) {
        const QString name = find_entry(folder, part);
        if (name.isEmpty())
            return {hive_path};
        folder += name + u'/';
    }
    QStringList paths{find_entry(folder, parts.last())};
    if (paths.first().isEmpty())
        paths.first() = parts.last();
    for (const QLatin1StringView ending : log_endings)
        paths.append(find_entry(folder, parts.last() + ending));
    paths.removeAll(QString());
    for (QString &path : paths)
        path.prepend(folder.sliced(root_size));
    return paths;
}

bool is_windows_hive(const QString &path)
{
    return path.compare(hive_path, Qt::CaseInsensitive) == 0;
}

bool is_windows_hive_log(const QString &path)
{
    for (const QLatin1StringView ending : log_endings) {
        if (path.compare(hive_path + ending, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}
