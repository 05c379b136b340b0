// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/file_comparison.h"

#include "host/case/case_layout.h"
#include "host/files/paths.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

using finding = compared_file::finding;

file_comparison::file_comparison(const QString &directory, check_outcome &check)
    : case_directory(directory)
    , outcome(check)
{
}

void file_comparison::compare(const QString &root, const kept_file &expected, compared_file::place kind)
{
    const QString path = root + u'/' + expected.path;
    compared_file file{kind, shown(root, expected.path), finding::unchanged, expected.sha256, {}};
    const qint64 size = QFileInfo(path).size();
    if (!path_exists(path)) {
        file.outcome = finding::missing;
        outcome.differences.append(file.path + u" is gone"_s);
    } else if (QFileInfo(path).isFile() && expected.size >= 0 && size != expected.size) {
        file.outcome = finding::changed;
        outcome.differences.append(file.path + u" was changed: it had "_s + QString::number(expected.size)
                                   + u" bytes and has "_s + QString::number(size));
    } else if (const std::optional<kept_file> now = look_at_file(root, expected.path); !now) {
        file.outcome = finding::unreadable;
        outcome.differences.append(file.path + u" cannot be read"_s);
    } else if (file.found = now->sha256; now->sha256 != expected.sha256) {
        file.outcome = finding::changed;
        outcome.differences.append(file.path + u" was changed: its SHA-256 was "_s + expected.sha256 + u" and is "_s
                                   + now->sha256);
    }
    outcome.files.append(file);
}

void file_comparison::add_unknown(const QString &root, const QStringList &paths, const QSet<QString> &known,
                                  compared_file::place kind)
{
    for (const QString &path : paths) {
        if (!known.contains(path))
            add_new(shown(root, path), kind);
    }
}

void file_comparison::add_new(const QString &path, compared_file::place kind)
{
    outcome.files.append({kind, path, finding::added, {}, {}});
    outcome.differences.append(path + u" is new: nothing lists it"_s);
}

QString file_comparison::shown(const QString &root, const QString &path) const
{
    return source_layout(case_directory, 0).relative_to_case(root + u'/' + path);
}
