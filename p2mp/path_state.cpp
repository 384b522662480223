// Path state of a point-to-multipoint LSP: one block by key, its fixed part cut into five items. No item refers to
// another; items that do not belong to the block are skipped.
#include "channel/message.h"
#include "lsp/lists.h"
#include "p2mp/state.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

// How much of an item is read.
constexpr uint16_t SECOND_SENDER_SIZE = 38;
constexpr uint16_t SLOT_SIZE = 32;
constexpr uint16_t SLOT_PART_SIZE = 29;
constexpr uint16_t SLOTS_SIZE = SLOT_SIZE + SLOT_PART_SIZE; // the last bytes of the second slot are not read

uint32_t DecodeSecondSender(const Item &item, RSVP_MOR_P2mpPsbInfo &record)
{
    const auto *value = AtLeast<SECOND_SENDER_SIZE>(item);
    if (value == nullptr)
        return RSVP_MOR_ERR_FAIL;
    DecodeP2mpSender(Part<0>(*value), record.secondSender);
    LoadNet<16>(*value, record.wordsC);
    LoadNet<36>(*value, record.halfC);
    return RSVP_MOR_OK;
}

void DecodeSlot(const Bytes<SLOT_PART_SIZE> &value, RSVP_MOR_P2mpPsbSlot &slot)
{
    DecodeP2mpSender(Part<0>(value), slot.slotSender);
    LoadNet<16>(value, slot.slotWords);
    LoadRaw<28>(value, slot.slotByte);
}

uint32_t DecodeSlots(const Item &item, RSVP_MOR_P2mpPsbInfo &record)
{
    const auto *value = AtLeast<SLOTS_SIZE>(item);
    if (value == nullptr)
        return RSVP_MOR_ERR_FAIL;
    DecodeSlot(Part<0>(*value), record.slots[0]);
    DecodeSlot(Part<SLOT_SIZE>(*value), record.slots[1]);
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
    Bytes<P2MP_STATE_KEY_SIZE> value;
    EncodeP2mpStateKey(value, *key);
    Request request{};
    Reply reply{};
    PutRaw(request, static_cast<uint16_t>(itemType), value);
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
        RSVP_MOR_FreeP2mpPsbInfo(record); // like any release of this record, leaves stale pointers behind
    else if (status != RSVP_MOR_OK)
        FreeFilled(*record, filled); // nothing of this call is left in a record that was out of format
    return status;
}

void RSVP_MOR_FreeP2mpPsbInfo(RSVP_MOR_P2mpPsbInfo *record)
{
    free(record->routeList4.entries);
    free(record->hopList.entries);
    free(record->routeList6.entries);
    free(record->routeList5.entries);
}
