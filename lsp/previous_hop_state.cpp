// Previous hop state blocks: one value of 56 bytes, and flow descriptors, each followed by its filter specs. Items
// that do not belong to the block are skipped.
#include "channel/message.h"
#include "lsp/lists.h"
#include "lsp/state_blocks.h"
#include "lsp/wire_objects.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

constexpr uint16_t PHSB_SIZE = 56;

void DecodeValue(const Bytes<PHSB_SIZE> &value, RSVP_MOR_ReplyPhsb &record)
{
    DecodeSession(Part<0>(value), record.session);
    DecodeHop(Part<12>(value), record.hop);
    DecodeIfRef(Part<20>(value), record.ifRef);
    LoadNet<28>(value, record.style);
    LoadNet<32>(value, record.wordsA);
    LoadNet<44>(value, record.wordsB);
    LoadNet<52>(value, record.halvesB);
}

// Makes a flow descriptor, the current one from now on, and puts it at the front of the record's list.
uint32_t DecodeFlowDescriptor(const Item &item, RSVP_MOR_ReplyPhsb &record, RSVP_MOR_ReplyFDInfo *&current)
{
    const auto *value = Exactly<FLOW_SPEC_SIZE>(item);
    if (value == nullptr)
        return RSVP_MOR_ERR_FAIL;
    RSVP_MOR_ReplyFDInfo *node = static_cast<RSVP_MOR_ReplyFDInfo *>(malloc(sizeof(*node)));
    if (node == nullptr)
        return RSVP_MOR_ERR_FAIL;
    *node = {};
    DecodeFlowSpec(*value, node->flowSpec);
    node->next = record.fdList;
    record.fdList = node;
    current = node;
    return RSVP_MOR_OK;
}

uint32_t DecodeItem(const Item &item, RSVP_MOR_ReplyPhsb &record, RSVP_MOR_ReplyFDInfo *&current)
{
    switch (item.type) {
    case REPLY_PHSB:
        if (const auto *value = Exactly<PHSB_SIZE>(item)) {
            DecodeValue(*value, record);
            return RSVP_MOR_OK;
        }
        return RSVP_MOR_ERR_FAIL;
    case REPLY_FLOW_DESCRIPTOR:
        return DecodeFlowDescriptor(item, record, current);
    case REPLY_FILTER_SPEC: {
        if (current == nullptr) // no flow descriptor has come before it
            return RSVP_MOR_ERR_FAIL;
        RSVP_MOR_ReplyFSInfo *lastNode; // not needed: this block has no routes
        return rsvp_mor_DecodeFSInfo(item.value, item.length, &lastNode, &current->fsList);
    }
    default:
        return RSVP_MOR_OK;
    }
}

} // namespace

uint32_t rsvp_mor_DecodePhsb(const uint8_t *body, uint16_t length, RSVP_MOR_ReplyPhsb *record)
{
    Items items = {body, length};
    Item item;
    RSVP_MOR_ReplyFDInfo *current = nullptr;
    uint32_t status = RSVP_MOR_OK;
    while (MoreItems(items, item, status))
        status = DecodeItem(item, *record, current);
    if (status != RSVP_MOR_OK)
        RSVP_MOR_FreeReplyPhsb(record);
    return status;
}

uint32_t RSVP_MOR_GetFirstPhsbInfo(int32_t fd, RSVP_MOR_ReplyPhsb *record)
{
    Request request{};
    Reply reply{};
    PutEmpty(request, READ_PHSB);
    const uint32_t status = QueryHeld(fd, request, OP_GET_FIRST, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodePhsb(Body(reply), BodyLength(reply), record);
}

uint32_t RSVP_MOR_GetNextPhsbInfo(int32_t fd, const RSVP_MOR_Session *session, const RSVP_MOR_Hop *hop,
                                  RSVP_MOR_ReplyPhsb *record)
{
    if (session == nullptr || hop == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Bytes<SESSION_SIZE + HOP_SIZE> key;
    EncodeSession(Part<0>(key), *session);
    EncodeHop(Part<SESSION_SIZE>(key), *hop);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_PHSB, key);
    const uint32_t status = QueryHeld(fd, request, OP_GET_NEXT, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodePhsb(Body(reply), BodyLength(reply), record);
}

void rsvp_mor_FreeReplyFDInfo(RSVP_MOR_ReplyFDInfo *node)
{
    if (node == nullptr)
        return;
    for (RSVP_MOR_ReplyFSInfo *filter = node->fsList; filter != nullptr;) {
        RSVP_MOR_ReplyFSInfo *next = filter->next;
        rsvp_mor_FreeReplyFSInfo(filter);
        filter = next;
    }
    free(node);
}

void RSVP_MOR_FreeReplyPhsb(RSVP_MOR_ReplyPhsb *record)
{
    if (record == nullptr)
        return;
    for (RSVP_MOR_ReplyFDInfo *node = record->fdList; node != nullptr;) {
        RSVP_MOR_ReplyFDInfo *next = node->next;
        rsvp_mor_FreeReplyFDInfo(node);
        node = next;
    }
    record->fdList = nullptr;
}
