// Reservation state blocks: one value of 124 bytes, then filter specs, each with its route behind it. The value
// resets the list of filter specs, so that it comes first. Items that do not belong to the block are passed over.
#include "channel/message.h"
#include "lsp/lists.h"
#include "lsp/state_blocks.h"
#include "lsp/wire_objects.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

constexpr uint16_t RSB_SIZE = 124;

// Where the walk stands: the filter spec that takes the next route, if any, and whether this call built nodes.
struct RsbWalk {
    RSVP_MOR_ReplyFSInfo *current;
    bool builtNodes;
};

void DecodeValue(const uint8_t *at, RSVP_MOR_ReplyRsb &record)
{
    DecodeSession(at + 0, record.session);
    DecodeHop(at + 12, record.hop);
    DecodeSender(at + 20, record.filter);
    DecodeIfRef(at + 28, record.ifRef);
    DecodeFlowSpec(at + 36, record.flowSpec);
    LoadNet(at + 80, record.style);
    LoadNet(at + 84, record.wordsA);
    LoadNet(at + 96, record.wordsB);
    LoadNet(at + 116, record.halfB);
    LoadRaw(at + 118, record.flagBytes);
}

uint32_t DecodeItem(const Item &item, RSVP_MOR_ReplyRsb &record, RsbWalk &walk)
{
    switch (item.type) {
    case REPLY_RSB:
        if (item.length != RSB_SIZE)
            return RSVP_MOR_ERR_FAIL;
        if (walk.builtNodes) // a value behind filter specs cuts them off
            RSVP_MOR_FreeReplyRsb(&record);
        walk = {};
        record.fsList = nullptr;
        DecodeValue(item.value, record);
        return RSVP_MOR_OK;
    case REPLY_FILTER_SPEC: {
        const uint32_t status = rsvp_mor_DecodeFSInfo(item.value, item.length, &walk.current, &record.fsList);
        walk.builtNodes = walk.builtNodes || status == RSVP_MOR_OK;
        return status;
    }
    case REPLY_HOP_LIST: {
        if (walk.current == nullptr) // no filter spec has come that could take the route
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
    uint8_t key[SESSION_SIZE + HOP_SIZE + SENDER_SIZE];
    EncodeSession(key, *session);
    EncodeHop(key + SESSION_SIZE, *hop);
    EncodeSender(key + SESSION_SIZE + HOP_SIZE, *filter);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_RSB, key, sizeof key);
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
