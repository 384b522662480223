// Looking before saying "done".
#include "tools/rsvpctl/set/verify.h"

#include "manager/exchange/exchange.h"
#include "tools/rsvpctl/command/service_state.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

constexpr auto kCannotTell = "the platform does not say whether the service runs";

// A daemon that hangs runs too. A reply that is a refusal or nonsense still shows that it has started.
std::string ProblemOfRunning()
{
    const uint32_t status = AskDaemon();
    const manager::Exchange &exchange = manager::LastExchange();
    if (exchange.stage == manager::Exchange::Stage::Receive && exchange.error == 0)
        return {};
    return "the service runs, but the daemon does not answer RSVP_MOR_GetRsvpDebug: " +
           TextOf(FaultOf(status, exchange), exchange);
}

Exit Report(Output &out, const Outcome &outcome, const std::string &problem)
{
    return problem.empty() ? out.Done(outcome.operation, outcome.asked) : out.NotDone(outcome, problem);
}

} // namespace

Exit ReportChange(Output &out, const Outcome &outcome)
{
    if (outcome.status != RSVP_MOR_OK || manager::LastExchange().stage != manager::Exchange::Stage::None)
        return out.Report(outcome);
    switch (AskService().Anywhere()) {
    case Running::No:
        return Report(out, outcome, "");
    case Running::Yes:
        return Report(out, outcome, "nothing was sent, but the service runs");
    default:
        return Report(out, outcome, fmt::format("nothing was sent, and {}", kCannotTell));
    }
}

Exit ReportStart(Output &out, const Outcome &outcome)
{
    if (outcome.status != RSVP_MOR_OK)
        return out.Report(outcome);
    const ServiceState state = AskService();
    switch (state.Everywhere()) {
    case Running::Yes:
        return Report(out, outcome, ProblemOfRunning());
    case Running::No:
        return Report(out, outcome, "the service does not run on " + state.NodesThatAre(Running::No));
    default:
        return Report(out, outcome, kCannotTell);
    }
}

Exit ReportStop(Output &out, const Outcome &outcome)
{
    if (outcome.status != RSVP_MOR_OK)
        return out.Report(outcome);
    const ServiceState state = AskService();
    switch (state.Anywhere()) {
    case Running::No:
        return Report(out, outcome, "");
    case Running::Yes:
        return Report(out, outcome, "the service still runs on " + state.NodesThatAre(Running::Yes));
    default:
        return Report(out, outcome, kCannotTell);
    }
}

} // namespace rsvpctl
