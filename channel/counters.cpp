// Counts: the simplest reads, and the pattern of all others. Build a request, exchange it, read the one item.
#include "rsvp_mor/channel.h"

#include "channel/message.h"
#include "channel/presence.h"

using namespace rsvp_mor;

namespace {

uint32_t ReadCount(ReadItem counter, uint32_t *count)
{
    if (count == nullptr)
        return RSVP_MOR_ERR_FAIL;
    Request request;
    Reply reply;
    PutEmpty(request, counter);
    const uint32_t status = QueryOwn(request, OP_GET, reply);
    if (status != RSVP_MOR_OK)
        return status;
    Item item;
    if (FirstItem(Body(reply), BodyLength(reply), item) != ITEM_READ)
        return RSVP_MOR_ERR_FAIL;
    const auto *value = AtLeast<4>(item);
    if (value == nullptr)
        return RSVP_MOR_ERR_FAIL;
    LoadNet<0>(*value, *count);
    return RSVP_MOR_OK;
}

} // namespace

uint32_t RSVP_MOR_GetFrrIfNum(uint32_t *count)
{
    return ReadCount(READ_FRR_IF_COUNT, count);
}

uint32_t RSVP_MOR_GetFrrActiveIfNum(uint32_t *count)
{
    return ReadCount(READ_FRR_ACTIVE_IF_COUNT, count);
}

uint32_t RSVP_MOR_GetActBypassTunnels(uint32_t *count)
{
    return ReadCount(READ_ACTIVE_BYPASS_COUNT, count);
}

uint32_t RSVP_GetUpLspNumber(uint32_t *count)
{
    if (count == nullptr)
        return RSVP_MOR_ERR_FAIL;
    if (!RSVP_MOR_IsServiceRunning()) {
        *count = 0;
        return RSVP_MOR_OK;
    }
    Request request{};
    Reply reply{};
    PutEmpty(request, READ_UP_LSP_COUNT);
    // Unlike the counts above, a short value is taken: it goes over the front of the word.
    const uint32_t status = QueryRowRaw(request, OP_GET, reply, count);
    if (status == RSVP_MOR_OK)
        ConvertNet(*count);
    return status;
}
