// Reads the items of a reply. All comparisons of lengths against what a reply holds are here: a value that comes out
// of this file lies inside its body.
#include "channel/message.h"

#include "platform/stlv.h"

namespace rsvp_mor {

namespace {

// Reads one item at `at`, where `left` bytes are. Returns the bytes it takes, or 0 if there is none that can be read.
uint16_t TakeItem(const uint8_t *at, uint16_t left, Item &item)
{
    uint16_t type = 0;
    uint16_t length = 0;
    void *value = nullptr;
    const uint32_t taken = STLV_Get(at, left, &type, &length, &value);
    if (taken == 0 || taken > left)
        return 0;

    const uint8_t *first = static_cast<const uint8_t *>(value);
    if (length != 0 && (first < at || first > at + left || length > at + left - first))
        return 0;
    item = {type, length, first};
    return static_cast<uint16_t>(taken);
}

} // namespace

ItemResult NextItem(Items &items, Item &item)
{
    if (items.left == 0)
        return ITEM_END;
    const uint16_t taken = TakeItem(items.next, items.left, item);
    if (taken == 0)
        return ITEM_MALFORMED;
    items.next += taken;
    items.left = static_cast<uint16_t>(items.left - taken);
    return ITEM_READ;
}

bool FirstItem(const uint8_t *body, uint16_t length, Item &item)
{
    item = {};
    return TakeItem(body, length, item) != 0;
}

} // namespace rsvp_mor
