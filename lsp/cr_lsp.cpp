// CR-LSP records: one value of 128 bytes, a route and a name, in any order. Items that do not belong to the record
// are skipped.
#include "channel/message.h"
#include "lsp/cr_lsp_groups.h"
#include "lsp/lists.h"
#include "lsp/state_blocks.h"

#include <bit>
#include <cstdlib>

using namespace rsvp_mor;

namespace rsvp_mor {

void DecodeCrlspKey(const Bytes<CRLSP_KEY_SIZE> &value, RSVP_MOR_CrlspKey &key)
{
    LoadNet<0>(value, key.keyWord0);
    LoadNet<4>(value, key.keyWord1);
    LoadNet<8>(value, key.keyWord2);
    LoadNet<12>(value, key.keyShort0);
    LoadNet<14>(value, key.keyShort1);
    LoadRaw<16>(value, key.keyTail);
}

void DecodeCrlspPath(const Bytes<CRLSP_PATH_SIZE> &value, RSVP_MOR_CrlspPath &path)
{
    LoadNet<0>(value, path.pathWord0);
    LoadNet<4>(value, path.pathWord1);
    LoadNet<8>(value, path.pathWord2);
    LoadNet<12>(value, path.pathWord3);
    LoadNet<16>(value, path.pathWord4);
    LoadNet<20>(value, path.pathShort);
    LoadRaw<22>(value, path.pathTail);
}

void DecodeCrlspTraffic(const Bytes<CRLSP_TRAFFIC_SIZE> &value, RSVP_MOR_CrlspTraffic &traffic)
{
    LoadNet<0>(value, traffic.trafficWord0);
    LoadNet<4>(value, traffic.trafficWord1);
    traffic.trafficRate0 = DecodeRate(Part<8>(value));
    LoadNet<12>(value, traffic.trafficWord2);
    traffic.trafficRate1 = DecodeRate(Part<16>(value));
    LoadNet<20>(value, traffic.trafficWord3);
    LoadNet<24>(value, traffic.trafficWord4);
}

void EncodeCrlspKey(Bytes<CRLSP_KEY_SIZE> &value, const RSVP_MOR_CrlspKey &key)
{
    StoreNet<0>(value, key.keyWord0);
    StoreNet<4>(value, key.keyWord1);
    StoreNet<8>(value, key.keyWord2);
    StoreNet<12>(value, key.keyShort0);
    StoreNet<14>(value, key.keyShort1);
    StoreRaw<16>(value, key.keyTail);
}

float DecodeRate(const Bytes<4> &value)
{
    uint32_t word;
    LoadNet<0>(value, word);
    const float onWire = std::bit_cast<float>(__builtin_bswap32(word)); // least significant byte first
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

void DecodeValue(const Bytes<CRLSP_SIZE> &value, RSVP_MOR_ReplyCrlsp &record)
{
    DecodeCrlspKey(Part<0>(value), record.key);
    DecodeCrlspPath(Part<20>(value), record.path);
    DecodeCrlspTraffic(Part<44>(value), record.traffic);
    LoadNet<72>(value, record.tailWord0);
    LoadNet<76>(value, record.tailWord1);
    LoadNet<80>(value, record.tailShort);
    LoadNet<84>(value, record.tailWord2);
    LoadNet<88>(value, record.tailWord3);
    LoadNet<92>(value, record.tailWord4);
    LoadNet<96>(value, record.tailWord5);
    LoadNet<100>(value, record.tailWord6);
    LoadNet<104>(value, record.tailWord7);
    LoadNet<108>(value, record.tailWord8);
    LoadNet<112>(value, record.tailWord9);
    LoadNet<116>(value, record.tailWord10);
    LoadRaw<120>(value, record.tailByte0);
    LoadRaw<121>(value, record.tailByte1);
    LoadRaw<122>(value, record.tailByte2);
    LoadRaw<123>(value, record.tailByte3);
    LoadRaw<124>(value, record.tailByte4);
}

uint32_t DecodeItem(const Item &item, RSVP_MOR_ReplyCrlsp &record, FilledSlots &filled)
{
    switch (item.type) {
    case REPLY_CRLSP:
        if (const auto *value = Exactly<CRLSP_SIZE>(item)) {
            DecodeValue(*value, record);
            return RSVP_MOR_OK;
        }
        return RSVP_MOR_ERR_FAIL;
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
    Bytes<CRLSP_KEY_SIZE> value;
    EncodeCrlspKey(value, *key);
    Request request{};
    Reply reply{};
    PutRaw(request, READ_CRLSP, value);
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
