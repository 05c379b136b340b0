// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_HOST_REPORT_LAID_CASE_H
#define TESTS_HOST_REPORT_LAID_CASE_H

#include <QString>
#include <QTemporaryDir>

/**
 * A case of which every file is literal: a Mac with everything that a report says of rows, a PC with a list of devices,
 * a phone's log, and a source that failed. Some of their devices are the same.
 */
class laid_case
{
public:
    laid_case();

    QString directory() const
    {
        return folder.path();
    }
    QString path(const QString &name) const
    {
        return folder.filePath(name);
    }
    /** In a file of the case, the first place of a text. */
    void replace(const QString &name, const QByteArray &text, const QByteArray &other) const;

private:
    QTemporaryDir folder;
};

#endif
