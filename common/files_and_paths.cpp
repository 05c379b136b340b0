// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/evidence_file.h"
#include "common/function_log.h"
#include "common/plugin_static_function.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <cerrno>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 copy_block_bytes = 102400;

/** The only kind of location that the path helpers act upon. */
constexpr QLatin1StringView home_directory_kind("macOS_Home_Directory");
constexpr QLatin1StringView home_folders_parent("/Users/");

constexpr function_log log_copy(u"static void plugin_static_function::copy_directory(QString, QString)");

void log_copy_failure(const QString &message, const QString &error)
{
    log_copy(message);
    log_copy(u"[copy_directory] Error:"_s + error);
}

void log_destination_failure(const QString &destination, const QString &error)
{
    log_copy_failure(u"[copy_directory] destination file open ----FAILED---- :"_s + destination, error);
}

/** Opens both files, or logs which one could not be opened. */
bool open_for_copy(QFile &source, QFile &destination)
{
    const QString source_path = source.fileName();
    const std::optional<QString> source_error = open_evidence_file(source);
    if (source_error) {
        log_copy_failure(u"[copy_directory] source file open ----FAILED---- :"_s + source_path, *source_error);
        return false;
    }
    QString destination_error;
    if (is_same_file(source_path, destination.fileName()))
        destination_error = u"source and destination are the same file"_s;
    else if (!destination.open(QIODevice::WriteOnly))
        destination_error = destination.errorString();
    if (destination_error.isNull())
        return true;
    log_destination_failure(destination.fileName(), destination_error);
    return false;
}

/** A file that is cut short by the cancel flag stays as far as it was written. */
void copy_file(const QString &source_path, const QString &destination_path)
{
    QFile source(source_path);
    QFile destination(destination_path);
    if (!source.exists() || !open_for_copy(source, destination))
        return;

    QByteArray block(copy_block_bytes, Qt::Uninitialized);
    qint64 count = 0;
    do {
        count = source.read(block.data(), block.size());
        if (count > 0)
            destination.write(block.constData(), count);
    } while (count > 0 && !plugin_static_function::bool_cancel_extraction);
    source.close();
    destination.flush();
}

/** @p entered holds the real paths of the folders on the way down; one that is met again is not entered. */
void copy_tree(const QString &source, const QString &destination, QStringList entered)
{
    const QDir source_dir(source);
    if (source.isEmpty() || !source_dir.exists()) {
        // "diectory": text is part of the log format.
        log_copy(u"[copy_directory] source diectory does not exist ----FAILED---- :"_s + source);
        return;
    }
    if (destination.isEmpty()) { // "/name" would be a place of its own
        log_destination_failure(destination, qt_error_string(ENOENT));
        return;
    }
    if (entered.contains(source_dir.canonicalPath()))
        return;
    entered.append(source_dir.canonicalPath());

    if (!QFileInfo(destination).isDir())
        QDir().mkpath(destination);
    if (entered.size() == 1)
        entered.append(QDir(destination).canonicalPath()); // a destination inside the source does not copy itself

    const QStringList files = source_dir.entryList(QDir::Files | QDir::Hidden, QDir::Unsorted);
    for (const QString &name : files) {
        if (plugin_static_function::bool_cancel_extraction)
            break;
        copy_file(source + u'/' + name, destination + u'/' + name);
    }
    const QStringList folders = source_dir.entryList(QDir::AllDirs | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString &name : folders) {
        if (plugin_static_function::bool_cancel_extraction)
            break;
        copy_tree(source + u'/' + name, destination + u'/' + name, entered);
    }
}

/** Result rows store paths that begin with "/"; a blank path stays as it is. */
QString with_leading_slash(const QString &path)
{
    return path.startsWith(u'/') || path.trimmed().isEmpty() ? path : u'/' + path;
}

} // namespace

void plugin_static_function::copy_directory(QString source, QString destination)
{
    copy_tree(source, destination, {});
}

void plugin_static_function::remove_directory(QString dir)
{
    const QString path = QDir::cleanPath(dir); // a final "/" would follow a link
    const QFileInfo info(path);
    if (dir.isEmpty() || !info.isDir())
        return;
    if (info.isSymLink()) {
        QFile::remove(path);
        return;
    }

    const QFileInfoList entries = QDir(path).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System
                                                               | QDir::NoDotAndDotDot,
                                                           QDir::DirsFirst | QDir::Name);
    for (const QFileInfo &entry : entries) {
        if (entry.isDir() && !entry.isSymLink())
            remove_directory(entry.absoluteFilePath());
        else
            QFile::remove(entry.absoluteFilePath());
    }
    QDir().rmdir(path);
}

QStringList plugin_static_function::get_unmatched_varible_list_of_parentlist(QStringList parent, QStringList child)
{
    const QSet<QString> known(child.cbegin(), child.cend());
    QStringList unmatched;
    for (const QString &entry : parent) {
        if (bool_cancel_extraction)
            break;
        if (!known.contains(entry))
            unmatched.append(entry);
    }
    return unmatched;
}

struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_system_account
plugin_static_function::extract_user_name_from_sourcefile(QString file_path, QString prefix)
{
    if (system_account_QList.isEmpty())
        return {};
    const QStringList parts = file_path.sliced(qMin(prefix.size(), file_path.size())).split(u'/');
    if (parts.size() < 2)
        return {};

    const QString &candidate = parts.at(1);
    for (const auto &account : std::as_const(system_account_QList)) {
        if (account.system_user == candidate)
            return account;
    }
    return {candidate, {}};
}

QString plugin_static_function::get_available_file(QString file_name, QString dir, QString caller)
{
    Q_UNUSED(caller)
    if (!dir.isEmpty())
        QDir().mkpath(dir);
    const QString name = file_name.sliced(file_name.lastIndexOf(u'/') + 1);
    QString candidate = name;
    for (int number = 1; !bool_cancel_extraction; ++number) {
        const bool taken = is_file_exist_in_dir(
            dir, candidate, u"static QString plugin_static_function::get_available_file(QString, QString, QString)"_s);
        if (!taken)
            return candidate;
        candidate = QString::number(number) + u'_' + name;
    }
    return {};
}

bool plugin_static_function::is_file_exist_in_dir(QString dir, QString file_name, QString caller)
{
    Q_UNUSED(caller)
    if (dir.isEmpty())
        return false;
    const QString wanted = file_name.trimmed();
    QDirIterator entries(dir, QDir::AllEntries | QDir::Hidden | QDir::System);
    while (entries.hasNext()) {
        entries.next();
        if (bool_cancel_extraction)
            return false;
        if (entries.fileName().trimmed() == wanted)
            return true;
    }
    return false;
}

QString plugin_static_function::get_complete_file_path(QString path, QString user_name, QString kind)
{
    if (kind == home_directory_kind && path.startsWith(home_folders_parent)) {
        // Without a "/" behind the old user's folder the whole path stays, behind the new prefix.
        const qsizetype rest = path.indexOf(u'/', home_folders_parent.size());
        path = home_folders_parent + user_name + path.sliced(qMax(rest, 0));
    }
    return with_leading_slash(path);
}

QString plugin_static_function::get_relative_file_path(QString path, QString root, QString kind)
{
    const qsizetype position = path.indexOf(root);
    if (kind == home_directory_kind && position != -1)
        path.remove(0, position + root.size());
    return with_leading_slash(path);
}

struct_GLOBAL_ARTIFACT_artifact_source_file
plugin_static_function::get_final_artifact_source_file(QString path, QString root, QString kind)
{
    return {get_relative_file_path(path, root, kind), kind == home_directory_kind ? path : QString()};
}
