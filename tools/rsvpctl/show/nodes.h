// The nodes of the device and whether the service runs on each. The library only says whether it runs anywhere, so a
// management program asks the platform itself.
#ifndef TOOLS_RSVPCTL_SHOW_NODES_H
#define TOOLS_RSVPCTL_SHOW_NODES_H

#include <cstdint>
#include <string_view>
#include <vector>

namespace rsvpctl {

struct DeviceNode {
    uint32_t node;
    std::string_view role;    // "master" or "standby"
    std::string_view service; // "running", "stopped", or "unknown" where the node cannot be asked
};

// The master first, then the standby nodes in the platform's order.
std::vector<DeviceNode> NodesOfDevice();

} // namespace rsvpctl

#endif
