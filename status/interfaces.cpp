// Interfaces: the full record of 556 bytes on a held session, and the small configuration row on a session of its
// own. One asks for the first row with an empty item, the other with a zero key.
#include "status/reads.h"

#include "channel/message.h"

using namespace rsvp_mor;

namespace {

// The record is the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_IfInfo, 556);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, counters1, 0);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, authWord, 224);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, authKey, 228);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, authLifeTime, 296);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, authNumber, 300);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, authEndBytes, 302);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, ifShort1, 304);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, ifBytes1, 306);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, ifShort2, 308);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, ifBytes2, 314);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, ifWord1, 316);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, ifShort5, 328);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, ifBytes3, 330);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfInfo, counters2, 332);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfCounters, countsB, 108);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_IfCounters, countsC, 216);

void ConvertCountersNet(RSVP_MOR_IfCounters &counters)
{
    ConvertNet(counters.countsA, counters.countsB, counters.countsC);
}

uint32_t QueryIfInfo(int32_t fd, Request &request, MsgOp op, RSVP_MOR_IfInfo *info)
{
    Reply reply{};
    const uint32_t status = QueryHeld(fd, request, op, reply);
    if (status != RSVP_MOR_OK)
        return status;
    return rsvp_mor_DecodeIfInfo(Body(reply), BodyLength(reply), info);
}

} // namespace

uint32_t rsvp_mor_DecodeIfInfo(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_IfInfo *info)
{
    (void)CopyFirstRaw(body, bodyLength, info); // an empty body is taken: nothing copied, all converted
    ConvertCountersNet(info->counters1);
    ConvertNet(info->authWord, info->authLifeTime, info->authNumber);
    ConvertNet(info->ifShort1, info->ifShort2, info->ifShort3, info->ifShort4);
    ConvertNet(info->ifWord1, info->ifWord2, info->ifWord3, info->ifShort5);
    ConvertCountersNet(info->counters2);
    return RSVP_MOR_OK;
}

uint32_t RSVP_MOR_GetIfInfo(int32_t fd, uint32_t ifIndex, RSVP_MOR_IfInfo *info)
{
    Request request{};
    PutNetWord(request, READ_IF_INFO, ifIndex);
    return QueryIfInfo(fd, request, OP_GET, info);
}

uint32_t RSVP_MOR_GetFirstIfInfo(int32_t fd, RSVP_MOR_IfInfo *info)
{
    Request request{};
    PutEmpty(request, READ_IF_INFO);
    return QueryIfInfo(fd, request, OP_GET_FIRST, info);
}

uint32_t RSVP_MOR_GetNextIfInfo(int32_t fd, uint32_t ifIndex, RSVP_MOR_IfInfo *info)
{
    Request request{};
    PutNetWord(request, READ_IF_INFO, ifIndex);
    return QueryIfInfo(fd, request, OP_GET_NEXT, info);
}

uint32_t rsvp_mor_QueryIfConfig(uint32_t op, uint32_t ifIndex, RSVP_MOR_IfConfig *config)
{
    if (config == nullptr || op < OP_GET || op > OP_GET_NEXT)
        return RSVP_MOR_ERR_FAIL;
    Request request;
    Reply reply;
    PutNetWord(request, READ_IF_CONFIG, ifIndex);
    Bytes<8> value = {}; // bytes that a short value lacks read as 0
    const uint32_t status = QueryRowRaw(request, op, reply, &value);
    if (status != RSVP_MOR_OK)
        return status;
    LoadNet<0>(value, config->ifIndex);
    LoadNet<4>(value, config->ifConfig);
    return RSVP_MOR_OK;
}

uint32_t RSVP_GetIfConfig(uint32_t ifIndex, RSVP_MOR_IfConfig *config)
{
    return rsvp_mor_QueryIfConfig(OP_GET, ifIndex, config);
}

uint32_t RSVP_GetFirstIfConfig(RSVP_MOR_IfConfig *config)
{
    return rsvp_mor_QueryIfConfig(OP_GET_FIRST, 0, config);
}

uint32_t RSVP_GetNextIfConfig(uint32_t ifIndex, RSVP_MOR_IfConfig *config)
{
    return rsvp_mor_QueryIfConfig(OP_GET_NEXT, ifIndex, config);
}
