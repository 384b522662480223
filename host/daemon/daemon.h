// The request side of the daemon, without a socket: bytes in, a reply out. Whatever comes in, the daemon stays whole.
#pragma once

#include "device.h"
#include "faults.h"

namespace rsvpsimd {

// A request that the scenario wants refused.
struct Refusal {
    std::optional<std::uint8_t> msgClass = {};
    std::optional<std::uint8_t> op = {};
    std::optional<std::uint16_t> item = {};
    std::uint32_t status = 0;
};

using TraceSink = std::function<void(const std::string &line)>;

class Daemon {
public:
    Device &GetDevice() { return device_; }
    void Add(const Fault &fault) { faults_.push_back(fault); }
    void Add(const Refusal &refusal) { refusals_.push_back(refusal); }
    void TraceTo(TraceSink sink) { trace_ = std::move(sink); }

    // `client` only tells the lines of the trace apart.
    Reply Answer(ByteView request, std::uint64_t client = 0);

private:
    struct Result {
        std::uint32_t status = kOk;
        Bytes body = {};
    };
    struct Walk { // what faults do to the search of rows
        bool stuck = false;
        bool shifting = false;
    };

    Result Handle(const Message &request, const Walk &walk);
    Result Carry(const Message &request);
    Result Show(const Message &request, const Walk &walk);
    Result ShowRow(const RowKind &kind, const Message &request, const Walk &walk);
    std::vector<Fault *> FaultsFor(const Message &request);
    void CountIn(const Message &request, std::uint32_t status);

    Device device_;
    std::vector<Fault> faults_;
    std::vector<Refusal> refusals_;
    TraceSink trace_;
};

} // namespace rsvpsimd
