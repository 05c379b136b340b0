// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CASE_CASE_SOURCES_H
#define HOST_CASE_CASE_SOURCES_H

#include "host/source/source_kinds.h"

#include <QJsonObject>
#include <QList>
#include <QString>

/** A source as the examiner names it. */
struct named_source
{
    int number = -1;                   ///< -1: none was given yet
    QString name;                      ///< may be empty
    QString path;                      ///< absolute
    const source_kind *kind = nullptr; ///< null: to be recognized
    int volume = 0;                    ///< of an image; 0: the only one with evidence
    QString member;                    ///< of an archive; empty: the only one
    QString place;                     ///< where the examiner named it, for messages: "-i" or "list.json: sources[2]"
};

/**
 * The sources that a JSON file of the examiner's lists, which may be a link; docs/sources.schema.json describes it.
 * Relative paths start at the file's folder. Throws host_error: not_found when the file cannot be read, refused, with
 * the place in it, when it is not right.
 */
QList<named_source> read_source_list(const QString &file);

/** The same of a list that stands in a case, which is no link. */
QList<named_source> read_list_of_case(const QString &file);

/** What such a file holds when this program writes it. */
QJsonObject source_list_json(const QList<named_source> &sources);

/**
 * Writes such a file, with absolute paths: a run that is continued needs them of sources that never began, too. Throws
 * host_error (io).
 */
void write_source_list(const QString &file, const QList<named_source> &sources);

/**
 * Gives each source without a number the lowest one that is free above all others before it: 1, 2, … Throws host_error
 * (refused) when a number or a source is there twice, or one source lies inside another.
 */
void number_sources(QList<named_source> &sources);

/** How two sources of a list are compared. */
enum class path_comparison {
    places, ///< what the paths lead to, links followed
    texts,  ///< the paths alone: no source of the list is looked at
};

/** Throws host_error (refused) when two of the sources are one, or one lies inside another. */
void refuse_overlaps(const QList<named_source> &sources, path_comparison comparison);

/**
 * Which sources a case has, as each of their records says it: "count", "numbers" ("1-3,7") and "sha256", the hash of
 * the list: compact JSON of [number, name, path] for each, by number.
 */
QJsonObject sources_identity(const QList<named_source> &sources);

/** Numbers in ascending order as a text: "1-3,7". */
QString ranges_of(const QList<int> &numbers);

/**
 * The numbers in a text such as "1-3,7", as sources_identity() writes it: ascending, none above a million. Throws
 * host_error (not_found) for any other text.
 */
QList<int> numbers_in(const QString &ranges);

#endif
