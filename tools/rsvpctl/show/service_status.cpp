// `status`: whether the service runs and where, whether the daemon answers, how many LSPs are up.
#include "manager/exchange/exchange.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/service_state.h"
#include "tools/rsvpctl/print/render.h"
#include "tools/rsvpctl/show/commands.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

using manager::Json;

Exit ShowStatus(Output &out, const std::string &operation)
{
    const ServiceState state = AskService();
    const Running running = state.Anywhere();
    const uint32_t answer = AskDaemon();
    const bool answers = IsAnswer(answer);
    Json record{{"service", NameOf(running)}, {"daemon", answers ? "answers" : "does not answer"}};
    uint32_t count = 0;
    const uint32_t counted = answers ? RSVP_GetUpLspNumber(&count) : answer;
    if (const manager::Exchange &exchange = manager::LastExchange(); exchange.givenUp == manager::GivenUp::TimeOver)
        out.Message(fmt::format("rsvpctl: {}: {}: {}", operation,
                                answers ? "RSVP_GetUpLspNumber" : "RSVP_MOR_GetRsvpDebug",
                                TextOf(FaultOf(counted, exchange), exchange)));
    record["upLsps"] = counted == RSVP_MOR_OK ? Json(count) : Json(nullptr);
    std::string text = DetailText(record);
    record["nodes"] = Json::array();
    for (const DeviceNode &node : state.nodes) {
        record["nodes"].push_back({{"node", node.node}, {"role", node.role}, {"service", NameOf(node.service)}});
        text += fmt::format("{:<8} {}, {}\n", fmt::format("node {}", node.node), node.role, NameOf(node.service));
    }
    switch (running) {
    case Running::Yes:
        return out.Record(operation, record, text, counted);
    case Running::No:
        return out.Record(operation, record, text, RSVP_MOR_ERR_NOT_ENABLED);
    default:
        out.Message("rsvpctl: status: the platform does not say whether the service runs; what it printed above says "
                    "why");
        return out.Record(operation, record, text, RSVP_MOR_ERR_FAIL);
    }
}

} // namespace

void AddStatusCommand(CommandLine &line, Node parent)
{
    const std::string name = parent.Path().empty() ? "status" : parent.Path() + " status";
    Command &command =
        line.Add(parent, "status",
                 "Whether the service runs and on which nodes, the daemon answers, and LSPs are up. The "
                 "exit status says it too: 5 stopped, 3 or 4 runs and does not answer, 4 unknown",
                 fmt::format("  rsvpctl {0}\n  rsvpctl {0} --json", name));
    command.run = [&command](Output &out) { return ShowStatus(out, command.name); };
}

} // namespace rsvpctl
