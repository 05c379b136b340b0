// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_IMAGE_SEGMENTS_H
#define HOST_CONTAINER_IMAGE_SEGMENTS_H

#include <QByteArray>
#include <QLatin1StringView>
#include <QString>
#include <QStringList>

/**
 * The files of the image that begins with the one at @p path: "x.001", "x.002", … of a raw one, "x.E01", …, "x.E99",
 * "x.EAA", … of an EWF, the extents that a VMDK's description names. The one alone where its name counts nothing.
 */
QStringList image_segments(const QString &path, QLatin1StringView format);

/** The files that the description of a VMDK names. https://www.vmware.com/app/vmdk/?src=vmdk */
QStringList extent_names(const QByteArray &description);

/** MD5 and SHA-1 that an EWF holds of its content, in hexadecimal digits; empty where it has none. */
struct ewf_hashes
{
    QString md5;
    QString sha1;
    bool is_whole = false; ///< its last section is there
};

/** From the sections "hash", "digest" and "done" of the last segment. */
ewf_hashes hashes_in_ewf(const QString &last_segment);

#endif
