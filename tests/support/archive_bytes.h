// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_ARCHIVE_BYTES_H
#define TESTS_SUPPORT_ARCHIVE_BYTES_H

#include <QByteArray>

/**
 * A member of a tar, "ustar", of so many bytes that follow each other in the archive. @p type: '0' a file, '1' a hard
 * link, '2' a link, '5' a folder. An archive ends with 1,024 zeros.
 */
QByteArray tar_member(const QByteArray &name, const QByteArray &content = {}, char type = '0',
                      const QByteArray &link = {});

/** A member of a cpio, "newc", with the number of its inode; an archive ends with one of the name TRAILER!!!. */
QByteArray cpio_member(const QByteArray &name, const QByteArray &content = {}, int inode = 0);

/** A member of a zip that says that it is encrypted. */
QByteArray encrypted_zip_member(const QByteArray &name);

#endif
