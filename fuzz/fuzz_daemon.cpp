// The request side of the simulated daemon. Input: a fault, then requests, each after a 16-bit length. Whatever it is
// sent, the daemon still works afterwards.
#include "promise.h"

#include "host/daemon/daemon.h"
#include "host/daemon/scenario/generator.h"

using namespace rsvpsimd;

namespace {

Daemon Fresh()
{
    Daemon daemon;
    for (const RowKind &kind : AllRowKinds())
        MakeRows(daemon.GetDevice(), kind.name, 3);
    daemon.TraceTo([](const std::string &line) { Must(!line.empty(), "a frame can be traced in words"); });
    return daemon;
}

uint32_t StatusOf(const Reply &reply)
{
    const auto message = ReadMessage(reply.frame);
    Must(message && reply.frame.size() <= RSVP_MOR_MSG_MAX, "a reply is a whole frame");
    return message->status;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const Daemon prototype = Fresh();
    if (size == 0)
        return 0;
    Daemon daemon = prototype;
    const bool faulty = data[0] < 2 * AllFaults().size();
    if (faulty) {
        const FaultName &kind = AllFaults()[data[0] / 2];
        const bool withNumber = kind.needsNumber || (kind.most != 0 && data[0] % 2 != 0);
        Fault fault = MakeFault(kind.name, withNumber ? std::optional<uint64_t>(9) : std::nullopt);
        fault.requests.msgClass = kShow;
        daemon.Add(fault);
    }
    ByteView input = ByteView(data, size).subspan(1);
    while (input.size() >= 2) {
        const size_t length = std::min(static_cast<size_t>(LoadNet(input.first(2))), input.size() - 2);
        const Reply reply = daemon.Answer(input.subspan(2, length));
        if (!faulty && reply.copies != 0)
            StatusOf(reply);
        input = input.subspan(2 + length);
    }
    Bytes item; // the hello interval: a command, since the fault strikes only reads
    AppendItem(item, 10, Bytes{9, 0, 0, 0});
    Must(StatusOf(daemon.Answer(BuildFrame(kGlobal, kHelloTimer, kOk, item))) == kOk, "the daemon still works");
    return 0;
}
