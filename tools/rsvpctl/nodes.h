// The nodes of the device and whether the service runs on each. The library tells only whether it runs anywhere, so
// that a management program asks the platform itself.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace rsvpctl {

struct Node {
    uint32_t node;
    std::string_view role;    // "master" or "standby"
    std::string_view service; // "running", "stopped", or "unknown" where the node cannot be asked
};

// The master first, then the standby nodes in the platform's order.
std::vector<Node> NodesOfDevice();

} // namespace rsvpctl
