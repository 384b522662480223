// What the daemon is started with, and the two forks that make it nobody's child.
#include "host/platform/launch.h"
#include "host/directory.h"
#include "host/platform/files.h"
#include "host/platform/report.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <filesystem>
#include <sstream>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <vector>

namespace rsvp_host {

namespace {

using Words = std::vector<std::string>;
namespace fs = std::filesystem;

// The daemon's whole environment, but for what says how a build with a sanitizer reports.
constexpr const char *kPath = "PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";
constexpr const char *kKept[] = {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"};

// The daemon runs in another directory than the caller, so every path that it is given begins at the root.
std::string Absolute(const fs::path &path)
{
    std::error_code unknown;
    const fs::path absolute = fs::absolute(path, unknown);
    return (unknown ? path : absolute).string();
}

bool Runs(const std::string &program)
{
    return access(program.c_str(), X_OK) == 0;
}

// The program of that name in one of the folders, or nothing. A folder of the PATH that is empty or relative is
// whatever directory the caller is in, and is skipped.
std::string FindIn(std::vector<fs::path> folders, const std::string &name)
{
    if (const char *path = std::getenv("PATH"); path != nullptr) {
        std::istringstream parts(path);
        for (std::string folder; std::getline(parts, folder, ':');)
            if (folder.starts_with('/'))
                folders.emplace_back(folder);
    }
    for (const fs::path &folder : folders)
        if (std::string program = Absolute(folder / name); Runs(program))
            return program;
    return {};
}

// $RSVP_SIMD, else beside this library, else in the bin folder next to the library's, else on the PATH.
std::string FindDaemonProgram()
{
    if (const char *chosen = std::getenv("RSVP_SIMD"); chosen != nullptr && *chosen != '\0')
        return Runs(chosen) ? Absolute(chosen) : "";
    std::vector<fs::path> folders;
    Dl_info self;
    if (dladdr(reinterpret_cast<const void *>(&LaunchDaemon), &self) != 0 && self.dli_fname != nullptr) {
        const auto library = fs::path(self.dli_fname).parent_path();
        folders = {library, library / LIBRARIES_TO_PROGRAMS};
    }
    return FindIn(folders, "rsvpsimd");
}

// Returns an empty string, or a sentence.
std::string MakeCommandLine(const std::string &directory, Words &words)
{
    if (const char *runner = std::getenv("RSVP_HOST_RUNNER"); runner != nullptr) {
        std::istringstream parts(runner);
        for (std::string word; parts >> word;)
            words.push_back(word);
    }
    if (!words.empty()) {
        std::string &runner = words.front();
        const std::string found = runner.find('/') == std::string::npos ? FindIn({}, runner) : Absolute(runner);
        if (found.empty())
            return "no program " + runner + " can be found, which RSVP_HOST_RUNNER names";
        runner = found;
    }
    const std::string program = FindDaemonProgram();
    if (program.empty())
        return "no program rsvpsimd can be found; set RSVP_SIMD to its path";
    words.insert(words.end(), {program, "--host-dir", Absolute(directory)});
    // If it cannot be looked at, the daemon is to say so; without it the device would be another one.
    if (const std::string scenario = PathOf(directory, kScenarioFile);
        access(scenario.c_str(), F_OK) == 0 || errno != ENOENT)
        words.insert(words.end(), {"--scenario", Absolute(scenario)});
    return {};
}

Words MakeEnvironment()
{
    Words words{kPath};
    for (const char *name : kKept)
        if (const char *value = std::getenv(name); value != nullptr)
            words.push_back(std::string(name) + "=" + value);
    return words;
}

std::vector<char *> Pointers(Words &words)
{
    std::vector<char *> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string &word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
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
// ignores would stay that way in the daemon, and it could not be stopped. It holds keys, so it leaves no core.
[[noreturn]] void BecomeDaemon(char *const *arguments, char *const *environment, int input, int log)
{
    for (int number = 1; number < NSIG; ++number)
        signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    umask(077);
    constexpr rlimit kNoCore{0, 0};
    if (dup2(log, STDERR_FILENO) < 0 || dup2(log, STDOUT_FILENO) < 0 || dup2(input, STDIN_FILENO) < 0 ||
        setrlimit(RLIMIT_CORE, &kNoCore) != 0 || chdir("/") != 0)
        _exit(126);
    CloseAllOnExec(STDERR_FILENO + 1);
    execve(arguments[0], arguments, environment);
    constexpr char kSentence[] = "rsvp_host: the command line of rsvpsimd cannot be executed\n";
    const bool told = write(STDERR_FILENO, kSentence, sizeof(kSentence) - 1) > 0;
    _exit(told ? 127 : 126);
}

// Opened above the standard descriptors: the caller may have closed those, and BecomeDaemon replaces them.
Descriptor OpenHigh(const char *path, int flags)
{
    Descriptor low(open(path, flags | O_CLOEXEC, 0600));
    return low.Get() < 0 ? std::move(low) : Descriptor(fcntl(low.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

// Whatever else stands in the place of the log, the caller does not wait for it and the daemon does not write to it.
Problem CheckLog(int log)
{
    struct stat found;
    if (log < 0 && errno != ENXIO && errno != ELOOP)
        return {kLogFile, "cannot be opened", errno};
    if (log < 0 || fstat(log, &found) != 0 || !S_ISREG(found.st_mode))
        return {kLogFile, "is not a plain file"};
    if (fchmod(log, 0600) != 0)
        return {kLogFile, "cannot be kept from others", errno};
    return {};
}

// A word that the child of a fork writes and the parent reads. Unlike a pipe it has no call that can fail after the
// daemon was started, which would leave it to nobody.
class SharedWord {
public:
    SharedWord() : at_(mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) {}
    ~SharedWord()
    {
        if (IsThere())
            munmap(at_, sizeof(int));
    }
    SharedWord(const SharedWord &) = delete;
    SharedWord &operator=(const SharedWord &) = delete;

    bool IsThere() const { return at_ != MAP_FAILED; }
    volatile int &Word() const { return *static_cast<volatile int *>(at_); }

private:
    void *at_;
};

// The daemon is the child of a child that ends at once, so the caller never has to reap it. Returns 0 and sets errno
// if a step fails; then there is no daemon.
pid_t ForkTwice(char *const *arguments, char *const *environment, int input, int log)
{
    const SharedWord daemonOrError;
    if (!daemonOrError.IsThere())
        return 0;
    const pid_t child = fork();
    if (child < 0)
        return 0;
    if (child == 0) {
        setsid();
        const pid_t daemon = fork();
        if (daemon == 0)
            BecomeDaemon(arguments, environment, input, log);
        daemonOrError.Word() = daemon > 0 ? daemon : -errno;
        _exit(0);
    }
    // A caller that ignores SIGCHLD has no child to reap, and waits for its end all the same.
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR)
        ;
    const int word = daemonOrError.Word();
    if (word <= 0)
        errno = word < 0 ? -word : ECHILD; // the child ended before it could say more
    return word > 0 ? word : 0;
}

} // namespace

std::string LaunchDaemon(const std::string &directory, pid_t &daemon)
{
    Words words;
    if (std::string problem = MakeCommandLine(directory, words); !problem.empty())
        return problem;
    Words environment = MakeEnvironment();
    const Descriptor log =
        OpenHigh(PathOf(directory, kLogFile).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK);
    if (const Problem problem = CheckLog(log.Get()))
        return problem.Sentence(directory.c_str());
    const Descriptor input = OpenHigh("/dev/null", O_RDONLY);
    daemon =
        input.Get() < 0 ? 0 : ForkTwice(Pointers(words).data(), Pointers(environment).data(), input.Get(), log.Get());
    return daemon != 0 ? "" : std::string("rsvpsimd cannot be started: ") + std::strerror(errno);
}

} // namespace rsvp_host
