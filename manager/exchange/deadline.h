// Bounded waiting. A call of the library waits up to 10 seconds in each of its steps, a walk does so for every row,
// and a signal prolongs it. Within a deadline the calls of a thread end in time, by the library's own way out: the
// step that waits fails as if its time-out had come, so that the call releases what it has built and closes what it
// has opened. No thread is killed, nothing is leaked and no signal is needed.
//
// Bounded are connect, send and recv: those of the library, and all others that the program makes by these names in
// the thread. Not bounded is what the library asks the platform for, which enabling, disabling and the gated commands
// do: the service manager, the nodes, the database. A descriptor that never waits is left alone.
//
// A held session on which a call was given up has a reply on its way that nobody waits for: close it. Own-session
// functions have closed theirs.
//
//     manager::Deadline deadline(std::chrono::seconds(2));
//     const uint32_t status = RSVP_MOR_GetGlobalInfo(&info);
//     if (status != RSVP_MOR_OK && manager::LastExchange().givenUp == manager::GivenUp::TimeOver)
//         ...
#ifndef MANAGER_EXCHANGE_DEADLINE_H
#define MANAGER_EXCHANGE_DEADLINE_H

#include <atomic>
#include <chrono>
#include <cstdint>
#include <poll.h>
#include <vector>

namespace manager {

/** Why a call ended before it had what it waited for. */
enum class GivenUp : uint8_t { No, TimeOver, Cancelled };

/** Another thread's word that nobody waits for the calls any more. It holds for good: a call that begins afterwards
 * ends at once as well. */
class Cancel {
public:
    Cancel(); // throws std::system_error if there is no descriptor left
    ~Cancel();
    Cancel(const Cancel &) = delete;
    Cancel &operator=(const Cancel &) = delete;

    /** May be called from any thread and from a signal handler. Leaves errno as it was. */
    void Give() noexcept;
    bool IsGiven() const { return given_; }

private:
    friend class Deadline;
    int fd_;
    std::atomic<bool> given_ = false;
};

/**
 * While it lives, no connect, send or recv of this thread lasts beyond `end`, or beyond the moment in which `cancel`
 * is given. They may end earlier, by the time-outs of their session. One that began before is not touched, and one
 * that begins afterwards fails without an attempt.
 *
 * Deadlines nest: the nearest end holds, and every cancel counts. An object stays in its thread and on its stack, and
 * the cancel outlives it.
 */
class Deadline {
public:
    using Clock = std::chrono::steady_clock;

    explicit Deadline(Clock::time_point end) : Deadline(end, nullptr) {}
    explicit Deadline(Clock::duration fromNow) : Deadline(After(fromNow), nullptr) {}
    explicit Deadline(const Cancel &cancel) : Deadline(Clock::time_point::max(), &cancel) {}
    Deadline(Clock::time_point end, const Cancel &cancel) : Deadline(end, &cancel) {}
    Deadline(Clock::duration fromNow, const Cancel &cancel) : Deadline(After(fromNow), &cancel) {}
    ~Deadline();
    Deadline(const Deadline &) = delete;
    Deadline &operator=(const Deadline &) = delete;

    /** The innermost of this thread, or null. */
    static Deadline *Current();

    /** Whether calls are given up by now, for this deadline or one around it. */
    GivenUp State() const;

    /** Whether a call waits at this moment, and so will end by itself. For signal handlers of the thread. */
    bool IsWaiting() const { return waiting_; }

    /** Waits until the descriptor has one of `events`, or until `until`: both give No. */
    GivenUp Wait(int fd, short events, Clock::time_point until);

private:
    static Clock::time_point After(Clock::duration time);
    Deadline(Clock::time_point end, const Cancel *cancel);

    Deadline *outer_;
    Clock::time_point end_;               // with those around it
    std::vector<const Cancel *> cancels_; // with those around it
    std::atomic<bool> waiting_ = false;
    std::vector<pollfd> polled_; // the descriptor that is waited for, then the cancels
};

} // namespace manager

#endif
