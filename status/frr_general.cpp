// The fast reroute general table, and the actual route hops extended by fast reroute state. Both ask for the first
// row with a key of zeros.
#include "status/reads.h"

#include "channel/message.h"

using namespace rsvp_mor;

namespace {

// Both records are the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyFrrGeneral, 44);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyFrrGeneral, frrWord10, 40);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyExtArHop, 12);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyExtArHop, extArHopBytes, 8);

uint32_t ReadExtArHop(MsgOp op, uint32_t hopListIndex, uint32_t hopIndex, RSVP_MOR_ReplyExtArHop *out)
{
    if (out == nullptr)
        return RSVP_MOR_ERR_FAIL;
    uint8_t value[12] = {}; // the third word is always 0
    StoreNet32(value + 0, hopListIndex);
    StoreNet32(value + 4, hopIndex);
    Request request;
    Reply reply;
    PutRaw(request, READ_EXT_AR_HOP, value, sizeof value);
    const uint32_t status = QueryOwn(request, op, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodeExtArHop(Body(reply), BodyLength(reply), out);
}

} // namespace

uint32_t rsvp_mor_ReadFrrGeneralTable(uint32_t msgOp, const RSVP_MOR_FrrGeneralKey *key,
                                      RSVP_MOR_ReplyFrrGeneral *out)
{
    if (out == nullptr || msgOp < OP_GET || msgOp > OP_GET_NEXT || (key == nullptr && msgOp != OP_GET_FIRST))
        return RSVP_MOR_ERR_FAIL;
    uint8_t value[12] = {};
    if (msgOp != OP_GET_FIRST) {
        StoreNet32(value + 0, key->frrKey0);
        StoreNet32(value + 4, key->frrKey1);
        StoreNet32(value + 8, key->frrKey2);
    }
    Request request;
    Reply reply;
    PutRaw(request, READ_FRR_GENERAL, value, sizeof value);
    const uint32_t status = QueryOwn(request, msgOp, reply);
    if (status != RSVP_MOR_OK)
        return status;
    Item item;
    if (!FirstItem(Body(reply), BodyLength(reply), item))
        return RSVP_MOR_ERR_FAIL;
    CopyRaw(item, *out);
    ConvertNet(out->frrWord0, out->frrWord1, out->frrWord2, out->frrWord3);
    ConvertNet(out->frrWord4, out->frrWord5, out->frrWord6, out->frrWord7);
    ConvertNet(out->frrWord8, out->frrWord9, out->frrWord10);
    return RSVP_MOR_OK;
}

uint32_t RSVP_MOR_GetFrrGeneralTbl(const RSVP_MOR_FrrGeneralKey *key, RSVP_MOR_ReplyFrrGeneral *out)
{
    return rsvp_mor_ReadFrrGeneralTable(OP_GET, key, out);
}

uint32_t RSVP_MOR_GetFirstFrrGeneralTbl(RSVP_MOR_ReplyFrrGeneral *out)
{
    return rsvp_mor_ReadFrrGeneralTable(OP_GET_FIRST, nullptr, out);
}

uint32_t RSVP_MOR_GetNextFrrGeneralTbl(const RSVP_MOR_FrrGeneralKey *key, RSVP_MOR_ReplyFrrGeneral *out)
{
    return rsvp_mor_ReadFrrGeneralTable(OP_GET_NEXT, key, out);
}

uint32_t rsvp_mor_DecodeExtArHop(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_ReplyExtArHop *out)
{
    Item item;
    if (!FirstItem(body, bodyLength, item))
        return RSVP_MOR_ERR_FAIL;
    CopyRaw(item, *out);
    ConvertNet(out->extArHopWord0, out->extArHopWord1);
    return RSVP_MOR_OK;
}

uint32_t RSVP_MOR_GetExtArHop(uint32_t hopListIndex, uint32_t hopIndex, RSVP_MOR_ReplyExtArHop *out)
{
    return ReadExtArHop(OP_GET, hopListIndex, hopIndex, out);
}

uint32_t RSVP_MOR_GetFirstExtArHop(RSVP_MOR_ReplyExtArHop *out)
{
    return ReadExtArHop(OP_GET_FIRST, 0, 0, out);
}

uint32_t RSVP_MOR_GetNextExtArHop(uint32_t hopListIndex, uint32_t hopIndex, RSVP_MOR_ReplyExtArHop *out)
{
    return ReadExtArHop(OP_GET_NEXT, hopListIndex, hopIndex, out);
}
