// The lists of a state block: each decoder turns one item into heap memory that belongs to the record. A list is
// whole or absent: after a failure the slot is as it was and nothing has been allocated.
#ifndef LSP_LISTS_H
#define LSP_LISTS_H

#include "channel/message.h"
#include "rsvp_mor/lsp.h"

extern "C" {

// Each takes the value of an item and its length, which must be exactly what the count at its front demands.
uint32_t rsvp_mor_DecodeHopList(const uint8_t *value, uint32_t length, RSVP_MOR_HopList *out);
uint32_t rsvp_mor_DecodeEntryList16(const uint8_t *value, uint32_t length, RSVP_MOR_RouteList *out);
uint32_t rsvp_mor_DecodeEntryList32(const uint8_t *value, uint32_t length, RSVP_MOR_RouteList *out);

// Makes a filter spec node, puts it at the front of the list at `head` and stores it in `lastNode`.
uint32_t rsvp_mor_DecodeFSInfo(const uint8_t *value, uint32_t length, RSVP_MOR_ReplyFSInfo **lastNode,
                               RSVP_MOR_ReplyFSInfo **head);
}

namespace rsvp_mor {

// Which slots of its record a call has filled, one bit for each item type. What a slot held before the call belongs
// to the caller and is not looked at; what this call put there is released when the same item comes again. The item
// types of one record differ in their low five bits.
using FilledSlots = uint32_t;

constexpr FilledSlots SlotBit(uint16_t itemType)
{
    return FilledSlots{1} << itemType % 32;
}

// The decoders above, for a slot of a record.
uint32_t FillHopList(const Item &item, RSVP_MOR_HopList &slot, FilledSlots &filled);
uint32_t FillRouteList16(const Item &item, RSVP_MOR_RouteList &slot, FilledSlots &filled);
uint32_t FillRouteList32(const Item &item, RSVP_MOR_RouteList &slot, FilledSlots &filled);

// Copies the text of a name item into a terminated heap block of the value's length plus 1; a NUL inside it ends the
// text early. Returns RSVP_MOR_ERR_FAIL if there is no memory.
uint32_t FillName(const Item &item, char *&slot, FilledSlots &filled);

// Release a list and reset its slot.
void FreeHopList(RSVP_MOR_HopList &list);
void FreeRouteList(RSVP_MOR_RouteList &list);

} // namespace rsvp_mor

#endif
