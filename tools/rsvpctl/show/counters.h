// `show counters`: four numbers, each of which the library reads on its own.
#ifndef TOOLS_RSVPCTL_SHOW_COUNTERS_H
#define TOOLS_RSVPCTL_SHOW_COUNTERS_H

#include "tools/rsvpctl/print/output.h"

namespace rsvpctl {

Exit ShowCounters(Output &out, const std::string &operation);

} // namespace rsvpctl

#endif
