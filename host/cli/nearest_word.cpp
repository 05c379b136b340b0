// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/cli/nearest_word.h"

#include <QList>

#include <algorithm>

namespace {

constexpr qsizetype shortest_beginning = 3;

/** The letters to add, drop, change or swap with their neighbour so that one text becomes the other. */
qsizetype distance(const QString &left, const QString &right)
{
    const qsizetype width = right.size() + 1;
    QList<qsizetype> table((left.size() + 1) * width);
    for (qsizetype i = 0; i <= left.size(); ++i) {
        for (qsizetype j = 0; j <= right.size(); ++j) {
            qsizetype &least = table[i * width + j];
            least = std::max(i, j);
            if (i == 0 || j == 0)
                continue;
            const qsizetype change = left.at(i - 1) == right.at(j - 1) ? 0 : 1;
            least = std::min({table.at((i - 1) * width + j) + 1, table.at(i * width + j - 1) + 1,
                              table.at((i - 1) * width + j - 1) + change});
            const bool is_swapped = i > 1 && j > 1 && left.at(i - 1) == right.at(j - 2)
                                    && left.at(i - 2) == right.at(j - 1);
            if (is_swapped)
                least = std::min(least, table.at((i - 2) * width + j - 2) + 1);
        }
    }
    return table.last();
}

} // namespace

QString nearest_word(const QString &word, const QStringList &words)
{
    const QString typed = word.toLower();
    QString nearest;
    qsizetype least = std::max<qsizetype>(1, typed.size() / 3) + 1;
    for (const QString &candidate : words) {
        const bool is_begun = typed.size() >= shortest_beginning && candidate.startsWith(typed, Qt::CaseInsensitive);
        const qsizetype difference = is_begun ? 1 : distance(typed, candidate.toLower());
        if (difference < least) {
            least = difference;
            nearest = candidate;
        }
    }
    return nearest;
}
