// Starting means that the daemon answers, and stopping that its process has ended: neither is taken on trust.
#include "host/platform/daemon_process.h"
#include "host/directory.h"
#include "host/platform/daemon_state.h"
#include "host/platform/files.h"
#include "host/platform/launch.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/syscall.h>

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

    // Whether it helped is seen by waiting.
    void Signal(int number) const
    {
        if (fd_.Get() >= 0)
            syscall(SYS_pidfd_send_signal, fd_.Get(), number, nullptr, 0);
        else
            kill(pid_, number);
    }

private:
    pid_t pid_;
    Descriptor fd_;
};

// A failed start must not succeed later behind the caller's back.
struct Started {
    explicit Started(pid_t pid) : process(pid) {}
    Started(const Started &) = delete;
    ~Started()
    {
        if (answers || process.EndsWithin(kPause))
            return;
        process.Signal(SIGKILL);
        process.EndsWithin(kKillPatience);
    }

    const Process process;
    bool answers = false;
};

// Waits for an answer of whichever daemon lives here: one that was started by hand at the same moment may have been
// faster than the one just started.
std::string WaitForAnswer(const std::string &directory, const Process &process)
{
    const std::string where = "; see " + PathOf(directory, kLogFile);
    const auto deadline = Clock::now() + kStartPatience;
    for (;;) {
        const DaemonState state = FindDaemon(directory.c_str());
        if (state.problem)
            return state.problem.Sentence(directory.c_str());
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
        if (state.pid != 0 && DaemonAnswers(directory.c_str(), left))
            return {};
        if (process.EndsWithin(kPause) && state.pid == 0)
            return "rsvpsimd ended before it answered" + where;
        if (left <= milliseconds::zero())
            return (state.pid == 0 ? "rsvpsimd" : "rsvpsimd, process " + std::to_string(state.pid) + ",") +
                   " did not answer within " + std::to_string(kStartPatience.count() / 1000) + " seconds" + where;
    }
}

// The end of the process, or of its hold on the device: a process that nobody reaps never ends for kill().
bool WaitForEnd(const std::string &directory, const Process &process, milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    while (!process.EndsWithin(kPause)) {
        const DaemonState state = FindDaemon(directory.c_str());
        if (!state.problem && state.pid == 0)
            return true;
        if (Clock::now() >= deadline)
            return false;
    }
    return true;
}

std::string EndDaemon(const std::string &directory, pid_t pid, const Process &process)
{
    // A daemon that a signal has stopped gets to its end only if it is woken up. It is woken first: a wake-up that
    // comes while the daemon ends cancels the stop by which a sanitizer looks for leaks, and neither would ever end.
    process.Signal(SIGCONT);
    process.Signal(SIGTERM);
    if (WaitForEnd(directory, process, kTermPatience))
        return {};
    process.Signal(SIGKILL);
    if (WaitForEnd(directory, process, kKillPatience))
        return {};
    return "rsvpsimd, process " + std::to_string(pid) + ", cannot be ended";
}

} // namespace

std::string StartDaemon(const std::string &directory)
{
    const DaemonState state = FindDaemon(directory.c_str());
    if (state.problem)
        return state.problem.Sentence(directory.c_str());
    if (state.pid != 0)
        return WaitForAnswer(directory, Process(state.pid));
    pid_t pid = 0;
    if (std::string problem = LaunchDaemon(directory, pid); !problem.empty())
        return problem;
    Started started(pid);
    std::string problem = WaitForAnswer(directory, started.process);
    started.answers = problem.empty();
    return problem;
}

std::string StopDaemon(const std::string &directory)
{
    for (;;) {
        const DaemonState state = FindDaemon(directory.c_str());
        if (state.problem)
            return state.problem.Sentence(directory.c_str());
        if (state.pid == 0)
            return {};
        const Process process(state.pid);
        // Only a second look makes certain that the descriptor is the daemon's, not that of a process that has got
        // its number since.
        if (FindDaemon(directory.c_str()).pid == state.pid)
            return EndDaemon(directory, state.pid, process);
    }
}

} // namespace rsvp_host
