// Switches RSVP on and off: on the device through the service manager, on an interface or a peer by a command.
// The master starts before any standby node and stops after all of them.
#include "config/enable.h"

#include "channel/message.h"
#include "channel/presence.h"
#include "platform/database.h"
#include "platform/device.h"
#include "platform/service.h"
#include "rsvp_mor/config.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

// The two numbers that the platform takes after the service's name.
constexpr uint32_t START_ARGUMENTS[2] = {0, 0};
constexpr uint32_t STOP_ARGUMENTS[2] = {0, 3};

// Returns `unchanged` if no standby node needs a start.
uint32_t StartStandbyNodes(uint32_t unchanged)
{
    uint32_t count = 0;
    uint16_t *nodes = DEV_GetAllStandbyNodes(&count);
    if (nodes == nullptr)
        return unchanged;
    uint32_t result = unchanged;
    count = rsvp_mor_FilterStandbyNodes(KEEP_TO_START, count, nodes);
    if (count != 0)
        result = SERVICE_BatchStart(nodes, count, RSVP_MOR_SERVICE, START_ARGUMENTS[0], START_ARGUMENTS[1]);
    free(nodes);
    return result;
}

void StopStandbyNodes()
{
    uint32_t count = 0;
    uint16_t *nodes = DEV_GetAllStandbyNodes(&count);
    if (nodes == nullptr)
        return;
    count = rsvp_mor_FilterStandbyNodes(KEEP_TO_STOP, count, nodes);
    if (count != 0)
        SERVICE_BatchStop(nodes, count, RSVP_MOR_SERVICE, STOP_ARGUMENTS[0], STOP_ARGUMENTS[1]);
    free(nodes);
}

uint32_t Enable()
{
    const uint32_t master = DEV_GetSystemMaster();
    uint32_t status = 0;
    uint32_t result = SERVICE_GetStatus(master, RSVP_MOR_SERVICE, 0, &status);
    if (result != 0 && result != RSVP_MOR_ERR_NOT_EXIST) // a service that has never run can be started
        return RSVP_MOR_ERR_FAIL;
    if (IsStopped(status)) {
        if (SERVICE_Start(master, RSVP_MOR_SERVICE, START_ARGUMENTS[0], START_ARGUMENTS[1]) != 0)
            return RSVP_MOR_ERR_FAIL;
        result = 0;
    }
    result = StartStandbyNodes(result);
    return result == 0 ? RSVP_MOR_OK : RSVP_MOR_ERR_FAIL; // what has started stays started
}

uint32_t Disable()
{
    const uint32_t refused = rsvp_mor_RequestDisable();
    if (refused != RSVP_MOR_OK)
        return refused;
    const uint32_t master = DEV_GetSystemMaster();
    StopStandbyNodes();
    uint32_t status = 0;
    if (SERVICE_GetStatus(master, RSVP_MOR_SERVICE, 0, &status) != 0 || IsStopped(status))
        return RSVP_MOR_OK;
    SERVICE_Stop(master, RSVP_MOR_SERVICE, STOP_ARGUMENTS[0], STOP_ARGUMENTS[1]);
    return RSVP_MOR_OK; // the daemon has agreed: a node that does not stop is the service manager's matter
}

// A capability says yes or no, the `op` of a command set or undo.
uint32_t OpOf(uint32_t capability)
{
    return capability == 0 ? OP_UNDO : OP_SET;
}

} // namespace

uint32_t rsvp_mor_RequestDisable(void)
{
    Request request{};
    PutEmpty(request, COMMAND_GLOBAL_DISABLE);
    if (SendCommand(request, CLASS_GLOBAL, OP_UNDO) == RSVP_MOR_OK)
        return RSVP_MOR_OK;

    const uint32_t record[8] = {1, 0, 1, 0, 0, 0, 0, 0}; // what its numbers mean is the platform's matter
    int32_t handle = -1;
    if (DBM_Open("eRSVP", RSVP_MOR_SERVICE, 1, record, &handle) != 0)
        return RSVP_MOR_OK; // without its database there is no daemon that could object
    DBM_Close(handle);
    return RSVP_MOR_ERR_FAIL;
}

uint32_t RSVP_MOR_SetMplsRsvp(uint32_t op)
{
    return op == OP_SET ? Enable() : Disable();
}

uint32_t RSVP_SetGlobalCapability(uint32_t capability)
{
    return RSVP_MOR_SetMplsRsvp(OpOf(capability));
}

uint32_t RSVP_MOR_SetRsvpEnable(uint32_t op, uint32_t ifIndex)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    Request request{};
    PutNetWord(request, COMMAND_IF_INDEX, ifIndex);
    PutEmpty(request, COMMAND_IF_ENABLE);
    return SendCommand(request, CLASS_INTERFACE, op);
}

uint32_t RSVP_SetIfCapability(uint32_t ifIndex, uint32_t capability)
{
    return RSVP_MOR_SetRsvpEnable(OpOf(capability), ifIndex);
}

uint32_t RSVP_MOR_SetRsvpPeer(uint32_t op, uint32_t peer)
{
    Request request{};
    PutNetWord(request, COMMAND_PEER, peer);
    PutEmpty(request, COMMAND_PEER_ENABLE);
    return SendCommand(request, CLASS_PEER, op);
}
