// Long output goes through the user's pager, if a person reads it: standard output is a terminal and PAGER names one.
#ifndef TOOLS_RSVPCTL_PRINT_PAGER_H
#define TOOLS_RSVPCTL_PRINT_PAGER_H

#include "tools/rsvpctl/print/statuses.h"

#include <array>
#include <sys/types.h>

namespace rsvpctl {

/** While the object lives, what the process writes for people goes to the pager. */
class Pager {
public:
    explicit Pager(bool wanted);
    ~Pager();
    Pager(const Pager &) = delete;
    Pager &operator=(const Pager &) = delete;

private:
    pid_t child_ = -1;
    std::array<int, 2> terminal_{-1, -1}; // what standard output and standard error were; -1 for one left alone
};

/** Ends the process, after the pager if there is one. A signal handler may call it. */
[[noreturn]] void EndProcess(Exit exit);

} // namespace rsvpctl

#endif
