// The daemon as a whole: settings and counters in one record of 680 bytes, copied once and converted in place.
#include "rsvp_mor/status.h"

#include "channel/message.h"

using namespace rsvp_mor;

namespace {

// The record is the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_GlobalInfo, 680);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, authWord, 0);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, authKey, 4);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, authLifeTime, 72);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, authNumber, 76);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, authEndBytes, 78);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, settingBytes, 80);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, settingWord1, 84);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, settingShort, 88);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, settingBytes2, 90);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, settingWord2, 92);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, counters1, 96);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, statWord1, 380);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalInfo, counters2, 396);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalCounters, countsB, 108);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_GlobalCounters, countsC, 216);

void ConvertCountersNet(RSVP_MOR_GlobalCounters &counters)
{
    ConvertNet(counters.countsA, counters.countsB, counters.countsC);
}

void DecodeGlobalInfo(const uint8_t *body, uint16_t bodyLength, RSVP_MOR_GlobalInfo *info)
{
    (void)CopyFirstRaw(body, bodyLength, info); // an empty body is taken: nothing copied, all converted
    ConvertNet(info->authWord, info->authLifeTime, info->authNumber);
    ConvertNet(info->settingWord1, info->settingShort, info->settingWord2);
    ConvertCountersNet(info->counters1);
    ConvertNet(info->statWord1, info->statWord2, info->statWord3, info->statWord4);
    ConvertCountersNet(info->counters2);
}

} // namespace

uint32_t RSVP_MOR_GetGlobalInfo(int32_t fd, RSVP_MOR_GlobalInfo *info)
{
    Request request{};
    Reply reply{};
    PutEmpty(request, READ_GLOBAL_INFO);
    const uint32_t status = QueryHeld(fd, request, OP_GET, reply);
    if (status == RSVP_MOR_OK)
        DecodeGlobalInfo(Body(reply), BodyLength(reply), info);
    return status;
}
