// How a scenario asks the daemon to behave beyond what its tables hold at the start: faults, requests that are
// refused, and events that change all of this while the daemon runs.
#ifndef HOST_DAEMON_SCENARIO_BEHAVIOUR_H
#define HOST_DAEMON_SCENARIO_BEHAVIOUR_H

#include "host/daemon/device/change.h"
#include "host/daemon/scenario/fault.h"

#include <chrono>

namespace rsvpsimd {

struct Refusal {
    Selector requests = {};
    uint32_t status = 0;
    bool operator==(const Refusal &) const = default;
};

// Where something stands in its file. It says nothing about what it is, so that an event that moved is still the
// same.
struct Line {
    size_t number = 0;
    bool operator==(const Line &) const { return true; }
};

// What happens at once, in the order of the members.
struct Event {
    template <typename What> struct InTable {
        RowKindRef kind;
        Line line = {};
        What what = {};
        bool operator==(const InTable &) const = default;
    };
    struct RowChange {
        Bytes key;
        BlockChange change;
        bool operator==(const RowChange &) const = default;
    };

    Line line = {};
    std::chrono::milliseconds first{0};  // after the start
    std::chrono::milliseconds period{0}; // 0: it happens once
    std::vector<InTable<Bytes>> removed = {};
    std::vector<InTable<EncodedRow>> added = {};
    std::vector<InTable<RowChange>> changed = {};
    RecordChange global = {};
    RecordChange debug = {};
    std::map<std::string, uint32_t> counts = {};
    std::map<std::string, uint32_t> countsAdded = {};
    std::optional<Fault> ends = {};
    std::optional<Fault> begins = {};
    bool operator==(const Event &) const = default;
};

struct Behaviour {
    std::vector<Fault> faults = {};
    std::vector<Refusal> refusals = {};
    std::vector<Event> events = {};
    bool trace = false;   // to standard error
    bool capture = false; // to the file of the host directory
};

} // namespace rsvpsimd

#endif
