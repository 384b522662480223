// The message frame: eight bytes of header, then items, each a 16-bit type, a 16-bit length and the value, without
// padding. Also the numbers that all messages share: classes, operations and the daemon's own statuses.
#ifndef HOST_DAEMON_WIRE_FRAME_H
#define HOST_DAEMON_WIRE_FRAME_H

#include "host/daemon/wire/bytes.h"
#include "rsvp_mor/status_codes.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace rsvpsimd {

enum Class : uint8_t { kGlobal = 0, kInterface = 1, kPeer = 2, kShow = 3, kReset = 5 };

enum Op : uint8_t {
    kSet = 0,
    kUndo = 1,
    kGet = 3,
    kGetFirst = 4,
    kGetNext = 5,
    kGetFirstIngress = 6,
    kGetNextIngress = 7,
    kHelloTimer = 8,
};

enum Status : uint32_t {
    kOk = RSVP_MOR_OK,
    kNoSuchRow = RSVP_MOR_ERR_NOT_EXIST,
    kMalformed = 0x60010001,
    kUnknownClass = 0x60010002,
    kUnknownOp = 0x60010003,
    kUnknownItem = 0x60010004,
    kBadLength = 0x60010005,
    kBadValue = 0x60010006,
    kBadItems = 0x60010007,
    kNoRoom = 0x60010008,
};

// The same numbers in words, for the trace and for the documents.
struct Meaning {
    uint32_t number = 0;
    std::string_view words;
};

inline constexpr std::array kClasses{
    Meaning{kGlobal, "global"}, Meaning{kInterface, "interface"}, Meaning{kPeer, "peer"},
    Meaning{kShow, "show"},     Meaning{kReset, "reset"},
};

inline constexpr std::array kOps{
    Meaning{kSet, "set"},
    Meaning{kUndo, "undo"},
    Meaning{kGet, "get"},
    Meaning{kGetFirst, "get-first"},
    Meaning{kGetNext, "get-next"},
    Meaning{kGetFirstIngress, "get-first-ingress"},
    Meaning{kGetNextIngress, "get-next-ingress"},
    Meaning{kHelloTimer, "hello-timer"},
};

inline constexpr std::array kStatuses{
    Meaning{kOk, "done"},
    Meaning{kNoSuchRow, "no row with this key, or no further row: the end of a table"},
    Meaning{kMalformed, "the frame or the items do not add up"},
    Meaning{kUnknownClass, "unknown class"},
    Meaning{kUnknownOp, "the item does not know this operation"},
    Meaning{kUnknownItem, "unknown item"},
    Meaning{kBadLength, "a value is not as long as its type demands"},
    Meaning{kBadValue, "bytes that must be 0 are not"},
    Meaning{kBadItems, "the wrong number of items, or the key item is not the first"},
    Meaning{kNoRoom, "commands have made as many rows as one table takes"},
};

inline constexpr size_t kHeaderSize = 8;
inline constexpr size_t kItemHeaderSize = 4;
inline constexpr size_t kBodyMax = RSVP_MOR_MSG_MAX - kHeaderSize;

struct Item {
    uint16_t type = 0;
    ByteView value;
};

struct Message {
    uint8_t msgClass = 0;
    uint8_t op = 0;
    uint32_t status = 0;
    std::vector<Item> items; // point into the bytes that were read
};

// Nothing if the header's length is not that of the body, or if an item runs past the end.
std::optional<Message> ReadMessage(ByteView frame);

// The items of a body, which they point into; nothing if one runs past the end.
std::optional<std::vector<Item>> ReadItems(ByteView body);

void AppendItem(Bytes &body, uint16_t type, ByteView value);
Bytes BuildFrame(uint8_t msgClass, uint8_t op, uint32_t status, ByteView body);

// The name, or the number and a question mark if there is none.
std::string ClassName(uint8_t msgClass);
std::string OpName(uint8_t op);

} // namespace rsvpsimd

#endif
