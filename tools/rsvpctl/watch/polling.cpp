// The child and what it says. Its document is taken apart by its lines, since parsing all of it costs many times more
// than making it did.
#include "tools/rsvpctl/watch/polling.h"

#include "tools/rsvpctl/print/time_limit.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/timerfd.h>
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

// People learn of a failure once, from the process that watches.
[[noreturn]] void BeChild(const Waiter &waiter, int writeEnd, const Poll &poll)
{
    (void)std::signal(SIGINT, SIG_IGN); // Ctrl-C goes to both; the process that watches answers it
    waiter.GiveSignalsBack();
    (void)prctl(PR_SET_PDEATHSIG, SIGTERM); // without it the child would end a wait later
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    FILE *document = fdopen(writeEnd, "w");
    if (nowhere < 0 || document == nullptr || dup2(nowhere, STDERR_FILENO) < 0)
        _exit(static_cast<int>(Exit::Exchange));
    Output out(Style::Json, Color::Never, document);
    out.EndWholeWhenEarly("watch");
    Exit exit = Exit::Usage;
    try {
        std::optional<TimeLimit> limit;
        if (poll.timeout)
            limit.emplace(*poll.timeout, "watch");
        exit = poll.run(out);
    } catch (const UsageError &error) {
        exit = out.WrongUsage("watch", error);
    } catch (const std::exception &error) {
        exit = out.Broken("watch", error.what());
    }
    _exit(static_cast<int>(out.Finish(exit)));
}

/** The child and its document. Both end with the scope, whatever ends it. */
class Child {
public:
    Child(const Waiter &waiter, const Poll &poll)
    {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            Fail("pipe");
        document_ = ends[0];
        child_ = fork();
        if (child_ == 0)
            BeChild(waiter, ends[1], poll);
        const int error = errno;
        close(ends[1]);
        if (child_ < 0) {
            close(document_);
            throw std::system_error(error, std::generic_category(), "fork");
        }
    }
    ~Child() { (void)End(true); }
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

    int Document() const { return document_; }

    /** Waits for its end, or makes it end `early`. Nothing if it has no exit status of its own. */
    std::optional<Exit> End(bool early)
    {
        if (child_ < 0)
            return std::nullopt;
        close(document_);
        if (early)
            (void)kill(child_, SIGTERM);
        int status = 0;
        while (waitpid(child_, &status, 0) < 0 && errno == EINTR)
            continue;
        child_ = -1;
        return WIFEXITED(status) ? std::optional(static_cast<Exit>(WEXITSTATUS(status))) : std::nullopt;
    }

private:
    int document_;
    pid_t child_;
};

/** Hands on whole lines until the input ends or the wait for it is cut short. */
Wake ReadLines(const Waiter &waiter, int fd, const std::function<void(std::string_view)> &onLine)
{
    std::string text;
    std::array<char, 65536> chunk{};
    for (;;) {
        const Wake wake = waiter.Wait(fd, Waiter::kNoLimit);
        if (wake != Wake::Ready)
            return wake;
        const ssize_t got = read(fd, chunk.data(), chunk.size());
        if (got == 0)
            return Wake::Ready;
        if (got < 0)
            Fail("read");
        text.append(chunk.data(), static_cast<size_t>(got));
        size_t begin = 0;
        for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', begin)) {
            onLine(std::string_view(text).substr(begin, end - begin));
            begin = end + 1;
        }
        text.erase(0, begin);
    }
}

} // namespace

Waiter::Waiter(std::optional<std::chrono::milliseconds> duration)
{
    sigset_t toEnd;
    sigemptyset(&toEnd);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&toEnd, number);
    signals_ = signalfd(-1, &toEnd, SFD_CLOEXEC | SFD_NONBLOCK);
    if (signals_ < 0)
        Fail("signalfd");
    if (duration) {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(*duration);
        itimerspec time{};
        const auto rest = std::chrono::nanoseconds(*duration - seconds);
        time.it_value = {static_cast<time_t>(seconds.count()), static_cast<long>(rest.count())};
        end_ = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
        if (end_ < 0 || timerfd_settime(end_, 0, &time, nullptr) != 0)
            Fail("timerfd");
    }
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
    if (end_ >= 0)
        close(end_);
}

void Waiter::GiveSignalsBack() const
{
    sigprocmask(SIG_SETMASK, &before_, nullptr);
}

// A pipe that nobody reads reports an error without being asked for anything.
Wake Waiter::Wait(int fd, std::chrono::milliseconds limit) const
{
    std::array<pollfd, 4> waits{{{signals_, POLLIN, 0}, {STDOUT_FILENO, 0, 0}, {end_, POLLIN, 0}, {fd, POLLIN, 0}}};
    int ready = 0;
    do
        ready = poll(waits.data(), waits.size(), static_cast<int>(limit.count()));
    while (ready < 0 && errno == EINTR);
    if (ready < 0)
        Fail("poll");
    if (waits[0].revents != 0)
        return Wake::Interrupted;
    if ((waits[1].revents & (POLLERR | POLLHUP)) != 0)
        return Wake::ReaderGone;
    if (waits[2].revents != 0)
        return Wake::Over;
    return waits[3].revents != 0 ? Wake::Ready : Wake::TimeOut;
}

// A document has each row on a line of its own, with a comma in front of all but the first; what is before and behind
// them is a document without rows.
PollResult RunPoll(const Waiter &waiter, const Poll &poll, const OnRow &onRow)
{
    Child child(waiter, poll);
    PollResult result;
    std::string around;
    result.end = ReadLines(waiter, child.Document(), [&](std::string_view line) {
        if (around.empty() || line.starts_with(']'))
            around += line;
        else
            onRow(line.substr(line.starts_with(',') ? 1 : 0));
    });
    result.exit = child.End(result.end != Wake::Ready).value_or(Exit::Exchange);
    result.document = Json::parse(around, nullptr, false);
    if (!result.document.is_object())
        return result;
    result.complete = result.document.value("complete", result.document.contains("record"));
    if (result.document.contains("record"))
        onRow(result.document["record"].dump());
    return result;
}

} // namespace rsvpctl
