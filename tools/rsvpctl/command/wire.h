// What a command puts on the wire, for `batch --dry-run` and for the help: the daemon's own terms of class, operation
// and items, so that a dry run can be laid beside the daemon's trace.
#ifndef TOOLS_RSVPCTL_COMMAND_WIRE_H
#define TOOLS_RSVPCTL_COMMAND_WIRE_H

#include "manager/record/json.h"

#include <cstdint>
#include <string>
#include <vector>

namespace rsvpctl {

// Message classes, operations, and the items that name the interface or peer of a command.
constexpr uint8_t kGlobalClass = 0;
constexpr uint8_t kInterfaceClass = 1;
constexpr uint8_t kResetClass = 5;
constexpr uint8_t kSetOperation = 0;
constexpr uint8_t kUndoOperation = 1;
constexpr uint16_t kInterfaceItem = 1;
constexpr uint16_t kPeerItem = 0;

struct WireItem {
    uint16_t type;
    std::vector<uint8_t> value;
    bool secret = false; // its bytes are counted, never shown
    std::string meaning; // "refresh-interval 30"; what the bytes say in the words of the command line
};

struct WireRequest {
    uint8_t messageClass;
    uint8_t operation;
    std::vector<WireItem> items;
};

/** The four bytes of an item with a 32-bit number. */
std::vector<uint8_t> WordBytes(uint32_t number);
/** A 16-bit number, then two zero bytes. */
std::vector<uint8_t> ShortBytes(uint16_t number);
/** Two 16-bit numbers. */
std::vector<uint8_t> PairBytes(uint16_t first, uint16_t second);
/** A byte, then three zero bytes. */
std::vector<uint8_t> ByteBytes(uint8_t number);

/** The item that names the interface of a command. */
WireItem InterfaceItem(uint32_t ifIndex);

/** {"class":0,"op":0,"items":[{"type":15,"length":4,"value":"001e0000","meaning":"refresh-interval 30"}]} */
manager::Json ToJson(const WireRequest &request);

/** "class 0 op 0 item 15 [4] 001e0000 (refresh-interval 30)" */
std::string ToText(const WireRequest &request);

} // namespace rsvpctl

#endif
