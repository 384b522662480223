// The CR-LSP record of a point-to-multipoint LSP: one reply describes the whole LSP. Sub-LSPs are in the order of
// their items, each followed by its route; the record's value and the name may come anywhere. Other items are
// skipped.
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

void EncodeKey(Bytes<KEY_SIZE> &value, const RSVP_MOR_P2mpCrlspKey &key)
{
    StoreNet<0>(value, key.keyWord0);
    StoreNet<4>(value, key.keyWord1);
    StoreNet<8>(value, key.keyWord2);
    StoreNet<12>(value, key.keyShort0);
    StoreNet<14>(value, key.keyShort1);
    StoreNet<16>(value, key.keyShort2);
    StoreNet<18>(value, key.keyShort3);
    StoreNet<20>(value, key.keyWord3);
    StoreNet<24>(value, key.keyWord4);
    StoreNet<28>(value, key.keyWord5);
    StoreNet<32>(value, key.keyWord6);
}

void DecodeValue(const Bytes<CRLSP_SIZE> &value, RSVP_MOR_P2mpCrlspInfo &record)
{
    DecodeCrlspKey(Part<0>(value), record.key);
    DecodeCrlspTraffic(Part<20>(value), record.traffic);
    LoadNet<48>(value, record.lspWord0);
    LoadNet<52>(value, record.lspShort);
    LoadNet<56>(value, record.lspWord1);
    LoadNet<60>(value, record.lspWord2);
    LoadNet<64>(value, record.lspWord3);
    LoadNet<68>(value, record.lspWord4);
    LoadNet<72>(value, record.lspWord5);
    LoadNet<76>(value, record.lspWord6);
    LoadRaw<80>(value, record.lspByte0);
    LoadRaw<81>(value, record.lspByte1);
    LoadRaw<82>(value, record.lspByte2);
    LoadRaw<83>(value, record.lspByte3);
}

void DecodeSubLsp(const Bytes<SUB_LSP_SIZE> &value, RSVP_MOR_P2mpRro &node)
{
    DecodeCrlspPath(Part<0>(value), node.path);
    LoadNet<24>(value, node.subShort);
    LoadNet<28>(value, node.subWord0);
    LoadNet<32>(value, node.subWord1);
    LoadNet<36>(value, node.subWord2);
    LoadNet<40>(value, node.subWord3);
    LoadRaw<44>(value, node.subByte);
}

// Makes a node at the end of the record's list.
uint32_t AppendSubLsp(const Item &item, RSVP_MOR_P2mpCrlspInfo &record, RSVP_MOR_P2mpRro *&last)
{
    const auto *value = Exactly<SUB_LSP_SIZE>(item);
    if (value == nullptr)
        return RSVP_MOR_ERR_FAIL;
    RSVP_MOR_P2mpRro *node = static_cast<RSVP_MOR_P2mpRro *>(malloc(sizeof(*node)));
    if (node == nullptr)
        return RSVP_MOR_ERR_FAIL;
    *node = {};
    DecodeSubLsp(*value, *node);
    if (record.rroTail != nullptr)
        record.rroTail->next = node;
    else
        record.rroHead = node;
    record.rroTail = node;
    last = node;
    return RSVP_MOR_OK;
}

// Decodes the route of the sub-LSP that came last. A route of no hops is refused, unlike in the other blocks.
uint32_t DecodeSubLspHops(const Item &item, RSVP_MOR_P2mpRro *last)
{
    if (last == nullptr)
        return RSVP_MOR_ERR_FAIL;
    RSVP_MOR_HopList fresh;
    const uint32_t status = rsvp_mor_DecodeHopList(item.value, item.length, &fresh);
    if (status != RSVP_MOR_OK)
        return status;
    if (fresh.count == 0) {
        FreeHopList(fresh);
        return RSVP_MOR_ERR_FAIL;
    }
    FreeHopList(last->hopList); // a second route replaces the first
    last->hopList = fresh;
    return RSVP_MOR_OK;
}

uint32_t DecodeItem(const Item &item, RSVP_MOR_P2mpCrlspInfo &record, RSVP_MOR_P2mpRro *&last, FilledSlots &filled)
{
    switch (item.type) {
    case REPLY_P2MP_CRLSP:
        if (const auto *value = Exactly<CRLSP_SIZE>(item)) {
            DecodeValue(*value, record);
            return RSVP_MOR_OK;
        }
        return RSVP_MOR_ERR_FAIL;
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
    Bytes<KEY_SIZE> value;
    EncodeKey(value, *key);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_P2MP_CRLSP, value);
    uint32_t status = QueryHeld(fd, request, op, reply);
    if (status != RSVP_MOR_OK)
        return status;

    Items items = {Body(reply), BodyLength(reply)};
    Item item;
    RSVP_MOR_P2mpRro *last = nullptr; // the sub-LSP that the next route belongs to
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
