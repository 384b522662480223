// One poll of a `show` in a child process. The library restarts a wait that a signal interrupts, so the waiting is
// done by a process that can be ended at any moment; its session is closed with it, and no late answer meets a new
// question.
#ifndef TOOLS_RSVPCTL_WATCH_POLLING_H
#define TOOLS_RSVPCTL_WATCH_POLLING_H

#include "tools/rsvpctl/print/output.h"

#include <chrono>
#include <csignal>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>

namespace rsvpctl {

/** What ended a wait. */
enum class Wake : uint8_t { Ready, TimeOut, Interrupted, ReaderGone, Over };

/** Waits that the end of the watch cuts short: a signal (Ctrl-C among them), a document that nobody reads any more,
 * or the end of the time that the watch was given. */
class Waiter {
public:
    explicit Waiter(std::optional<std::chrono::milliseconds> duration);
    ~Waiter();
    Waiter(const Waiter &) = delete;
    Waiter &operator=(const Waiter &) = delete;

    /** Until `fd` (-1: none) can be read or the time is over (kNoLimit: there is none). */
    Wake Wait(int fd, std::chrono::milliseconds limit) const;
    static constexpr std::chrono::milliseconds kNoLimit{-1};

    /** Lets signals end the calling process again. */
    void GiveSignalsBack() const;

private:
    sigset_t before_;
    int signals_;
    int end_ = -1; // -1: no time was given
};

// NOLINTNEXTLINE(bugprone-exception-escape): the JSON library allocates where it destroys
struct PollResult {
    Wake end = Wake::Ready; // other than Ready: the poll was cut short
    manager::Json document; // what was said beside the rows
    bool complete = false;  // all rows were there, or the record
    Exit exit = Exit::Exchange;
};

/** What a poll runs, and for how long at most. */
struct Poll {
    std::function<Exit(Output &)> run;
    std::optional<std::chrono::milliseconds> timeout;
};

using OnRow = std::function<void(std::string_view row)>;

/** Runs the command in a child; the text of each row, or of the one record, goes to `onRow` as it comes. Throws
 * std::system_error if there is no child to be had or nothing to be heard of it. */
PollResult RunPoll(const Waiter &waiter, const Poll &poll, const OnRow &onRow);

} // namespace rsvpctl

#endif
