// Asks the platform for the nodes of the device. Status values are read as the library reads them: 1 and 2 are
// running, 0 and 3 are stopped.
#include "tools/rsvpctl/show/nodes.h"

#include "platform/device.h"
#include "platform/service.h"

#include <cstdlib>

namespace rsvpctl {
namespace {

std::string_view ServiceOn(uint32_t node)
{
    uint32_t status = 0;
    if (SERVICE_GetStatus(node, "RSVP", 0, &status) != 0 || status > 3)
        return "unknown";
    return status == 1 || status == 2 ? "running" : "stopped";
}

} // namespace

std::vector<DeviceNode> NodesOfDevice()
{
    const uint32_t master = DEV_GetSystemMaster();
    std::vector<DeviceNode> nodes{{master, "master", ServiceOn(master)}};
    uint32_t count = 0;
    uint16_t *standby = DEV_GetAllStandbyNodes(&count);
    if (standby == nullptr)
        return nodes;
    for (uint32_t i = 0; i < count; ++i)
        nodes.push_back({standby[i], "standby", ServiceOn(standby[i])});
    free(standby);
    return nodes;
}

} // namespace rsvpctl
