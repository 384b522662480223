// Path state of a point-to-multipoint LSP: one block by key, its fixed part cut into five items. No item refers to
// another; those that do not belong to the block are passed over.
#include "channel/message.h"
#include "lsp/lists.h"
#include "p2mp/state.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

// How much of an item is read.
constexpr uint16_t SECOND_SENDER_SIZE = 38;
constexpr uint16_t SLOT_SIZE = 32;
constexpr uint16_t SLOTS_SIZE = SLOT_SIZE + 29; // the last bytes of the second slot are not read

uint32_t DecodeSecondSender(const Item &item, RSVP_MOR_P2mpPsbInfo &record)
{
    if (item.length < SECOND_SENDER_SIZE)
        return RSVP_MOR_ERR_FAIL;
    DecodeP2mpSender(item.value + 0, record.secondSender);
    LoadNet(item.value + 16, record.wordsC);
    LoadNet(item.value + 36, record.halfC);
    return RSVP_MOR_OK;
}

uint32_t DecodeSlots(const Item &item, RSVP_MOR_P2mpPsbInfo &record)
{
    if (item.length < SLOTS_SIZE)
        return RSVP_MOR_ERR_FAIL;
    const uint8_t *at = item.value;
    for (RSVP_MOR_P2mpPsbSlot &slot : record.slots) {
        DecodeP2mpSender(at + 0, slot.slotSender);
        LoadNet(at + 16, slot.slotWords);
        LoadRaw(at + 28, slot.slotByte);
        at += SLOT_SIZE;
    }
    return RSVP_MOR_OK;
}

uint32_t DecodeItem(const Item &item, RSVP_MOR_P2mpPsbInfo &record, FilledSlots &filled)
{
    switch (item.type) {
    case REPLY_P2MP_PATH_STATE:
        return rsvp_mor_DecodeP2mpPathState(item.value, item.length, &record.pathState);
    case REPLY_P2MP_RESV_STATE:
        return rsvp_mor_DecodeP2mpResvState(item.value, item.length, &record.resvState);
    case REPLY_P2MP_SUB_GROUP:
        return rsvp_mor_DecodeP2mpSubGroup(item.value, item.length, &record.subGroup);
    case REPLY_P2MP_SECOND_SENDER:
        return DecodeSecondSender(item, record);
    case REPLY_P2MP_SLOTS:
        return DecodeSlots(item, record);
    case REPLY_ROUTE_LIST_4:
        return FillRouteList16(item, record.routeList4, filled);
    case REPLY_ROUTE_LIST_5:
        return FillRouteList16(item, record.routeList5, filled);
    case REPLY_ROUTE_LIST_6:
        return FillRouteList32(item, record.routeList6, filled);
    case REPLY_HOP_LIST:
        return FillHopList(item, record.hopList, filled);
    default:
        return RSVP_MOR_OK;
    }
}

bool IsListItem(uint16_t type)
{
    return type >= REPLY_ROUTE_LIST_4 && type <= REPLY_HOP_LIST;
}

// Releases the lists that this call has built and resets their slots.
void FreeFilled(RSVP_MOR_P2mpPsbInfo &record, FilledSlots filled)
{
    if ((filled & SlotBit(REPLY_ROUTE_LIST_4)) != 0)
        FreeRouteList(record.routeList4);
    if ((filled & SlotBit(REPLY_ROUTE_LIST_5)) != 0)
        FreeRouteList(record.routeList5);
    if ((filled & SlotBit(REPLY_ROUTE_LIST_6)) != 0)
        FreeRouteList(record.routeList6);
    if ((filled & SlotBit(REPLY_HOP_LIST)) != 0)
        FreeHopList(record.hopList);
}

} // namespace

uint32_t RSVP_MOR_GetP2mpPsbInfo(int32_t fd, uint32_t itemType, uint32_t op, const RSVP_MOR_P2mpStateKey *key,
                                 RSVP_MOR_P2mpPsbInfo *record)
{
    if (key == nullptr)
        return RSVP_MOR_ERR_FAIL;
    uint8_t value[P2MP_STATE_KEY_SIZE];
    EncodeP2mpStateKey(value, *key);
    Request request{};
    Reply reply{};
    PutRaw(request, static_cast<uint16_t>(itemType), value, sizeof value);
    uint32_t status = QueryHeld(fd, request, op, reply);
    if (status != RSVP_MOR_OK)
        return status;

    Items items = {Body(reply), BodyLength(reply)};
    Item item;
    FilledSlots filled = 0;
    bool listRefused = false;
    while (MoreItems(items, item, status)) {
        status = DecodeItem(item, *record, filled);
        listRefused = status != RSVP_MOR_OK && IsListItem(item.type);
    }
    if (listRefused)
        RSVP_MOR_FreeP2mpPsbInfo(record); // as in any release of this record, its pointers and counts stand
    else if (status != RSVP_MOR_OK)
        FreeFilled(*record, filled); // out of format: nothing of this call is left
    return status;
}

void RSVP_MOR_FreeP2mpPsbInfo(RSVP_MOR_P2mpPsbInfo *record)
{
    free(record->routeList4.entries);
    free(record->hopList.entries);
    free(record->routeList6.entries);
    free(record->routeList5.entries);
}
