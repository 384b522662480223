// How the daemon is asked to behave, besides what its tables hold: faults, so that those who talk to it can be seen
// to bear them, and requests that are refused. Asked for in a scenario or on the command line.
#ifndef HOST_DAEMON_SCENARIO_BEHAVIOUR_H
#define HOST_DAEMON_SCENARIO_BEHAVIOUR_H

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace rsvpsimd {

enum class FaultKind : uint8_t {
    Late,            // the answer comes `number` milliseconds later
    Silent,          // no answer
    Short,           // the frame is cut to `number` bytes; 0: by four bytes
    Long,            // `number` bytes more than the frame has; 0: four
    WrongBodyLength, // the header's length is one too many
    CutItem,         // the last item claims more than there is
    Status,          // the answer has the status `number`
    ItemType,        // the first item has the type `number`
    Twice,           // the answer comes twice
    Stuck,           // get-next gives the row of its own key again
    Shifting,        // get-next: the row that was to come is removed first
    Close,           // the connection ends without an answer
    Exit,            // the daemon ends at once, as if it had crashed; stays the last
};

// The requests that are meant; what is not named means all.
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

// All that can be asked for, by name.
struct FaultName {
    std::string_view name;
    FaultKind kind = FaultKind::Silent;
    uint32_t most = 0; // the largest number it takes; 0: it takes none
    bool needsNumber = false;
};
std::span<const FaultName> AllFaults();

// Both throw std::invalid_argument with what is wrong. The second reads "late=200,class=3,op=4,item=8,once".
Fault MakeFault(std::string_view kind, std::optional<uint64_t> number);
Fault ParseFault(std::string_view text);

} // namespace rsvpsimd

#endif
