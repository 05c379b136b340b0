// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

// Makes one call of the system fail, in a program that is started with this library in LD_PRELOAD. What is to fail
// stands in environment variables:
//   BLUETOOTH_LOGS_FAULT         "PROCESS CALL N EFFECT": the N-th CALL of the process, 0 for the one that was started
//   and
//                                1, 2, … for those that it starts; EFFECT is an error number, "short", "zero" or
//                                "kill", or "stop": the process stops before the call
//                                until somebody lets it go on; a "+" behind it means all calls from the N-th on
//   BLUETOOTH_LOGS_FAULT_COUNTS  a file of fault_counts, which takes the calls and whether the fault was met
//   BLUETOOTH_LOGS_FAULT_PROCESS the number of this process; set by this library
// Nothing of Qt or of the program is used here.

#include "tests/faults/fault_counts.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

extern "C" void *
    __libc_malloc(size_t); // NOLINT(bugprone-reserved-identifier): glibc's own, for those who replace malloc
extern "C" void *__libc_calloc(size_t, size_t);  // NOLINT(bugprone-reserved-identifier)
extern "C" void *__libc_realloc(void *, size_t); // NOLINT(bugprone-reserved-identifier)

namespace {

enum class effect { none, error, shortened, nothing };

struct fault
{
    int process = -1;
    fault_call call = fault_call::count;
    unsigned long number = 0;
    effect what = effect::error;
    int error = 0;
    bool kills = false;
    bool stops = false;
    bool lasts = false;
};

fault planned;
int this_process = 0;
int started_processes = 0;
fault_counts *counts = nullptr;
std::atomic<bool> is_ready = false;

void read_fault(const char *text)
{
    char call[32] = {};
    char what[32] = {};
    if (!text || std::sscanf(text, "%d %31s %lu %31s", &planned.process, call, &planned.number, what) != 4)
        return;
    for (int i = 0; i < int(fault_call::count); ++i) {
        if (std::strcmp(call, fault_call_names[i]) == 0)
            planned.call = fault_call(i);
    }
    planned.lasts = what[std::strlen(what) - 1] == '+';
    planned.kills = std::strcmp(what, "kill") == 0;
    planned.stops = std::strcmp(what, "stop") == 0;
    if (std::strcmp(what, "short") == 0)
        planned.what = effect::shortened;
    else if (std::strcmp(what, "zero") == 0)
        planned.what = effect::nothing;
    else
        planned.error = std::atoi(what);
}

template<typename Function>
Function next_of(Function, const char *name)
{
    return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

[[gnu::constructor]] void begin()
{
    const char *process = std::getenv("BLUETOOTH_LOGS_FAULT_PROCESS");
    this_process = process ? std::atoi(process) : 0;
    read_fault(std::getenv("BLUETOOTH_LOGS_FAULT"));
    const char *file = std::getenv("BLUETOOTH_LOGS_FAULT_COUNTS");
    const long opened = file ? ::syscall(SYS_openat, AT_FDCWD, file, O_RDWR | O_CLOEXEC) : -1;
    if (opened >= 0) {
        void *mapped = reinterpret_cast<void *>(
            ::syscall(SYS_mmap, nullptr, sizeof(fault_counts), PROT_READ | PROT_WRITE, MAP_SHARED, opened, 0));
        counts = mapped == MAP_FAILED ? nullptr : static_cast<fault_counts *>(mapped);
        ::syscall(SYS_close, opened);
    }
    is_ready = this_process < fault_processes;
}

/** Counts the call, and says what becomes of it; errno is set for one that fails. */
effect take(fault_call call, int descriptor = -1)
{
    if (!is_ready || !counts)
        return effect::none;
    const unsigned long number = counts->calls[this_process][int(call)].fetch_add(1) + 1;
    const bool is_meant = planned.lasts ? number >= planned.number : number == planned.number;
    if (this_process != planned.process || call != planned.call || !is_meant)
        return effect::none;
    counts->is_met.store(1);
    counts->descriptor.store(descriptor);
    if (planned.kills || planned.stops)
        ::kill(::getpid(), planned.kills ? SIGKILL : SIGSTOP);
    if (planned.stops)
        return effect::none;
    errno = planned.error;
    return planned.what;
}

/** The size of a call that takes part of what was asked for. */
size_t size_after(effect what, size_t size)
{
    return what == effect::shortened ? std::max<size_t>(1, size / 2) : size;
}

mode_t mode_of(int flags, va_list arguments)
{
    return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

} // namespace

// The next function of the same name does the work; those of glibc differ in nothing else from the plain system call.

extern "C" ssize_t write(int file, const void *bytes, size_t size)
{
    static const auto next = next_of(&::write, "write");
    const effect what = take(fault_call::write, file);
    if (what == effect::error)
        return -1;
    return what == effect::nothing ? 0 : next(file, bytes, size_after(what, size));
}

extern "C" ssize_t pwrite64(int file, const void *bytes, size_t size, off64_t offset)
{
    static const auto next = next_of(&::pwrite64, "pwrite64");
    const effect what = take(fault_call::pwrite, file);
    if (what == effect::error)
        return -1;
    return what == effect::nothing ? 0 : next(file, bytes, size_after(what, size), offset);
}

extern "C" ssize_t pwrite(int file, const void *bytes, size_t size, off_t offset)
{
    return ::pwrite64(file, bytes, size, offset);
}

extern "C" ssize_t read(int file, void *bytes, size_t size)
{
    static const auto next = next_of(&::read, "read");
    const effect what = take(fault_call::read, file);
    if (what == effect::error)
        return -1;
    return what == effect::nothing ? 0 : next(file, bytes, size_after(what, size));
}

extern "C" ssize_t pread64(int file, void *bytes, size_t size, off64_t offset)
{
    static const auto next = next_of(&::pread64, "pread64");
    const effect what = take(fault_call::pread, file);
    if (what == effect::error)
        return -1;
    return what == effect::nothing ? 0 : next(file, bytes, size_after(what, size), offset);
}

extern "C" ssize_t pread(int file, void *bytes, size_t size, off_t offset)
{
    return ::pread64(file, bytes, size, offset);
}

extern "C" int fsync(int file)
{
    static const auto next = next_of(&::fsync, "fsync");
    return take(fault_call::fsync, file) == effect::none ? next(file) : -1;
}

extern "C" int fdatasync(int file)
{
    static const auto next = next_of(&::fdatasync, "fdatasync");
    return take(fault_call::fsync, file) == effect::none ? next(file) : -1;
}

extern "C" int openat64(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_of(flags, arguments);
    va_end(arguments);
    return take(fault_call::open) == effect::none ? int(::syscall(SYS_openat, folder, path, flags, mode)) : -1;
}

extern "C" int openat(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_of(flags, arguments);
    va_end(arguments);
    return ::openat64(folder, path, flags, mode);
}

extern "C" int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_of(flags, arguments);
    va_end(arguments);
    return ::openat64(AT_FDCWD, path, flags, mode);
}

extern "C" int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_of(flags, arguments);
    va_end(arguments);
    return ::openat64(AT_FDCWD, path, flags, mode);
}

