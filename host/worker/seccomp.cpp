// SPDX-FileCopyrightText: 2026 The Bluetooth Logs maintainers
// SPDX-License-Identifier: MIT

#include "host/worker/seccomp.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/fs.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

#if defined(__x86_64__) && !defined(__ILP32__)
constexpr std::uint32_t this_processor = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__) && defined(__AARCH64EL__)
constexpr std::uint32_t this_processor = AUDIT_ARCH_AARCH64;
#else
constexpr std::uint32_t this_processor = 0; // its calls were never tried
#endif

// Of all processors: calls got the same numbers from 424 on. The last that is known here; x32's begin at 1 << 30.
constexpr std::uint32_t newest_call = 451;

// clang-format off
constexpr std::uint32_t refused_calls[] = {
    // programs and processes
    SYS_execve, SYS_execveat, SYS_ptrace, SYS_process_vm_readv, SYS_process_vm_writev, SYS_kcmp, 440 /* process_madvise */,
    434 /* pidfd_open */, 438 /* pidfd_getfd */, 424 /* pidfd_send_signal */, 448 /* process_mrelease */, SYS_setsid,
    SYS_setpgid, SYS_tkill, SYS_setrlimit, SYS_setpriority, SYS_ioprio_set, SYS_sched_setaffinity, SYS_sched_setattr,
    SYS_sched_setparam, SYS_sched_setscheduler, SYS_migrate_pages, SYS_move_pages, SYS_unshare, SYS_setns, SYS_personality,
    // talk with others
    SYS_socket, SYS_socketpair, SYS_connect, SYS_bind, SYS_listen, SYS_accept, SYS_accept4, SYS_sendto, SYS_sendmsg,
    SYS_sendmmsg, SYS_shmget, SYS_shmat, SYS_shmctl, SYS_msgget, SYS_msgctl, SYS_msgsnd, SYS_msgrcv, SYS_semget,
    SYS_semctl, SYS_semtimedop, SYS_mq_open, SYS_mq_unlink, SYS_io_setup, 425 /* io_uring_setup */,
    426 /* io_uring_enter */, 427 /* io_uring_register */,
    // what stands in a file's entry: an open file is enough to change it
    SYS_fchmod, SYS_fchmodat, SYS_fchown, SYS_fchownat, SYS_utimensat, SYS_setxattr, SYS_lsetxattr, SYS_fsetxattr,
    SYS_removexattr, SYS_lremovexattr, SYS_fremovexattr, SYS_truncate, SYS_mknodat, SYS_symlinkat,
    // the machine
    SYS_mount, SYS_umount2, SYS_pivot_root, SYS_chroot, 428 /* open_tree */, 429 /* move_mount */, 430 /* fsopen */,
    431 /* fsconfig */, 432 /* fsmount */, 433 /* fspick */, 442 /* mount_setattr */, SYS_swapon, SYS_swapoff, SYS_reboot,
    SYS_kexec_load, SYS_kexec_file_load, SYS_init_module, SYS_finit_module, SYS_delete_module, SYS_acct, SYS_quotactl,
    443 /* quotactl_fd */, SYS_settimeofday, SYS_clock_settime, SYS_adjtimex, SYS_clock_adjtime, SYS_sethostname,
    SYS_setdomainname, SYS_syslog, SYS_vhangup, SYS_bpf, SYS_perf_event_open, SYS_userfaultfd, SYS_add_key,
    SYS_request_key, SYS_keyctl, SYS_fanotify_init, SYS_name_to_handle_at, SYS_open_by_handle_at,
#ifdef SYS_fork // processors that have calls from before
    SYS_fork, SYS_vfork, SYS_chmod, SYS_chown, SYS_lchown, SYS_utime, SYS_utimes, SYS_futimesat, SYS_mknod, SYS_symlink,
    SYS_ioperm, SYS_iopl, SYS_modify_ldt,
#endif
};

/** Their first argument is the process: this one alone. */
constexpr std::uint32_t calls_for_oneself[] = {SYS_kill, SYS_tgkill, SYS_rt_sigqueueinfo, SYS_rt_tgsigqueueinfo};

