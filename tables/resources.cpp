// The tunnel resource table. One record is both key and answer; the first row is asked for with an empty item, not
// with a key of zeros.
#include "tables/reads.h"

#include "channel/message.h"

using namespace rsvp_mor;

namespace {

// The record is the wire's image: six words.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyResource, 24);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyResource, resourceWord5, 20);

} // namespace

uint32_t rsvp_mor_ReadResourceTable(uint32_t msgOp, RSVP_MOR_ReplyResource *record)
{
    if (record == nullptr || msgOp < OP_GET || msgOp > OP_GET_NEXT)
        return RSVP_MOR_ERR_FAIL;
    Request request{};
    Reply reply{};
    if (msgOp == OP_GET_FIRST)
        PutEmpty(request, READ_RESOURCE);
    else
        PutNetWord(request, READ_RESOURCE, record->resourceIndex);
    const uint32_t status = QueryRowRaw(request, msgOp, reply, record);
    if (status != RSVP_MOR_OK)
        return status;
    ConvertNet(record->resourceIndex, record->resourceWord1, record->resourceWord2);
    ConvertNet(record->resourceWord3, record->resourceWord4, record->resourceWord5);
    return RSVP_MOR_OK;
}

uint32_t RSVP_GetResource(RSVP_MOR_ReplyResource *record)
{
    return rsvp_mor_ReadResourceTable(OP_GET, record);
}

uint32_t RSVP_GetFirstResource(RSVP_MOR_ReplyResource *record)
{
    return rsvp_mor_ReadResourceTable(OP_GET_FIRST, record);
}

uint32_t RSVP_GetNextResource(RSVP_MOR_ReplyResource *record)
{
    return rsvp_mor_ReadResourceTable(OP_GET_NEXT, record);
}
