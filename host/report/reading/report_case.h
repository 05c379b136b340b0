// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_REPORT_READING_REPORT_CASE_H
#define HOST_REPORT_READING_REPORT_CASE_H

#include "host/case/case_layout.h"
#include "host/case/source_record.h"
#include "host/report/reading/preferences_names.h"
#include "host/report/reading/row_notes.h"
#include "host/report/reading/row_ranks.h"
#include "host/report/reading/vendor_list.h"

#include <QHash>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

/** A source as reports name it. */
struct report_source
{
    source_record record;
    QString name;                  ///< the one that the examiner gave, else "Source<number>"
    preferences_names preferences; ///< of its Bluetooth preferences; empty where there are none
    bool is_locked = false;        ///< a run works on it: a reader could keep that from writing
    QByteArray utf8_name = name.toUtf8();
    std::shared_ptr<QHash<QString, table_ranks>> ranks = std::make_shared<QHash<QString, table_ranks>>(); ///< by table

    /** Why a file of its container has no hash. */
    QByteArray why_no_hash(const QString &path) const;

    /** "source 1: …" */
    QString problem_text(const QString &problem) const
    {
        return QStringLiteral("source ") + QString::number(record.number) + QStringLiteral(": ") + problem;
    }
};

/** What reports say of a case as a whole. */
struct report_case
{
    case_layout layout;
    QJsonObject heading;     ///< the manifest's members but for its sources; empty when the case was not collected
    QString manifest_sha256; ///< of the file as it stands there now; empty without one
    QList<report_source> sources;
    vendor_list vendors;      ///< empty unless the examiner gave one
    QStringList shortcomings; ///< why the case is not complete, in plain words
    std::shared_ptr<const note_list> notes = std::make_shared<note_list>(); ///< what examiners noted; never null
};

/**
 * Reads the manifest of the case in @p directory, or the records of its sources where there is none. Throws host_error
 * (not_found) when there is no case, or it cannot be read.
 */
report_case read_report_case(const QString &directory);

#endif
