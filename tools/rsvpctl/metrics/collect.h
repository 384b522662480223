// One run: everything that is asked of the device, in the time that is allowed, as figures.
#ifndef TOOLS_RSVPCTL_METRICS_COLLECT_H
#define TOOLS_RSVPCTL_METRICS_COLLECT_H

#include "manager/table/table.h"
#include "tools/rsvpctl/metrics/exposition.h"
#include "tools/rsvpctl/print/output.h"

#include <chrono>
#include <vector>

namespace rsvpctl {

struct Wanted {
    std::vector<const manager::Table *> tables; // in this order, so that time that is over costs the last ones
    bool rows = false;                          // figures of single rows of every table
    uint64_t mostRows = 0;                      // of a table
};

/** Those that are read unless others are asked for: state, the smallest tables first. */
std::vector<const manager::Table *> UsualTables();

/** Asks and counts. What cannot be read is a figure too, and a message. */
Exposition Collect(Output &out, const Wanted &wanted);

} // namespace rsvpctl

#endif
