// How a line of a batch becomes words.
#ifndef TOOLS_RSVPCTL_COMMAND_BATCH_H
#define TOOLS_RSVPCTL_COMMAND_BATCH_H

#include <string>
#include <string_view>
#include <vector>

namespace rsvpctl {

/** The words of a line: spaces separate them, quotes of either kind keep them together, # begins a comment where a
 * word could begin. Throws UsageError for a quote that is not closed, and for a byte 0. */
std::vector<std::string> SplitWords(std::string_view line);

} // namespace rsvpctl

#endif
