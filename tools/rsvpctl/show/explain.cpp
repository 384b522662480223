// `explain`: what a status means, by its number or its name. It needs no service.
#include "manager/record/text.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/nearest.h"
#include "tools/rsvpctl/show/commands.h"

#include <algorithm>
#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <optional>

namespace rsvpctl {
namespace {

using manager::Json;

std::optional<uint32_t> StatusOf(const std::string &code)
{
    for (const StatusText &text : KnownStatuses()) {
        if (code == text.name)
            return text.status;
    }
    const auto number = manager::ParseNumber(code);
    return number && *number <= UINT32_MAX ? std::optional(static_cast<uint32_t>(*number)) : std::nullopt;
}

std::string CheckCode(const std::string &code)
{
    if (StatusOf(code))
        return {};
    std::vector<Spelling> names;
    for (const StatusText &text : KnownStatuses())
        names.push_back({text.name, text.name});
    return fmt::format("takes a number from 0 to {} or a name{}'{}'{}", UINT32_MAX, kButGiven, code,
                       DidYouMean(code, names));
}

Json StatusRecord(uint32_t code)
{
    const StatusText &text = Explain(code);
    const auto simulated = SimulatedStatuses();
    const auto own = std::find_if(simulated.begin(), simulated.end(),
                                  [&](const SimulatedStatus &one) { return one.status == code; });
    return {{"code", fmt::format("{:#010x}", code)},
            {"name", text.name},
            {"exitStatus", static_cast<int>(text.exit)},
            {"likelyCause", text.cause},
            {"whatToDo", text.remedy},
            {"fromSimulatedDaemon", own == simulated.end() ? Json() : Json(own->meaning)}};
}

Exit ListStatuses(Output &out, const std::string &operation)
{
    out.BeginList(operation);
    const auto list = [&](uint32_t status, const std::string &name) {
        out.ListRow(StatusRecord(status),
                    fmt::format("{:#010x}  exit {}  {}\n", status, static_cast<int>(Explain(status).exit), name));
    };
    for (const StatusText &text : KnownStatuses())
        list(text.status, text.name);
    for (const SimulatedStatus &own : SimulatedStatuses())
        list(own.status, fmt::format("{} (the simulated daemon: {})", Explain(own.status).name, own.meaning));
    return out.EndList();
}

} // namespace

void AddExplainCommand(CommandLine &line)
{
    Command &command =
        line.Add(line.Root(), "explain",
                 "What a status means; without a code, all that have a name and the simulated daemon's own",
                 "  rsvpctl explain 0x6001001a\n  rsvpctl explain RSVP_MOR_ERR_LIPC\n  rsvpctl explain");
    const Option code = command.node.AddText("code,--code", "CODE", CheckCode, "The status, a number or a name");
    command.mayBeLong = true;
    command.run = [&command, code](Output &out) {
        return code.IsGiven() ? out.Record(command.name, StatusRecord(StatusOf(code.Text()).value()))
                              : ListStatuses(out, command.name);
    };
}

} // namespace rsvpctl
