// The service as a whole: enable, disable, the yes-or-no capability calls, the option file.
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/set/commands.h"

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

void AddEnable(CommandLine &line, const std::string &word, uint32_t op, const std::string &help)
{
    Command &command = line.Add(line.Root(), word, help, "  rsvpctl " + word);
    command.run = [&command, op](Output &out) {
        return out.Report({command.name, fmt::format("RSVP_MOR_SetMplsRsvp({})", op), "", RSVP_MOR_SetMplsRsvp(op)});
    };
    command.requests = [op] { return RequestsOfGlobal(op == 0); };
}

Option AddOnOff(const Node &node)
{
    return node.AddChoice("state", "on|off", {"on", "off"}, "on or off").Required();
}

void AddCapability(CommandLine &line)
{
    const Node group = line.AddGroup(line.Root(), "capability", "RSVP as a yes-or-no capability",
                                     "  rsvpctl capability global on\n  rsvpctl capability interface 3 off");

    Command &global =
        line.Add(group, "global", "Of the device, as enable and disable", "  rsvpctl capability global on");
    const Option globalState = AddOnOff(global.node);
    global.run = [&global, globalState](Output &out) {
        const std::string state = globalState.Text();
        return out.Report(
            {global.name, "RSVP_SetGlobalCapability", state, RSVP_SetGlobalCapability(state == "on" ? 1 : 0)});
    };
    global.requests = [globalState] { return RequestsOfGlobal(globalState.Text() == "on"); };

    Command &interface = line.Add(group, "interface", "Of an interface, as set and undo interface",
                                  "  rsvpctl capability interface 3 off");
    const Option ifIndex = interface.node.AddNumber("ifIndex,--interface", UINT32_MAX, "Interface index").Required();
    const Option state = AddOnOff(interface.node);
    interface.run = [&interface, ifIndex, state](Output &out) {
        return out.Report({interface.name, "RSVP_SetIfCapability", ifIndex.Text() + " " + state.Text(),
                           RSVP_SetIfCapability(ifIndex.Number(), state.Text() == "on" ? 1 : 0)});
    };
    interface.requests = [ifIndex, state]() -> std::vector<WireRequest> {
        return {{kInterfaceClass,
                 state.Text() == "on" ? kSetOperation : kUndoOperation,
                 {{kInterfaceItem, WordBytes(ifIndex.Number())}, {kRsvpOnInterfaceItem, {}}}}};
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
        return out.Report({command.name, "RSVP_Opt_Parse", "", RSVP_Opt_Parse(target.data(), table.data())});
    };
}

} // namespace

void AddServiceCommands(CommandLine &line)
{
    AddEnable(line, "enable", 0, "Start the service on the master and the standby nodes");
    AddEnable(line, "disable", 1, "Tell the daemon, then stop the service everywhere, the master last");
    AddCapability(line);
    AddOptionsCheck(line);
}

} // namespace rsvpctl
