// Debug switches and the reset of statistics. The last two run on the caller's session; the reset is the one command
// that does.
#include "rsvp_mor/config.h"

#include "channel/exchange.h"
#include "channel/message.h"
#include "channel/presence.h"
#include "lsp/wire_objects.h"

using namespace rsvp_mor;

namespace {

// The record is the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_DebugInfo, 28);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_DebugInfo, session2, 12);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_DebugInfo, debugFlags, 24);

// Exact numbers, not bits: a type of 80 binds no session.
bool BindsSession(uint32_t debugType)
{
    return debugType == RSVP_MOR_DEBUG_SESSION_A || debugType == RSVP_MOR_DEBUG_SESSION_B;
}

} // namespace

uint32_t RSVP_MOR_SetDebug(uint32_t op, const RSVP_MOR_DebugSwitch *debug)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    if (debug == nullptr)
        return RSVP_MOR_ERR_FAIL;
    uint8_t value[16] = {};
    if (BindsSession(debug->debugType)) { // the reserved bytes at 4 stay 0
        StoreNet32(value + 0, debug->session.tunnelEndpoint);
        StoreNet16(value + 6, debug->session.tunnelId);
        StoreNet32(value + 8, debug->session.extendedTunnelId);
    }
    StoreNet32(value + 12, debug->debugType);
    Request request{};
    PutRaw(request, COMMAND_DEBUG, value, sizeof value);
    return SendCommand(request, CLASS_GLOBAL, op);
}

uint32_t RSVP_MOR_GetRsvpDebug(int32_t fd, RSVP_MOR_DebugInfo *info)
{
    constexpr uint16_t exactBodyLength = 32; // one item: its value and 4 bytes of the item's own
    Request request{};
    Reply reply{};
    PutEmpty(request, READ_DEBUG);
    const uint32_t status = QueryHeld(fd, request, OP_GET, reply);
    if (status != RSVP_MOR_OK)
        return status;
    if (BodyLength(reply) != exactBodyLength)
        return RSVP_MOR_ERR_FAIL;
    Item item;
    FirstItem(Body(reply), BodyLength(reply), item); // without an item nothing is copied, and all is converted
    CopyRaw(item, *info);
    ConvertSessionNet(info->session1);
    ConvertSessionNet(info->session2);
    ConvertNet(info->debugFlags);
    return RSVP_MOR_OK;
}

uint32_t RSVP_MOR_ResetStatistics(int32_t fd, const RSVP_MOR_StatisticsKey *key)
{
    if (key == nullptr)
        return RSVP_MOR_ERR_FAIL;
    uint8_t value[8] = {};
    StoreNet32(value + 0, key->statsId1);
    StoreNet16(value + 4, key->statsId2);
    Request request{};
    Reply reply{};
    PutRaw(request, RESET_STATISTICS, value, sizeof value);
    const uint32_t length = FinishFrame(request, CLASS_RESET, OP_SET);
    return RSVP_MOR_Exchange(fd, request.area, length, reply.area);
}
