// The tables of computed and of actual route hops. One record is both key and answer: a walk needs no other cursor.
#include "tables/reads.h"

#include "channel/message.h"

using namespace rsvp_mor;

namespace {

// Both records are the wire's image; a computed hop has two more words.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyArHop, 28);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyArHop, hopAddrBytes, 2);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyArHop, hopListIndex, 20);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyArHop, hopIndex, 24);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyCHop, 36);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyCHop, hopAddrBytes, 2);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyCHop, hopListIndex, 20);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyCHop, hopIndex, 24);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyCHop, cHopWord0, 28);

// Reads a row and converts what the two records share. The caller converts the rest.
template <typename Record> uint32_t ReadHop(ReadItem table, uint32_t msgOp, Record *record)
{
    if (record == nullptr || msgOp < OP_GET || msgOp > OP_GET_NEXT)
        return RSVP_MOR_ERR_FAIL;
    Bytes<12> key = {}; // the third word is always 0
    if (msgOp != OP_GET_FIRST) {
        StoreNet<0>(key, record->hopListIndex);
        StoreNet<4>(key, record->hopIndex);
    }
    Request request{};
    Reply reply{};
    PutRaw(request, table, key);
    const uint32_t status = QueryRowRaw(request, msgOp, reply, record);
    if (status == RSVP_MOR_OK)
        ConvertNet(record->hopAddrKind, record->hopListIndex, record->hopIndex);
    return status;
}

} // namespace

uint32_t rsvp_mor_ReadCHopTable(uint32_t msgOp, RSVP_MOR_ReplyCHop *record)
{
    const uint32_t status = ReadHop(READ_C_HOP, msgOp, record);
    if (status == RSVP_MOR_OK)
        ConvertNet(record->cHopWord0, record->cHopWord1);
    return status;
}

uint32_t rsvp_mor_ReadArHopTable(uint32_t msgOp, RSVP_MOR_ReplyArHop *record)
{
    return ReadHop(READ_AR_HOP, msgOp, record);
}

uint32_t RSVP_GetCHop(RSVP_MOR_ReplyCHop *record)
{
    return rsvp_mor_ReadCHopTable(OP_GET, record);
}

uint32_t RSVP_GetFirstCHop(RSVP_MOR_ReplyCHop *record)
{
    return rsvp_mor_ReadCHopTable(OP_GET_FIRST, record);
}

uint32_t RSVP_GetNextCHop(RSVP_MOR_ReplyCHop *record)
{
    return rsvp_mor_ReadCHopTable(OP_GET_NEXT, record);
}

uint32_t RSVP_GetArHop(RSVP_MOR_ReplyArHop *record)
{
    return rsvp_mor_ReadArHopTable(OP_GET, record);
}

uint32_t RSVP_GetFirstArHop(RSVP_MOR_ReplyArHop *record)
{
    return rsvp_mor_ReadArHopTable(OP_GET_FIRST, record);
}

uint32_t RSVP_GetNextArHop(RSVP_MOR_ReplyArHop *record)
{
    return rsvp_mor_ReadArHopTable(OP_GET_NEXT, record);
}
