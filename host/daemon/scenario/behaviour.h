// How a scenario or the command line asks the daemon to behave, apart from what its tables hold: faults, to see how
// management programs bear them, and requests that are refused.
#ifndef HOST_DAEMON_SCENARIO_BEHAVIOUR_H
#define HOST_DAEMON_SCENARIO_BEHAVIOUR_H

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
};

struct Fault {
    FaultKind kind = FaultKind::Silent;
    uint32_t number = 0;
    Selector requests = {};
    bool once = false;
    bool spent = false;
};

struct Refusal {
    Selector requests = {};
    uint32_t status = 0;
};

struct Behaviour {
    std::vector<Fault> faults = {};
    std::vector<Refusal> refusals = {};
    bool trace = false; // to standard error
};

// A kind of fault as people write it.
struct FaultName {
    std::string_view name;
    FaultKind kind = FaultKind::Silent;
    uint32_t most = 0; // the largest number it takes; 0: it takes none
    bool needsNumber = false;
};
std::span<const FaultName> AllFaults();

// Both throw std::invalid_argument with what is wrong. ParseFault reads "late=200,class=3,op=4,item=8,once".
Fault MakeFault(std::string_view kind, std::optional<uint64_t> number);
Fault ParseFault(std::string_view text);

} // namespace rsvpsimd

#endif
