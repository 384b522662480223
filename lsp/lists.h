// Lists of a state block: each decoder turns one item into heap memory that a host record owns. A list is whole or
// absent: on a failure the slot is as it was and nothing is allocated.
#pragma once

#include "channel/message.h"
#include "rsvp_mor/lsp.h"

extern "C" {

// Each takes the value of an item and its length, which must be exactly what the count in front demands.
uint32_t rsvp_mor_DecodeHopList(const uint8_t *value, uint32_t length, RSVP_MOR_HopList *out);
uint32_t rsvp_mor_DecodeEntryList16(const uint8_t *value, uint32_t length, RSVP_MOR_RouteList *out);
uint32_t rsvp_mor_DecodeEntryList32(const uint8_t *value, uint32_t length, RSVP_MOR_RouteList *out);

// Makes a filter spec node, puts it in front of the list at `head` and stores it in `lastNode`.
uint32_t rsvp_mor_DecodeFSInfo(const uint8_t *value, uint32_t length, RSVP_MOR_ReplyFSInfo **lastNode,
                               RSVP_MOR_ReplyFSInfo **head);
}

namespace rsvp_mor {

// Which slots of its record a call has filled, a bit an item type. What a slot held before the call is the caller's
// and is not looked at; what this call put there is released when a repeated item takes its place. The types of one
// record's slots differ in their low five bits.
using FilledSlots = uint32_t;

constexpr FilledSlots SlotBit(uint16_t itemType)
{
    return FilledSlots{1} << itemType % 32;
}

// The decoders above, into a slot of a record.
uint32_t FillHopList(const Item &item, RSVP_MOR_HopList &slot, FilledSlots &filled);
uint32_t FillRouteList16(const Item &item, RSVP_MOR_RouteList &slot, FilledSlots &filled);
uint32_t FillRouteList32(const Item &item, RSVP_MOR_RouteList &slot, FilledSlots &filled);

// Copies the text of a name item into a terminated heap block of the value's length plus 1; a NUL inside ends the
// text early. RSVP_MOR_ERR_FAIL if there is no memory.
uint32_t FillName(const Item &item, char *&slot, FilledSlots &filled);

// Release a list and reset its slot.
void FreeHopList(RSVP_MOR_HopList &list);
void FreeRouteList(RSVP_MOR_RouteList &list);

} // namespace rsvp_mor
