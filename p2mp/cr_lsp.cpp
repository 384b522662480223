// CR-LSP of a point-to-multipoint LSP: one reply tells the whole LSP. Sub-LSPs stand in the order of their items,
// each followed by its route; the record's value and the name may stand anywhere. Other items are passed over.
#include "channel/message.h"
#include "lsp/cr_lsp_groups.h"
#include "lsp/lists.h"
#include "rsvp_mor/p2mp.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

constexpr uint16_t CRLSP_SIZE = 84;
constexpr uint16_t SUB_LSP_SIZE = 48;
constexpr uint16_t KEY_SIZE = 36;

void EncodeKey(uint8_t *at, const RSVP_MOR_P2mpCrlspKey &key)
{
    StoreNet32(at + 0, key.keyWord0);
    StoreNet32(at + 4, key.keyWord1);
    StoreNet32(at + 8, key.keyWord2);
    StoreNet16(at + 12, key.keyShort0);
    StoreNet16(at + 14, key.keyShort1);
    StoreNet16(at + 16, key.keyShort2);
    StoreNet16(at + 18, key.keyShort3);
    StoreNet32(at + 20, key.keyWord3);
    StoreNet32(at + 24, key.keyWord4);
    StoreNet32(at + 28, key.keyWord5);
    StoreNet32(at + 32, key.keyWord6);
}

void DecodeValue(const uint8_t *at, RSVP_MOR_P2mpCrlspInfo &record)
{
    DecodeCrlspKey(at + 0, record.key);
    DecodeCrlspTraffic(at + 20, record.traffic);
    LoadNet(at + 48, record.lspWord0);
    LoadNet(at + 52, record.lspShort);
    LoadNet(at + 56, record.lspWord1);
    LoadNet(at + 60, record.lspWord2);
    LoadNet(at + 64, record.lspWord3);
    LoadNet(at + 68, record.lspWord4);
    LoadNet(at + 72, record.lspWord5);
    LoadNet(at + 76, record.lspWord6);
    LoadRaw(at + 80, record.lspByte0);
    LoadRaw(at + 81, record.lspByte1);
    LoadRaw(at + 82, record.lspByte2);
    LoadRaw(at + 83, record.lspByte3);
}

void DecodeSubLsp(const uint8_t *at, RSVP_MOR_P2mpRro &node)
{
    DecodeCrlspPath(at + 0, node.path);
    LoadNet(at + 24, node.subShort);
    LoadNet(at + 28, node.subWord0);
    LoadNet(at + 32, node.subWord1);
    LoadNet(at + 36, node.subWord2);
    LoadNet(at + 40, node.subWord3);
    LoadRaw(at + 44, node.subByte);
}

// Makes a node at the end of the record's list.
uint32_t AppendSubLsp(const Item &item, RSVP_MOR_P2mpCrlspInfo &record, RSVP_MOR_P2mpRro *&last)
{
    if (item.length != SUB_LSP_SIZE)
        return RSVP_MOR_ERR_FAIL;
    RSVP_MOR_P2mpRro *node = static_cast<RSVP_MOR_P2mpRro *>(malloc(sizeof *node));
    if (node == nullptr)
        return RSVP_MOR_ERR_FAIL;
    *node = {};
    DecodeSubLsp(item.value, *node);
    if (record.rroTail != nullptr)
        record.rroTail->next = node;
    else
        record.rroHead = node;
    record.rroTail = node;
    last = node;
    return RSVP_MOR_OK;
}

// The route of the sub-LSP that came last. A route of no hops is refused, unlike in the other blocks.
uint32_t DecodeSubLspHops(const Item &item, RSVP_MOR_P2mpRro *last)
{
    if (last == nullptr || item.length < 2 || LoadNet16(item.value) == 0)
        return RSVP_MOR_ERR_FAIL;
    RSVP_MOR_HopList fresh;
    const uint32_t status = rsvp_mor_DecodeHopList(item.value, item.length, &fresh);
    if (status != RSVP_MOR_OK)
        return status;
    FreeHopList(last->hopList); // a repeated route takes the place of the first
    last->hopList = fresh;
    return RSVP_MOR_OK;
}

uint32_t DecodeItem(const Item &item, RSVP_MOR_P2mpCrlspInfo &record, RSVP_MOR_P2mpRro *&last, FilledSlots &filled)
{
    switch (item.type) {
    case REPLY_P2MP_CRLSP:
        if (item.length != CRLSP_SIZE)
            return RSVP_MOR_ERR_FAIL;
        DecodeValue(item.value, record);
        return RSVP_MOR_OK;
    case REPLY_P2MP_SUB_LSP:
        return AppendSubLsp(item, record, last);
    case REPLY_P2MP_SUB_LSP_HOPS:
        return DecodeSubLspHops(item, last);
    case REPLY_P2MP_CRLSP_NAME:
        return FillName(item, record.name, filled);
    default:
        return RSVP_MOR_OK;
    }
}

} // namespace

uint32_t RSVP_MOR_GetP2mpCrlsp(int32_t fd, uint32_t op, const RSVP_MOR_P2mpCrlspKey *key,
                               RSVP_MOR_P2mpCrlspInfo *record)
{
    if (key == nullptr)
        return RSVP_MOR_ERR_FAIL;
    uint8_t value[KEY_SIZE];
    EncodeKey(value, *key);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_P2MP_CRLSP, value, sizeof value);
    uint32_t status = QueryHeld(fd, request, op, reply);
    if (status != RSVP_MOR_OK)
        return status;

    Items items = {Body(reply), BodyLength(reply)};
    Item item;
    RSVP_MOR_P2mpRro *last = nullptr; // the sub-LSP that takes the next route
    FilledSlots filled = 0;
    while (MoreItems(items, item, status))
        status = DecodeItem(item, *record, last, filled);
    if (status != RSVP_MOR_OK)
        RSVP_MOR_FreeP2mpCrlspInfo(record);
    return status;
}

void rsvp_mor_FreeP2mpRro(RSVP_MOR_P2mpRro *node)
{
    FreeHopList(node->hopList);
    free(node);
}

void RSVP_MOR_FreeP2mpCrlspInfo(RSVP_MOR_P2mpCrlspInfo *record)
{
    for (RSVP_MOR_P2mpRro *node = record->rroHead; node != nullptr;) {
        RSVP_MOR_P2mpRro *next = node->next;
        rsvp_mor_FreeP2mpRro(node);
        node = next;
    }
    record->rroHead = nullptr;
    record->rroTail = nullptr;
    free(record->name);
    record->name = nullptr;
}

void rsvp_mor_FreeP2mpReplySubLsp(RSVP_MOR_P2mpReplySubLsp *node)
{
    free(node->rroBlock);
    free(node);
}
