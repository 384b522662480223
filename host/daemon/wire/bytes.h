// Bytes as they travel, and the numbers in them: most significant byte first, up to eight bytes wide. The arithmetic
// gives the same result on every machine, whatever its byte order.
#ifndef HOST_DAEMON_WIRE_BYTES_H
#define HOST_DAEMON_WIRE_BYTES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace rsvpsimd {

using Bytes = std::vector<uint8_t>;
using ByteView = std::span<const uint8_t>;

inline bool IsZero(ByteView bytes)
{
    return std::ranges::all_of(bytes, [](uint8_t byte) { return byte == 0; });
}

inline uint64_t LoadNet(ByteView bytes)
{
    uint64_t number = 0;
    for (const uint8_t byte : bytes)
        number = number << 8 | byte;
    return number;
}

inline void StoreNet(std::span<uint8_t> bytes, uint64_t number)
{
    for (auto place = bytes.rbegin(); place != bytes.rend(); ++place) {
        *place = static_cast<uint8_t>(number);
        number >>= 8;
    }
}

inline void AppendNet(Bytes &bytes, uint64_t number, size_t width)
{
    bytes.resize(bytes.size() + width);
    StoreNet(std::span(bytes).last(width), number);
}

} // namespace rsvpsimd

#endif
