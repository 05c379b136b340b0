// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CHECK_REQUEST_H
#define HOST_CASE_CHECK_REQUEST_H

#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>

/** What to compare a case with. */
struct check_request
{
    QString directory;           ///< absolute
    QString manifest_sha256;     ///< from the examiner's notes; empty: the file beside the manifest has it
    QMap<int, QString> moved_to; ///< where the evidence of a source lies now
    QStringList report_folders;  ///< absolute; of reports that lie elsewhere
    bool leaves_out_evidence = false;
    bool hashes_containers = false; ///< images and archives too, which are compared by size and time otherwise
    /** What an EWF holds now: "md5" and "sha1", or the "problem". It is opened in this process. */
    std::function<QJsonObject(const QString &path)> rehash_image;
};

#endif
