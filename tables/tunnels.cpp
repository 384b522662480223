// The tunnel table, by its four index parts: one row, a walk of all rows, or a walk of the tunnels that begin here.
#include "tables/reads.h"

#include "channel/message.h"

using namespace rsvp_mor;

namespace {

// The record is the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyTunnel, 60);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyTunnel, tunnelWord12, 48);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyTunnel, tunnelShort0, 52);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyTunnel, tunnelByte, 54);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyTunnel, tunnelRole, 55);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyTunnel, tunnelShort1, 56);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyTunnel, tunnelTail, 58);

bool NeedsKey(uint32_t msgOp)
{
    return msgOp != OP_GET_FIRST && msgOp != OP_GET_FIRST_INGRESS;
}

uint8_t TranslateRole(uint8_t onWire)
{
    switch (onWire) {
    case 1:
        return 0;
    case 3:
        return 2;
    default:
        return 1;
    }
}

} // namespace

uint32_t rsvp_mor_ReadTunnelTable(uint32_t msgOp, const RSVP_MOR_TunnelKey *key, RSVP_MOR_ReplyTunnel *out)
{
    if (out == nullptr || msgOp < OP_GET || msgOp > OP_GET_NEXT_INGRESS || (key == nullptr && NeedsKey(msgOp)))
        return RSVP_MOR_ERR_FAIL;
    Bytes<16> value = {};
    if (NeedsKey(msgOp)) {
        StoreNet<0>(value, key->tunnelIndex);
        StoreNet<4>(value, key->tunnelInstance);
        StoreNet<8>(value, key->ingressLsrId);
        StoreNet<12>(value, key->egressLsrId);
    }
    Request request{};
    Reply reply{};
    PutRaw(request, READ_TUNNEL, value);
    const uint32_t status = QueryRowRaw(request, msgOp, reply, out);
    if (status != RSVP_MOR_OK)
        return status;
    ConvertNet(out->tunnelWord0, out->tunnelWord1, out->tunnelWord2, out->tunnelWord3, out->tunnelWord4);
    ConvertNet(out->tunnelWord5, out->tunnelWord6, out->tunnelWord7, out->tunnelWord8, out->tunnelWord9);
    ConvertNet(out->tunnelWord10, out->tunnelWord11, out->tunnelWord12);
    ConvertNet(out->tunnelShort0, out->tunnelShort1);
    out->tunnelRole = TranslateRole(out->tunnelRole);
    return RSVP_MOR_OK;
}

uint32_t RSVP_GetTunnel(const RSVP_MOR_TunnelKey *key, RSVP_MOR_ReplyTunnel *out)
{
    return rsvp_mor_ReadTunnelTable(OP_GET, key, out);
}

uint32_t RSVP_GetFirstTunnel(RSVP_MOR_ReplyTunnel *out)
{
    return rsvp_mor_ReadTunnelTable(OP_GET_FIRST, nullptr, out);
}

uint32_t RSVP_GetNextTunnel(const RSVP_MOR_TunnelKey *key, RSVP_MOR_ReplyTunnel *out)
{
    return rsvp_mor_ReadTunnelTable(OP_GET_NEXT, key, out);
}

uint32_t RSVP_GetFirstIngressTunnel(RSVP_MOR_ReplyTunnel *out)
{
    return rsvp_mor_ReadTunnelTable(OP_GET_FIRST_INGRESS, nullptr, out);
}

uint32_t RSVP_GetNextIngressTunnel(const RSVP_MOR_TunnelKey *key, RSVP_MOR_ReplyTunnel *out)
{
    return rsvp_mor_ReadTunnelTable(OP_GET_NEXT_INGRESS, key, out);
}
