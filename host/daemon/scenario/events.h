// Reads the events of a scenario. What happens to rows is written as rows are.
#ifndef HOST_DAEMON_SCENARIO_EVENTS_H
#define HOST_DAEMON_SCENARIO_EVENTS_H

#include "host/daemon/scenario/behaviour.h"
#include "host/daemon/scenario/rows.h"

namespace rsvpsimd {

// Throws Mistake, or std::invalid_argument for what is wrong with the event as a whole.
Event ReadEvent(const Node::Table &table, size_t line);

// The plain counts by their names.
std::map<std::string, uint32_t> ReadCounts(const Node::Table &table);

} // namespace rsvpsimd

#endif
