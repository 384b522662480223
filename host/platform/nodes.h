// The nodes of the device, read from a file that a developer edits. Every platform call that takes a node uses them.
#ifndef HOST_PLATFORM_NODES_H
#define HOST_PLATFORM_NODES_H

#include <cstdint>

namespace rsvp_host {

struct Nodes {
    uint16_t master = 0; // 0: there is none
    uint32_t standbyCount = 0;
    uint16_t standby[64];
};

// Reads the file without using the heap. Returns null, or what is wrong with the file, worded to follow its path in a
// sentence. A missing file means master 1 and standby nodes 2 and 3.
const char *ReadNodes(const char *directory, Nodes &nodes);

} // namespace rsvp_host

#endif
