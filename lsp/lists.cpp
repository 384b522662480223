// Decodes the lists that belong to a state block. A list of entries begins with their count and has exactly the
// length that the count demands; the entries are the wire's bytes with the named numbers converted in place.
#include "lsp/lists.h"

#include "lsp/wire_objects.h"

#include <cstdlib>

using namespace rsvp_mor;

namespace {

// Entries are the wire's image.
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_HopEntry, 36);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_HopEntry, address, 4);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_HopEntry, label, 8);
RSVP_MOR_ASSERT_SIZE(RSVP_MOR_RouteEntry, 12);
RSVP_MOR_ASSERT_OFFSET(RSVP_MOR_RouteEntry, value, 4);

constexpr uint32_t FILTER_SPEC_SIZE = SENDER_SIZE + 4;

// The array is one block of exactly the size of its entries, even if there are none.
template <typename List> uint32_t CopyEntriesRaw(const uint8_t *value, uint32_t length, uint32_t countSize, List *out)
{
    Entries entries;
    if (!FindEntries(value, length, countSize, sizeof(*out->entries), entries))
        return RSVP_MOR_ERR_FAIL;
    void *block = malloc(entries.size);
    if (block == nullptr)
        return RSVP_MOR_ERR_FAIL;
    memcpy(block, entries.first, entries.size);
    out->entries = static_cast<decltype(out->entries)>(block);
    out->count = entries.count;
    return RSVP_MOR_OK;
}

uint32_t DecodeEntryList(const uint8_t *value, uint32_t length, uint32_t countSize, RSVP_MOR_RouteList *out)
{
    const uint32_t status = CopyEntriesRaw(value, length, countSize, out);
    if (status != RSVP_MOR_OK)
        return status;
    for (uint16_t i = 0; i < out->count; ++i)
        ConvertNet(out->entries[i].value);
    return RSVP_MOR_OK;
}

// Puts a fresh list into its slot and releases what this call had put there before.
template <typename List> void Replace(List &slot, const List &fresh, uint16_t itemType, FilledSlots &filled)
{
    if ((filled & SlotBit(itemType)) != 0)
        free(slot.entries);
    slot = fresh;
    filled |= SlotBit(itemType);
}

uint32_t FillRouteList(const Item &item, uint32_t countSize, RSVP_MOR_RouteList &slot, FilledSlots &filled)
{
    RSVP_MOR_RouteList fresh;
    const uint32_t status = DecodeEntryList(item.value, item.length, countSize, &fresh);
    if (status == RSVP_MOR_OK)
        Replace(slot, fresh, item.type, filled);
    return status;
}

template <typename List> void FreeArray(List &list)
{
    if (list.entries == nullptr)
        return;
    free(list.entries);
    list.count = 0;
    list.entries = nullptr;
}

} // namespace

uint32_t rsvp_mor_DecodeHopList(const uint8_t *value, uint32_t length, RSVP_MOR_HopList *out)
{
    const uint32_t status = CopyEntriesRaw(value, length, 2, out);
    if (status != RSVP_MOR_OK)
        return status;
    for (uint16_t i = 0; i < out->count; ++i) {
        RSVP_MOR_HopEntry &hop = out->entries[i];
        if (hop.kind == RSVP_MOR_HOP_IPV4)
            ConvertNet(hop.address);
        else if (hop.kind == RSVP_MOR_HOP_LABEL)
            ConvertNet(hop.label);
    }
    return RSVP_MOR_OK;
}

uint32_t rsvp_mor_DecodeEntryList16(const uint8_t *value, uint32_t length, RSVP_MOR_RouteList *out)
{
    return DecodeEntryList(value, length, 2, out);
}

uint32_t rsvp_mor_DecodeEntryList32(const uint8_t *value, uint32_t length, RSVP_MOR_RouteList *out)
{
    return DecodeEntryList(value, length, 4, out);
}

uint32_t rsvp_mor_DecodeFSInfo(const uint8_t *value, uint32_t length, RSVP_MOR_ReplyFSInfo **lastNode,
                               RSVP_MOR_ReplyFSInfo **head)
{
    const auto *filterSpec = Exactly<FILTER_SPEC_SIZE>(value, length);
    if (filterSpec == nullptr)
        return RSVP_MOR_ERR_FAIL;
    RSVP_MOR_ReplyFSInfo *node = static_cast<RSVP_MOR_ReplyFSInfo *>(malloc(sizeof(*node)));
    if (node == nullptr)
        return RSVP_MOR_ERR_FAIL;
    *node = {};
    DecodeSender(Part<0>(*filterSpec), node->filter);
    LoadNet<8>(*filterSpec, node->label);
    *lastNode = node;
    node->next = *head;
    *head = node;
    return RSVP_MOR_OK;
}

namespace rsvp_mor {

uint32_t FillHopList(const Item &item, RSVP_MOR_HopList &slot, FilledSlots &filled)
{
    RSVP_MOR_HopList fresh;
    const uint32_t status = rsvp_mor_DecodeHopList(item.value, item.length, &fresh);
    if (status == RSVP_MOR_OK)
        Replace(slot, fresh, item.type, filled);
    return status;
}

uint32_t FillRouteList16(const Item &item, RSVP_MOR_RouteList &slot, FilledSlots &filled)
{
    return FillRouteList(item, 2, slot, filled);
}

uint32_t FillRouteList32(const Item &item, RSVP_MOR_RouteList &slot, FilledSlots &filled)
{
    return FillRouteList(item, 4, slot, filled);
}

uint32_t FillName(const Item &item, char *&slot, FilledSlots &filled)
{
    char *name = static_cast<char *>(malloc(item.length + 1u));
    if (name == nullptr)
        return RSVP_MOR_ERR_FAIL;
    const char *text = reinterpret_cast<const char *>(item.value);
    const size_t textLength = item.length == 0 ? 0 : strnlen(text, item.length);
    if (textLength != 0)
        memcpy(name, text, textLength);
    name[textLength] = '\0';
    if ((filled & SlotBit(item.type)) != 0)
        free(slot);
    slot = name;
    filled |= SlotBit(item.type);
    return RSVP_MOR_OK;
}

void FreeHopList(RSVP_MOR_HopList &list)
{
    FreeArray(list);
}

void FreeRouteList(RSVP_MOR_RouteList &list)
{
    FreeArray(list);
}

} // namespace rsvp_mor
