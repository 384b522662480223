// Decoders that the point-to-multipoint path and reservation reads share. They resemble the point-to-point forms but
// for small things: here a reserved field is a number, there it is bytes, and a record is not in the wire's order.
#include "p2mp/state.h"

#include "channel/wire.h"
#include "lsp/wire_objects.h"

using namespace rsvp_mor;

namespace {

// How much of each item is read.
constexpr uint32_t PATH_STATE_SIZE = 268;
constexpr uint32_t RESV_STATE_SIZE = 105;
constexpr uint32_t SUB_GROUP_SIZE = 22;

void DecodeP2mpSession(const uint8_t *at, RSVP_MOR_P2mpSession &session)
{
    LoadNet(at + 0, session.p2mpId);
    LoadNet(at + 4, session.reserved);
    LoadNet(at + 6, session.tunnelId);
    LoadNet(at + 8, session.extendedTunnelId);
}

} // namespace

namespace rsvp_mor {

void DecodeP2mpSender(const uint8_t *at, RSVP_MOR_P2mpSender &sender)
{
    LoadNet(at + 0, sender.senderAddress);
    LoadRaw(at + 4, sender.reserved);
    LoadNet(at + 6, sender.lspId);
    LoadNet(at + 8, sender.subGroupOriginator);
    LoadNet(at + 12, sender.subGroupReserved);
    LoadNet(at + 14, sender.subGroupId);
}

void EncodeP2mpStateKey(uint8_t *at, const RSVP_MOR_P2mpStateKey &key)
{
    StoreNet32(at + 0, key.stateKeyWord0);
    StoreNet32(at + 4, key.stateKeyWord1);
    StoreNet32(at + 8, key.stateKeyWord2);
    StoreRaw(at + 12, key.stateKeyBytes0);
    StoreNet16(at + 16, key.stateKeyHalf0);
    StoreNet16(at + 18, key.stateKeyHalf1);
    StoreNet32(at + 20, key.stateKeyWord3);
    StoreNet32(at + 24, key.stateKeyWord4);
    StoreNet16(at + 28, key.stateKeyHalf2);
    StoreNet16(at + 30, key.stateKeyHalf3);
    StoreNet16(at + 32, key.stateKeyHalf4);
    StoreRaw(at + 34, key.stateKeyBytes1);
    StoreNet32(at + 36, key.stateKeyWord5);
    StoreNet32(at + 40, key.stateKeyWord6);
    StoreNet32(at + 44, key.stateKeyWord7);
    StoreNet32(at + 48, key.stateKeyWord8);
    StoreNet32(at + 52, key.stateKeyWord9);
}

} // namespace rsvp_mor

uint32_t rsvp_mor_DecodeP2mpPathState(const uint8_t *value, uint32_t length, RSVP_MOR_P2mpPathState *out)
{
    if (length < PATH_STATE_SIZE)
        return RSVP_MOR_ERR_FAIL;
    DecodeP2mpSession(value + 0, out->session);
    DecodeHop(value + 12, out->hop);
    DecodeIfRef(value + 20, out->ifRef);
    DecodeSenderTspec(value + 28, out->tspec);
    DecodeAdspec(value + 60, out->adspec);
    DecodeSessionAttr(value + 220, out->sessionAttr);
    LoadRaw(value + 240, out->leadBytes);
    LoadNet(value + 244, out->stateWord0);
    LoadNet(value + 248, out->stateWord1);
    LoadNet(value + 252, out->stateWord2);
    LoadNet(value + 256, out->stateWord3);
    LoadNet(value + 260, out->stateWord4);
    LoadNet(value + 264, out->stateHalf0);
    LoadNet(value + 266, out->stateHalf1);
    return RSVP_MOR_OK;
}

uint32_t rsvp_mor_DecodeP2mpResvState(const uint8_t *value, uint32_t length, RSVP_MOR_P2mpResvState *out)
{
    if (length < RESV_STATE_SIZE)
        return RSVP_MOR_ERR_FAIL;
    LoadNet(value + 0, out->resvWord0);
    DecodeP2mpSender(value + 4, out->filter);
    DecodeFlowSpec(value + 20, out->flowSpec);
    LoadNet(value + 64, out->resvWord1);
    LoadNet(value + 68, out->resvWord2);
    LoadRaw(value + 72, out->resvByte0);
    LoadNet(value + 74, out->resvHalf);
    LoadNet(value + 80, out->resvWord3);
    LoadNet(value + 84, out->resvWord4);
    LoadNet(value + 92, out->resvWord5);
    LoadNet(value + 96, out->resvWord6);
    LoadNet(value + 100, out->resvWord7);
    LoadRaw(value + 104, out->resvByte1);
    return RSVP_MOR_OK;
}

uint32_t rsvp_mor_DecodeP2mpSubGroup(const uint8_t *value, uint32_t length, RSVP_MOR_P2mpSubGroup *out)
{
    if (length < SUB_GROUP_SIZE)
        return RSVP_MOR_ERR_FAIL;
    DecodeP2mpSender(value + 0, out->sender);
    LoadRaw(value + 16, out->subGroupByte);
    LoadNet(value + 18, out->subGroupHalf0);
    LoadNet(value + 20, out->subGroupHalf1);
    return RSVP_MOR_OK;
}
