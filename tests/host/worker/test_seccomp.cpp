// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/seccomp.h"

#include "tests/support/child_answers.h"
#include "tests/support/strict_test.h"
#include "tests/support/test_entry.h"

#include <QTest>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <thread>

#include <linux/filter.h>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr long last_number = 470;     // some behind the newest call that is known
constexpr long asked_only = 0x5eed;   // as the last argument: what would be done is asked for, nothing is done
constexpr int would_be_done = ELNRNG; // an error that no call gives

/** Makes every call that is only asked for end with would_be_done, unless a filter above this one refuses it. */
bool answer_calls_that_ask()
{
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args) + 5 * 8),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, asked_only, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | would_be_done),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog program{std::size(steps), steps};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
           && ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
}

/** What the system would answer: would_be_done, or the error of a filter. */
int answer_to(long call, unsigned long first = 0, unsigned long second = 0, unsigned long third = 0)
{
    const int answer = ::syscall(call, first, second, third, 0, 0, asked_only) == -1 ? errno : 0;
    ::syscall(SYS_getpid, 0, 0, 0, 0, 0, 0); // so that asked_only stands in no register any more
    return answer;
}

/** From here on this process is held as a reading is, and only asks. Where that fails nothing is answered. */
void hold()
{
    if (!answer_calls_that_ask() || !refuse_needless_calls())
        ::_exit(1);
}

// clang-format off
constexpr long refused_calls[] = {
    SYS_accept, SYS_accept4, SYS_acct, SYS_add_key, SYS_adjtimex, SYS_bind, SYS_bpf, SYS_chroot, SYS_clock_adjtime,
    SYS_clock_settime, SYS_connect, SYS_delete_module, SYS_execve, SYS_execveat, SYS_fanotify_init, SYS_fchmod,
    SYS_fchmodat, SYS_fchown, SYS_fchownat, SYS_finit_module, SYS_fremovexattr, SYS_fsetxattr, SYS_init_module,
    SYS_io_setup, SYS_ioprio_set, SYS_kcmp, SYS_kexec_file_load, SYS_kexec_load, SYS_keyctl, SYS_listen,
    SYS_lremovexattr, SYS_lsetxattr, SYS_migrate_pages, SYS_mknodat, SYS_mount, SYS_move_pages, SYS_mq_open,
    SYS_mq_unlink, SYS_msgctl, SYS_msgget, SYS_msgrcv, SYS_msgsnd, SYS_name_to_handle_at, SYS_open_by_handle_at,
    SYS_perf_event_open, SYS_personality, SYS_pivot_root, SYS_process_vm_readv, SYS_process_vm_writev, SYS_ptrace,
    SYS_quotactl, SYS_reboot, SYS_removexattr, SYS_request_key, SYS_sched_setaffinity, SYS_sched_setattr,
    SYS_sched_setparam, SYS_sched_setscheduler, SYS_semctl, SYS_semget, SYS_semtimedop, SYS_sendmmsg, SYS_sendmsg,
    SYS_sendto, SYS_setdomainname, SYS_sethostname, SYS_setns, SYS_setpgid, SYS_setpriority, SYS_setrlimit, SYS_setsid,
    SYS_settimeofday, SYS_setxattr, SYS_shmat, SYS_shmctl, SYS_shmget, SYS_socket, SYS_socketpair, SYS_swapoff,
    SYS_swapon, SYS_symlinkat, SYS_syslog, SYS_tkill, SYS_truncate, SYS_umount2, SYS_unshare, SYS_userfaultfd,
    SYS_utimensat, SYS_vhangup,
#ifdef SYS_fork
    SYS_chmod, SYS_chown, SYS_fork, SYS_futimesat, SYS_ioperm, SYS_iopl, SYS_lchown, SYS_mknod, SYS_modify_ldt,
    SYS_symlink, SYS_utime, SYS_utimes, SYS_vfork,
#endif
    // the same numbers on all processors: pidfd_send_signal, the three of io_uring, open_tree, move_mount, fsopen, fsconfig,
    // fsmount, fspick, pidfd_open, pidfd_getfd, process_madvise, mount_setattr, quotactl_fd, process_mrelease
    424, 425, 426, 427, 428, 429, 430, 431, 432, 433, 434, 438, 440, 442, 443, 448,
};

