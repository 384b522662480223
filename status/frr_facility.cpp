// The fast reroute facility table: one function for get, first and next, as the caller's operation says. The last two
// fields of its key are sent as they are.
#include "rsvp_mor/status.h"

#include "channel/message.h"

using namespace rsvp_mor;

namespace {

// The record is the wire's image: eleven words.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_ReplyFrrFacility, 44);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_ReplyFrrFacility, facilityWord10, 40);

void EncodeKey(Bytes<24> &value, const RSVP_MOR_FrrFacilityKey &key)
{
    StoreNet<0>(value, key.facilityKey0);
    StoreNet<4>(value, key.facilityKey1);
    StoreNet<8>(value, key.facilityKey2);
    StoreNet<12>(value, key.facilityKey3);
    StoreRaw<16>(value, key.facilityKey4);
    StoreRaw<20>(value, key.facilityKey5);
}

void ConvertRowNet(RSVP_MOR_ReplyFrrFacility &row)
{
    ConvertNet(row.facilityWord0, row.facilityWord1, row.facilityWord2, row.facilityWord3);
    ConvertNet(row.facilityWord4, row.facilityWord5, row.facilityWord6, row.facilityWord7);
    ConvertNet(row.facilityWord8, row.facilityWord9, row.facilityWord10);
}

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
        Bytes<24> value;
        EncodeKey(value, *key);
        PutRaw(request, READ_FRR_FACILITY, value);
    }
    const uint32_t status = QueryRowRaw(request, msgOp, reply, out);
    if (status == RSVP_MOR_OK)
        ConvertRowNet(*out);
    return status;
}
