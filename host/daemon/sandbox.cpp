// The filter is a list of what is denied. A list of what is allowed would be tighter, and would break with the next C
// library, which may use other calls for the same work. A denied call fails with EPERM and ends nothing.
#include "host/daemon/sandbox.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace rsvpsimd {

namespace {

#if defined(__x86_64__)
constexpr uint32_t kMachine = AUDIT_ARCH_X86_64;
#elif defined(__aarch64__)
constexpr uint32_t kMachine = AUDIT_ARCH_AARCH64;
#elif defined(__arm__)
constexpr uint32_t kMachine = AUDIT_ARCH_ARM;
#elif defined(__s390x__)
constexpr uint32_t kMachine = AUDIT_ARCH_S390X;
#else
constexpr uint32_t kMachine = 0; // not known here: no filter
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

constexpr uint32_t kFirstForeignCall = 0x40000000; // on x86-64, of a second table of the same calls

constexpr uint32_t kDenied[] = {
    // other processes
    SYS_execve,
    SYS_execveat,
    SYS_clone,
    SYS_clone3,
#ifdef SYS_fork
    SYS_fork,
    SYS_vfork,
#endif
    SYS_kill,
    SYS_tkill,
    SYS_pidfd_send_signal,
    SYS_pidfd_getfd,
    SYS_ptrace,
    SYS_process_vm_readv,
    SYS_process_vm_writev,
    // the network
    SYS_connect,
    // the system
    SYS_mount,
    SYS_umount2,
    SYS_pivot_root,
    SYS_chroot,
    SYS_unshare,
    SYS_setns,
    SYS_init_module,
    SYS_finit_module,
    SYS_delete_module,
    SYS_kexec_load,
    SYS_reboot,
    SYS_open_by_handle_at,
    // large parts of the kernel that nothing here uses, one of them a way around this list
    SYS_io_uring_setup,
    SYS_bpf,
    SYS_perf_event_open,
    SYS_userfaultfd,
    SYS_add_key,
    SYS_keyctl,
};

// Calls that are allowed with one value of their first argument. Where the C library makes sockets through one call
// for everything about sockets, as on s390x, the filter cannot see the family.
struct Allowed {
    uint32_t call;
    uint32_t first;
};

class Filter {
public:
    explicit Filter(std::array<Allowed, 2> allowed)
    {
        Load(offsetof(seccomp_data, arch));
        Add(BPF_JMP | BPF_JEQ | BPF_K, kMachine, 1, 0);
        Deny();
        Load(offsetof(seccomp_data, nr));
        Add(BPF_JMP | BPF_JGE | BPF_K, kFirstForeignCall, 0, 1);
        Deny();
        for (const uint32_t call : kDenied) {
            Add(BPF_JMP | BPF_JEQ | BPF_K, call, 0, 1);
            Deny();
        }
        for (const Allowed &only : allowed) {
            Add(BPF_JMP | BPF_JEQ | BPF_K, only.call, 0, 4);
            Load(offsetof(seccomp_data, args) + kLowHalf);
            Add(BPF_JMP | BPF_JEQ | BPF_K, only.first, 1, 0);
            Deny();
            Add(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
        }
        Add(BPF_RET | BPF_K, SECCOMP_RET_ALLOW);
    }

    bool Install()
    {
        if (kMachine == 0) {
            errno = ENOSYS;
            return false;
        }
        const sock_fprog program{static_cast<uint16_t>(code_.size()), code_.data()};
        return prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
    }

private:
    static constexpr uint32_t kLowHalf = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__ ? 4 : 0;

    void Add(uint16_t operation, uint32_t value, uint8_t ifTrue = 0, uint8_t ifFalse = 0)
    {
        code_.push_back({operation, ifTrue, ifFalse, value});
    }
    void Load(size_t offset) { Add(BPF_LD | BPF_W | BPF_ABS, static_cast<uint32_t>(offset)); }
    void Deny() { Add(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM); }

    std::vector<sock_filter> code_;
};

// Nothing may be changed outside the directory; inside, what the lock and the socket need.
bool ConfineFiles(const std::string &directory)
{
    constexpr uint64_t kInside = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_FILE |
                                 LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK;
    landlock_ruleset_attr rules{};
    rules.handled_access_fs = kInside | LANDLOCK_ACCESS_FS_EXECUTE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                              LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR |
                              LANDLOCK_ACCESS_FS_MAKE_FIFO | LANDLOCK_ACCESS_FS_MAKE_BLOCK |
                              LANDLOCK_ACCESS_FS_MAKE_SYM;
    const auto set =
        static_cast<int>(syscall(SYS_landlock_create_ruleset, &rules, sizeof(rules.handled_access_fs), 0));
    if (set < 0)
        return false;
    landlock_path_beneath_attr beneath{};
    beneath.allowed_access = kInside;
    beneath.parent_fd = open(directory.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    const bool confined = syscall(SYS_landlock_add_rule, set, LANDLOCK_RULE_PATH_BENEATH, &beneath, 0) == 0 &&
                          syscall(SYS_landlock_restrict_self, set, 0) == 0;
    const int error = errno;
    close(beneath.parent_fd);
    close(set);
    errno = error;
    return confined;
}

} // namespace

std::vector<std::string> Confine(const std::string &directory)
{
    // A sanitizer looks for leaks at the end from a process of its own.
    if (kSanitized)
        return {"this build has a sanitizer and gives up nothing"};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return {fmt::format("nothing is given up: {}", std::strerror(errno))};
    std::vector<std::string> missing;
    if (!ConfineFiles(directory))
        missing.push_back(fmt::format("files outside the directory are not protected: {}", std::strerror(errno)));
    const std::array allowed{Allowed{SYS_socket, AF_UNIX}, Allowed{SYS_tgkill, static_cast<uint32_t>(getpid())}};
    if (!Filter(allowed).Install())
        missing.push_back(fmt::format("system calls are not filtered: {}", std::strerror(errno)));
    return missing;
}

} // namespace rsvpsimd
