// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "plugin/bluetooth_logs.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <thread>

#include <fcntl.h>
#include <netinet/in.h>
#include <sched.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray own_folder; // Source<number>
QByteArray evidence;   // a database of the source

QByteArray in_case(const char *name)
{
    return own_folder + "/../" + name;
}

/** Valid until the next call. */
const char *below(const char *name)
{
    static QByteArray path;
    path = own_folder + '/' + name;
    return path.constData();
}

const char *renamed()
{
    static QByteArray path;
    path = evidence + ".renamed";
    return path.constData();
}

QByteArray of_parent(const char *name)
{
    return "/proc/" + QByteArray::number(::getppid()) + '/' + name;
}

/** 0 or -1 with errno, like the calls of the system. */
int try_open(const QByteArray &path, int flags)
{
    const int file = ::open(path.constData(), flags | O_CLOEXEC, 0644);
    if (file != -1)
        ::close(file);
    return file == -1 ? -1 : 0;
}

int try_made(const QByteArray &path)
{
    const int result = try_open(path, O_WRONLY | O_CREAT | O_EXCL);
    if (result == 0)
        ::unlink(path.constData());
    return result;
}

int try_open_evidence(int (*act)(int file))
{
    const int file = ::open(evidence.constData(), O_RDONLY | O_CLOEXEC);
    const int result = file == -1 ? -1 : act(file);
    const int error = errno;
    ::close(file);
    errno = error;
    return result;
}

int try_socket(int family, int kind)
{
    const int file = ::socket(family, kind, 0);
    if (file != -1)
        ::close(file);
    return file == -1 ? -1 : 0;
}

/** What stands for a process is the child's end. */
int try_child(pid_t child)
{
    if (child == 0)
        ::_exit(0);
    return child == -1 || ::waitpid(child, nullptr, 0) == child ? int(qMin(child, 0)) : -1;
}

int try_spawn()
{
    pid_t child = -1;
    char *arguments[] = {const_cast<char *>("sh"), const_cast<char *>("-c"), const_cast<char *>("exit"), nullptr};
    const int error = ::posix_spawn(&child, "/bin/sh", nullptr, nullptr, arguments, arguments + 3);
    errno = error;
    return error != 0 ? -1 : try_child(child);
}

int try_exec()
{
    return ::execl("/does/not/exist", "sh", nullptr);
}

int try_reading_the_parent()
{
    char byte = 0;
    iovec here{&byte, 1};
    iovec there{&own_folder, 1};
    return int(qMin<ssize_t>(0, ::process_vm_readv(::getppid(), &here, 1, &there, 1, 0)));
}

int try_core()
{
    rlimit limit = {};
    ::getrlimit(RLIMIT_CORE, &limit);
    if (limit.rlim_cur != 0 || ::prctl(PR_GET_DUMPABLE) != 0)
        return 0;
    limit.rlim_cur = limit.rlim_max = 1;
    return ::setrlimit(RLIMIT_CORE, &limit);
}

int try_in_thread()
{
    int error = 0;
    std::thread([&error] { error = try_open(evidence, O_WRONLY) == 0 ? 0 : errno; }).join();
    errno = error;
    return error == 0 ? 0 : -1;
}

