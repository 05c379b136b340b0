// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "common/file_names.h"
#include "common/plugin_static_function.h"

#include <QSet>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/** The only kind of location that the path helpers act upon. */
constexpr QLatin1StringView home_directory_kind("macOS_Home_Directory");
constexpr QLatin1StringView home_folders_parent("/Users/");

/** Result rows store paths that begin with "/"; a blank path stays as it is. */
QString with_leading_slash(const QString &path)
{
    return path.startsWith(u'/') || path.trimmed().isEmpty() ? path : u'/' + path;
}

} // namespace

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
    return free_file_name(file_name, dir);
}

bool plugin_static_function::is_file_exist_in_dir(QString dir, QString file_name, QString caller)
{
    Q_UNUSED(caller)
    const QString wanted = file_name.trimmed();
    const QStringList names = trimmed_names_in(dir);
    for (const QString &name : names) {
        if (bool_cancel_extraction)
            return false;
        if (name == wanted)
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
