// Only the daemon's lock file says whether it lives: the kernel releases the lock however the daemon ends, so nothing
// here can become stale. The pid in the file says which process to signal, and counts only while the file is locked.
#include "host/platform/daemon_process.h"
#include "host/directory.h"
#include "host/platform/files.h"

#include <cerrno>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sstream>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <vector>

namespace rsvp_host {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds kStartPatience{5000};
constexpr milliseconds kTermPatience{3000};
constexpr milliseconds kKillPatience{2000};
constexpr milliseconds kPause{10};

// A process that is not a child of this one. It is known by a descriptor if the system has them, since a number can
// come to mean another process and a descriptor cannot.
class Process {
public:
    explicit Process(pid_t pid) : pid_(pid), fd_(static_cast<int>(syscall(SYS_pidfd_open, pid, 0))) {}

    // Waits at most that long; true if the process has ended.
    bool EndsWithin(milliseconds time) const
    {
        pollfd watch{fd_.Get(), POLLIN, 0};
        const bool ready = poll(&watch, 1, static_cast<int>(time.count())) > 0;
        return fd_.Get() >= 0 ? ready : kill(pid_, 0) != 0 && errno == ESRCH;
    }

    bool Signal(int number) const
    {
        if (fd_.Get() >= 0)
            return syscall(SYS_pidfd_send_signal, fd_.Get(), number, nullptr, 0) == 0;
        return kill(pid_, number) == 0;
    }

private:
    pid_t pid_;
    Descriptor fd_;
};

bool Answers(const std::string &directory)
{
    const sockaddr_un address = SocketAddress(directory);
    const Descriptor probe(socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    return probe.Get() >= 0 &&
           connect(probe.Get(), reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0;
}

bool Runs(const std::string &program)
{
    return access(program.c_str(), X_OK) == 0;
}

// $RSVP_SIMD, else beside this library, else where programs are installed, as seen from there, else on the PATH.
std::string FindProgram()
{
    if (const char *chosen = std::getenv("RSVP_SIMD"); chosen != nullptr && *chosen != '\0')
        return Runs(chosen) ? chosen : "";
    std::vector<std::filesystem::path> folders;
    Dl_info self;
    if (dladdr(reinterpret_cast<const void *>(&StartDaemon), &self) != 0 && self.dli_fname != nullptr) {
        const auto library = std::filesystem::path(self.dli_fname).parent_path();
        folders = {library, library / LIBRARIES_TO_PROGRAMS};
    }
    if (const char *path = std::getenv("PATH"); path != nullptr) {
        std::istringstream parts(path);
        for (std::string folder; std::getline(parts, folder, ':');)
            folders.emplace_back(folder);
    }
    for (const auto &folder : folders)
        if (std::string program = (folder / "rsvpsimd").string(); Runs(program))
            return program;
    return {};
}

std::vector<std::string> CommandLine(const std::string &program, const std::string &directory)
{
    std::vector<std::string> words;
    if (const char *runner = std::getenv("RSVP_HOST_RUNNER"); runner != nullptr) {
        std::istringstream parts(runner);
        for (std::string word; parts >> word;)
            words.push_back(word);
    }
    words.insert(words.end(), {program, "--host-dir", directory});
    if (const std::string scenario = PathOf(directory, kScenarioFile); access(scenario.c_str(), F_OK) == 0)
        words.insert(words.end(), {"--scenario", scenario});
    return words;
}

void CloseAllOnExec(int first)
{
    constexpr unsigned kOnExec = 4; // CLOSE_RANGE_CLOEXEC, which older headers lack
    if (syscall(SYS_close_range, first, ~0U, kOnExec) == 0)
        return;
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    for (int fd = first; static_cast<rlim_t>(fd) < limit.rlim_cur; ++fd)
        fcntl(fd, F_SETFD, FD_CLOEXEC);
}

// Runs in the child of a program that may have many threads: system calls only. Signals that the caller blocks or
// ignores would stay that way in the daemon, and it could not be stopped.
[[noreturn]] void BecomeDaemon(char *const *arguments, int input, int log)
{
    for (int number = 1; number < NSIG; ++number)
        signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    dup2(input, STDIN_FILENO);
    dup2(log, STDOUT_FILENO);
    dup2(log, STDERR_FILENO);
    CloseAllOnExec(STDERR_FILENO + 1);
    execvp(arguments[0], arguments);
    constexpr char kSentence[] = "rsvp_host: the command line of rsvpsimd cannot be executed\n";
    const bool told = write(STDERR_FILENO, kSentence, sizeof(kSentence) - 1) > 0;
    _exit(told ? 127 : 126);
}

// Opened above the standard descriptors: the caller may have closed those, and BecomeDaemon replaces them.
Descriptor OpenHigh(const char *path, int flags)
{
    const Descriptor low(open(path, flags | O_CLOEXEC, 0600));
    return Descriptor(fcntl(low.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

// The daemon is the child of a child that ends at once, so the caller never has to reap it; its pid comes back
// through a pipe. Returns 0 and sets errno if a step fails.
pid_t Launch(const std::vector<std::string> &words, const std::string &logPath)
{
    std::vector<char *> arguments;
    arguments.reserve(words.size() + 1);
    for (const std::string &word : words)
        arguments.push_back(const_cast<char *>(word.c_str()));
    arguments.push_back(nullptr);
    const Descriptor input = OpenHigh("/dev/null", O_RDONLY);
    const Descriptor log = OpenHigh(logPath.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW);
    int ends[2];
    if (input.Get() < 0 || log.Get() < 0 || pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return 0;
    const Descriptor from(ends[0]);
    const Descriptor to(ends[1]);
    const pid_t child = fork();
    if (child < 0)
        return 0;
    if (child == 0) {
        setsid();
        const pid_t daemon = fork();
        if (daemon == 0)
            BecomeDaemon(arguments.data(), input.Get(), log.Get());
        _exit(daemon > 0 && write(to.Get(), &daemon, sizeof(daemon)) == sizeof(daemon) ? 0 : 1);
    }
    // A caller that ignores SIGCHLD has no child to wait for; only the pipe says how it went.
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR)
        ;
    pid_t daemon = 0;
    if (read(from.Get(), &daemon, sizeof(daemon)) == sizeof(daemon))
        return daemon;
    errno = EAGAIN;
    return 0;
}

std::string WaitForAnswer(const std::string &directory, const Process &process)
{
    const std::string where = "; see " + PathOf(directory, kLogFile);
    const auto deadline = Clock::now() + kStartPatience;
    while (!DaemonIsUp(directory.c_str()) || !Answers(directory)) {
        // A daemon started by hand at the same moment may have been faster; then wait for that one.
        if (process.EndsWithin(kPause) && LivingDaemon(directory.c_str()) == 0)
            return "rsvpsimd ended before it answered" + where;
        if (Clock::now() >= deadline)
            return "rsvpsimd did not answer within " + std::to_string(kStartPatience.count() / 1000) + " seconds" +
                   where;
    }
    return {};
}

bool WaitForEnd(const std::string &directory, const Process &process, milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    while (LivingDaemon(directory.c_str()) != 0) {
        if (Clock::now() >= deadline)
            return false;
        process.EndsWithin(kPause);
    }
    return true;
}

} // namespace

pid_t LivingDaemon(const char *directory)
{
    const FilePath path(directory, kLockFile);
    const Descriptor lock(open(path.Get(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    char text[16];
    const ssize_t length = lock.Get() < 0 ? 0 : read(lock.Get(), text, sizeof(text));
    pid_t pid = 0;
    if (length > 0)
        std::from_chars(text, text + length, pid);
    // If the process is gone, do not try the lock: trying it means holding it for a moment, and a daemon that starts
    // in that moment would think that another daemon holds it.
    if (pid <= 1 || (kill(pid, 0) != 0 && errno == ESRCH))
        return 0;
    if (flock(lock.Get(), LOCK_SH | LOCK_NB) == 0) {
        flock(lock.Get(), LOCK_UN); // otherwise a child forked by another thread would keep it
        return 0;
    }
    return errno == EWOULDBLOCK ? pid : 0;
}

bool DaemonIsUp(const char *directory)
{
    return access(FilePath(directory, kSocketFile).Get(), F_OK) == 0 && LivingDaemon(directory) != 0;
}

std::string StartDaemon(const std::string &directory)
{
    if (const pid_t living = LivingDaemon(directory.c_str()); living != 0)
        return WaitForAnswer(directory, Process(living));
    // The socket of a daemon that crashed would make the new one look ready before it is.
    unlink(PathOf(directory, kSocketFile).c_str());
    const std::string program = FindProgram();
    if (program.empty())
        return "no program rsvpsimd can be found; set RSVP_SIMD to its path";
    const pid_t pid = Launch(CommandLine(program, directory), PathOf(directory, kLogFile));
    if (pid == 0)
        return "rsvpsimd cannot be started with the log " + PathOf(directory, kLogFile) + ": " + std::strerror(errno);
    const Process process(pid);
    std::string problem = WaitForAnswer(directory, process);
    // A failed start must not succeed later behind the caller's back.
    if (!problem.empty() && !process.EndsWithin(kPause)) {
        process.Signal(SIGKILL);
        if (!process.EndsWithin(kKillPatience))
            problem += "; it cannot be ended either";
    }
    return problem;
}

std::string StopDaemon(const std::string &directory)
{
    const pid_t pid = LivingDaemon(directory.c_str());
    if (pid == 0)
        return {};
    const Process process(pid);
    // Only now is it certain that the descriptor is the daemon's, not that of a process that has got its number
    // since.
    if (LivingDaemon(directory.c_str()) != pid)
        return {};
    for (const auto &[number, patience] : {std::pair(SIGTERM, kTermPatience), std::pair(SIGKILL, kKillPatience)}) {
        process.Signal(number);
        if (WaitForEnd(directory, process, patience))
            return {};
    }
    return "rsvpsimd, process " + std::to_string(pid) + ", cannot be ended";
}

} // namespace rsvp_host
