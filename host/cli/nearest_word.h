// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CLI_NEAREST_WORD_H
#define HOST_CLI_NEAREST_WORD_H

#include <QString>
#include <QStringList>

/**
 * The one of @p words that somebody who typed @p word most likely meant: a word that it begins, or one that differs in
 * few letters (missing, added, wrong, or two changed places), letter case aside. Empty if none is near.
 */
QString nearest_word(const QString &word, const QStringList &words);

#endif
