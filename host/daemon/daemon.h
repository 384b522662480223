// The daemon without its socket: bytes in, a reply out. Whatever comes in, the daemon stays usable.
#ifndef HOST_DAEMON_DAEMON_H
#define HOST_DAEMON_DAEMON_H

#include "host/daemon/events.h"
#include "host/daemon/faults.h"

namespace rsvpsimd {

using TraceSink = std::function<void(const std::string &line)>;

class Daemon {
public:
    // Forgets what it held before. The events of a behaviour are for whoever keeps the time.
    void Start(Device device, const Behaviour &behaviour);

    Device &GetDevice() { return device_; }
    void Add(const Fault &fault) { faults_.push_back({fault}); }
    void Add(const Behaviour &more); // its faults and refusals
    void TraceTo(TraceSink sink) { trace_ = std::move(sink); }

    // Does what the event says, and returns what of it was not possible.
    std::vector<std::string> Happen(const Event &event);

    // A line of its own in the trace.
    void Note(const std::string &line) const;

    // `client` is only a label in the trace.
    Reply Answer(ByteView request, uint64_t client = 0);

private:
    struct Result {
        uint32_t status = kOk;
        Bytes body = {};
    };
    struct Striking {
        Fault fault;
        uint64_t selected = 0; // requests so far
    };
    struct Walk { // what faults do to the search for rows
        bool stuck = false;
        bool shifting = false;
    };

    Result Handle(const Message &request, const Walk &walk);
    Result Carry(const Message &request);
    Result Show(const Message &request, const Walk &walk);
    Result ShowRow(const RowKind &kind, const Message &request, const Walk &walk);
    std::vector<Fault> FaultsFor(const Message &request);
    uint64_t RowsBefore(const Message &request);
    void CountIn(const Message &request, uint32_t status);

    Device device_;
    std::vector<Striking> faults_;
    std::vector<Refusal> refusals_;
    TraceSink trace_;
};

} // namespace rsvpsimd

#endif
