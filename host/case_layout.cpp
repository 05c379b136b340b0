// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case_layout.h"

#include "host/host_error.h"
#include "host/paths.h"

#include <QDir>

using namespace Qt::StringLiterals;

case_layout::case_layout(const QString &directory)
    : case_directory(QDir::cleanPath(QDir().absoluteFilePath(directory)))
{
}

QString case_layout::directory() const
{
    return case_directory;
}

QString case_layout::result_folder() const
{
    return case_directory + u"/Artifacts_Result/Bluetooth_Logs"_s;
}

QString case_layout::result_database() const
{
    return result_folder() + u"/Bluetooth_Logs.sqlite"_s;
}

void case_layout::refuse_earlier_result() const
{
    if (path_exists(result_folder()))
        throw host_error(exit_code::usage,
                         u"the case already holds a result, "_s + result_folder() + u": --force removes it first"_s);
}

void case_layout::prepare() const
{
    if (!QDir().mkpath(case_directory))
        throw host_error(exit_code::internal_error, u"the case's folder cannot be made: "_s + case_directory);
    // All of it: the plug-in adds to a database that it finds, and never refreshes the copies that it works on.
    if (!remove_tree(result_folder()))
        throw host_error(exit_code::internal_error, u"the earlier result cannot be removed: "_s + result_folder());
}