/** With no arguments they are for others than the process itself, or make a process. */
constexpr long refused_without_arguments[] = {SYS_clone, SYS_kill, SYS_rt_sigqueueinfo, SYS_rt_tgsigqueueinfo, SYS_tgkill};
// clang-format on

/** Calls that the kernel puts into a program that is looked at: no filter sees them, and from elsewhere they end it. */
bool is_of_the_kernel(long number)
{
    return number == 335 || number == 336; // uretprobe, uprobe
}

/** "EPERM", for readers of what failed. */
QString word_of(int answer)
{
    switch (answer) {
    case EPERM:
        return u"refused"_s;
    case ENOSYS:
        return u"no such call"_s;
    case would_be_done:
        return u"done"_s;
    }
    return QString::number(answer);
}

} // namespace

/** Which calls are refused: of every number, and by their arguments. Nothing of it is really called. */
class test_seccomp : public strict_test
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void every_number();
    void by_arguments_data();
    void by_arguments();
    void threads_from_before();
    void calls_of_another_processor();
};

void test_seccomp::initTestCase()
{
#if !defined(__x86_64__) && !defined(__aarch64__)
    QSKIP("a processor whose calls were never tried");
#endif
    const child_answers given(1, [](int *answer) { *answer = answer_calls_that_ask() ? answer_to(SYS_getpid) : 0; });
    if (given[0] != would_be_done)
        QSKIP("this kernel has no such filters");
}

void test_seccomp::every_number()
{
    std::array<int, last_number + 1> expected = {};
    for (long number = 0; number <= last_number; ++number)
        expected[size_t(number)] = number > 451 ? ENOSYS : would_be_done;
    for (const long number : refused_calls)
        expected[size_t(number)] = EPERM;
    for (const long number : refused_without_arguments)
        expected[size_t(number)] = EPERM;
    expected[435] = ENOSYS; // clone3

    const child_answers given(expected.size(), [&expected](int *answers) {
        hold();
        for (long number = 0; number <= last_number; ++number)
            answers[number] = is_of_the_kernel(number) ? expected[size_t(number)] : answer_to(number);
    });
    QCOMPARE(given.signal(), 0);
    for (long number = 0; number <= last_number; ++number)
        QVERIFY2(given[size_t(number)] == expected[size_t(number)],
                 qPrintable(QString::number(number) + u": "_s + word_of(given[size_t(number)]) + u" instead of "_s
                            + word_of(expected[size_t(number)])));
}

