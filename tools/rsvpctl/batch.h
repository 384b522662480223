// `rsvpctl batch`: the commands of a file, one a line, in one process.
#ifndef RSVPCTL_BATCH_H
#define RSVPCTL_BATCH_H

#include "command_line.h"

#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace rsvpctl {

struct BatchOptions {
    bool keepGoing = false;
    bool dryRun = false;
    bool fromInput = false; // the batch itself is standard input
};

/** The words of a line: spaces part them, quotes of either kind keep them together, # begins a comment where a word
 * could begin. Throws UsageError for a quote that is left open. */
std::vector<std::string> SplitWords(std::string_view line);

/** Runs the lines of `input`; `name` stands in messages. The result is the highest exit status of the lines. */
Exit RunBatch(Output &out, CommandLine &line, std::istream &input, const std::string &name,
              const BatchOptions &options);

} // namespace rsvpctl

#endif