int count_threads()
{
    errno = int(QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
    return -1;
}

/** Something that no plug-in needs. */
struct attempt
{
    const char *name;
    int (*act)();
};

// clang-format off
constexpr attempt attempts[] = {
    {"own file",             [] { return try_made(own_folder + "/own"); }},
    {"own folder",           [] { return ::mkdir(below("own"), 0755) + ::rmdir(below("own")); }},
    {"signal itself",        [] { return ::kill(::getpid(), 0); }},
    {"read evidence",        [] { return try_open(evidence, O_RDONLY); }},
    {"write evidence",       [] { return try_open(evidence, O_WRONLY); }},
    {"write by a thread",    try_in_thread},
    {"truncate evidence",    [] { return ::truncate(evidence.constData(), 1); }},
    {"add to evidence",      [] { return try_made(evidence + "-wal2"); }},
    {"evidence's mode",      [] { return ::chmod(evidence.constData(), 0600); }},
    {"open evidence's mode", [] { return try_open_evidence([](int file) { return ::fchmod(file, 0600); }); }},
    {"evidence's owner",     [] { return ::chown(evidence.constData(), ::getuid(), ::getgid()); }},
    {"evidence's times",     [] { return ::utimensat(AT_FDCWD, evidence.constData(), nullptr, 0); }},
    {"open evidence's times", [] { return try_open_evidence([](int file) { return ::futimens(file, nullptr); }); }},
    {"evidence's attributes", [] { return ::setxattr(evidence.constData(), "user.a", "a", 1, 0); }},
    {"evidence's flags",     [] { return try_open_evidence([](int file) { int flags = 0; return ::ioctl(file, _IOW('f', 2, long), &flags); }); }},
    {"write by a link",      [] { return ::symlink(evidence.constData(), below("link")); }},
    {"manifest",             [] { return try_open(in_case("manifest.json"), O_WRONLY | O_CREAT); }},
    {"another source",       [] { return try_made(in_case("Source2/new")); }},
    {"the case",             [] { return try_made(in_case("new")); }},
    {"/tmp",                 [] { return try_made("/tmp/bluetooth-logs-" + QByteArray::number(::getpid())); }},
    {"read elsewhere",       [] { return try_open(in_case("../secret"), O_RDONLY); }},
    {"internet",             [] { return try_socket(AF_INET, SOCK_STREAM); }},
    {"local socket",         [] { return try_socket(AF_UNIX, SOCK_DGRAM); }},
    {"pair of sockets",      [] { int pair[2]; return ::socketpair(AF_UNIX, SOCK_STREAM, 0, pair); }},
    {"/bin/sh",              try_spawn},
    {"exec",                 try_exec},
    {"fork",                 [] { return try_child(::fork()); }},
    {"new kind of fork",     [] { return int(::syscall(435 /* clone3 */, nullptr, 0)); }},
    {"trace the parent",     [] { return int(::ptrace(PTRACE_PEEKDATA, ::getppid(), nullptr, nullptr)); }},
    {"parent's memory",      try_reading_the_parent},
    {"parent's memory file", [] { return try_open(of_parent("mem"), O_RDWR); }},
    {"parent's environment", [] { return try_open(of_parent("environ"), O_RDONLY); }},
    {"signal the parent",    [] { return ::kill(::getppid(), 0); }},
    {"signal its group",     [] { return ::kill(0, 0); }},
    {"core",                 try_core},
    {"ring of calls",        [] { return int(::syscall(425 /* io_uring_setup */, 1, nullptr)); }},
    {"unmount",              [] { return ::umount2("/does/not/exist", 0); }},
    {"rename evidence",      [] { return ::rename(evidence.constData(), renamed()) == 0 ? ::rename(renamed(), evidence.constData()) : -1; }},
    {"take evidence",        [] { return ::rename(evidence.constData(), below("taken")); }},
    {"remove evidence",      [] { return ::unlink(evidence.constData()); }},
    {"threads",              count_threads},
};
// clang-format on

/** Tries everything while it should extract, and writes "name: error" for each to its own folder. */
class escaping_plugin : public bluetooth_logs
{
public:
    void pub_set_result_directory(QString folder) override
    {
        own_folder = QFile::encodeName(folder);
        bluetooth_logs::pub_set_result_directory(folder);
    }

    void pub_set_source_info(struct_GLOBAL_COMMON_KALDO_AND_ARTIFACT_source_info info) override
    {
        evidence = QFile::encodeName(info.source_root_path)
                   + "/Library/Bluetooth/com.apple.MobileBluetooth.ledevices.other.db";
        bluetooth_logs::pub_set_source_info(info);
    }

    void pub_extract_artifacts() override
    {
        QByteArray lines;
        for (const attempt &tried : attempts) {
            errno = 0;
            const bool is_done = tried.act() >= 0;
            lines += QByteArray(tried.name) + ": " + (is_done ? "done" : QByteArray::number(errno)) + '\n';
        }
        QFile report(QFile::decodeName(own_folder + "/attempts.txt"));
        if (!report.open(QIODevice::WriteOnly) || report.write(lines) != lines.size())
            qFatal("the attempts cannot be written");
    }
};

} // namespace

bluetooth_logs *create_object()
{
    return new escaping_plugin;
}
