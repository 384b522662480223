// The frame of a message: build a request item by item, send it, and read the items of the reply. These few steps
// are all that an operation is made of; each operation spells them out in its own order.
#pragma once

#include "channel/protocol.h"
#include "channel/wire.h"
#include "rsvp_mor/status_codes.h"

namespace rsvp_mor {

// A request that grows item by item behind the room for its header. `Request request{};` gives a zeroed area and
// `Request request;` leaves the bytes as they are: both kinds of operation exist.
struct Request {
    uint16_t bodyLength = 0;
    uint8_t area[RSVP_MOR_MSG_MAX];
};

// A reply as it came; zeroed or not by the same rule.
struct Reply {
    uint8_t area[RSVP_MOR_MSG_MAX];
};

// ---- Build ----

void PutRaw(Request &request, uint16_t type, const void *value, uint16_t length);
void PutEmpty(Request &request, uint16_t type);

// Numbers in a 4-byte item. A byte and a short stand in front, and the rest of the item is 0.
void PutNetByte(Request &request, uint16_t type, uint8_t number);
void PutNetShort(Request &request, uint16_t type, uint16_t number);
void PutNetWord(Request &request, uint16_t type, uint32_t number);

// Writes the header; only the low byte of `msgOp` has a place in it. Returns the length of the whole message.
uint32_t FinishFrame(Request &request, MsgClass msgClass, uint32_t msgOp);

// ---- Send ----

// A command, on a session of its own.
uint32_t SendCommand(Request &request, MsgClass msgClass, uint32_t msgOp);

// A read on the caller's session, and one on a session that is opened and closed here.
uint32_t QueryHeld(int32_t fd, Request &request, uint32_t msgOp, Reply &reply);
uint32_t QueryOwn(Request &request, uint32_t msgOp, Reply &reply);

// ---- Read ----

inline const uint8_t *Body(const Reply &reply)
{
    return reply.area + HEADER_SIZE;
}

inline uint16_t BodyLength(const Reply &reply)
{
    return LoadNet16(reply.area + HEADER_BODY_LENGTH);
}

struct Item {
    uint16_t type;
    uint16_t length;
    const uint8_t *value;
};

// What is left of a body.
struct Items {
    const uint8_t *next;
    uint16_t left;
};

// Over is not broken: a walk ends at ITEM_END, and ITEM_MALFORMED is a body that goes on but cannot be read.
enum ItemResult { ITEM_READ, ITEM_END, ITEM_MALFORMED };

// Reads the next item and moves behind it. An item that ITEM_READ gives lies inside the body, whatever the platform's
// item library reported. `item` is only written with ITEM_READ.
ItemResult NextItem(Items &items, Item &item);

// The condition of a walk over all items of a body: whether there is one more and nothing has failed so far. A body
// that cannot be read on makes `status` RSVP_MOR_ERR_FAIL.
inline bool MoreItems(Items &items, Item &item, uint32_t &status)
{
    if (status != RSVP_MOR_OK)
        return false;
    const ItemResult result = NextItem(items, item);
    if (result == ITEM_MALFORMED)
        status = RSVP_MOR_ERR_FAIL;
    return result == ITEM_READ;
}

// The first item of a body, for replies that have one. Without a readable item the result is false and `item` is an
// item of no value.
bool FirstItem(const uint8_t *body, uint16_t length, Item &item);

// Copies the value over the front of the record, never beyond the record's end.
template <typename Record> void CopyRaw(const Item &item, Record &record)
{
    if (item.length != 0)
        memcpy(&record, item.value, item.length < sizeof record ? item.length : sizeof record);
}

} // namespace rsvp_mor
