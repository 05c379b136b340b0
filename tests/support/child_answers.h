// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#ifndef TESTS_SUPPORT_CHILD_ANSWERS_H
#define TESTS_SUPPORT_CHILD_ANSWERS_H

#include <QtGlobal>

#include <csignal>
#include <functional>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

/** What a child process finds out that is held in its place for good, as numbers. */
class child_answers
{
public:
    /** @p work is the child's, and writes to the @p count places that it is given, which are zero. */
    child_answers(size_t count, const std::function<void(int *answers)> &work)
        : bytes(count * sizeof(int))
        , places(static_cast<int *>(::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)))
    {
        const pid_t child = ::fork();
        if (child == 0) {
            std::signal(SIGSEGV, SIG_DFL); // no handler of the test's or a sanitizer's
            work(places);
            ::_exit(0);
        }
        ::waitpid(child, &status, 0);
    }
    ~child_answers()
    {
        ::munmap(places, bytes);
    }
    Q_DISABLE_COPY_MOVE(child_answers)

    /** The signal that ended the child, or 0. */
    int signal() const
    {
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    int operator[](size_t place) const
    {
        return places[place];
    }

private:
    size_t bytes;
    int *places;
    int status = 0;
};

#endif
