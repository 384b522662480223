// Reservation state of a point-to-multipoint LSP: one block by key, three items and one route. Items that do not
// belong to the block are skipped.
#include "channel/message.h"
#include "lsp/lists.h"
#include "p2mp/state.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

uint32_t DecodeItem(const Item &item, RSVP_MOR_P2mpRsbInfo &record, FilledSlots &filled)
{
    switch (item.type) {
    case REPLY_P2MP_PATH_STATE:
        return rsvp_mor_DecodeP2mpPathState(item.value, item.length, &record.pathState);
    case REPLY_P2MP_RESV_STATE:
        return rsvp_mor_DecodeP2mpResvState(item.value, item.length, &record.resvState);
    case REPLY_P2MP_SUB_GROUP:
        return rsvp_mor_DecodeP2mpSubGroup(item.value, item.length, &record.subGroup);
    case REPLY_HOP_LIST:
        return FillHopList(item, record.hopList, filled);
    default:
        return RSVP_MOR_OK;
    }
}

} // namespace

uint32_t RSVP_MOR_GetP2mpRsbInfo(int32_t fd, uint32_t op, const RSVP_MOR_P2mpStateKey *key,
                                 RSVP_MOR_P2mpRsbInfo *record)
{
    if (key == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Bytes<P2MP_STATE_KEY_SIZE> value;
    EncodeP2mpStateKey(value, *key);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_P2MP_RSB, value);
    uint32_t status = QueryHeld(fd, request, op, reply);
    if (status != RSVP_MOR_OK)
        return status;

    Items items = {Body(reply), BodyLength(reply)};
    Item item;
    FilledSlots filled = 0;
    while (MoreItems(items, item, status))
        status = DecodeItem(item, *record, filled);
    if (status != RSVP_MOR_OK && filled != 0) // after a failure there is nothing for the caller to release
        FreeHopList(record->hopList);
    return status;
}

void RSVP_MOR_FreeP2mpRsbInfo(RSVP_MOR_P2mpRsbInfo *record)
{
    free(record->hopList.entries);
}
