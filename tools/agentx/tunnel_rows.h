// What path state tells of tunnels: read with the state blocks, used for the tunnels.
#ifndef TOOLS_AGENTX_TUNNEL_ROWS_H
#define TOOLS_AGENTX_TUNNEL_ROWS_H

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <rsvp_mor.h>
#include <string>

namespace agentx {

/** A tunnel as RFC 3812 counts it: index, instance, ingress, egress. */
using TunnelName = std::array<uint32_t, 4>;

struct TunnelAttributes {
    /** Nothing as long as path state could not be read as a whole. A block without the object is not among them. */
    std::optional<std::map<TunnelName, RSVP_MOR_SessionAttr>> byTunnel;
    std::string problem; // why there is nothing
};

} // namespace agentx

#endif
