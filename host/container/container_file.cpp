// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/container_file.h"

#include "host/files/file_times.h"
#include "host/files/sha256.h"
#include "host/files/system_error.h"
#include "host/files/transfer.h"
#include "host/files/utc_time.h"
#include "host/source/evidence_folder.h"
#include "host/text/json_member.h"

#include <QFile>

#include <cerrno>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

QJsonObject container_file::to_json() const
{
    return {{u"path"_s, path},
            {u"size"_s, size},
            {u"modified"_s, text_or_null(modified)},
            {u"sha256"_s, text_or_null(sha256)}};
}

container_file file_now(const QString &path)
{
    struct stat status = {};
    container_file file;
    file.path = path;
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return file;
    file.size = qint64(status.st_size);
    file.modified = utc_text(modification_time(status));
    return file;
}

void hash_file(container_file &file, const read_observer &hashed)
{
    const descriptor opened = open_evidence(file.path);
    sha256 hash;
    const bool is_whole = opened.is_open() && read_blocks(opened.number(), [&hash, &hashed](QByteArrayView block) {
                              hash.add(block);
                              hashed(block.size());
                          });
    if (is_whole)
        file.sha256 = hash.result();
    else
        file.problem = system_error_text(errno);
}
