// Builds requests and sends them: the header, the items, and the two kinds of session. The platform decides how an
// item is laid out; numbers are in network order before they are handed to it.
#include "channel/message.h"

#include "channel/exchange.h"
#include "platform/stlv.h"

// memset by a name that the compiler does not know: it drops a write that nobody reads.
extern "C" void *rsvp_mor_Overwrite(void *area, int byte, size_t size) __asm__("memset");

namespace rsvp_mor {

void PutRaw(Request &request, uint16_t type, const void *value, uint16_t length)
{
    const uint32_t at = HEADER_SIZE + request.bodyLength;
    const uint32_t taken =
        STLV_Set(request.area + at, static_cast<uint16_t>(RSVP_MOR_MSG_MAX - at), type, length, value);
    request.bodyLength = static_cast<uint16_t>(request.bodyLength + taken);
}

void PutEmpty(Request &request, uint16_t type)
{
    PutRaw(request, type, nullptr, 0);
}

void PutNetByte(Request &request, uint16_t type, uint8_t number)
{
    const uint8_t value[4] = {number};
    PutRaw(request, type, value);
}

void PutNetShort(Request &request, uint16_t type, uint16_t number)
{
    uint8_t value[4] = {};
    StoreNet<0>(value, number);
    PutRaw(request, type, value);
}

void PutNetWord(Request &request, uint16_t type, uint32_t number)
{
    uint8_t value[4];
    StoreNet<0>(value, number);
    PutRaw(request, type, value);
}

uint32_t FinishFrame(Request &request, MsgClass msgClass, uint32_t msgOp)
{
    request.area[HEADER_CLASS] = msgClass;
    request.area[HEADER_OP] = static_cast<uint8_t>(msgOp);
    StoreNet<HEADER_BODY_LENGTH>(request.area, request.bodyLength);
    StoreNet<HEADER_STATUS>(request.area, RSVP_MOR_OK);
    return HEADER_SIZE + request.bodyLength;
}

uint32_t SendCommand(Request &request, MsgClass msgClass, uint32_t msgOp)
{
    return RSVP_MOR_SendCommand(request.area, FinishFrame(request, msgClass, msgOp));
}

uint32_t SendSecret(Request &request, MsgClass msgClass, uint32_t msgOp)
{
    const uint32_t status = SendCommand(request, msgClass, msgOp);
    rsvp_mor_Overwrite(request.area, 0, HEADER_SIZE + request.bodyLength);
    return status;
}

uint32_t QueryHeld(int32_t fd, Request &request, uint32_t msgOp, Reply &reply)
{
    return RSVP_MOR_Exchange(fd, request.area, FinishFrame(request, CLASS_SHOW, msgOp), reply.area);
}

uint32_t QueryOwn(Request &request, uint32_t msgOp, Reply &reply)
{
    const int32_t fd = RSVP_MOR_LIPCOpen();
    if (fd < 0)
        return RSVP_MOR_ERR_LIPC;
    const uint32_t status = QueryHeld(fd, request, msgOp, reply);
    RSVP_MOR_LIPCClose(fd);
    return status;
}

uint32_t QueryRowRaw(Request &request, uint32_t msgOp, Reply &reply, void *record, size_t recordSize)
{
    const uint32_t status = QueryOwn(request, msgOp, reply);
    if (status == RSVP_MOR_OK && CopyFirstRaw(Body(reply), BodyLength(reply), record, recordSize) != ITEM_READ)
        return RSVP_MOR_ERR_FAIL;
    return status;
}

} // namespace rsvp_mor
