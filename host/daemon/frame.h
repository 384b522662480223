// The message frame: eight bytes of header and a run of items, each a 16-bit type, a 16-bit length and the
// value, without padding. Also the numbers that every message shares: classes, operations and the daemon's
// own statuses.
#pragma once

#include "rsvp_mor/status_codes.h"
#include "wire_layout.h"

namespace rsvpsimd {

enum Class : std::uint8_t { kGlobal = 0, kInterface = 1, kPeer = 2, kShow = 3, kReset = 5 };

enum Op : std::uint8_t {
    kSet = 0,
    kUndo = 1,
    kGet = 3,
    kGetFirst = 4,
    kGetNext = 5,
    kGetFirstIngress = 6,
    kGetNextIngress = 7,
    kHelloTimer = 8,
};

enum Status : std::uint32_t {
    kOk = RSVP_MOR_OK,
    kNoSuchRow = RSVP_MOR_ERR_NOT_EXIST, // also the end of a table
    kMalformed = 0x60010001,             // frame or items do not add up
    kUnknownClass = 0x60010002,
    kUnknownOp = 0x60010003,
    kUnknownItem = 0x60010004,
    kBadLength = 0x60010005, // a value is not as long as its type demands
    kBadValue = 0x60010006,  // bytes that must be 0 are not
    kBadItems = 0x60010007,  // the wrong number of items, or the key item is not the first
    kNoRoom = 0x60010008,    // commands have made as many rows as one table takes
};

inline constexpr std::size_t kHeaderSize = 8;
inline constexpr std::size_t kItemHeaderSize = 4;
inline constexpr std::size_t kBodyMax = RSVP_MOR_MSG_MAX - kHeaderSize;

struct Item {
    std::uint16_t type = 0;
    ByteView value;
};

struct Message {
    std::uint8_t msgClass = 0;
    std::uint8_t op = 0;
    std::uint32_t status = 0;
    std::vector<Item> items; // point into the bytes that were read
};

// Nothing if the length in the header is not that of the body, or an item runs over the end.
std::optional<Message> ReadMessage(ByteView frame);

void AppendItem(Bytes &body, std::uint16_t type, ByteView value);
Bytes BuildFrame(std::uint8_t msgClass, std::uint8_t op, std::uint32_t status, ByteView body);

std::string ClassName(std::uint8_t msgClass);
std::string OpName(std::uint8_t op);

} // namespace rsvpsimd
