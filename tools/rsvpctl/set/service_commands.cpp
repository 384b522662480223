// The service as a whole: enable, disable, the yes-or-no capability calls, the option file.
#include "host/platform/options.h"
#include "manager/record/text.h"
#include "tools/rsvpctl/command/run.h"
#include "tools/rsvpctl/print/time_limit.h"
#include "tools/rsvpctl/set/commands.h"
#include "tools/rsvpctl/set/verify.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace rsvpctl {
namespace {

constexpr uint16_t kRsvpOnInterfaceItem = 18;
constexpr uint16_t kDisableItem = 20;

// Enabling sends nothing: the start of the service, which the service manager does, is the enabling.
Rehearsal RehearseGlobal(bool on)
{
    Rehearsal rehearsal;
    if (on) {
        rehearsal.instead = "the service manager starts the service on the master and the standby nodes";
        rehearsal.undo = "disable";
    } else {
        rehearsal.requests = {{kGlobalClass, kUndoOperation, {{kDisableItem, {}, false, "disable"}}}};
        rehearsal.undo = "enable";
    }
    return rehearsal;
}

// The service manager may take its time, on every node.
Exit ChangeGlobal(Output &out, bool on, const std::string &operation, const std::string &function,
                  const std::string &asked, const std::function<uint32_t()> &change)
{
    const std::string waitsFor = function + ", which asks the service manager";
    const Waiting waiting(waitsFor.c_str());
    const Outcome outcome{operation, function, asked, change()};
    return on ? ReportStart(out, outcome) : ReportStop(out, outcome);
}

void AddEnable(CommandLine &line, const std::string &word, bool on, const std::string &help)
{
    const uint32_t op = on ? 0 : 1;
    Command &command = line.Add(line.Root(), word, help, "  rsvpctl " + word);
    command.run = [&command, on, op](Output &out) {
        const std::string function = fmt::format("RSVP_MOR_SetMplsRsvp({})", op);
        return ChangeGlobal(out, on, command.name, function, "", [op] { return RSVP_MOR_SetMplsRsvp(op); });
    };
    MakeRehearsable(command, [on] { return RehearseGlobal(on); });
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
        const bool on = globalState.Text() == "on";
        const uint32_t capability = on ? 1 : 0;
        const std::string function = fmt::format("RSVP_SetGlobalCapability({})", capability);
        return ChangeGlobal(out, on, global.name, function, globalState.Text(),
                            [capability] { return RSVP_SetGlobalCapability(capability); });
    };
    MakeRehearsable(global, [globalState] { return RehearseGlobal(globalState.Text() == "on"); });

    Command &interface = line.Add(group, "interface", "Of an interface, as set and undo interface",
                                  "  rsvpctl capability interface 3 off");
    const Option ifIndex = interface.node.AddNumber("ifIndex,--interface", UINT32_MAX, "Interface index").Required();
    const Option state = AddOnOff(interface.node);
    interface.run = [&interface, ifIndex, state](Output &out) {
        return ReportChange(out, {interface.name, "RSVP_SetIfCapability", ifIndex.Text() + " " + state.Text(),
                                  RSVP_SetIfCapability(ifIndex.Number(), state.Text() == "on" ? 1 : 0)});
    };
    MakeRehearsable(interface, [ifIndex, state] {
        const bool on = state.Text() == "on";
        Rehearsal rehearsal;
        rehearsal.requests = {{kInterfaceClass,
                               on ? kSetOperation : kUndoOperation,
                               {InterfaceItem(ifIndex.Number()), {kRsvpOnInterfaceItem, {}, false, "interface"}}}};
        rehearsal.undo = fmt::format("capability interface {} {}", ifIndex.Text(), on ? "off" : "on");
        return rehearsal;
    });
}

// The values of the named options in the file's first plug-in option; null for one that it does not have.
uint32_t ReadOptions(const std::vector<std::string> &names, manager::Json &values)
{
    std::vector<HostOption> table;
    table.reserve(names.size() + 1);
    for (const std::string &name : names)
        table.push_back({name.c_str(), static_cast<uint32_t>(table.size() * sizeof(uint32_t))});
    table.push_back({nullptr, 0});
    // An option that is not there leaves its place alone, so it keeps what was there in both readings.
    std::vector<uint32_t> ones(names.size(), UINT32_MAX);
    std::vector<uint32_t> zeros(names.size(), 0);
    for (std::vector<uint32_t> *target : {&ones, &zeros}) {
        if (const uint32_t status = RSVP_Opt_Parse(target->data(), table.data()); status != RSVP_MOR_OK)
            return status;
    }
    for (size_t i = 0; i < names.size(); ++i)
        values[names[i]] = ones[i] == zeros[i] ? manager::Json(ones[i]) : manager::Json();
    return RSVP_MOR_OK;
}

void AddOptionsCheck(CommandLine &line)
{
    Command &command = line.Add(line.Root(), "options", "The values in the option file's first plug-in option",
                                "  rsvpctl options refresh dscp");
    const Option names =
        command.node.AddWords("names", "NAME...", "The options that may be there; others are refused").Required();
    command.run = [&command, names](Output &out) {
        manager::Json values = manager::Json::object();
        const uint32_t status = ReadOptions(names.Words(), values);
        return status == RSVP_MOR_OK
                   ? out.Record(command.name, values)
                   : out.Failed({command.name, "RSVP_Opt_Parse", manager::Joined(names.Words(), " "), status});
    };
}

} // namespace

void AddServiceCommands(CommandLine &line)
{
    AddEnable(line, "enable", true, "Start the service on the master and the standby nodes");
    AddEnable(line, "disable", false, "Tell the daemon, then stop the service everywhere, the master last");
    AddCapability(line);
    AddOptionsCheck(line);
}

} // namespace rsvpctl
