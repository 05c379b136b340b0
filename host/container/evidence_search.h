// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_EVIDENCE_SEARCH_H
#define HOST_CONTAINER_EVIDENCE_SEARCH_H

#include "host/source/source_kinds.h"

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

/** What a file of a container is evidence of, by its path. docs/formats.md has the paths. */
struct evidence_match
{
    const source_kind *kind = nullptr;
    QString root;           ///< the folder of the container that the source begins at; empty: the container itself
    QString target;         ///< where the plug-in looks for it, relative to the root that it gets
    bool is_a_sign = false; ///< a source of this kind holds it; the others only complete one
};

/** What is looked for in a container. */
class evidence_search
{
public:
    /** @p kind: null for every kind. */
    explicit evidence_search(const source_kind *kind = nullptr);

    bool looks_for(const source_kind &kind) const;

    /** Nothing for a path that is no evidence. Of a folder the path is a sign alone: it has no target. */
    std::optional<evidence_match> match(const QStringList &parts) const;

    /**
     * Whether match() or nearly_matches() may say yes to a path that ends like this one, of ASCII. It looks at the last
     * name alone: archives have millions of paths.
     */
    static bool may_match(QByteArrayView path);

    /** A path that would match if letter case and the form of Unicode did not count. */
    bool nearly_matches(const QStringList &parts) const;

    /**
     * The folders that can hold evidence where every folder can be opened: "*" stands for each folder of that place.
     * Letter case counts for none but Windows.
     */
    QList<QStringList> folders() const;

private:
    const source_kind *wanted;
};

#endif
