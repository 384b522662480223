// Scenario files: a file is either refused with a message that names the line, or accepted, and then every table can
// be read, before and after its events.
#include "promise.h"

#include "host/daemon/daemon.h"
#include "host/daemon/scenario/scenario.h"

using namespace rsvpsimd;

namespace {

void AskForEachTable(Daemon &daemon)
{
    for (const RowKind &kind : AllRowKinds()) {
        Bytes item;
        AppendItem(item, kind.requestItem, Bytes(kind.FirstKeySize()));
        const Reply reply = daemon.Answer(BuildFrame(kShow, kGetFirst, kOk, item));
        Must(reply.copies == 0 || reply.frame.size() <= 2 * RSVP_MOR_MSG_MAX,
             "a reply is bounded, with and without faults");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Daemon daemon;
    Behaviour behaviour;
    try {
        behaviour = ReadScenarioText(daemon.GetDevice(), {reinterpret_cast<const char *>(data), size}, "input");
    } catch (const ScenarioError &error) {
        Must(std::string_view(error.what()).starts_with("input:"), "a refusal names the file");
        return 0;
    }
    daemon.Add(behaviour);
    AskForEachTable(daemon);
    for (const Event &event : behaviour.events)
        daemon.Happen(event);
    AskForEachTable(daemon);
    return 0;
}
