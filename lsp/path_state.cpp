// Path state blocks: one value of 440 bytes and five lists, in any order. Unlike in the other blocks, an item that
// does not belong to the block fails the read.
#include "channel/message.h"
#include "lsp/lists.h"
#include "lsp/state_blocks.h"
#include "lsp/wire_objects.h"

using namespace rsvp_mor;

namespace {

constexpr uint16_t PSB_SIZE = 440;
constexpr uint16_t SLOT_SIZE = 24;

void DecodeSlot(const Bytes<SLOT_SIZE> &value, RSVP_MOR_PsbSlot &slot)
{
    DecodeSender(Part<0>(value), slot.slotSender);
    LoadNet<8>(value, slot.slotWords);
    LoadRaw<20>(value, slot.slotByte);
}

void DecodeValue(const Bytes<PSB_SIZE> &value, RSVP_MOR_ReplyPsb &record)
{
    DecodeSession(Part<0>(value), record.session);
    DecodeHop(Part<12>(value), record.hop);
    DecodeIfRef(Part<20>(value), record.ifRef);
    DecodeSender(Part<28>(value), record.sender);
    DecodeSenderTspec(Part<36>(value), record.tspec);
    DecodeAdspec(Part<68>(value), record.adspec);
    DecodeLabelRequest(Part<228>(value), record.labelRequest);
    LoadRaw<244>(value, record.leadBytes);
    DecodeSessionAttr(Part<248>(value), record.sessionAttr);
    LoadNet<268>(value, record.wordsA);
    LoadNet<280>(value, record.wordsB);
    DecodeSender(Part<292>(value), record.secondSender);
    LoadNet<300>(value, record.wordsC);
    LoadNet<320>(value, record.halfC);
    DecodeSlot(Part<324>(value), record.slots[0]);
    DecodeSlot(Part<324 + SLOT_SIZE>(value), record.slots[1]);
    LoadNet<372>(value, record.wordsD);
    LoadNet<424>(value, record.halvesD);
    LoadRaw<430>(value, record.flagBytes);
}

uint32_t DecodeItem(const Item &item, RSVP_MOR_ReplyPsb &record, FilledSlots &filled)
{
    switch (item.type) {
    case REPLY_ROUTE_LIST_3:
        return FillRouteList16(item, record.routeList3, filled);
    case REPLY_ROUTE_LIST_4:
        return FillRouteList16(item, record.routeList4, filled);
    case REPLY_ROUTE_LIST_5:
        return FillRouteList16(item, record.routeList5, filled);
    case REPLY_ROUTE_LIST_6:
        return FillRouteList32(item, record.routeList6, filled);
    case REPLY_HOP_LIST:
        return FillHopList(item, record.hopList, filled);
    case REPLY_PSB:
        if (const auto *value = Exactly<PSB_SIZE>(item)) {
            DecodeValue(*value, record);
            return RSVP_MOR_OK;
        }
        return RSVP_MOR_ERR_FAIL;
    default:
        return RSVP_MOR_ERR_FAIL;
    }
}

} // namespace

uint32_t rsvp_mor_DecodePsb(const uint8_t *body, uint16_t length, RSVP_MOR_ReplyPsb *record)
{
    Items items = {body, length};
    Item item;
    FilledSlots filled = 0;
    uint32_t status = RSVP_MOR_OK;
    while (MoreItems(items, item, status))
        status = DecodeItem(item, *record, filled);
    if (status != RSVP_MOR_OK)
        RSVP_MOR_FreeReplyPsb(record);
    return status;
}

uint32_t RSVP_MOR_GetFirstPsbInfo(int32_t fd, RSVP_MOR_ReplyPsb *record)
{
    Request request{};
    Reply reply{};
    PutEmpty(request, READ_PSB);
    const uint32_t status = QueryHeld(fd, request, OP_GET_FIRST, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodePsb(Body(reply), BodyLength(reply), record);
}

uint32_t RSVP_MOR_GetNextPsbInfo(int32_t fd, const RSVP_MOR_Session *session, const RSVP_MOR_Sender *sender,
                                 RSVP_MOR_ReplyPsb *record)
{
    if (session == nullptr || sender == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Bytes<SESSION_SIZE + SENDER_SIZE> key;
    EncodeSession(Part<0>(key), *session);
    EncodeSender(Part<SESSION_SIZE>(key), *sender);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_PSB, key);
    const uint32_t status = QueryHeld(fd, request, OP_GET_NEXT, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodePsb(Body(reply), BodyLength(reply), record);
}

void RSVP_MOR_FreeReplyPsb(RSVP_MOR_ReplyPsb *record)
{
    FreeRouteList(record->routeList3);
    FreeRouteList(record->routeList4);
    FreeRouteList(record->routeList6);
    FreeHopList(record->hopList);
    FreeRouteList(record->routeList5);
}
