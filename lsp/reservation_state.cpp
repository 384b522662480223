// Reservation state blocks: one value of 124 bytes, then filter specs, each followed by its route. The value comes
// first, as it resets the list of filter specs. Items that do not belong to the block are skipped.
#include "channel/message.h"
#include "lsp/lists.h"
#include "lsp/state_blocks.h"
#include "lsp/wire_objects.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

constexpr uint16_t RSB_SIZE = 124;

// What a walk remembers from item to item.
struct RsbWalk {
    RSVP_MOR_ReplyFSInfo *current; // the filter spec that the next route belongs to, if any
    bool builtNodes;               // whether the list holds nodes that this call made
};

void DecodeValue(const Bytes<RSB_SIZE> &value, RSVP_MOR_ReplyRsb &record)
{
    DecodeSession(Part<0>(value), record.session);
    DecodeHop(Part<12>(value), record.hop);
    DecodeSender(Part<20>(value), record.filter);
    DecodeIfRef(Part<28>(value), record.ifRef);
    DecodeFlowSpec(Part<36>(value), record.flowSpec);
    LoadNet<80>(value, record.style);
    LoadNet<84>(value, record.wordsA);
    LoadNet<96>(value, record.wordsB);
    LoadNet<116>(value, record.halfB);
    LoadRaw<118>(value, record.flagBytes);
}

uint32_t DecodeItem(const Item &item, RSVP_MOR_ReplyRsb &record, RsbWalk &walk)
{
    switch (item.type) {
    case REPLY_RSB: {
        const auto *value = Exactly<RSB_SIZE>(item);
        if (value == nullptr)
            return RSVP_MOR_ERR_FAIL;
        if (walk.builtNodes) // nothing would lead to them once the list is reset
            RSVP_MOR_FreeReplyRsb(&record);
        walk = {};
        record.fsList = nullptr;
        DecodeValue(*value, record);
        return RSVP_MOR_OK;
    }
    case REPLY_FILTER_SPEC: {
        const uint32_t status = rsvp_mor_DecodeFSInfo(item.value, item.length, &walk.current, &record.fsList);
        walk.builtNodes = walk.builtNodes || status == RSVP_MOR_OK;
        return status;
    }
    case REPLY_HOP_LIST: {
        if (walk.current == nullptr) // no filter spec has come before it, or that one has its route
            return RSVP_MOR_ERR_FAIL;
        RSVP_MOR_HopList &route = walk.current->rro;
        walk.current = nullptr;
        return rsvp_mor_DecodeHopList(item.value, item.length, &route);
    }
    default:
        return RSVP_MOR_OK;
    }
}

} // namespace

uint32_t rsvp_mor_DecodeRsb(const uint8_t *body, uint16_t length, RSVP_MOR_ReplyRsb *record)
{
    Items items = {body, length};
    Item item;
    RsbWalk walk = {};
    uint32_t status = RSVP_MOR_OK;
    while (MoreItems(items, item, status))
        status = DecodeItem(item, *record, walk);
    if (status != RSVP_MOR_OK)
        RSVP_MOR_FreeReplyRsb(record);
    return status;
}

uint32_t RSVP_MOR_GetFirstRsbInfo(int32_t fd, RSVP_MOR_ReplyRsb *record)
{
    Request request{};
    Reply reply{};
    PutEmpty(request, READ_RSB);
    const uint32_t status = QueryHeld(fd, request, OP_GET_FIRST, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodeRsb(Body(reply), BodyLength(reply), record);
}

uint32_t RSVP_MOR_GetNextRsbInfo(int32_t fd, const RSVP_MOR_Session *session, const RSVP_MOR_Hop *hop,
                                 const RSVP_MOR_Sender *filter, RSVP_MOR_ReplyRsb *record)
{
    if (session == nullptr || hop == nullptr || filter == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Bytes<SESSION_SIZE + HOP_SIZE + SENDER_SIZE> key;
    EncodeSession(Part<0>(key), *session);
    EncodeHop(Part<SESSION_SIZE>(key), *hop);
    EncodeSender(Part<SESSION_SIZE + HOP_SIZE>(key), *filter);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_RSB, key);
    const uint32_t status = QueryHeld(fd, request, OP_GET_NEXT, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodeRsb(Body(reply), BodyLength(reply), record);
}

void rsvp_mor_FreeReplyFSInfo(RSVP_MOR_ReplyFSInfo *node)
{
    if (node == nullptr)
        return;
    free(node->rro.entries);
    free(node);
}

void RSVP_MOR_FreeReplyRsb(RSVP_MOR_ReplyRsb *record)
{
    if (record == nullptr)
        return;
    for (RSVP_MOR_ReplyFSInfo *node = record->fsList; node != nullptr;) {
        RSVP_MOR_ReplyFSInfo *next = node->next;
        rsvp_mor_FreeReplyFSInfo(node);
        node = next;
    }
    record->fsList = nullptr;
}