/** They change a file that is open for reading, or put words into a terminal's mouth. */
constexpr std::uint32_t refused_controls[] = {FS_IOC_SETFLAGS, FS_IOC_FSSETXATTR, TIOCSTI, TIOCLINUX};
// clang-format on

/** The lower or, with @p is_upper, the upper half of an argument. */
constexpr std::uint32_t argument(int number, bool is_upper = false)
{
    return std::uint32_t(offsetof(seccomp_data, args)) + std::uint32_t(number) * 8 + (is_upper ? 4 : 0);
}

/** A program for the kernel, which runs it over each call. Jumps lead forward, to the one instruction behind. */
class call_filter
{
public:
    call_filter()
    {
        load(offsetof(seccomp_data, arch));
        unless_equal(this_processor, SECCOMP_RET_KILL_PROCESS);
        load(offsetof(seccomp_data, nr));
        if_above(newest_call, no_such_call);
        for (const std::uint32_t call : refused_calls)
            if_equal(call, refused);
        if_equal(435 /* clone3 */,
                 no_such_call); // its flags lie in memory, where no filter looks: clone() comes instead
        for (const std::uint32_t call : calls_for_oneself)
            on_call(call, {load_of(argument(0)), jump(BPF_JEQ, std::uint32_t(::getpid()), 1, 0), end(refused)});
        on_call(SYS_clone, {load_of(argument(0)), jump(BPF_JSET, CLONE_THREAD, 1, 0), end(refused)});
        on_call(SYS_prlimit64, {load_of(argument(2)), jump(BPF_JEQ, 0, 1, 0), end(refused), load_of(argument(2, true)),
                                jump(BPF_JEQ, 0, 1, 0), end(refused)});
        for (const std::uint32_t control : refused_controls)
            on_call(SYS_ioctl, {load_of(argument(1)), jump(BPF_JEQ, control, 0, 1), end(refused)});
        program.push_back(end(SECCOMP_RET_ALLOW));
    }

    bool put_in_force()
    {
        const sock_fprog code{static_cast<unsigned short>(program.size()), program.data()};
        return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_TSYNC, &code) == 0;
    }

private:
    static constexpr std::uint32_t refused = SECCOMP_RET_ERRNO | EPERM;
    static constexpr std::uint32_t no_such_call = SECCOMP_RET_ERRNO | ENOSYS;

    static sock_filter load_of(std::uint32_t place)
    {
        return {BPF_LD | BPF_W | BPF_ABS, 0, 0, place};
    }
    static sock_filter end(std::uint32_t action)
    {
        return {BPF_RET | BPF_K, 0, 0, action};
    }
    static sock_filter jump(int condition, std::uint32_t value, std::uint8_t over_if, std::uint8_t over_else)
    {
        return {static_cast<unsigned short>(BPF_JMP | BPF_K | condition), over_if, over_else, value};
    }

    void load(std::uint32_t place)
    {
        program.push_back(load_of(place));
    }
    void if_equal(std::uint32_t value, std::uint32_t action)
    {
        program.insert(program.end(), {jump(BPF_JEQ, value, 0, 1), end(action)});
    }
    void unless_equal(std::uint32_t value, std::uint32_t action)
    {
        program.insert(program.end(), {jump(BPF_JEQ, value, 1, 0), end(action)});
    }
    void if_above(std::uint32_t value, std::uint32_t action)
    {
        program.insert(program.end(), {jump(BPF_JGT, value, 0, 1), end(action)});
    }

    /** What is done for one call; what does not end goes on behind, with the call's number loaded again. */
    void on_call(std::uint32_t call, const std::vector<sock_filter> &steps)
    {
        program.push_back(jump(BPF_JEQ, call, 0, static_cast<std::uint8_t>(steps.size() + 1)));
        program.insert(program.end(), steps.begin(), steps.end());
        load(offsetof(seccomp_data, nr));
    }

    std::vector<sock_filter> program;
};

} // namespace

bool refuse_needless_calls()
{
    return this_processor != 0 && call_filter().put_in_force();
}
