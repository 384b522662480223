// Reads the items of a reply. Every comparison of a length with what a reply holds is made here or, where the
// compiler knows the length, in the header: a value that leaves this file lies inside its body.
#include "channel/message.h"

#include "platform/stlv.h"

namespace rsvp_mor {

ItemResult TakeItem(Items &items, Item &item)
{
    const uint8_t *const body = items.next;
    const uint16_t left = items.left;
    uint16_t type = 0;
    uint16_t length = 0;
    void *value = nullptr;
    const uint32_t taken = STLV_Get(body, left, &type, &length, &value);
    if (taken == 0 || taken > left)
        return ITEM_MALFORMED;
    const uint8_t *first = static_cast<const uint8_t *>(value);
    if (length != 0 && (first < body || first > body + left || length > body + left - first))
        return ITEM_MALFORMED;

    items.next += taken;
    items.left = static_cast<uint16_t>(items.left - taken);
    item = {type, length, first};
    return ITEM_READ;
}

ItemResult FirstItem(const uint8_t *body, uint16_t bodyLength, Item &item)
{
    Items items = {body, bodyLength};
    return NextItem(items, item);
}

ItemResult CopyFirstRaw(const uint8_t *body, uint16_t bodyLength, void *record, size_t recordSize)
{
    Item item;
    const ItemResult result = FirstItem(body, bodyLength, item);
    if (result == ITEM_READ && item.length != 0)
        memcpy(record, item.value, item.length < recordSize ? item.length : recordSize);
    return result;
}

bool FindEntries(const uint8_t *value, uint32_t length, uint32_t countSize, uint32_t entrySize, Entries &entries)
{
    if (length < countSize)
        return false;
    uint16_t count;
    unchecked::LoadNet(value + countSize - sizeof(count), count);
    entries = {value + countSize, count * entrySize, count};
    return length == countSize + entries.size;
}

} // namespace rsvp_mor
