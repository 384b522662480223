// Faults on demand: what a daemon that misbehaves does, so that those who talk to it can be seen to bear it. A fault
// is asked for in the scenario or on the command line and strikes the requests that it names.
#pragma once

#include "frame.h"

#include <chrono>

namespace rsvpsimd {

enum class FaultKind : std::uint8_t {
    kLate,            // the answer comes `number` milliseconds later
    kSilent,          // no answer
    kShort,           // the frame is cut to `number` bytes; 0: by four bytes
    kLong,            // `number` bytes more than the frame has; 0: four
    kWrongBodyLength, // the header's length is one too many
    kCutItem,         // the last item claims more than there is
    kStatus,          // the answer has the status `number`
    kItemType,        // the first item has the type `number`
    kTwice,           // the answer comes twice
    kStuck,           // get-next gives the row of its own key again
    kShifting,        // get-next: the row that was to come is removed first
    kClose,           // the connection ends without an answer
    kExit,            // the daemon ends at once, as if it had crashed
};

struct Fault {
    FaultKind kind = FaultKind::kSilent;
    std::uint32_t number = 0;
    std::optional<std::uint8_t> msg_class = {};
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
