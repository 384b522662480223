// The progress of a long walk, for a person who waits for its end.
#ifndef TOOLS_RSVPCTL_PRINT_PROGRESS_H
#define TOOLS_RSVPCTL_PRINT_PROGRESS_H

#include <chrono>
#include <cstdint>

namespace rsvpctl {

/** Rows and rows per second on standard error, if that is a terminal and the walk takes longer than a second. */
class Progress {
public:
    Progress();
    ~Progress();
    Progress(const Progress &) = delete;
    Progress &operator=(const Progress &) = delete;

    void BeforeRow();
    void AfterRow(uint64_t rows);

private:
    using Clock = std::chrono::steady_clock;
    void Clear();

    bool onTerminal_;
    bool rowsOnTerminal_;
    bool shown_ = false;
    Clock::time_point start_;
    Clock::time_point next_;
};

} // namespace rsvpctl

#endif
