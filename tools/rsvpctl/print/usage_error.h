// The error of arguments that cannot be taken, from the place that finds it to the one that prints it.
#ifndef TOOLS_RSVPCTL_PRINT_USAGE_ERROR_H
#define TOOLS_RSVPCTL_PRINT_USAGE_ERROR_H

#include <stdexcept>
#include <string>

namespace rsvpctl {

/** The text says which argument and why; nothing was sent. */
struct UsageError : std::runtime_error {
    explicit UsageError(const std::string &text, std::string itsCommand = {}, std::string itsHint = {})
        : std::runtime_error(text), command(std::move(itsCommand)), hint(std::move(itsHint))
    {
    }
    std::string command; // whose arguments they are, where that is known
    std::string hint;    // where to read on; for people
};

} // namespace rsvpctl

#endif
