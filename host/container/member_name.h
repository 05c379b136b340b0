// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_MEMBER_NAME_H
#define HOST_CONTAINER_MEMBER_NAME_H

#include <QByteArrayView>
#include <QString>
#include <QStringList>

/** The name of a file in a container, taken apart. */
struct member_name
{
    QString text;      ///< as it stands there; bytes that are no UTF-8 as "\xff"
    QStringList parts; ///< its folders and its own name, without "", "." and what makes it dangerous
    QString danger;    ///< in plain words, why nothing may be written under this name; empty: it is safe
};

/** Takes a name apart whose bytes anybody may have chosen. */
member_name take_apart(QByteArrayView bytes);

/**
 * Whether a name is safe, of printed ASCII, and has its own name at its end, but for one slash: all but a few of the
 * names of an archive, which need not be taken apart then to see that they are not looked for. False is no judgement.
 */
bool is_plain_name(QByteArrayView bytes);

/** What two names share that a file system without letter case or with one Unicode form takes for one. */
QString folded_name(const QString &path);

#endif
