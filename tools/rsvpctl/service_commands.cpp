// The service as a whole: enable, disable, status, the yes-or-no capability calls, the option file; and `explain`,
// which needs no service.
#include "command_line.h"
#include "nodes.h"
#include "render.h"
#include "walk.h"

#include <array>
#include <fmt/format.h>

namespace rsvpctl {
namespace {

constexpr uint16_t kRsvpOnInterfaceItem = 18;
constexpr uint16_t kDisableItem = 20;

// Enabling sends nothing: the start of the service, which the service manager does, is the enabling.
std::vector<WireRequest> RequestsOfGlobal(bool on)
{
    if (on)
        return {};
    return {{kGlobalClass, kUndoOperation, {{kDisableItem, {}}}}};
}

Exit Report(Output &out, const std::string &operation, const std::string &function, const std::string &asked,
            uint32_t status)
{
    return status == RSVP_MOR_OK ? out.Done(operation, asked) : out.Failed({operation, function, asked, status});
}

// The daemon answers if the cheapest question gets a reply; what it says is not looked at.
uint32_t AskDaemon()
{
    const Session session(true);
    if (session.IsMissing())
        return RSVP_MOR_ERR_LIPC;
    RSVP_MOR_DebugInfo info{};
    return RSVP_MOR_GetRsvpDebug(session.Fd(), &info);
}

Exit ShowStatus(Output &out, const std::string &operation)
{
    const bool runs = RSVP_IsGlobalEnabled() != 0;
    const uint32_t answer = AskDaemon();
    const bool answers = answer != RSVP_MOR_ERR_LIPC && answer != RSVP_MOR_ERR_FAIL;
    nlohmann::ordered_json record{{"service", runs ? "running" : "stopped"},
                                  {"daemon", answers ? "answers" : "does not answer"}};
    uint32_t count = 0;
    const uint32_t counted = answers ? RSVP_GetUpLspNumber(&count) : answer;
    record["upLsps"] = counted == RSVP_MOR_OK ? nlohmann::ordered_json(count) : nlohmann::ordered_json(nullptr);
    std::string text = DetailText(record);
    record["nodes"] = nlohmann::ordered_json::array();
    for (const Node &node : NodesOfDevice()) {
        record["nodes"].push_back({{"node", node.node}, {"role", node.role}, {"service", node.service}});
        text += fmt::format("{:<8} {}, {}\n", fmt::format("node {}", node.node), node.role, node.service);
    }
    return out.Record(operation, record, text, runs ? counted : RSVP_MOR_ERR_NOT_ENABLED);
}

void AddEnable(CommandLine &line, const std::string &word, uint32_t op, const std::string &help)
{
    Command &command = line.Add(line.Root(), word, help, "  rsvpctl " + word);
    command.run = [&command, op](Output &out) {
        return Report(out, command.name, fmt::format("RSVP_MOR_SetMplsRsvp({})", op), "", RSVP_MOR_SetMplsRsvp(op));
    };
    command.requests = [op] { return RequestsOfGlobal(op == 0); };
}

CLI::Option *AddOnOff(CLI::App &app)
{
    return app.add_option("state")
        ->description("on or off")
        ->type_name("on|off")
        ->required()
        ->check(CLI::IsMember({"on", "off"}));
}

void AddCapability(CommandLine &line)
{
    CLI::App &group = line.AddGroup(line.Root(), "capability", "RSVP as a yes-or-no capability",
                                    "  rsvpctl capability global on\n  rsvpctl capability interface 3 off");

    Command &global =
        line.Add(group, "global", "Of the device, as enable and disable", "  rsvpctl capability global on");
    const CLI::Option *globalState = AddOnOff(*global.parser);
    global.run = [&global, globalState](Output &out) {
        const std::string state = TextValue(globalState);
        return Report(out, global.name, "RSVP_SetGlobalCapability", state,
                      RSVP_SetGlobalCapability(state == "on" ? 1 : 0));
    };
    global.requests = [globalState] { return RequestsOfGlobal(TextValue(globalState) == "on"); };

    Command &interface = line.Add(group, "interface", "Of an interface, as set and undo interface",
                                  "  rsvpctl capability interface 3 off");
    const CLI::Option *ifIndex =
        AddNumber(*interface.parser, "ifIndex,--interface", UINT32_MAX, "Interface index")->required();
    const CLI::Option *state = AddOnOff(*interface.parser);
    interface.run = [&interface, ifIndex, state](Output &out) {
        return Report(out, interface.name, "RSVP_SetIfCapability", TextValue(ifIndex) + " " + TextValue(state),
                      RSVP_SetIfCapability(NumberValue(ifIndex), TextValue(state) == "on" ? 1 : 0));
    };
    interface.requests = [ifIndex, state]() -> std::vector<WireRequest> {
        return {{kInterfaceClass,
                 TextValue(state) == "on" ? kSetOperation : kUndoOperation,
                 {{kInterfaceItem, WordBytes(NumberValue(ifIndex))}, {kRsvpOnInterfaceItem, {}}}}};
    };
}

void AddOptionsCheck(CommandLine &line)
{
    Command &command =
        line.Add(line.Root(), "options", "Check that the option file can be read and has a plug-in option",
                 "  rsvpctl options");
    command.run = [&command](Output &out) {
        // An empty table knows no option by name: what is checked is the file, and no value is taken from it.
        std::array<uint64_t, 64> table{};
        std::array<uint64_t, 64> target{};
        return Report(out, command.name, "RSVP_Opt_Parse", "", RSVP_Opt_Parse(target.data(), table.data()));
    };
}

nlohmann::ordered_json StatusRecord(uint32_t code)
{
    const StatusText &text = Explain(code);
    return {{"code", fmt::format("{:#010x}", code)},
            {"name", text.name},
            {"exitStatus", static_cast<int>(text.exit)},
            {"likelyCause", text.cause},
            {"whatToDo", text.remedy}};
}

void AddExplain(CommandLine &line)
{
    Command &command = line.Add(line.Root(), "explain", "What a status means; without a code, all that have a name",
                                "  rsvpctl explain 0x6001001a\n  rsvpctl explain");
    const CLI::Option *code = AddNumber(*command.parser, "code,--code", UINT32_MAX, "The status");
    command.run = [&command, code](Output &out) {
        if (code->count() != 0)
            return out.Record(command.name, StatusRecord(NumberValue(code)));
        out.BeginList(command.name);
        for (const StatusText &text : KnownStatuses())
            out.ListRow(StatusRecord(text.status),
                        fmt::format("{:#010x}  exit {}  {}\n", text.status, static_cast<int>(text.exit), text.name));
        return out.EndList();
    };
}

} // namespace

void AddServiceCommands(CommandLine &line)
{
    AddEnable(line, "enable", 0, "Start the service on the master and the standby nodes");
    AddEnable(line, "disable", 1, "Tell the daemon, then stop the service everywhere, the master last");
    Command &status =
        line.Add(line.Root(), "status",
                 "Whether the service runs and on which nodes, the daemon answers, and LSPs are up. The "
                 "exit status says it too: 5 stopped, 3 or 4 runs and does not answer",
                 "  rsvpctl status\n  rsvpctl status --json");
    status.run = [&status](Output &out) { return ShowStatus(out, status.name); };
    AddCapability(line);
    AddOptionsCheck(line);
    AddExplain(line);
}

} // namespace rsvpctl
