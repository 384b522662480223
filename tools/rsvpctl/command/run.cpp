// One way from a parsed command to its exit status, for a command line and for a line of a batch.
#include "tools/rsvpctl/command/run.h"

#include "manager/exchange/exchange.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <system_error>

namespace rsvpctl {
namespace {

// What only reads has no bytes to show: most of its requests depend on the answers.
Exit Rehearse(Output &out, const Command &command)
{
    if (!command.rehearse)
        return out.Plan(command.name, manager::Json::array(), "", command.name + ": sends no command\n");
    const Rehearsal rehearsal = command.rehearse();
    manager::Json requests = manager::Json::array();
    std::string text;
    for (const WireRequest &request : rehearsal.requests) {
        requests.push_back(ToJson(request));
        text += command.name + ": " + ToText(request) + "\n";
    }
    if (rehearsal.requests.empty())
        text = command.name + ": sends no message to the daemon; " + rehearsal.instead + "\n";
    if (!rehearsal.undo.empty())
        text += "  to take it back: rsvpctl " + rehearsal.undo + "\n";
    else if (!rehearsal.noUndo.empty())
        text += "  to take it back: " + rehearsal.noUndo + "\n";
    return out.Plan(command.name, requests, rehearsal.undo, text);
}

} // namespace

void MakeRehearsable(Command &command, std::function<Rehearsal()> rehearse)
{
    command.rehearse = std::move(rehearse);
    command.dryRun = command.node.AddFlag("--dry-run", "Print what would be sent, and send nothing");
}

Exit Run(Output &out, const Command &command, bool rehearse)
{
    try {
        manager::ForgetExchange();
        return rehearse || command.dryRun.IsGiven() ? Rehearse(out, command) : command.run(out);
    } catch (const UsageError &error) {
        return out.WrongUsage(error.command.empty() ? command.name : error.command, error);
    } catch (const std::exception &error) {
        return out.Broken(command.name, error.what());
    }
}

} // namespace rsvpctl