/** The program opens files of a case by a call that glibc has no function for. */
extern "C" long syscall(long number, ...) noexcept
{
    static const auto next = reinterpret_cast<long (*)(long, ...)>(::dlsym(RTLD_NEXT, "syscall"));
    va_list arguments;
    va_start(arguments, number);
    long given[6];
    for (long &one : given)
        one = va_arg(arguments, long);
    va_end(arguments);
    if (number == SYS_openat2 && take(fault_call::open) != effect::none)
        return -1;
    return next(number, given[0], given[1], given[2], given[3], given[4], given[5]);
}

extern "C" off64_t lseek64(int file, off64_t offset, int whence) noexcept
{
    static const auto next = next_of(&::lseek64, "lseek64");
    return take(fault_call::lseek, file) == effect::none ? next(file, offset, whence) : -1;
}

extern "C" off_t lseek(int file, off_t offset, int whence) noexcept
{
    return ::lseek64(file, offset, whence);
}

extern "C" void *mmap64(void *place, size_t size, int protection, int flags, int file, off64_t offset) noexcept
{
    static const auto next = next_of(&::mmap64, "mmap64");
    return take(fault_call::mmap, file) == effect::none ? next(place, size, protection, flags, file, offset)
                                                        : MAP_FAILED;
}

extern "C" void *mmap(void *place, size_t size, int protection, int flags, int file, off_t offset) noexcept
{
    return ::mmap64(place, size, protection, flags, file, offset);
}

extern "C" int renameat(int from_folder, const char *from, int to_folder, const char *to) noexcept
{
    static const auto next = next_of(&::renameat, "renameat");
    return take(fault_call::rename) == effect::none ? next(from_folder, from, to_folder, to) : -1;
}

extern "C" int rename(const char *from, const char *to) noexcept
{
    return ::renameat(AT_FDCWD, from, AT_FDCWD, to);
}

extern "C" int unlinkat(int folder, const char *path, int flags) noexcept
{
    static const auto next = next_of(&::unlinkat, "unlinkat");
    return take(fault_call::unlink) == effect::none ? next(folder, path, flags) : -1;
}

extern "C" int unlink(const char *path) noexcept
{
    return ::unlinkat(AT_FDCWD, path, 0);
}

extern "C" int rmdir(const char *path) noexcept
{
    return ::unlinkat(AT_FDCWD, path, AT_REMOVEDIR);
}

extern "C" int mkdirat(int folder, const char *path, mode_t mode) noexcept
{
    static const auto next = next_of(&::mkdirat, "mkdirat");
    return take(fault_call::mkdir) == effect::none ? next(folder, path, mode) : -1;
}

extern "C" int mkdir(const char *path, mode_t mode) noexcept
{
    return ::mkdirat(AT_FDCWD, path, mode);
}

