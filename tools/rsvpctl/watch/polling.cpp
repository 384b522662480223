// The child and what it says. Its document is read row by row, so that a long table is never there as a whole.
#include "tools/rsvpctl/watch/polling.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <istream>
#include <poll.h>
#include <streambuf>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace rsvpctl {
namespace {

using manager::Json;

[[noreturn]] void Fail(const char *what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

/** The child's document; ends early when a wait is cut short. */
class PipeReader : public std::streambuf {
public:
    PipeReader(const Waiter &waiter, int fd) : waiter_(waiter), fd_(fd) {}

    Wake End() const { return end_; }

private:
    int_type underflow() override
    {
        if (end_ != Wake::Ready || (end_ = waiter_.Wait(fd_, -1)) != Wake::Ready)
            return traits_type::eof();
        const ssize_t got = read(fd_, buffer_.data(), buffer_.size());
        if (got <= 0)
            return traits_type::eof();
        setg(buffer_.data(), buffer_.data(), buffer_.data() + got);
        return traits_type::to_int_type(buffer_.front());
    }

    const Waiter &waiter_;
    int fd_;
    Wake end_ = Wake::Ready;
    std::array<char, 65536> buffer_{};
};

// People learn of a failure once, from the process that watches.
[[noreturn]] void BeChild(const Waiter &waiter, int writeEnd, const std::function<Exit(Output &)> &run)
{
    waiter.GiveSignalsBack();
    (void)prctl(PR_SET_PDEATHSIG, SIGTERM); // without it the child would end a wait later
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    FILE *document = fdopen(writeEnd, "w");
    if (nowhere < 0 || document == nullptr || dup2(nowhere, STDERR_FILENO) < 0)
        _exit(static_cast<int>(Exit::Exchange));
    Output out(Style::Json, Color::Never, document);
    Exit exit = Exit::Usage;
    try {
        exit = run(out);
    } catch (const UsageError &error) {
        exit = out.WrongUsage("watch", error);
    }
    _exit(static_cast<int>(out.Finish(exit)));
}

Json ReadDocument(std::istream &input, const OnRow &onRow)
{
    std::string member;
    const auto take = [&](int depth, Json::parse_event_t event, Json &parsed) {
        if (event == Json::parse_event_t::key && depth == 1)
            member = parsed.get<std::string>();
        const bool isRow = event == Json::parse_event_t::object_end &&
                           ((depth == 2 && member == "rows") || (depth == 1 && member == "record"));
        if (isRow)
            onRow(parsed);
        return !isRow;
    };
    return Json::parse(input, take, false);
}

} // namespace

Waiter::Waiter()
{
    sigset_t toEnd;
    sigemptyset(&toEnd);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&toEnd, number);
    signals_ = signalfd(-1, &toEnd, SFD_CLOEXEC | SFD_NONBLOCK);
    if (signals_ < 0)
        Fail("signalfd");
    sigprocmask(SIG_BLOCK, &toEnd, &before_);
}

// Signals that came meanwhile were answered by ending the watch.
Waiter::~Waiter()
{
    signalfd_siginfo taken{};
    while (read(signals_, &taken, sizeof(taken)) == sizeof(taken))
        continue;
    sigprocmask(SIG_SETMASK, &before_, nullptr);
    close(signals_);
}

void Waiter::GiveSignalsBack() const
{
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}

// A pipe that nobody reads reports an error without being asked for anything.
Wake Waiter::Wait(int fd, int milliseconds) const
{
    std::array<pollfd, 3> waits{{{signals_, POLLIN, 0}, {STDOUT_FILENO, 0, 0}, {fd, POLLIN, 0}}};
    int ready = 0;
    do
        ready = poll(waits.data(), waits.size(), milliseconds);
    while (ready < 0 && errno == EINTR);
    if (ready < 0)
        Fail("poll");
    if (waits[0].revents != 0)
        return Wake::Interrupted;
    if ((waits[1].revents & (POLLERR | POLLHUP)) != 0)
        return Wake::ReaderGone;
    return waits[2].revents != 0 ? Wake::Ready : Wake::TimeOut;
}

PollResult RunPoll(const Waiter &waiter, const std::function<Exit(Output &)> &run, const OnRow &onRow)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        Fail("pipe");
    const pid_t child = fork();
    if (child < 0)
        Fail("fork");
    if (child == 0)
        BeChild(waiter, ends[1], run);
    close(ends[1]);

    PollResult result;
    PipeReader reader(waiter, ends[0]);
    std::istream input(&reader);
    result.document = ReadDocument(input, onRow);
    result.end = reader.End();
    close(ends[0]);
    if (result.end != Wake::Ready)
        kill(child, SIGTERM);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR)
        continue;
    if (WIFEXITED(status))
        result.exit = static_cast<Exit>(WEXITSTATUS(status));
    result.complete = result.exit == Exit::Done && result.document.is_object();
    return result;
}

} // namespace rsvpctl
