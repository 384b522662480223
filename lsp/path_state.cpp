// Path state blocks: one value of 440 bytes and five lists beside it, in any order. An item that does not belong to
// the block fails the walk, unlike in the other blocks.
#include "channel/message.h"
#include "lsp/lists.h"
#include "lsp/state_blocks.h"
#include "lsp/wire_objects.h"

using namespace rsvp_mor;

namespace {

constexpr uint16_t PSB_SIZE = 440;
constexpr uint16_t SLOT_SIZE = 24;

void DecodeSlot(const uint8_t *at, RSVP_MOR_PsbSlot &slot)
{
    DecodeSender(at + 0, slot.slotSender);
    LoadNet(at + 8, slot.slotWords);
    LoadRaw(at + 20, slot.slotByte);
}

void DecodeValue(const uint8_t *at, RSVP_MOR_ReplyPsb &record)
{
    DecodeSession(at + 0, record.session);
    DecodeHop(at + 12, record.hop);
    DecodeIfRef(at + 20, record.ifRef);
    DecodeSender(at + 28, record.sender);
    DecodeSenderTspec(at + 36, record.tspec);
    DecodeAdspec(at + 68, record.adspec);
    DecodeLabelRequest(at + 228, record.labelRequest);
    LoadRaw(at + 244, record.leadBytes);
    DecodeSessionAttr(at + 248, record.sessionAttr);
    LoadNet(at + 268, record.wordsA);
    LoadNet(at + 280, record.wordsB);
    DecodeSender(at + 292, record.secondSender);
    LoadNet(at + 300, record.wordsC);
    LoadNet(at + 320, record.halfC);
    DecodeSlot(at + 324, record.slots[0]);
    DecodeSlot(at + 324 + SLOT_SIZE, record.slots[1]);
    LoadNet(at + 372, record.wordsD);
    LoadNet(at + 424, record.halvesD);
    LoadRaw(at + 430, record.flagBytes);
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
        if (item.length != PSB_SIZE)
            return RSVP_MOR_ERR_FAIL;
        DecodeValue(item.value, record);
        return RSVP_MOR_OK;
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
    uint8_t key[SESSION_SIZE + SENDER_SIZE];
    EncodeSession(key, *session);
    EncodeSender(key + SESSION_SIZE, *sender);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_PSB, key, sizeof key);
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
