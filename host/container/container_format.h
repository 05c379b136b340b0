// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_CONTAINER_FORMAT_H
#define HOST_CONTAINER_CONTAINER_FORMAT_H

#include <QByteArrayView>
#include <QLatin1StringView>
#include <QString>

/** What a file is by bytes at known places of it; nothing is unpacked or followed. */
struct container_guess
{
    enum class kind { none, image, archive, compressed, refused };

    kind what = kind::none;
    QLatin1StringView format;  ///< as records call it; of a refused one its name in plain words
    QLatin1StringView command; ///< refused: converts "%1", empty where Debian has nothing that does
};

/**
 * @p start: the first container_start_bytes of the file, @p end: its last container_end_bytes. What is compressed may
 * turn out to be an archive.
 */
container_guess guess_container(QByteArrayView start, QByteArrayView end);

/** The same for the regular file at @p path; kind::none for one that cannot be read. */
container_guess guess_container(const QString &path);

/** Why a refused one is, with the command that converts it. */
QString refusal_of(const container_guess &guess, const QString &path);

/** Whether the folder is a sparse bundle: an image in bands. */
bool is_sparse_bundle(const QString &folder);

inline constexpr qsizetype container_start_bytes = 8192;
inline constexpr qsizetype container_end_bytes = 512;

#endif
