// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/source/working_copy.h"

#include "host/files/created_file.h"
#include "host/files/host_error.h"
#include "host/files/open_without_links.h"
#include "host/files/paths.h"
#include "host/files/sha256.h"
#include "host/files/system_error.h"
#include "host/files/transfer.h"

#include <QByteArray>
#include <QFileInfo>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

working_copy::working_copy(const QString &copy_path, mode_t mode)
    : path(copy_path)
{
    make_folder(QFileInfo(path).path());
    file = create_file(path, (mode & 0777) | S_IRUSR | S_IWUSR);
    if (!file.is_open())
        fail();
}

void working_copy::add(QByteArrayView block)
{
    if (!write_all(file.number(), block))
        fail();
}

QString working_copy::hash()
{
    if (::fsync(file.number()) != 0)
        fail();
    file = open_without_links(path, O_RDONLY | O_NONBLOCK);
    sha256 hash;
    if (!file.is_open() || !read_blocks(file.number(), [&hash](QByteArrayView block) { hash.add(block); }))
        fail();
    return hash.result();
}

void working_copy::fail() const
{
    throw host_error(error_kind::io,
                     u"the working copy "_s + path + u" cannot be written: "_s + system_error_text(errno));
}
