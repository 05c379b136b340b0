// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "tests/support/file_content.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <filesystem>
#include <fstream>
#include <system_error>

using namespace Qt::StringLiterals;

void write_file(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("cannot write %s", qPrintable(path));
}

void write_file(const QString &folder, const QByteArray &name, const QByteArray &content)
{
    const std::filesystem::path path = QFile::encodeName(folder).toStdString() + '/' + name.toStdString();
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    if (!file.write(content.constData(), content.size()).flush())
        qFatal("cannot write a file with an odd name");
}

QByteArray content_of(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

QStringList tree_of(const QString &root)
{
    const std::filesystem::path top = QFile::encodeName(root).toStdString();
    QStringList paths;
    std::error_code error;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(top, error)) {
        const std::string relative = entry.path().lexically_relative(top).native();
        paths.append(QFile::decodeName(QByteArray::fromStdString(relative))
                     + (entry.is_symlink()     ? u"@"_s
                        : entry.is_directory() ? u"/"_s
                                               : u""_s));
    }
    paths.sort();
    return paths;
}
