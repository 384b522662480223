// `explain`: what a status means. It needs no service.
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/show/commands.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

manager::Json StatusRecord(uint32_t code)
{
    const StatusText &text = Explain(code);
    return {{"code", fmt::format("{:#010x}", code)},
            {"name", text.name},
            {"exitStatus", static_cast<int>(text.exit)},
            {"likelyCause", text.cause},
            {"whatToDo", text.remedy}};
}

} // namespace

void AddExplainCommand(CommandLine &line)
{
    Command &command = line.Add(line.Root(), "explain", "What a status means; without a code, all that have a name",
                                "  rsvpctl explain 0x6001001a\n  rsvpctl explain");
    const Option code = command.node.AddNumber("code,--code", UINT32_MAX, "The status");
    command.mayBeLong = true;
    command.run = [&command, code](Output &out) {
        if (code.IsGiven())
            return out.Record(command.name, StatusRecord(code.Number()));
        out.BeginList(command.name);
        for (const StatusText &text : KnownStatuses())
            out.ListRow(StatusRecord(text.status),
                        fmt::format("{:#010x}  exit {}  {}\n", text.status, static_cast<int>(text.exit), text.name));
        return out.EndList();
    };
}

} // namespace rsvpctl
