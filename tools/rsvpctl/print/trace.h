// What the run asks the daemon and what comes back, a line a message, in the words in which the daemon traces it. A
// system to which nobody can attach shows so what a tool did there.
#ifndef TOOLS_RSVPCTL_PRINT_TRACE_H
#define TOOLS_RSVPCTL_PRINT_TRACE_H

#include <string>

namespace rsvpctl {

/** While it lives, every message of the process has its line, written at once. There is one at a time. */
class Trace {
public:
    /** To the end of a regular file, which is made if it is missing, for its owner alone; with an empty name to
     * standard error. With `hex` the bytes stand below, without keys. Throws UsageError if the file cannot be
     * written. */
    Trace(const std::string &file, bool hex);
    ~Trace();
    Trace(const Trace &) = delete;
    Trace &operator=(const Trace &) = delete;

    /** Why lines were lost; empty if none was. */
    static std::string Problem();
};

} // namespace rsvpctl

#endif
