// The check: everything read once, for whoever sets the agent up.
#ifndef TOOLS_AGENTX_CHECK_H
#define TOOLS_AGENTX_CHECK_H

#include "tools/agentx/reads.h"

namespace agentx {

/** Prints what would be served. The exit status: 0, or 1 if a table could not be read. */
int Check(const Jobs &jobs);

} // namespace agentx

#endif
