// Decodes what the point-to-multipoint path and reservation reads share. The objects differ from their point-to-point
// forms in small things: a reserved field is a number here and bytes there, and records are not in the wire's order.
#include "p2mp/state.h"

#include "channel/message.h"
#include "lsp/wire_objects.h"

using namespace rsvp_mor;

namespace {

// How much of each item is read.
constexpr uint32_t PATH_STATE_SIZE = 268;
constexpr uint32_t RESV_STATE_SIZE = 105;
constexpr uint32_t SUB_GROUP_SIZE = 22;

void DecodeP2mpSession(const Bytes<12> &value, RSVP_MOR_P2mpSession &session)
{
    LoadNet<0>(value, session.p2mpId);
    LoadNet<4>(value, session.reserved);
    LoadNet<6>(value, session.tunnelId);
    LoadNet<8>(value, session.extendedTunnelId);
}

} // namespace

namespace rsvp_mor {

void DecodeP2mpSender(const Bytes<P2MP_SENDER_SIZE> &value, RSVP_MOR_P2mpSender &sender)
{
    LoadNet<0>(value, sender.senderAddress);
    LoadRaw<4>(value, sender.reserved);
    LoadNet<6>(value, sender.lspId);
    LoadNet<8>(value, sender.subGroupOriginator);
    LoadNet<12>(value, sender.subGroupReserved);
    LoadNet<14>(value, sender.subGroupId);
}

void EncodeP2mpStateKey(Bytes<P2MP_STATE_KEY_SIZE> &value, const RSVP_MOR_P2mpStateKey &key)
{
    StoreNet<0>(value, key.stateKeyWord0);
    StoreNet<4>(value, key.stateKeyWord1);
    StoreNet<8>(value, key.stateKeyWord2);
    StoreRaw<12>(value, key.stateKeyBytes0);
    StoreNet<16>(value, key.stateKeyHalf0);
    StoreNet<18>(value, key.stateKeyHalf1);
    StoreNet<20>(value, key.stateKeyWord3);
    StoreNet<24>(value, key.stateKeyWord4);
    StoreNet<28>(value, key.stateKeyHalf2);
    StoreNet<30>(value, key.stateKeyHalf3);
    StoreNet<32>(value, key.stateKeyHalf4);
    StoreRaw<34>(value, key.stateKeyBytes1);
    StoreNet<36>(value, key.stateKeyWord5);
    StoreNet<40>(value, key.stateKeyWord6);
    StoreNet<44>(value, key.stateKeyWord7);
    StoreNet<48>(value, key.stateKeyWord8);
    StoreNet<52>(value, key.stateKeyWord9);
}

} // namespace rsvp_mor

uint32_t rsvp_mor_DecodeP2mpPathState(const uint8_t *first, uint32_t length, RSVP_MOR_P2mpPathState *out)
{
    const auto *fixedPart = AtLeast<PATH_STATE_SIZE>(first, length);
    if (fixedPart == nullptr)
        return RSVP_MOR_ERR_FAIL;
    const auto &value = *fixedPart;
    DecodeP2mpSession(Part<0>(value), out->session);
    DecodeHop(Part<12>(value), out->hop);
    DecodeIfRef(Part<20>(value), out->ifRef);
    DecodeSenderTspec(Part<28>(value), out->tspec);
    DecodeAdspec(Part<60>(value), out->adspec);
    DecodeSessionAttr(Part<220>(value), out->sessionAttr);
    LoadRaw<240>(value, out->leadBytes);
    LoadNet<244>(value, out->stateWord0);
    LoadNet<248>(value, out->stateWord1);
    LoadNet<252>(value, out->stateWord2);
    LoadNet<256>(value, out->stateWord3);
    LoadNet<260>(value, out->stateWord4);
    LoadNet<264>(value, out->stateHalf0);
    LoadNet<266>(value, out->stateHalf1);
    return RSVP_MOR_OK;
}

uint32_t rsvp_mor_DecodeP2mpResvState(const uint8_t *first, uint32_t length, RSVP_MOR_P2mpResvState *out)
{
    const auto *fixedPart = AtLeast<RESV_STATE_SIZE>(first, length);
    if (fixedPart == nullptr)
        return RSVP_MOR_ERR_FAIL;
    const auto &value = *fixedPart;
    LoadNet<0>(value, out->resvWord0);
    DecodeP2mpSender(Part<4>(value), out->filter);
    DecodeFlowSpec(Part<20>(value), out->flowSpec);
    LoadNet<64>(value, out->resvWord1);
    LoadNet<68>(value, out->resvWord2);
    LoadRaw<72>(value, out->resvByte0);
    LoadNet<74>(value, out->resvHalf);
    LoadNet<80>(value, out->resvWord3);
    LoadNet<84>(value, out->resvWord4);
    LoadNet<92>(value, out->resvWord5);
    LoadNet<96>(value, out->resvWord6);
    LoadNet<100>(value, out->resvWord7);
    LoadRaw<104>(value, out->resvByte1);
    return RSVP_MOR_OK;
}

uint32_t rsvp_mor_DecodeP2mpSubGroup(const uint8_t *first, uint32_t length, RSVP_MOR_P2mpSubGroup *out)
{
    const auto *fixedPart = AtLeast<SUB_GROUP_SIZE>(first, length);
    if (fixedPart == nullptr)
        return RSVP_MOR_ERR_FAIL;
    const auto &value = *fixedPart;
    DecodeP2mpSender(Part<0>(value), out->sender);
    LoadRaw<16>(value, out->subGroupByte);
    LoadNet<18>(value, out->subGroupHalf0);
    LoadNet<20>(value, out->subGroupHalf1);
    return RSVP_MOR_OK;
}
