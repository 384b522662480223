// Asks the platform's service manager on which nodes the daemon runs. A node that cannot be asked counts as one where
// it does not run: a command then answers by itself and does not wait for a daemon that may not exist.
#include "channel/presence.h"

#include "platform/device.h"
#include "platform/service.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

bool RunsOn(uint32_t node)
{
    uint32_t status = 0;
    return SERVICE_GetStatus(node, RSVP_MOR_SERVICE, 0, &status) == 0 && IsRunning(status);
}

} // namespace

uint32_t RSVP_MOR_IsServiceRunning(void)
{
    if (RunsOn(DEV_GetSystemMaster()))
        return 1;

    uint32_t count = 0;
    uint16_t *nodes = DEV_GetAllStandbyNodes(&count);
    if (nodes == nullptr)
        return 0;
    uint32_t running = 0;
    for (uint32_t i = 0; i < count && running == 0; ++i)
        running = RunsOn(nodes[i]) ? 1 : 0;
    free(nodes);
    return running;
}

uint32_t RSVP_IsGlobalEnabled(void)
{
    return RSVP_MOR_IsServiceRunning();
}

uint32_t rsvp_mor_FilterStandbyNodes(uint32_t mode, uint32_t count, uint16_t *nodes)
{
    constexpr int32_t SELECTOR = -1; // the platform's number for this question
    uint32_t status = 4;             // neither running nor stopped
    uint32_t kept = 0;
    for (uint32_t i = 0; i < count; ++i) {
        if (SERVICE_GetStatus(nodes[i], RSVP_MOR_SERVICE, SELECTOR, &status) != 0)
            continue;
        if (mode == KEEP_TO_START ? IsRunning(status) : IsStopped(status))
            continue;
        nodes[kept++] = nodes[i];
    }
    return kept;
}
