// The reader of items, over the platform's own item library and over one that lies: whatever it is told, every item
// that it gives lies inside the body, and the walk ends.
#include "promise.h"

#include "channel/message.h"
#include "platform/stlv.h"

#include <algorithm>
#include <vector>

namespace {

constexpr size_t kLieSize = 8; // type, length, distance of the value, bytes taken
const uint8_t *nextLie;
size_t liesLeft; // none: the item library tells the truth

} // namespace

extern "C" {

uint32_t __real_STLV_Get(const void *buf, uint16_t length, uint16_t *type, uint16_t *itemLength, void **value);
uint32_t __wrap_STLV_Get(const void *buf, uint16_t length, uint16_t *type, uint16_t *itemLength, void **value);

uint32_t __wrap_STLV_Get(const void *buf, uint16_t length, uint16_t *type, uint16_t *itemLength, void **value)
{
    if (liesLeft == 0)
        return __real_STLV_Get(buf, length, type, itemLength, value);
    const auto &lie = *reinterpret_cast<const rsvp_mor::Bytes<kLieSize> *>(nextLie);
    uint16_t distance;
    uint16_t taken;
    rsvp_mor::LoadNet<0>(lie, *type);
    rsvp_mor::LoadNet<2>(lie, *itemLength);
    rsvp_mor::LoadNet<4>(lie, distance);
    rsvp_mor::LoadNet<6>(lie, taken);
    *value = reinterpret_cast<void *>(reinterpret_cast<uintptr_t>(buf) +
                                      static_cast<uintptr_t>(static_cast<int16_t>(distance)));
    nextLie += kLieSize;
    --liesLeft;
    return taken;
}
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    nextLie = data + 1;
    liesLeft = std::min<size_t>(data[0], (size - 1) / kLieSize);
    const uint8_t *start = nextLie + liesLeft * kLieSize;
    const size_t length = std::min<size_t>(static_cast<size_t>(data + size - start), UINT16_MAX);
    const std::vector<uint8_t> body(start, start + length); // a read outside of it is seen

    rsvp_mor::Items items{body.data(), static_cast<uint16_t>(length)};
    rsvp_mor::Item item;
    std::vector<uint8_t> copy;
    for (uint16_t left = items.left; rsvp_mor::NextItem(items, item) == rsvp_mor::ITEM_READ; left = items.left) {
        Must(items.left < left && items.next + items.left == body.data() + length,
             "every item moves the walk forward");
        copy.assign(item.value, item.value + item.length);
    }
    uint8_t record[16] = {};
    const rsvp_mor::ItemResult first = rsvp_mor::CopyFirstRaw(body.data(), static_cast<uint16_t>(length), &record);
    Must((first == rsvp_mor::ITEM_END) == (length == 0), "only an empty body ends before its first item");
    for (const uint32_t countSize : {2U, 4U}) {
        rsvp_mor::Entries entries{};
        if (rsvp_mor::FindEntries(body.data(), static_cast<uint32_t>(length), countSize, data[0] % 16U, entries))
            copy.assign(entries.first, entries.first + entries.size);
    }
    return 0;
}