/** The descriptor is gone all the same, as Linux has it. */
extern "C" int close(int file)
{
    static const auto next = next_of(&::close, "close");
    const effect what = take(fault_call::close, file);
    const int error = errno;
    const int result = next(file);
    if (what == effect::none)
        return result;
    errno = error;
    return -1;
}

extern "C" int fstatat64(int folder, const char *path, struct stat64 *status, int flags) noexcept
{
    static const auto next = next_of(&::fstatat64, "fstatat64");
    return take(fault_call::stat) == effect::none ? next(folder, path, status, flags) : -1;
}

extern "C" int stat64(const char *path, struct stat64 *status) noexcept
{
    return ::fstatat64(AT_FDCWD, path, status, 0);
}

extern "C" int lstat64(const char *path, struct stat64 *status) noexcept
{
    return ::fstatat64(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}

extern "C" int fstat64(int file, struct stat64 *status) noexcept
{
    return ::fstatat64(file, "", status, AT_EMPTY_PATH);
}

// The two structures are one where off_t has 64 bits.
static_assert(sizeof(struct stat) == sizeof(struct stat64));

extern "C" int fstatat(int folder, const char *path, struct stat *status, int flags) noexcept
{
    return ::fstatat64(folder, path, reinterpret_cast<struct stat64 *>(status), flags);
}

extern "C" int stat(const char *path, struct stat *status) noexcept
{
    return ::fstatat(AT_FDCWD, path, status, 0);
}

extern "C" int lstat(const char *path, struct stat *status) noexcept
{
    return ::fstatat(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}

extern "C" int fstat(int file, struct stat *status) noexcept
{
    return ::fstatat(file, "", status, AT_EMPTY_PATH);
}

extern "C" int statx(int folder, const char *path, int flags, unsigned int mask, struct statx *status) noexcept
{
    static const auto next = next_of(&::statx, "statx");
    return take(fault_call::stat) == effect::none ? next(folder, path, flags, mask, status) : -1;
}

extern "C" struct dirent64 *readdir64(DIR *folder)
{
    static const auto next = next_of(&::readdir64, "readdir64");
    return take(fault_call::readdir) == effect::none ? next(folder) : nullptr;
}

extern "C" struct dirent *readdir(DIR *folder)
{
    return reinterpret_cast<struct dirent *>(::readdir64(folder));
}

extern "C" pid_t fork() noexcept
{
    static const auto next = next_of(&::fork, "fork");
    return take(fault_call::fork) == effect::none ? next() : -1;
}

/** A thread counts with the processes. */
extern "C" int pthread_create(pthread_t *thread, const pthread_attr_t *attributes, void *(*run)(void *),
                              void *argument) noexcept
{
    static const auto next = next_of(&::pthread_create, "pthread_create");
    return take(fault_call::fork) == effect::none ? next(thread, attributes, run, argument) : errno;
}

namespace {

std::string own_file()
{
    Dl_info info = {};
    return ::dladdr(reinterpret_cast<const void *>(&own_file), &info) != 0 ? info.dli_fname : "";
}

/** The environment of a process that is started, with what brings this library there. */
std::vector<std::string> child_environment(char *const given[])
{
    std::vector<std::string> variables;
    for (; *given; ++given) {
        if (std::strncmp(*given, "LD_PRELOAD=", 11) != 0 && std::strncmp(*given, "BLUETOOTH_LOGS_FAULT", 20) != 0)
            variables.emplace_back(*given);
    }
    for (const char *name : {"BLUETOOTH_LOGS_FAULT", "BLUETOOTH_LOGS_FAULT_COUNTS"}) {
        if (const char *value = std::getenv(name))
            variables.push_back(std::string(name) + '=' + value);
    }
    variables.push_back("LD_PRELOAD=" + own_file());
    variables.push_back("BLUETOOTH_LOGS_FAULT_PROCESS=" + std::to_string(started_processes));
    return variables;
}

} // namespace

extern "C" int posix_spawn(pid_t *process, const char *path, const posix_spawn_file_actions_t *actions,
                           const posix_spawnattr_t *attributes, char *const arguments[], char *const environment[])
{
    static const auto next = next_of(&::posix_spawn, "posix_spawn");
    if (take(fault_call::fork) != effect::none)
        return errno;
    ++started_processes;
    std::vector<std::string> variables = child_environment(environment);
    std::vector<char *> pointers;
    for (std::string &variable : variables)
        pointers.push_back(variable.data());
    pointers.push_back(nullptr);
    return next(process, path, actions, attributes, arguments, pointers.data());
}

extern "C" void *malloc(size_t size) noexcept
{
    return take(fault_call::malloc) == effect::none ? __libc_malloc(size) : nullptr;
}

extern "C" void *calloc(size_t number, size_t size) noexcept
{
    return take(fault_call::malloc) == effect::none ? __libc_calloc(number, size) : nullptr;
}

extern "C" void *realloc(void *block, size_t size) noexcept
{
    return take(fault_call::malloc) == effect::none ? __libc_realloc(block, size) : nullptr;
}
