// Status values are read as the library reads them: 1 and 2 are running, 0 and 3 are stopped.
#include "tools/rsvpctl/command/service_state.h"

#include "manager/table/session.h"
#include "platform/device.h"
#include "platform/service.h"
#include "tools/rsvpctl/print/time_limit.h"

#include <algorithm>
#include <cstdlib>

namespace rsvpctl {
namespace {

Running ServiceOn(uint32_t node)
{
    const Waiting waiting("SERVICE_GetStatus of the platform");
    uint32_t status = 0;
    if (SERVICE_GetStatus(node, "RSVP", 0, &status) != 0 || status > 3)
        return Running::Unknown;
    return status == 1 || status == 2 ? Running::Yes : Running::No;
}

bool HasNode(const std::vector<DeviceNode> &nodes, Running running)
{
    return std::any_of(nodes.begin(), nodes.end(), [&](const DeviceNode &node) { return node.service == running; });
}

} // namespace

std::string_view NameOf(Running running)
{
    switch (running) {
    case Running::No:
        return "stopped";
    case Running::Yes:
        return "running";
    default:
        return "unknown";
    }
}

Running ServiceState::Anywhere() const
{
    if (HasNode(nodes, Running::Yes))
        return Running::Yes;
    return allNodes && !HasNode(nodes, Running::Unknown) ? Running::No : Running::Unknown;
}

Running ServiceState::Everywhere() const
{
    if (HasNode(nodes, Running::No))
        return Running::No;
    return allNodes && !HasNode(nodes, Running::Unknown) ? Running::Yes : Running::Unknown;
}

std::string ServiceState::NodesThatAre(Running running) const
{
    std::string text;
    size_t count = 0;
    for (const DeviceNode &node : nodes) {
        if (node.service == running)
            text += (count++ == 0 ? " " : ", ") + std::to_string(node.node);
    }
    return count == 0 ? text : (count == 1 ? "node" : "nodes") + text;
}

ServiceState AskService()
{
    const uint32_t master = DEV_GetSystemMaster();
    ServiceState state{{{master, "master", ServiceOn(master)}}};
    uint32_t count = 0;
    uint16_t *standby = DEV_GetAllStandbyNodes(&count);
    state.allNodes = standby != nullptr; // a device without standby nodes has an empty list
    for (uint32_t i = 0; standby != nullptr && i < count; ++i)
        state.nodes.push_back({standby[i], "standby", ServiceOn(standby[i])});
    free(standby);
    return state;
}

uint32_t AskDaemon()
{
    const manager::Session session;
    if (session.IsMissing())
        return RSVP_MOR_ERR_LIPC;
    RSVP_MOR_DebugInfo info{};
    return RSVP_MOR_GetRsvpDebug(session.Fd(), &info);
}

bool IsAnswer(uint32_t status)
{
    return status != RSVP_MOR_ERR_LIPC && status != RSVP_MOR_ERR_FAIL;
}

} // namespace rsvpctl
