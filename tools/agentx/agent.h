// The side of SNMP: a subagent that answers from what the workers have handed over. Its loop waits for the master and
// for nobody else.
#ifndef TOOLS_AGENTX_AGENT_H
#define TOOLS_AGENTX_AGENT_H

#include "tools/agentx/options.h"
#include "tools/agentx/reads.h"

namespace agentx {

/** Serves until SIGTERM or SIGINT. Throws std::system_error if the system has no thread or descriptor for it. */
void Serve(const Options &options, const Jobs &jobs);

} // namespace agentx

#endif
