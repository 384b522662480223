// The frame of a message: build a request item by item, send it, and read the items of the reply. These few steps
// are all that an operation is made of; each operation spells them out in its own order.
#ifndef CHANNEL_MESSAGE_H
#define CHANNEL_MESSAGE_H

#include "channel/protocol.h"
#include "channel/wire.h"
#include "rsvp_mor/status_codes.h"

namespace rsvp_mor {

// A request that grows item by item after the space for its header. `Request request{};` zeroes the area and
// `Request request;` does not: there are operations of both kinds.
struct Request {
    uint16_t bodyLength = 0;
    uint8_t area[RSVP_MOR_MSG_MAX];
};

// A reply as it came; zeroed or not in the same way.
struct Reply {
    uint8_t area[RSVP_MOR_MSG_MAX];
};

// ---- Build ----

void PutRaw(Request &request, uint16_t type, const void *value, uint16_t length);

template <size_t Size> void PutRaw(Request &request, uint16_t type, const Bytes<Size> &value)
{
    PutRaw(request, type, value, Size);
}

void PutEmpty(Request &request, uint16_t type);

// A number as an item of 4 bytes. A byte or a short comes first, and zeros fill the rest.
void PutNetByte(Request &request, uint16_t type, uint8_t number);
void PutNetShort(Request &request, uint16_t type, uint16_t number);
void PutNetWord(Request &request, uint16_t type, uint32_t number);

// Writes the header, which holds only the low byte of `msgOp`. Returns the length of the whole message.
uint32_t FinishFrame(Request &request, MsgClass msgClass, uint32_t msgOp);

// ---- Send ----

// A command, on a session of its own.
uint32_t SendCommand(Request &request, MsgClass msgClass, uint32_t msgOp);

// The same for a command that carries a key: whatever becomes of it, the key does not stay behind on the stack.
uint32_t SendSecret(Request &request, MsgClass msgClass, uint32_t msgOp);

// A read on the caller's session, and one on a session of its own.
uint32_t QueryHeld(int32_t fd, Request &request, uint32_t msgOp, Reply &reply);
uint32_t QueryOwn(Request &request, uint32_t msgOp, Reply &reply);

// ---- Read ----

inline const uint8_t *Body(const Reply &reply)
{
    return reply.area + HEADER_SIZE;
}

inline uint16_t BodyLength(const Reply &reply)
{
    uint16_t length;
    LoadNet<HEADER_BODY_LENGTH>(reply.area, length);
    return length;
}

struct Item {
    uint16_t type;
    uint16_t length;
    const uint8_t *value;
};

// The part of a body that has not been read yet.
struct Items {
    const uint8_t *next;
    uint16_t left;
};

// The end is not a fault: ITEM_END says that the body is used up, ITEM_MALFORMED that what follows is not an item.
// Code that treats one like the other says so.
enum ItemResult { ITEM_READ, ITEM_END, ITEM_MALFORMED };

// Reads the item at the front and steps over it. With ITEM_READ the item lies inside the body, whatever the
// platform's item library reported; otherwise nothing is written. Never ITEM_END.
[[nodiscard]] ItemResult TakeItem(Items &items, Item &item);

// The same, where the body may be used up.
[[nodiscard]] inline ItemResult NextItem(Items &items, Item &item)
{
    return items.left == 0 ? ITEM_END : TakeItem(items, item);
}

// The condition of a loop over all items of a body: true if nothing has failed so far and there is one more. A body
// that cannot be read to its end sets `status` to RSVP_MOR_ERR_FAIL.
inline bool MoreItems(Items &items, Item &item, uint32_t &status)
{
    if (status != RSVP_MOR_OK)
        return false;
    const ItemResult result = NextItem(items, item);
    if (result == ITEM_MALFORMED)
        status = RSVP_MOR_ERR_FAIL;
    return result == ITEM_READ;
}

// Reads the first item of a body, for replies that have only one.
[[nodiscard]] ItemResult FirstItem(const uint8_t *body, uint16_t bodyLength, Item &item);

// Copies the value of a body's first item over the front of the record, never beyond the record's end. Without an
// item the record stays as it is.
[[nodiscard]] ItemResult CopyFirstRaw(const uint8_t *body, uint16_t bodyLength, void *record, size_t recordSize);

template <typename Record>
[[nodiscard]] ItemResult CopyFirstRaw(const uint8_t *body, uint16_t bodyLength, Record *record)
{
    return CopyFirstRaw(body, bodyLength, record, sizeof(*record));
}

// A read of one row, on a session of its own. The row's numbers are still in network order. A reply without an item
// is refused.
uint32_t QueryRowRaw(Request &request, uint32_t msgOp, Reply &reply, void *record, size_t recordSize);

template <typename Record> uint32_t QueryRowRaw(Request &request, uint32_t msgOp, Reply &reply, Record *record)
{
    return QueryRowRaw(request, msgOp, reply, record, sizeof(*record));
}

// A value as an array of known size: null if it has another length, or if it is shorter.
template <size_t Size> const Bytes<Size> *Exactly(const uint8_t *value, uint32_t length)
{
    return length == Size ? reinterpret_cast<const Bytes<Size> *>(value) : nullptr;
}

template <size_t Size> const Bytes<Size> *AtLeast(const uint8_t *value, uint32_t length)
{
    return length >= Size ? reinterpret_cast<const Bytes<Size> *>(value) : nullptr;
}

template <size_t Size> const Bytes<Size> *Exactly(const Item &item)
{
    return Exactly<Size>(item.value, item.length);
}

template <size_t Size> const Bytes<Size> *AtLeast(const Item &item)
{
    return AtLeast<Size>(item.value, item.length);
}

// The equal entries of a value that begins with their number.
struct Entries {
    const uint8_t *first;
    uint32_t size; // of all of them
    uint16_t count;
};

// `countSize` bytes hold the number, of which the last two are read. False if the value does not have exactly the
// length that this number demands.
bool FindEntries(const uint8_t *value, uint32_t length, uint32_t countSize, uint32_t entrySize, Entries &entries);

} // namespace rsvp_mor

#endif
