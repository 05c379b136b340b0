// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_CONTAINER_FILE_STREAM_H
#define HOST_CONTAINER_FILE_STREAM_H

#include "host/container/evidence_store.h"
#include "host/files/descriptor.h"
#include "host/files/system_error.h"
#include "host/files/transfer.h"

#include <cerrno>
#include <utility>

/** A file of the system's as a stream. */
class file_stream : public byte_stream
{
public:
    explicit file_stream(descriptor opened)
        : file(std::move(opened))
    {
    }

    qsizetype read(char *bytes, qsizetype most) override
    {
        const qsizetype count = read_some(file.number(), bytes, most);
        if (count < 0)
            throw stream_failure(system_error_text(errno));
        return count;
    }

private:
    descriptor file;
};

#endif
