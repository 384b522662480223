// Faults on demand: what a daemon that misbehaves does, so that those who talk to it can be seen to bear it. A fault
// is asked for in the scenario or on the command line and strikes the requests that it names.
#pragma once

#include "frame.h"

#include <chrono>

namespace rsvpsimd {

enum class FaultKind : std::uint8_t {
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
    Exit,            // the daemon ends at once, as if it had crashed
};

struct Fault {
    FaultKind kind = FaultKind::Silent;
    std::uint32_t number = 0;
    std::optional<std::uint8_t> msgClass = {};
    std::optional<std::uint8_t> op = {};
    std::optional<std::uint16_t> item = {};
    bool once = false;
    bool spent = false;
};

// "late=200,class=3,op=4,item=8,once". Throws std::invalid_argument with what is wrong.
Fault ParseFault(std::string_view text);

struct Reply {
    Bytes frame;
    int copies = 1; // 0: the request stays without an answer
    std::chrono::milliseconds delay{0};
    bool close = false; // end the connection
    bool crash = false; // end the daemon
};

// Spoils a reply that is otherwise ready.
void Strike(const Fault &fault, Reply &reply);

} // namespace rsvpsimd
