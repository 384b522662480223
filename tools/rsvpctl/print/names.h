// The dictionary of this run. It is found when something first needs it, so that commands without a table never read
// one.
#ifndef TOOLS_RSVPCTL_PRINT_NAMES_H
#define TOOLS_RSVPCTL_PRINT_NAMES_H

#include "manager/dictionary/dictionary.h"

#include <string>
#include <vector>

namespace rsvpctl {

/** Takes the choice of `--dictionary` out of a command line that is not parsed yet: keys are checked while it is. */
void ChooseDictionary(const std::vector<std::string> &words);

/** The dictionary of this run. Throws UsageError if it cannot be used. */
const manager::Dictionary &Names();

} // namespace rsvpctl

#endif
