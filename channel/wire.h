// Byte order and bounds, in one place. A function with Net in its name converts between network and host order, one
// with Raw copies bytes unchanged. A value is an array whose size the compiler knows, so a field beyond its end does
// not compile; the width of a field comes from its own type. A value may start at any address: it is read byte by
// byte, never through a cast pointer, and the compiler turns that into one load and one swap. Inlined even where the
// library is built for size, since on the router's processor a conversion is shorter than a call.
#ifndef CHANNEL_WIRE_H
#define CHANNEL_WIRE_H

#include <cstddef>
#include <cstdint>
#include <cstring>

// A record that is copied whole from the wire relies on its layout, which is checked next to the copy.
#define RSVP_MOR_ASSERT_SIZE(record, size)            static_assert(sizeof(record) == (size))
#define RSVP_MOR_ASSERT_OFFSET(record, field, offset) static_assert(offsetof(record, field) == (offset))

#define RSVP_MOR_INLINE [[gnu::always_inline]] inline

namespace rsvp_mor {

// A value on the wire.
template <size_t Size> using Bytes = uint8_t[Size];

// The views below are built on these. Any other caller must know in some other way that the bytes are there.
namespace unchecked {

RSVP_MOR_INLINE void LoadNet(const uint8_t *at, uint16_t &field)
{
    field = static_cast<uint16_t>(at[0] << 8 | at[1]);
}

RSVP_MOR_INLINE void LoadNet(const uint8_t *at, uint32_t &field)
{
    field = static_cast<uint32_t>(at[0]) << 24 | static_cast<uint32_t>(at[1]) << 16 |
            static_cast<uint32_t>(at[2]) << 8 | at[3];
}

inline void LoadNet(const uint8_t *at, uint64_t &field)
{
    uint32_t high;
    uint32_t low;
    LoadNet(at, high);
    LoadNet(at + 4, low);
    field = static_cast<uint64_t>(high) << 32 | low;
}

template <typename Number, size_t Count> void LoadNet(const uint8_t *at, Number (&fields)[Count])
{
    for (size_t i = 0; i < Count; ++i)
        LoadNet(at + i * sizeof(Number), fields[i]);
}

} // namespace unchecked

// ---- Read: the field at byte `At` of a value ----

template <size_t At, size_t Size, typename Field>
RSVP_MOR_INLINE void LoadNet(const uint8_t (&value)[Size], Field &field)
{
    static_assert(At + sizeof(field) <= Size, "the field lies beyond the value");
    unchecked::LoadNet(value + At, field);
}

template <size_t At, size_t Size> RSVP_MOR_INLINE void LoadRaw(const uint8_t (&value)[Size], uint8_t &field)
{
    static_assert(At < Size, "the field lies beyond the value");
    field = value[At];
}

template <size_t At, size_t Size, size_t Count> void LoadRaw(const uint8_t (&value)[Size], uint8_t (&field)[Count])
{
    static_assert(At + Count <= Size, "the field lies beyond the value");
    memcpy(field, value + At, Count);
}

// ---- Write ----

template <size_t At, size_t Size, typename Number>
RSVP_MOR_INLINE void StoreNet(uint8_t (&value)[Size], Number number)
{
    static_assert(At + sizeof(number) <= Size, "the field lies beyond the value");
    unchecked::LoadNet(reinterpret_cast<const uint8_t *>(&number), number); // swaps it on a little-endian machine
    memcpy(value + At, &number, sizeof(number));
}

template <size_t At, size_t Size, size_t Count> void StoreRaw(uint8_t (&value)[Size], const uint8_t (&field)[Count])
{
    static_assert(At + Count <= Size, "the field lies beyond the value");
    memcpy(value + At, field, Count);
}

// ---- Objects inside a value ----

// A value from some byte on. It converts to the array that the object's decoder or encoder takes.
template <typename Byte, size_t Left> struct Rest {
    template <size_t Size> using Array = Byte[Size];

    Byte *first;

    template <size_t Size> RSVP_MOR_INLINE operator Array<Size> &() const
    {
        static_assert(Size <= Left, "the object lies beyond the value");
        return *reinterpret_cast<Array<Size> *>(first);
    }
};

template <size_t At, typename Byte, size_t Size> RSVP_MOR_INLINE Rest<Byte, Size - At> Part(Byte (&value)[Size])
{
    static_assert(At < Size, "the object lies beyond the value");
    return {value + At};
}

// Copies an object whose record is the wire's image.
template <typename Record> void CopyWholeRaw(const uint8_t (&value)[sizeof(Record)], Record &record)
{
    memcpy(&record, value, sizeof(record));
}

// Converts numbers in place, in a record that was copied from the wire. Its own inverse.
template <typename... Number> RSVP_MOR_INLINE void ConvertNet(Number &...numbers)
{
    (unchecked::LoadNet(reinterpret_cast<const uint8_t *>(&numbers), numbers), ...);
}

} // namespace rsvp_mor

#endif
