// The fast reroute facility table: one function for get, first and next, by the operation that the caller passes. The
// last two fields of its key go out as they lie.
#include "rsvp_mor/status.h"

#include "channel/message.h"

using namespace rsvp_mor;

namespace {

// The record is the wire's image: eleven words.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyFrrFacility, 44);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyFrrFacility, facilityWord10, 40);

} // namespace

uint32_t RSVP_MOR_GetFrrFacilityDBTbl(uint32_t msgOp, const RSVP_MOR_FrrFacilityKey *key,
                                      RSVP_MOR_ReplyFrrFacility *out)
{
    if (out == nullptr || msgOp < OP_GET || msgOp > OP_GET_NEXT || (key == nullptr && msgOp != OP_GET_FIRST))
        return RSVP_MOR_ERR_FAIL;
    Request request;
    Reply reply;
    if (msgOp == OP_GET_FIRST) {
        PutEmpty(request, READ_FRR_FACILITY);
    } else {
        uint8_t value[24];
        StoreNet32(value + 0, key->facilityKey0);
        StoreNet32(value + 4, key->facilityKey1);
        StoreNet32(value + 8, key->facilityKey2);
        StoreNet32(value + 12, key->facilityKey3);
        StoreRaw(value + 16, key->facilityKey4);
        StoreRaw(value + 20, key->facilityKey5);
        PutRaw(request, READ_FRR_FACILITY, value, sizeof value);
    }
    const uint32_t status = QueryOwn(request, msgOp, reply);
    if (status != RSVP_MOR_OK)
        return status;
    Item item;
    if (!FirstItem(Body(reply), BodyLength(reply), item))
        return RSVP_MOR_ERR_FAIL;
    CopyRaw(item, *out);
    ConvertNet(out->facilityWord0, out->facilityWord1, out->facilityWord2, out->facilityWord3);
    ConvertNet(out->facilityWord4, out->facilityWord5, out->facilityWord6, out->facilityWord7);
    ConvertNet(out->facilityWord8, out->facilityWord9, out->facilityWord10);
    return RSVP_MOR_OK;
}
