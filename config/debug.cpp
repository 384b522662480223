// Debug switches and the reset of statistics. The read of the switches and the reset run on the caller's session; no
// other command does that.
#include "rsvp_mor/config.h"

#include "channel/exchange.h"
#include "channel/message.h"
#include "channel/presence.h"

using namespace rsvp_mor;

namespace {

// The record is the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_DebugInfo, 28);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_DebugInfo, session2, 12);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_DebugInfo, debugFlags, 24);

// Exact numbers, not bits: type 80 is not bound to a session.
bool BindsSession(uint32_t debugType)
{
    return debugType == RSVP_MOR_DEBUG_SESSION_A || debugType == RSVP_MOR_DEBUG_SESSION_B;
}

void EncodeSwitch(Bytes<16> &value, const RSVP_MOR_DebugSwitch &debug)
{
    if (BindsSession(debug.debugType)) { // the reserved bytes at 4 stay 0
        StoreNet<0>(value, debug.session.tunnelEndpoint);
        StoreNet<6>(value, debug.session.tunnelId);
        StoreNet<8>(value, debug.session.extendedTunnelId);
    }
    StoreNet<12>(value, debug.debugType);
}

void EncodeStatisticsKey(Bytes<8> &value, const RSVP_MOR_StatisticsKey &key)
{
    StoreNet<0>(value, key.statsId1);
    StoreNet<4>(value, key.statsId2);
}

void ConvertSessionNet(RSVP_MOR_Session &session)
{
    ConvertNet(session.tunnelEndpoint, session.tunnelId, session.extendedTunnelId);
}

uint32_t DecodeDebugInfo(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_DebugInfo *info)
{
    if (bodyLength != ITEM_OVERHEAD + sizeof(*info))
        return RSVP_MOR_ERR_FAIL;
    (void)CopyFirstRaw(body, bodyLength, info); // without an item nothing is copied, and all is converted
    ConvertSessionNet(info->session1);
    ConvertSessionNet(info->session2);
    ConvertNet(info->debugFlags);
    return RSVP_MOR_OK;
}

} // namespace

uint32_t RSVP_MOR_SetDebug(uint32_t op, const RSVP_MOR_DebugSwitch *debug)
{
    if (!RSVP_MOR_IsServiceRunning())
        return NotRunning(op);
    if (debug == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Bytes<16> value = {};
    EncodeSwitch(value, *debug);
    Request request{};
    PutRaw(request, COMMAND_DEBUG, value);
    return SendCommand(request, CLASS_GLOBAL, op);
}

uint32_t RSVP_MOR_GetRsvpDebug(int32_t fd, RSVP_MOR_DebugInfo *info)
{
    Request request{};
    Reply reply{};
    PutEmpty(request, READ_DEBUG);
    const uint32_t status = QueryHeld(fd, request, OP_GET, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return DecodeDebugInfo(Body(reply), BodyLength(reply), info);
}

uint32_t RSVP_MOR_ResetStatistics(int32_t fd, const RSVP_MOR_StatisticsKey *key)
{
    if (key == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Bytes<8> value = {};
    EncodeStatisticsKey(value, *key);
    Request request{};
    Reply reply{};
    PutRaw(request, RESET_STATISTICS, value);
    const uint32_t length = FinishFrame(request, CLASS_RESET, OP_SET);
    return RSVP_MOR_Exchange(fd, request.area, length, reply.area);
}
