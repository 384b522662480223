// CR-LSP records: one value of 128 bytes, a route and a name, in any order. Items that do not belong to the record
// are passed over.
#include "channel/message.h"
#include "lsp/cr_lsp_groups.h"
#include "lsp/lists.h"
#include "lsp/state_blocks.h"

#include <bit>
#include <cstdlib>

using namespace rsvp_mor;

namespace rsvp_mor {

void DecodeCrlspKey(const uint8_t *at, RSVP_MOR_CrlspKey &key)
{
    LoadNet(at + 0, key.keyWord0);
    LoadNet(at + 4, key.keyWord1);
    LoadNet(at + 8, key.keyWord2);
    LoadNet(at + 12, key.keyShort0);
    LoadNet(at + 14, key.keyShort1);
    LoadRaw(at + 16, key.keyTail);
}

void DecodeCrlspPath(const uint8_t *at, RSVP_MOR_CrlspPath &path)
{
    LoadNet(at + 0, path.pathWord0);
    LoadNet(at + 4, path.pathWord1);
    LoadNet(at + 8, path.pathWord2);
    LoadNet(at + 12, path.pathWord3);
    LoadNet(at + 16, path.pathWord4);
    LoadNet(at + 20, path.pathShort);
    LoadRaw(at + 22, path.pathTail);
}

void DecodeCrlspTraffic(const uint8_t *at, RSVP_MOR_CrlspTraffic &traffic)
{
    LoadNet(at + 0, traffic.trafficWord0);
    LoadNet(at + 4, traffic.trafficWord1);
    traffic.trafficRate0 = DecodeRate(at + 8);
    LoadNet(at + 12, traffic.trafficWord2);
    traffic.trafficRate1 = DecodeRate(at + 16);
    LoadNet(at + 20, traffic.trafficWord3);
    LoadNet(at + 24, traffic.trafficWord4);
}

void EncodeCrlspKey(uint8_t *at, const RSVP_MOR_CrlspKey &key)
{
    StoreNet32(at + 0, key.keyWord0);
    StoreNet32(at + 4, key.keyWord1);
    StoreNet32(at + 8, key.keyWord2);
    StoreNet16(at + 12, key.keyShort0);
    StoreNet16(at + 14, key.keyShort1);
    StoreRaw(at + 16, key.keyTail);
}

float DecodeRate(const uint8_t *at)
{
    const float onWire = std::bit_cast<float>(__builtin_bswap32(LoadNet32(at))); // least significant byte first
    uint32_t whole;
    if (!(onWire >= 1.0f)) // also a NaN
        whole = 0;
    else if (onWire >= 4294967296.0f)
        whole = 0xffffffff;
    else
        whole = static_cast<uint32_t>(onWire);
    return static_cast<float>(__builtin_bswap32(whole));
}

} // namespace rsvp_mor

namespace {

constexpr uint16_t CRLSP_SIZE = 128;

void DecodeValue(const uint8_t *at, RSVP_MOR_ReplyCrlsp &record)
{
    DecodeCrlspKey(at + 0, record.key);
    DecodeCrlspPath(at + 20, record.path);
    DecodeCrlspTraffic(at + 44, record.traffic);
    LoadNet(at + 72, record.tailWord0);
    LoadNet(at + 76, record.tailWord1);
    LoadNet(at + 80, record.tailShort);
    LoadNet(at + 84, record.tailWord2);
    LoadNet(at + 88, record.tailWord3);
    LoadNet(at + 92, record.tailWord4);
    LoadNet(at + 96, record.tailWord5);
    LoadNet(at + 100, record.tailWord6);
    LoadNet(at + 104, record.tailWord7);
    LoadNet(at + 108, record.tailWord8);
    LoadNet(at + 112, record.tailWord9);
    LoadNet(at + 116, record.tailWord10);
    LoadRaw(at + 120, record.tailByte0);
    LoadRaw(at + 121, record.tailByte1);
    LoadRaw(at + 122, record.tailByte2);
    LoadRaw(at + 123, record.tailByte3);
    LoadRaw(at + 124, record.tailByte4);
}

uint32_t DecodeItem(const Item &item, RSVP_MOR_ReplyCrlsp &record, FilledSlots &filled)
{
    switch (item.type) {
    case REPLY_CRLSP:
        if (item.length != CRLSP_SIZE)
            return RSVP_MOR_ERR_FAIL;
        DecodeValue(item.value, record);
        return RSVP_MOR_OK;
    case REPLY_HOP_LIST:
        return FillHopList(item, record.hopList, filled);
    case REPLY_CRLSP_NAME:
        return FillName(item, record.name, filled);
    default:
        return RSVP_MOR_OK;
    }
}

} // namespace

uint32_t rsvp_mor_DecodeReplyCrlsp(const uint8_t *body, uint16_t length, RSVP_MOR_ReplyCrlsp *record)
{
    Items items = {body, length};
    Item item;
    FilledSlots filled = 0;
    uint32_t status = RSVP_MOR_OK;
    while (MoreItems(items, item, status))
        status = DecodeItem(item, *record, filled);
    if (status != RSVP_MOR_OK)
        RSVP_MOR_FreeReplyCrlsp(record);
    return status;
}

uint32_t RSVP_MOR_GetFirstCrlsp(int32_t fd, RSVP_MOR_ReplyCrlsp *record)
{
    Request request{};
    Reply reply{};
    PutEmpty(request, READ_CRLSP);
    const uint32_t status = QueryHeld(fd, request, OP_GET_FIRST, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodeReplyCrlsp(Body(reply), BodyLength(reply), record);
}

uint32_t RSVP_MOR_GetNextCrlsp(int32_t fd, const RSVP_MOR_CrlspKey *key, RSVP_MOR_ReplyCrlsp *record)
{
    if (key == nullptr)
        return RSVP_MOR_ERR_FAIL;
    uint8_t value[CRLSP_KEY_SIZE];
    EncodeCrlspKey(value, *key);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_CRLSP, value, sizeof value);
    const uint32_t status = QueryHeld(fd, request, OP_GET_NEXT, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodeReplyCrlsp(Body(reply), BodyLength(reply), record);
}

void RSVP_MOR_FreeReplyCrlsp(RSVP_MOR_ReplyCrlsp *record)
{
    FreeHopList(record->hopList);
    free(record->name);
    record->name = nullptr;
}
