// The fast reroute general table, and the fast reroute state of actual route hops. Both ask for the first row with a
// key of zeros.
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
    Bytes<12> value = {}; // the third word is always 0
    StoreNet<0>(value, hopListIndex);
    StoreNet<4>(value, hopIndex);
    Request request;
    Reply reply;
    PutRaw(request, READ_EXT_AR_HOP, value);
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
    Bytes<12> value = {};
    if (msgOp != OP_GET_FIRST) {
        StoreNet<0>(value, key->frrKey0);
        StoreNet<4>(value, key->frrKey1);
        StoreNet<8>(value, key->frrKey2);
    }
    Request request;
    Reply reply;
    PutRaw(request, READ_FRR_GENERAL, value);
    const uint32_t status = QueryRowRaw(request, msgOp, reply, out);
    if (status != RSVP_MOR_OK)
        return status;
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
    if (CopyFirstRaw(body, bodyLength, out) != ITEM_READ)
        return RSVP_MOR_ERR_FAIL;
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
