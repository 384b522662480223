// One poll of a `show` in a child process. The library restarts a wait that a signal interrupts, so the waiting is
// done by a process that can be ended at any moment; its session is closed with it, and no late answer meets a new
// question.
#ifndef TOOLS_RSVPCTL_WATCH_POLLING_H
#define TOOLS_RSVPCTL_WATCH_POLLING_H

#include "tools/rsvpctl/print/output.h"

#include <csignal>
#include <functional>
#include <nlohmann/json.hpp>

namespace rsvpctl {

/** What ended a wait. */
enum class Wake : uint8_t { Ready, TimeOut, Interrupted, ReaderGone };

/** Waits that a signal to end (Ctrl-C among them) or the end of the document's reader cuts short. */
class Waiter {
public:
    Waiter();
    ~Waiter();
    Waiter(const Waiter &) = delete;
    Waiter &operator=(const Waiter &) = delete;

    /** Until `fd` (-1: none) can be read or the time is over (-1: no limit). */
    Wake Wait(int fd, int milliseconds) const;

    /** Lets signals end the calling process again. */
    void GiveSignalsBack() const;

private:
    sigset_t before_;
    int signals_;
};

// NOLINTNEXTLINE(bugprone-exception-escape): the JSON library allocates where it destroys
struct PollResult {
    Wake end = Wake::Ready; // other than Ready: the poll was cut short
    manager::Json document; // what was said beside the rows
    bool complete = false;  // all rows were there
    Exit exit = Exit::Exchange;
};

using OnRow = std::function<void(const manager::Json &row)>;

/** Runs the command in a child; each row, or the one record, goes to `onRow` as it comes. */
PollResult RunPoll(const Waiter &waiter, const std::function<Exit(Output &)> &run, const OnRow &onRow);

} // namespace rsvpctl

#endif