void test_seccomp::by_arguments_data()
{
    QTest::addColumn<QList<quint64>>("call");
    QTest::addColumn<QString>("answer");

    constexpr quint64 upper = quint64(1) << 32;
    const auto row = [](const char *name, quint64 number, const QList<quint64> &arguments, const QString &answer) {
        QTest::newRow(name) << (QList<quint64>{number} + arguments) << answer;
    };
    const QString done = u"done"_s;
    const QString refused = u"refused"_s;
    const quint64 self = 0x5e1f; // stands for the child's own number

    // clang-format off
    row("signal itself",              SYS_kill,             {self, SIGTERM},        done);
    row("signal its parent",          SYS_kill,             {quint64(::getpid()), SIGTERM}, refused);
    row("signal its group",           SYS_kill,             {0, SIGTERM},           refused);
    row("signal everybody",           SYS_kill,             {quint64(-1), SIGTERM}, refused);
    row("signal the first process",   SYS_kill,             {1, SIGTERM},           refused);
    row("signal a thread of its own", SYS_tgkill,           {self, self, SIGTERM},  done);
    row("signal another's thread",    SYS_tgkill,           {1, self, SIGTERM},     refused);
    row("queue a signal",             SYS_rt_sigqueueinfo,  {self, SIGTERM},        done);
    row("queue it for another",       SYS_rt_sigqueueinfo,  {1, self},              refused);
    row("queue one for a thread",     SYS_rt_tgsigqueueinfo, {self, self},          done);
    row("queue it for another's",     SYS_rt_tgsigqueueinfo, {1, self},             refused);
    row("thread",                     SYS_clone,            {CLONE_VM | CLONE_THREAD}, done);
    row("process",                    SYS_clone,            {SIGCHLD},              refused);
    row("process, shared memory",     SYS_clone,            {CLONE_VM | CLONE_VFORK | SIGCHLD}, refused);
    row("process, all other flags",   SYS_clone,            {0xffffffff & ~quint64(CLONE_THREAD)}, refused);
    row("ask for a limit",            SYS_prlimit64,        {0, 9, 0},              done);
    row("set a limit",                SYS_prlimit64,        {0, 9, 4096},           refused);
    row("limit far up",               SYS_prlimit64,        {0, 9, upper},          refused);
    row("limit, lowest bit",          SYS_prlimit64,        {0, 9, 1},              refused);
    row("flags of a file",            SYS_ioctl,            {3, FS_IOC_SETFLAGS},   refused);
    row("flags are asked for",        SYS_ioctl,            {3, FS_IOC_GETFLAGS},   done);
    row("attributes of a file",       SYS_ioctl,            {3, FS_IOC_FSSETXATTR}, refused);
    row("attributes are asked for",   SYS_ioctl,            {3, FS_IOC_FSGETXATTR}, done);
    row("words for a terminal",       SYS_ioctl,            {0, TIOCSTI},           refused);
    row("selection of a terminal",    SYS_ioctl,            {0, TIOCLINUX},         refused);
    row("number in another place",    SYS_ioctl,            {TIOCSTI, 0, TIOCSTI},  done);
    row("size of a terminal",         SYS_ioctl,            {1, TIOCGWINSZ},        done);
    row("read, with such numbers",    SYS_read,             {1, TIOCSTI, 4096},     done);
    // clang-format on
#ifdef __x86_64__
    row("x32's getpid", (quint64(1) << 30) + SYS_getpid, {}, u"no such call"_s);
#endif
    row("no number", 0xffffffff, {}, u"no such call"_s);
}

void test_seccomp::by_arguments()
{
    QFETCH(const QList<quint64>, call);
    QFETCH(const QString, answer);
    const child_answers given(1, [&call](int *answers) {
        hold();
        unsigned long arguments[3] = {};
        for (qsizetype number = 1; number < call.size(); ++number)
            arguments[number - 1] = call.at(number) == 0x5e1f ? ulong(::getpid()) : ulong(call.at(number));
        answers[0] = answer_to(long(call.first()), arguments[0], arguments[1], arguments[2]);
    });
    QCOMPARE(given.signal(), 0);
    QCOMPARE(word_of(given[0]), answer);
}

/** A thread that was there before is held too. */
void test_seccomp::threads_from_before()
{
    const child_answers given(2, [](int *answers) {
        if (!answer_calls_that_ask())
            ::_exit(1);
        int start[2] = {};
        if (::pipe(start) != 0)
            ::_exit(1);
        std::thread other([&] {
            char byte = 0;
            if (::read(start[0], &byte, 1) == 1)
                answers[0] = answer_to(SYS_socket);
        });
        if (!refuse_needless_calls())
            ::_exit(1);
        answers[1] = ::write(start[1], "", 1) == 1 ? 0 : 1;
        other.join();
    });
    QCOMPARE(given.signal(), 0);
    QCOMPARE(given[1], 0);
    QCOMPARE(word_of(given[0]), u"refused"_s);
}

/** Numbers of 32-bit calls mean others: a process that makes one is ended. */
void test_seccomp::calls_of_another_processor()
{
#ifdef __x86_64__
    const auto call_of_32_bits = [](int *answer) {
        long result = 20; // getpid
        asm volatile("int $0x80" : "+a"(result) : : "memory", "r8", "r9", "r10", "r11");
        *answer = int(result);
    };
    if (child_answers(1, call_of_32_bits).signal() != 0)
        QSKIP("this kernel has no such calls");
    const child_answers given(1, [&call_of_32_bits](int *answer) {
        hold();
        call_of_32_bits(answer);
    });
    QCOMPARE(given.signal(), SIGSYS);
    QCOMPARE(given[0], 0);
#else
    QSKIP("a processor whose other calls were not tried");
#endif
}

BLUETOOTH_LOGS_TEST(test_seccomp, QCoreApplication)
#include "test_seccomp.moc"
