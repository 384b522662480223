// The agent's own objects: what became of the reads, and how old what it serves is.
#ifndef TOOLS_AGENTX_AGENT_TABLES_H
#define TOOLS_AGENTX_AGENT_TABLES_H

#include "tools/agentx/published.h"

namespace agentx {

Snapshot AgentScalars(std::span<const Published *const> tables, Clock::duration maxAge, bool isUp);
Snapshot CacheTable(std::span<const Published *const> tables, Clock::duration maxAge);

} // namespace agentx

#endif
