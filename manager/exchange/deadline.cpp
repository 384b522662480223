// Deadlines of a thread, and the one wait that all of them bound.
#include "manager/exchange/deadline.h"

#include <algorithm>
#include <cerrno>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace manager {
namespace {

thread_local Deadline *innermost = nullptr;

static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may use no other");

} // namespace

// ---- Cancel ----

Cancel::Cancel() : fd_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (fd_ < 0)
        throw std::system_error(errno, std::generic_category(), "a cancel cannot be made");
}

Cancel::~Cancel()
{
    close(fd_);
}

// The count stays in the descriptor, so that every wait sees it. Only a full count can refuse, and it says the same.
void Cancel::Give() noexcept
{
    const int error = errno;
    given_ = true;
    const uint64_t one = 1;
    (void)!write(fd_, &one, sizeof(one));
    errno = error;
}

// ---- Deadline ----

Deadline::Deadline(Clock::time_point end, const Cancel *cancel) : outer_(innermost), end_(end)
{
    if (outer_ != nullptr) {
        end_ = std::min(end_, outer_->end_);
        cancels_ = outer_->cancels_;
    }
    if (cancel != nullptr)
        cancels_.push_back(cancel);
    polled_.resize(1 + cancels_.size());
    for (size_t i = 0; i < cancels_.size(); ++i)
        polled_[1 + i] = {cancels_[i]->fd_, POLLIN, 0};
    innermost = this;
}

Deadline::Clock::time_point Deadline::After(Clock::duration time)
{
    const Clock::time_point now = Clock::now();
    return time > Clock::time_point::max() - now ? Clock::time_point::max() : now + time;
}

Deadline::~Deadline()
{
    innermost = outer_;
}

Deadline *Deadline::Current()
{
    return innermost;
}

GivenUp Deadline::State() const
{
    if (std::any_of(cancels_.begin(), cancels_.end(), [](const Cancel *cancel) { return cancel->IsGiven(); }))
        return GivenUp::Cancelled;
    return Clock::now() >= end_ ? GivenUp::TimeOver : GivenUp::No;
}

GivenUp Deadline::Wait(int fd, short events, Clock::time_point until)
{
    polled_.front() = {fd, events, 0};
    for (;;) {
        if (const GivenUp state = State(); state != GivenUp::No)
            return state;
        const Clock::time_point end = std::min(end_, until);
        timespec left{};
        if (end != Clock::time_point::max()) {
            using std::chrono::duration_cast, std::chrono::seconds, std::chrono::nanoseconds;
            const auto rest = std::max(end - Clock::now(), Clock::duration::zero());
            left.tv_sec = static_cast<time_t>(duration_cast<seconds>(rest).count());
            left.tv_nsec = static_cast<long>(duration_cast<nanoseconds>(rest % seconds(1)).count());
        }
        // A signal leaves its wait unfinished, and the time that is left is counted anew.
        waiting_ = true;
        const int ready =
            ppoll(polled_.data(), polled_.size(), end == Clock::time_point::max() ? nullptr : &left, nullptr);
        waiting_ = false;
        const bool failed = ready < 0 && errno != EINTR;
        if (failed || (ready > 0 && polled_.front().revents != 0) || (ready == 0 && Clock::now() >= until))
            return GivenUp::No;
    }
}

} // namespace manager
