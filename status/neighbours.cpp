// The tables of neighbours and of authentication state. Their requests are alike, their decoders differ: a
// neighbour's value may have any length, an authentication entry must be whole.
#include "status/reads.h"

#include "channel/message.h"

using namespace rsvp_mor;

namespace {

// Both records are the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyNbr, 48);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyNbr, nbrShort, 32);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyNbr, nbrBytes, 34);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyNbr, nbrWord8, 40);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyAuth, 128);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyAuth, authEntryLong0, 80);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyAuth, authEntryWord0, 96);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyAuth, authEntryShort, 116);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyAuth, authEntryTail, 118);

void PutKey(Request &request, ReadItem table, uint32_t key0, uint32_t key1)
{
    Bytes<8> key;
    StoreNet<0>(key, key0);
    StoreNet<4>(key, key1);
    PutRaw(request, table, key);
}

uint32_t QueryNbr(int32_t fd, Request &request, MsgOp op, RSVP_MOR_ReplyNbr *out)
{
    Reply reply{};
    const uint32_t status = QueryHeld(fd, request, op, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodeNbr(Body(reply), BodyLength(reply), out);
}

uint32_t QueryAuth(int32_t fd, Request &request, MsgOp op, RSVP_MOR_ReplyAuth *out)
{
    Reply reply{};
    const uint32_t status = QueryHeld(fd, request, op, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodeAuth(Body(reply), BodyLength(reply), out);
}

} // namespace

uint32_t rsvp_mor_DecodeNbr(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_ReplyNbr *out)
{
    (void)CopyFirstRaw(body, bodyLength, out); // an empty body is taken: nothing copied, all converted
    ConvertNet(out->nbrWord0, out->nbrWord1, out->nbrWord2, out->nbrWord3);
    ConvertNet(out->nbrWord4, out->nbrWord5, out->nbrWord6, out->nbrWord7);
    ConvertNet(out->nbrShort, out->nbrWord8, out->nbrWord9);
    return RSVP_MOR_OK;
}

uint32_t rsvp_mor_DecodeAuth(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_ReplyAuth *out)
{
    if (bodyLength != ITEM_OVERHEAD + sizeof(*out))
        return RSVP_MOR_ERR_FAIL;
    (void)CopyFirstRaw(body, bodyLength, out); // without an item nothing is copied, and all is converted
    ConvertNet(out->authEntryLong0, out->authEntryLong1);
    ConvertNet(out->authEntryWord0, out->authEntryWord1, out->authEntryWord2, out->authEntryWord3);
    ConvertNet(out->authEntryWord4, out->authEntryShort);
    return RSVP_MOR_OK;
}

uint32_t RSVP_MOR_GetFirstNbr(int32_t fd, RSVP_MOR_ReplyNbr *out)
{
    Request request{};
    PutEmpty(request, READ_NBR);
    return QueryNbr(fd, request, OP_GET_FIRST, out);
}

uint32_t RSVP_MOR_GetNextNbr(int32_t fd, const RSVP_MOR_NbrKey *key, RSVP_MOR_ReplyNbr *out)
{
    if (key == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Request request{};
    PutKey(request, READ_NBR, key->nbrKey0, key->nbrKey1);
    return QueryNbr(fd, request, OP_GET_NEXT, out);
}

uint32_t RSVP_MOR_GetFirstAuth(int32_t fd, RSVP_MOR_ReplyAuth *out)
{
    Request request{};
    PutEmpty(request, READ_AUTH);
    return QueryAuth(fd, request, OP_GET_FIRST, out);
}

uint32_t RSVP_MOR_GetNextAuth(int32_t fd, const RSVP_MOR_AuthWalkKey *key, RSVP_MOR_ReplyAuth *out)
{
    if (key == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Request request{};
    PutKey(request, READ_AUTH, key->authEntryKey0, key->authEntryKey1);
    return QueryAuth(fd, request, OP_GET_NEXT, out);
}
