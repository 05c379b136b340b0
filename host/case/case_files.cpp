// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/case/case_files.h"

#include <iterator>

using namespace Qt::StringLiterals;

namespace {

QList<QLatin1StringView> endings_of(companions beside)
{
    switch (beside) {
    case companions::none:
        return {};
    case companions::unfinished:
        return {".new"_L1};
    case companions::sqlite:
        return {"-journal"_L1, "-wal"_L1, "-shm"_L1};
    }
    return {};
}

} // namespace

qsizetype longest_database_name()
{
    qsizetype longest = 0;
    for (const case_file &file : case_files)
        longest = file.beside == companions::sqlite ? qMax(longest, file.name.size()) : longest;
    return longest;
}

QStringList names_of(const case_file &file)
{
    QStringList names{file.name};
    for (const QLatin1StringView ending : endings_of(file.beside))
        names.append(file.name + ending);
    return names;
}

QStringList case_file_names(bool case_file::*column)
{
    QStringList names;
    for (const case_file &file : case_files) {
        if (file.*column)
            names += names_of(file);
    }
    return names;
}
