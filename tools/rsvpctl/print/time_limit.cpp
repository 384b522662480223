// The timer and its handler, which does only what a signal handler may.
#include "tools/rsvpctl/print/time_limit.h"

#include "manager/exchange/exchange.h"
#include "manager/record/text.h"
#include "tools/rsvpctl/print/interrupt.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstring>
#include <fmt/format.h>
#include <sys/time.h>
#include <unistd.h>

namespace rsvpctl {
namespace {

using std::chrono::milliseconds, std::chrono::microseconds;

// A call of the library that ends in time gets so much longer to be reported.
constexpr milliseconds kGrace(250);

// How often it gets that, if the report takes long: a reader that does not read is not waited for.
constexpr int kMostGraces = 20;

// Where nobody says it.
constexpr const char *kSomething = "the platform, or a file that is a pipe";

std::atomic<TimeLimit *> current = nullptr;
std::atomic<const char *> messageBegin = "";
std::atomic<const char *> waitingFor = kSomething;
static_assert(std::atomic<const char *>::is_always_lock_free, "a signal handler may use no other");

void Say(const char *text)
{
    (void)!write(STDERR_FILENO, text, std::strlen(text)); // if it cannot be written, there is nowhere left to say so
}

void OnTimer(int)
{
    static volatile sig_atomic_t graces = 0;
    const manager::Deadline *deadline = manager::Deadline::Current();
    const bool endsByItself =
        (deadline != nullptr && deadline->IsWaiting()) || manager::LastExchange().givenUp != manager::GivenUp::No;
    if (endsByItself && graces < kMostGraces) {
        graces = graces + 1;
        return;
    }
    static volatile sig_atomic_t said = 0;
    if (said == 0) {
        said = 1;
        Say(messageBegin);
        Say(waitingFor);
        Say("\n  what to do:    give more time with --timeout, or see why that does not come\n");
    }
    EndEarly(Exit::TimeOver);
}

itimerval TimerAt(microseconds left)
{
    const auto timeval = [](microseconds time) {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
        return ::timeval{static_cast<time_t>(seconds.count()), static_cast<suseconds_t>((time - seconds).count())};
    };
    return {timeval(kGrace), timeval(left)};
}

} // namespace

TimeLimit::TimeLimit(milliseconds time, const std::string &operation)
    : outer_(current),
      message_(fmt::format("rsvpctl: {}: given up after {}, waiting for ", operation, manager::DurationText(time))),
      end_(manager::Deadline::Clock::now() + time), deadline_(end_)
{
    if (outer_ == nullptr) {
        struct sigaction action {};
        action.sa_handler = OnTimer;
        action.sa_flags = SA_RESTART;
        (void)sigaction(SIGALRM, &action, nullptr);
        sigset_t timer;
        sigemptyset(&timer);
        sigaddset(&timer, SIGALRM);
        sigprocmask(SIG_UNBLOCK, &timer, nullptr); // whoever started this program may have blocked it
    }
    // The longer one comes to an end as well, but not before the program does.
    if (outer_ == nullptr || end_ < outer_->end_)
        Arm();
    current = this;
}

TimeLimit::~TimeLimit()
{
    current = outer_;
    const itimerval never{};
    if (outer_ != nullptr)
        outer_->Arm();
    else
        (void)setitimer(ITIMER_REAL, &never, nullptr);
}

void TimeLimit::Arm() const
{
    messageBegin = message_.c_str();
    const auto left = std::chrono::ceil<microseconds>(end_ + kGrace - manager::Deadline::Clock::now());
    const itimerval timer = TimerAt(std::max(left, microseconds(1)));
    (void)setitimer(ITIMER_REAL, &timer, nullptr);
}

bool TimeLimit::Holds()
{
    return current != nullptr;
}

bool TimeLimit::IsOver()
{
    const TimeLimit *limit = current;
    return limit != nullptr && limit->deadline_.State() != manager::GivenUp::No;
}

Waiting::Waiting(const char *what) : before_(waitingFor.exchange(what)) {}

Waiting::~Waiting()
{
    waitingFor = before_;
}

} // namespace rsvpctl
