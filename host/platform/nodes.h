// The nodes of the device, read from a file that a developer edits. Every platform call that takes a node uses them.
#ifndef HOST_PLATFORM_NODES_H
#define HOST_PLATFORM_NODES_H

#include "host/platform/report.h"

#include <cstdint>

namespace rsvp_host {

struct Nodes {
    uint16_t master = 0; // 0: there is none
    uint32_t standbyCount = 0;
    uint16_t standby[64];
};

// Reads the file without using the heap. A missing file means master 1 and standby nodes 2 and 3.
Problem ReadNodes(const char *directory, Nodes &nodes);

} // namespace rsvp_host

#endif
