// Faults as a scenario or the command line asks for them, to see how management programs bear them.
#ifndef HOST_DAEMON_SCENARIO_FAULT_H
#define HOST_DAEMON_SCENARIO_FAULT_H

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace rsvpsimd {

enum class FaultKind : uint8_t {
    Late,            // the answer comes `number` milliseconds late
    Silent,          // no answer
    Short,           // the frame is cut to `number` bytes, or by four if that is 0
    Long,            // the frame has `number` bytes too many, or four if that is 0
    WrongBodyLength, // the header's length is one too many
    CutItem,         // the last item claims more than there is
    Status,          // the answer has the status `number`
    ItemType,        // the first item has the type `number`
    Twice,           // the answer comes twice
    Stuck,           // get-next gives the row of its own key again
    Shifting,        // get-next removes the row that is due, and gives the one after it
    Close,           // the connection is closed without an answer
    Exit,            // the daemon ends at once, as in a crash; keep this one last
};

// Which requests are meant. A part that is not set matches all of them.
struct Selector {
    std::optional<uint8_t> msgClass = {};
    std::optional<uint8_t> op = {};
    std::optional<uint16_t> item = {};
    bool operator==(const Selector &) const = default;
};

struct Fault {
    FaultKind kind = FaultKind::Silent;
    uint32_t number = 0;
    Selector requests = {};
    std::optional<uint32_t> afterRows = {}; // it selects only reads that go on behind so many rows of their table
    uint32_t after = 0;                     // so many of the requests that it selects are spared first
    uint32_t strikes = 0;                   // it ends after so many; 0: never
    bool operator==(const Fault &) const = default;
};

// A kind of fault as people write it.
struct FaultName {
    std::string_view name;
    FaultKind kind = FaultKind::Silent;
    uint32_t most = 0; // the largest number it takes; 0: it takes none
    bool needsNumber = false;
};
std::span<const FaultName> AllFaults();

// All throw std::invalid_argument with what is wrong. ParseFault reads "late=200,class=3,op=4,item=8,after=3,for=1".
Fault MakeFault(std::string_view kind, std::optional<uint64_t> number);
Fault ParseFault(std::string_view text);

// A part that has a number, such as "after". False if a fault has no part of this name.
bool SetPart(Fault &fault, std::string_view part, uint64_t number);

} // namespace rsvpsimd

#endif
