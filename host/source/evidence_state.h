// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_SOURCE_EVIDENCE_STATE_H
#define HOST_SOURCE_EVIDENCE_STATE_H

#include <QJsonObject>
#include <QJsonValue>
#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/** What the file system says of a file at one time, and what was read from it. */
struct file_state
{
    QString identity; ///< device and inode: another file of the same name has another; empty when read from a record
    qint64 size = 0;
    QString modified; ///< UTC, to the nanosecond
    QString changed;  ///< the same for the last change of the file's entry (ctime)
    QString sha256;   ///< empty: it could not be read, or is not looked into

    QJsonObject to_json() const;
    static file_state from_json(const QJsonObject &json);
};

/** A file that the host looked for in a source. */
struct evidence_file
{
    enum class presence { present, absent, unreadable, refused };

    QString path; ///< relative to the source; of an iOS source the log's name
    presence state = presence::absent;
    QString reason; ///< why it is unreadable or refused, or what is odd about one that is present
    std::optional<file_state> before;
    std::optional<file_state> after;
    QString copy_sha256; ///< of the working copy; empty: there is none
    QJsonValue origin;   ///< where it stood in its container; null: it stands in its place

    QJsonObject to_json() const;
    static evidence_file from_json(const QJsonObject &json);
};

/** "present", "absent", "unreadable" or "refused". */
QLatin1StringView presence_name(evidence_file::presence state);

/** The files of a source and the names in its evidence folder, before and after the plug-in read them. */
struct evidence_state
{
    QList<evidence_file> files;
    QStringList listing_before;
    QStringList listing_after;
    QJsonValue unparsed_lines; ///< of a log: how many lines with words of a device give no row, by result table

    /** The file of this path, present or not; null where it was not looked for. */
    const evidence_file *file_named(const QString &path) const;

    /** What is different after the run, in plain words, one text for each file. Empty when nothing is. */
    QStringList changes() const;

    /** {"evidence": [file, …], "listing": {"before": [name, …], "after": [name, …]}}, as it stands in records. */
    QJsonObject to_json() const;
    static evidence_state from_json(const QJsonObject &json);
};

#endif
