// The time that a user gives a run, or a line of a batch. Calls of the library end in it by their deadline. What else
// may wait, the platform, a file that is a pipe or a reader of the output, cannot be called off: a timer ends the
// process, with the document as whole as Ctrl-C leaves it.
#ifndef TOOLS_RSVPCTL_PRINT_TIME_LIMIT_H
#define TOOLS_RSVPCTL_PRINT_TIME_LIMIT_H

#include "manager/exchange/deadline.h"

#include <chrono>
#include <string>

namespace rsvpctl {

/** Holds from its beginning to its end. Limits nest, and the nearest end holds. */
class TimeLimit {
public:
    /** `operation` is what messages call it. */
    TimeLimit(std::chrono::milliseconds time, const std::string &operation);
    ~TimeLimit();
    TimeLimit(const TimeLimit &) = delete;
    TimeLimit &operator=(const TimeLimit &) = delete;

    /** Whether there is one. */
    static bool Holds();

    /** Whether there is one whose time is over. */
    static bool IsOver();

private:
    void Arm() const;

    TimeLimit *outer_;
    std::string message_;
    manager::Deadline::Clock::time_point end_;
    manager::Deadline deadline_;
};

/** While it lives, this is what the run waits for, if for anything but an answer. The text outlives it. */
class Waiting {
public:
    explicit Waiting(const char *what);
    ~Waiting();
    Waiting(const Waiting &) = delete;
    Waiting &operator=(const Waiting &) = delete;

private:
    const char *before_;
};

} // namespace rsvpctl

#endif
