// The request side of the simulated daemon. Input: a fault, then requests, each after a 16-bit length. Whatever it is
// sent, the daemon still works afterwards.
#include "promise.h"

#include "daemon.h"
#include "generator.h"

using namespace rsvpsimd;

namespace {

constexpr std::string_view kFaults[] = {
    "late=1", "silent", "short",    "short=9", "long", "wrong-body-length", "cut-item", "status=7", "item-type=9",
    "twice",  "stuck",  "shifting", "close",   "exit"};

Daemon Fresh()
{
    Daemon daemon;
    for (const RowKind &kind : AllRowKinds())
        MakeRows(daemon.GetDevice(), std::string(kind.name) + "=3");
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
    const bool faulty = data[0] < std::size(kFaults);
    if (faulty)
        daemon.Add(ParseFault(std::string(kFaults[data[0]]) + ",class=3"));
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
