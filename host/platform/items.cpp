// The layout of the items in a message body: type and length, 16 bits each in network order, then the value, without
// padding. The simulated daemon has its own description of the same layout, so that the two check each other.
#include "platform/stlv.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr uint32_t kOverhead = 4;

void PutNet16(unsigned char *bytes, uint16_t number)
{
    bytes[0] = static_cast<unsigned char>(number >> 8);
    bytes[1] = static_cast<unsigned char>(number & 0xff);
}

uint16_t GetNet16(const unsigned char *bytes)
{
    return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
}

} // namespace

extern "C" {

uint32_t STLV_Set(void *buf, uint16_t room, uint16_t type, uint16_t length, const void *value)
{
    if (buf == nullptr || kOverhead + length > room || (value == nullptr && length != 0))
        return 0;
    auto *bytes = static_cast<unsigned char *>(buf);
    PutNet16(bytes, type);
    PutNet16(bytes + 2, length);
    if (length != 0)
        std::memcpy(bytes + kOverhead, value, length);
    return kOverhead + length;
}

uint32_t STLV_Get(const void *buf, uint16_t length, uint16_t *type, uint16_t *itemLength, void **value)
{
    const auto *bytes = static_cast<const unsigned char *>(buf);
    if (bytes == nullptr || length < kOverhead || kOverhead + GetNet16(bytes + 2) > length)
        return 0;
    *type = GetNet16(bytes);
    *itemLength = GetNet16(bytes + 2);
    // The buffer is the caller's and writable; only this call promises not to write to it.
    *value = const_cast<unsigned char *>(bytes + kOverhead);
    return kOverhead + *itemLength;
}

} // extern "C"
