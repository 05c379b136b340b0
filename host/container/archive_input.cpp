// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/container/archive_input.h"

#include "host/files/system_error.h"
#include "host/source/evidence_folder.h"

#include <algorithm>
#include <cerrno>
#include <limits>

#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr qsizetype least_block = 1 << 9; // behind what was passed over: the header of one more member
constexpr qsizetype most_block = 1 << 16; // what was read is hashed from the cache

qint64 size_of(int file)
{
    struct stat status = {};
    return ::fstat(file, &status) == 0 ? qint64(status.st_size) : 0;
}

} // namespace

archive_input::archive_input(const QString &path, const read_observer &hash_observer)
    : file(open_evidence(path))
    , observe_hash(hash_observer)
    , buffer(most_block, Qt::Uninitialized)
    , block(least_block)
{
    if (observe_hash)
        hash.emplace();
    if (file.is_open())
        file_size = size_of(file.number());
}

std::optional<QByteArrayView> archive_input::next()
{
    hash_up_to(place);
    const qsizetype count = read(place, block);
    if (count < 0)
        return {};
    const QByteArrayView bytes(buffer.constData(), count);
    hash_block(place, bytes);
    place += count;
    block = std::min(2 * block, most_block);
    return bytes;
}

qint64 archive_input::skip(qint64 bytes)
{
    const qint64 before = place;
    go_to(place + std::min(bytes, file_size - std::min(place, file_size)));
    return place - before;
}

void archive_input::go_to(qint64 wanted)
{
    place = std::clamp<qint64>(wanted, 0, std::max(place, file_size));
    block = least_block;
}

void archive_input::finish_hash(container_file &hashed_file)
{
    hash_up_to(std::numeric_limits<qint64>::max());
    hashed_file.problem = hash_problem;
    if (hash)
        hashed_file.sha256 = hash->result();
    hash.reset();
}

qsizetype archive_input::read(qint64 from, qsizetype most)
{
    for (;;) {
        const auto count = ::pread(file.number(), buffer.data(), size_t(most), from);
        if (count >= 0 || errno != EINTR)
            return count;
    }
}

/** Or to the end of the file. What cannot be read ends the hash, and not the reading of the rest. */
void archive_input::hash_up_to(qint64 end)
{
    while (hash && hashed < end) {
        const qsizetype count = read(hashed, qsizetype(std::min<qint64>(most_block, end - hashed)));
        if (count == 0)
            return;
        if (count > 0) {
            hash_block(hashed, QByteArrayView(buffer.constData(), count));
            continue;
        }
        hash_problem = system_error_text(errno);
        hash.reset();
    }
}

void archive_input::hash_block(qint64 from, QByteArrayView bytes)
{
    const qint64 known = hashed - from;
    if (!hash || known < 0 || known >= bytes.size())
        return;
    const QByteArrayView more = bytes.sliced(known);
    hash->add(more);
    observe_hash(more.size());
    hashed += more.size();
}
