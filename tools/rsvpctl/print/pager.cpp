// Starting the pager and waiting for it. It shares the terminal with this process, which therefore never ends before
// it: Ctrl-C ends the output and leaves the pager with what it has.
#include "tools/rsvpctl/print/pager.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace rsvpctl {
namespace {

// A pager that could not run, or failed, left something unread: that is printed as it is. One that a person killed
// with a signal did not fail. The trap keeps this shell until its pager ends, and is not handed on to the pager.
constexpr const char *kRunPager =
    R"(trap : INT; sh -c "$PAGER"; end=$?; [ $end -eq 0 ] || [ $end -gt 128 ] || exec cat)";
constexpr const char *kShell = "/bin/sh";

volatile sig_atomic_t pagerOfSignal = -1;

void WaitFor(pid_t child)
{
    while (waitpid(child, nullptr, 0) < 0 && errno == EINTR)
        continue;
}

bool CanPage()
{
    const char *pager = std::getenv("PAGER");
    return pager != nullptr && *pager != '\0' && isatty(STDOUT_FILENO) == 1 && access(kShell, X_OK) == 0;
}

[[noreturn]] void BecomePager(int readEnd)
{
    (void)std::signal(SIGPIPE, SIG_DFL); // the tool ignores it, and an ignored signal stays ignored
    (void)setenv("LESS", "FRX", 0);      // end at once if one screen is enough, pass colours on
    if (dup2(readEnd, STDIN_FILENO) >= 0)
        execl(kShell, "sh", "-c", kRunPager, static_cast<char *>(nullptr));
    _exit(127);
}

} // namespace

// The pager sees the end of its input, and the person leaves it when done; Ctrl-C is for the pager from now on.
void EndProcess(Exit exit)
{
    (void)std::signal(SIGINT, SIG_IGN);
    close(STDOUT_FILENO);
    close(STDERR_FILENO);
    if (pagerOfSignal > 0)
        WaitFor(static_cast<pid_t>(pagerOfSignal));
    _exit(static_cast<int>(exit));
}

Pager::Pager(bool wanted)
{
    std::array<int, 2> ends{};
    if (!wanted || !CanPage() || pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    child_ = fork();
    if (child_ == 0)
        BecomePager(ends[0]);
    if (child_ > 0) {
        // Messages appear beside the rows that they belong to, unless they go to a file.
        for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
            if (isatty(stream) != 1)
                continue;
            terminal_[static_cast<size_t>(stream - 1)] = fcntl(stream, F_DUPFD_CLOEXEC, 3);
            (void)dup2(ends[1], stream);
        }
        pagerOfSignal = child_;
        (void)std::signal(SIGINT, [](int) { EndProcess(Exit::Interrupted); });
    }
    close(ends[0]);
    close(ends[1]);
}

Pager::~Pager()
{
    if (child_ <= 0)
        return;
    (void)std::fflush(stdout);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO}) {
        const int terminal = terminal_[static_cast<size_t>(stream - 1)];
        if (terminal < 0)
            continue;
        (void)dup2(terminal, stream);
        close(terminal);
    }
    WaitFor(child_);
    (void)std::signal(SIGINT, SIG_DFL);
}

} // namespace rsvpctl
