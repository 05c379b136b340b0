// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_FILE_COMPARISON_H
#define HOST_CASE_FILE_COMPARISON_H

#include "host/case/check_outcome.h"
#include "host/case/kept_file.h"

#include <QSet>

/** Compares files with what a manifest or a report lists, and adds each to the outcome of a check, with what differs.
 */
class file_comparison
{
public:
    static constexpr qint64 unknown_size = -1; ///< of a file whose content alone is compared

    /** @p directory is the case's. */
    file_comparison(const QString &directory, check_outcome &check);

    /** A file below @p root whose size and hash are known; one of another size is not read. */
    void compare(const QString &root, const kept_file &expected, compared_file::place kind);

    /** Each of the files below @p root that is not among the known ones. */
    void add_unknown(const QString &root, const QStringList &paths, const QSet<QString> &known,
                     compared_file::place kind);

    /** A file that nothing lists, by the path that it is shown with. */
    void add_new(const QString &path, compared_file::place kind);

private:
    QString shown(const QString &root, const QString &path) const;

    const QString case_directory;
    check_outcome &outcome;
};

#endif
