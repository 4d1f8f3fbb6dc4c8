#include "readers/CallFilter.h"

#include "base/Sanitizer.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <memory>
#include <seccomp.h>
#include <sys/mman.h>
#include <unistd.h>

namespace ka::motion {

namespace {

using Filter = std::unique_ptr<void, void (*)(scmp_filter_ctx)>;

// Numbers of calls that an architecture does not have are negative there, and the library passes them over.
// What a 32-bit architecture calls otherwise stands beside it.

/// Harmless whatever the arguments are.
constexpr int allowed[] = {
    SCMP_SYS(read), SCMP_SYS(pread64), SCMP_SYS(readv), SCMP_SYS(lseek), SCMP_SYS(_llseek), SCMP_SYS(close),
    // Looking at files, and at the links that lead to them.
    SCMP_SYS(fstat), SCMP_SYS(fstat64), SCMP_SYS(stat), SCMP_SYS(stat64), SCMP_SYS(lstat), SCMP_SYS(lstat64),
    SCMP_SYS(newfstatat), SCMP_SYS(fstatat64), SCMP_SYS(statx), SCMP_SYS(readlink), SCMP_SYS(readlinkat),
    SCMP_SYS(getcwd),
    // Memory; what could be executed is ruled out below.
    SCMP_SYS(brk), SCMP_SYS(munmap), SCMP_SYS(mremap), SCMP_SYS(madvise),
    // What the C library needs for locks, time, random numbers, and for going on after an interruption.
    SCMP_SYS(futex), SCMP_SYS(futex_time64), SCMP_SYS(sched_yield), SCMP_SYS(clock_gettime),
    SCMP_SYS(clock_gettime64), SCMP_SYS(gettimeofday), SCMP_SYS(time), SCMP_SYS(getrandom), SCMP_SYS(getpid),
    SCMP_SYS(gettid), SCMP_SYS(rt_sigreturn), SCMP_SYS(sigreturn), SCMP_SYS(restart_syscall), SCMP_SYS(exit),
    SCMP_SYS(exit_group)};

/// What only code asks for that is up to something else than reading.
constexpr int hostile[] = {
    // Other programs and processes.
    SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(fork), SCMP_SYS(vfork), SCMP_SYS(kill), SCMP_SYS(tkill),
    SCMP_SYS(rt_sigqueueinfo), SCMP_SYS(rt_tgsigqueueinfo), SCMP_SYS(pidfd_open), SCMP_SYS(pidfd_getfd),
    SCMP_SYS(pidfd_send_signal), SCMP_SYS(ptrace), SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev),
    SCMP_SYS(kcmp), SCMP_SYS(setsid), SCMP_SYS(setpgid), SCMP_SYS(setrlimit), SCMP_SYS(prctl),
    // Sockets.
    SCMP_SYS(socket), SCMP_SYS(socketpair), SCMP_SYS(socketcall), SCMP_SYS(connect), SCMP_SYS(bind),
    SCMP_SYS(listen), SCMP_SYS(accept), SCMP_SYS(accept4), SCMP_SYS(sendto), SCMP_SYS(sendmsg),
    SCMP_SYS(sendmmsg),
    // Changes to files.
    SCMP_SYS(truncate), SCMP_SYS(truncate64), SCMP_SYS(ftruncate), SCMP_SYS(ftruncate64), SCMP_SYS(fallocate),
    SCMP_SYS(creat), SCMP_SYS(chmod), SCMP_SYS(fchmod), SCMP_SYS(fchmodat), SCMP_SYS(chown), SCMP_SYS(fchown),
    SCMP_SYS(lchown), SCMP_SYS(fchownat), SCMP_SYS(utime), SCMP_SYS(utimes), SCMP_SYS(futimesat),
    SCMP_SYS(utimensat), SCMP_SYS(utimensat_time64), SCMP_SYS(setxattr), SCMP_SYS(lsetxattr),
    SCMP_SYS(fsetxattr), SCMP_SYS(removexattr), SCMP_SYS(lremovexattr), SCMP_SYS(fremovexattr),
    SCMP_SYS(unlink), SCMP_SYS(unlinkat), SCMP_SYS(rename), SCMP_SYS(renameat), SCMP_SYS(renameat2),
    SCMP_SYS(link), SCMP_SYS(linkat), SCMP_SYS(symlink), SCMP_SYS(symlinkat), SCMP_SYS(mkdir),
    SCMP_SYS(mkdirat), SCMP_SYS(rmdir), SCMP_SYS(mknod), SCMP_SYS(mknodat),
    // Other rights, other views of the system, and ways round this filter.
    SCMP_SYS(setuid), SCMP_SYS(setgid), SCMP_SYS(setreuid), SCMP_SYS(setregid), SCMP_SYS(setresuid),
    SCMP_SYS(setresgid), SCMP_SYS(setgroups), SCMP_SYS(capset), SCMP_SYS(seccomp), SCMP_SYS(unshare),
    SCMP_SYS(setns), SCMP_SYS(chroot), SCMP_SYS(pivot_root), SCMP_SYS(mount), SCMP_SYS(umount2),
    SCMP_SYS(add_key), SCMP_SYS(request_key), SCMP_SYS(keyctl), SCMP_SYS(bpf), SCMP_SYS(userfaultfd),
    SCMP_SYS(perf_event_open), SCMP_SYS(io_uring_setup), SCMP_SYS(io_uring_enter),
    SCMP_SYS(io_uring_register), SCMP_SYS(init_module), SCMP_SYS(finit_module), SCMP_SYS(open_by_handle_at)};

constexpr int openingForMore = O_ACCMODE | O_CREAT | O_TRUNC | O_APPEND;

bool add(const Filter& filter, std::uint32_t action, int call) {
    return seccomp_rule_add(filter.get(), action, call, 0) == 0;
}

bool allow(const Filter& filter, int call, const scmp_arg_cmp& condition) {
    return seccomp_rule_add_array(filter.get(), SCMP_ACT_ALLOW, call, 1, &condition) == 0;
}

/// Exceptions make the sanitizers look for the signal stack, and objects whose type they check are first
/// tried by writing from them into a pipe.
bool addSanitizersCalls(const Filter& filter) {
    return add(filter, SCMP_ACT_ALLOW, SCMP_SYS(sigaltstack)) &&
           add(filter, SCMP_ACT_ALLOW, SCMP_SYS(pipe)) && add(filter, SCMP_ACT_ALLOW, SCMP_SYS(pipe2)) &&
           add(filter, SCMP_ACT_ALLOW, SCMP_SYS(write));
}

/// That an argument equals a value.
scmp_arg_cmp equals(unsigned int argument, scmp_datum_t value) {
    return {argument, SCMP_CMP_EQ, value, 0};
}

/// That of an argument's bits in `mask` those of `value` are set.
scmp_arg_cmp has(unsigned int argument, scmp_datum_t mask, scmp_datum_t value) {
    return {argument, SCMP_CMP_MASKED_EQ, mask, value};
}

bool addConditions(const Filter& filter, int answer) {
    const scmp_arg_cmp notExecutable = has(2, PROT_EXEC, 0);
    return allow(filter, SCMP_SYS(write), equals(0, static_cast<scmp_datum_t>(answer))) &&
           allow(filter, SCMP_SYS(openat), has(2, openingForMore, O_RDONLY)) &&
           allow(filter, SCMP_SYS(mmap), notExecutable) && allow(filter, SCMP_SYS(mmap2), notExecutable) &&
           allow(filter, SCMP_SYS(mprotect), notExecutable) &&
           // By this the C library ends a process that has found itself broken.
           allow(filter, SCMP_SYS(tgkill), equals(0, static_cast<scmp_datum_t>(getpid())));
}

} // namespace

bool restrictSystemCalls(int answer) {
    const Filter filter(seccomp_init(SCMP_ACT_ERRNO(EPERM)), seccomp_release);
    if (!filter || seccomp_attr_set(filter.get(), SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_KILL_PROCESS) != 0)
        return false;
    for (const int call : allowed)
        if (!add(filter, SCMP_ACT_ALLOW, call))
            return false;
    for (const int call : hostile)
        if (!add(filter, SCMP_ACT_KILL_PROCESS, call))
            return false;
    if (hasAddressSanitizer && !addSanitizersCalls(filter))
        return false;
    return addConditions(filter, answer) && seccomp_load(filter.get()) == 0;
}

} // namespace ka::motion
