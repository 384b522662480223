// Byte order, in one place. What has Net in its name converts between network and host order; what has Raw copies
// bytes as they stand. Wire values may lie at any address, so that they are read byte by byte and never through a
// cast pointer; the compiler makes one load and one swap of it. The width comes from the field's own type. Inlined
// even where the library is built for size: on the router's processor a conversion is shorter than a call of one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

// A record that is copied whole from the wire relies on its layout: checked where the copy stands.
#define RSVP_MOR_ASSERT_SIZE(record, size)            static_assert(sizeof(record) == (size))
#define RSVP_MOR_ASSERT_OFFSET(record, field, offset) static_assert(offsetof(record, field) == (offset))

#define RSVP_MOR_INLINE [[gnu::always_inline]] inline

namespace rsvp_mor {

RSVP_MOR_INLINE uint16_t LoadNet16(const uint8_t *at)
{
    return static_cast<uint16_t>(at[0] << 8 | at[1]);
}

RSVP_MOR_INLINE uint32_t LoadNet32(const uint8_t *at)
{
    return static_cast<uint32_t>(at[0]) << 24 | static_cast<uint32_t>(at[1]) << 16 |
           static_cast<uint32_t>(at[2]) << 8 | at[3];
}

inline uint64_t LoadNet64(const uint8_t *at)
{
    return static_cast<uint64_t>(LoadNet32(at)) << 32 | LoadNet32(at + 4);
}

// The number's own bytes are read in network order, which swaps it where the machine has another.
RSVP_MOR_INLINE void StoreNet16(uint8_t *at, uint16_t number)
{
    number = LoadNet16(reinterpret_cast<const uint8_t *>(&number));
    memcpy(at, &number, sizeof number);
}

RSVP_MOR_INLINE void StoreNet32(uint8_t *at, uint32_t number)
{
    number = LoadNet32(reinterpret_cast<const uint8_t *>(&number));
    memcpy(at, &number, sizeof number);
}

RSVP_MOR_INLINE void LoadNet(const uint8_t *at, uint16_t &field)
{
    field = LoadNet16(at);
}

RSVP_MOR_INLINE void LoadNet(const uint8_t *at, uint32_t &field)
{
    field = LoadNet32(at);
}

RSVP_MOR_INLINE void LoadNet(const uint8_t *at, uint64_t &field)
{
    field = LoadNet64(at);
}

template <typename Number, size_t Count> void LoadNet(const uint8_t *at, Number (&fields)[Count])
{
    for (size_t i = 0; i < Count; ++i)
        LoadNet(at + i * sizeof(Number), fields[i]);
}

RSVP_MOR_INLINE void LoadRaw(const uint8_t *at, uint8_t &field)
{
    field = *at;
}

template <size_t Count> void LoadRaw(const uint8_t *at, uint8_t (&field)[Count])
{
    memcpy(field, at, Count);
}

template <size_t Count> void StoreRaw(uint8_t *at, const uint8_t (&field)[Count])
{
    memcpy(at, field, Count);
}

// Converts numbers where they lie, in a record that was copied from the wire. Its own inverse.
template <typename... Number> RSVP_MOR_INLINE void ConvertNet(Number &...numbers)
{
    (LoadNet(reinterpret_cast<const uint8_t *>(&numbers), numbers), ...);
}

} // namespace rsvp_mor
