// The terminal is asked by its name alone: the few sequences that the tool writes are known to all that take any.
#include "tools/rsvpctl/print/terminal.h"

#include <cstdlib>
#include <string_view>
#include <unistd.h>

namespace rsvpctl {

bool TakesEscapes(int stream)
{
    const char *name = std::getenv("TERM");
    return isatty(stream) == 1 && (name == nullptr || std::string_view(name) != "dumb");
}

} // namespace rsvpctl
