// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef HOST_FILES_DESCRIPTOR_H
#define HOST_FILES_DESCRIPTOR_H

#include <utility>

#include <unistd.h>

/** Owns an open file descriptor and closes it. */
class descriptor
{
public:
    descriptor() = default;
    explicit descriptor(int number)
        : fd(number)
    {
    }
    descriptor(descriptor &&other) noexcept
        : fd(std::exchange(other.fd, -1))
    {
    }
    descriptor &operator=(descriptor &&other) noexcept
    {
        std::swap(fd, other.fd);
        return *this;
    }
    ~descriptor()
    {
        close();
    }

    bool is_open() const
    {
        return fd != -1;
    }

    int number() const
    {
        return fd;
    }

    /** Gives the descriptor away. */
    int release()
    {
        return std::exchange(fd, -1);
    }

    void close()
    {
        if (fd != -1)
            ::close(std::exchange(fd, -1));
    }

private:
    int fd = -1;
};

#endif
