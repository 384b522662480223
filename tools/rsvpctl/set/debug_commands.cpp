// Debug switches and resets: the commands whose arguments are records of the daemon's numbers.
#include "manager/record/key.h"
#include "manager/table/tables.h"
#include "tools/rsvpctl/command/run.h"
#include "tools/rsvpctl/command/session.h"
#include "tools/rsvpctl/print/usage_error.h"
#include "tools/rsvpctl/set/commands.h"

#include <fmt/format.h>

namespace rsvpctl {
namespace {

constexpr uint16_t kDebugItem = 7;
constexpr uint16_t kAuthEntryItem = 0;
constexpr uint16_t kStatisticsItem = 1;

void Append(std::vector<uint8_t> &bytes, const std::vector<uint8_t> &more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

struct DebugArguments {
    Option type;
    Option endpoint;
    Option tunnelId;
    Option extendedTunnelId;
};

bool BindsSession(uint32_t type)
{
    return type == RSVP_MOR_DEBUG_SESSION_A || type == RSVP_MOR_DEBUG_SESSION_B;
}

RSVP_MOR_DebugSwitch SwitchOf(const DebugArguments &arguments)
{
    RSVP_MOR_DebugSwitch debug{};
    debug.debugType = arguments.type.Number();
    const bool session = arguments.endpoint.IsGiven();
    if (session != BindsSession(debug.debugType))
        throw UsageError(
            fmt::format("debug: type {} takes {}", debug.debugType,
                        session ? "no session" : "a session: --endpoint, --tunnel-id, --extended-tunnel-id"));
    if (session) {
        debug.session.tunnelEndpoint = arguments.endpoint.Address();
        debug.session.tunnelId = static_cast<uint16_t>(arguments.tunnelId.Number());
        debug.session.extendedTunnelId = arguments.extendedTunnelId.Address();
    }
    return debug;
}

WireRequest RequestOf(uint8_t op, const RSVP_MOR_DebugSwitch &debug)
{
    std::vector<uint8_t> value = WordBytes(debug.session.tunnelEndpoint);
    Append(value, PairBytes(0, debug.session.tunnelId));
    Append(value, WordBytes(debug.session.extendedTunnelId));
    Append(value, WordBytes(debug.debugType));
    return {kGlobalClass, op, {{kDebugItem, value, false, fmt::format("debug type {}", debug.debugType)}}};
}

std::string UndoOf(const DebugArguments &arguments)
{
    std::string undo = "debug undo " + arguments.type.Text();
    if (arguments.endpoint.IsGiven())
        undo += fmt::format(" --endpoint {} --tunnel-id {} --extended-tunnel-id {}", arguments.endpoint.Text(),
                            arguments.tunnelId.Text(), arguments.extendedTunnelId.Text());
    return undo;
}

void AddDebugVerb(CommandLine &line, const Node &group, const std::string &verb, uint8_t op, const std::string &help)
{
    Command &command = line.Add(group, verb, help,
                                "  rsvpctl debug " + verb + " 4\n  rsvpctl debug " + verb +
                                    " 16 --endpoint 10.0.0.9 --tunnel-id 5 --extended-tunnel-id 10.0.0.1");
    const Node &node = command.node;
    const Option endpoint = node.AddAddress("--endpoint", "Tunnel end point of the session, for types 16 and 64");
    const Option tunnelId = node.AddNumber("--tunnel-id", UINT16_MAX, "Tunnel identifier of the session");
    const Option extended = node.AddAddress("--extended-tunnel-id", "Extended tunnel identifier of the session");
    endpoint.Needs(tunnelId).Needs(extended);
    tunnelId.Needs(endpoint);
    extended.Needs(endpoint);
    const DebugArguments arguments{node.AddNumber("type,--type", UINT32_MAX, "Which switch").Required(), endpoint,
                                   tunnelId, extended};
    command.run = [&command, arguments, op](Output &out) {
        const RSVP_MOR_DebugSwitch debug = SwitchOf(arguments);
        return out.Report(
            {command.name, "RSVP_MOR_SetDebug", "type " + arguments.type.Text(), RSVP_MOR_SetDebug(op, &debug)});
    };
    MakeRehearsable(command, [arguments, op, verb] {
        Rehearsal rehearsal;
        rehearsal.requests = {RequestOf(op, SwitchOf(arguments))};
        if (verb == "set")
            rehearsal.undo = UndoOf(arguments);
        return rehearsal;
    });
}

void AddDebugShow(CommandLine &line, const Node &group)
{
    Command &command = line.Add(group, "show", "The state of the debug switches", "  rsvpctl debug show --json");
    command.takesDetail = true;
    command.run = [&command](Output &out) { return ShowRecord(out, command.name, manager::kDebugSwitches); };
}

Rehearsal ResetOf(WireItem item)
{
    Rehearsal rehearsal;
    rehearsal.requests = {{kResetClass, 0, {std::move(item)}}};
    rehearsal.noUndo = "nothing brings back what is cleared";
    return rehearsal;
}

Exit ReportKey(Output &out, const Command &command, const char *function, const Option &key, uint32_t status)
{
    return status == RSVP_MOR_OK ? out.Done(command.name, key.Text())
                                 : out.Failed({command.name, function, "key " + key.Text(), status});
}

void AddResetStatistics(CommandLine &line, const Node &group)
{
    Command &command = line.Add(group, "statistics", "Clear counters; the numbers are the daemon's",
                                "  rsvpctl reset statistics 0,0\n  rsvpctl reset statistics statsId1=1,statsId2=0");
    const Option key =
        command.node.AddKey("key,--key", manager::Describe<RSVP_MOR_StatisticsKey>(), "What to clear").Required();
    command.run = [&command, key](Output &out) {
        const auto which = KeyOf<RSVP_MOR_StatisticsKey>(key);
        return WithSession(out, command.name, true, [&](int32_t fd) {
            return ReportKey(out, command, "RSVP_MOR_ResetStatistics", key, RSVP_MOR_ResetStatistics(fd, &which));
        });
    };
    MakeRehearsable(command, [key] {
        const auto which = KeyOf<RSVP_MOR_StatisticsKey>(key);
        std::vector<uint8_t> value = WordBytes(which.statsId1);
        Append(value, ShortBytes(which.statsId2));
        return ResetOf({kStatisticsItem, value, false, "counters " + key.Text()});
    });
}

void AddResetAuth(CommandLine &line, const Node &group)
{
    Command &command =
        line.Add(group, "auth", "Reset one authentication entry", "  rsvpctl reset auth 10.1.12.2,0,0,0");
    const Option key =
        command.node.AddKey("key,--key", manager::Describe<RSVP_MOR_AuthEntryKey>(), "The entry").Required();
    command.run = [&command, key](Output &out) {
        const auto entry = KeyOf<RSVP_MOR_AuthEntryKey>(key);
        return ReportKey(out, command, "RSVP_MOR_ResetAuth", key, RSVP_MOR_ResetAuth(&entry));
    };
    MakeRehearsable(command, [key] {
        const auto entry = KeyOf<RSVP_MOR_AuthEntryKey>(key);
        std::vector<uint8_t> value = WordBytes(entry.authId1);
        Append(value, WordBytes(entry.authId2));
        Append(value, PairBytes(entry.authId3, entry.authId4));
        return ResetOf({kAuthEntryItem, value, false, "authentication entry " + key.Text()});
    });
}

} // namespace

void AddDebugCommands(CommandLine &line)
{
    const Node debug = line.AddGroup(line.Root(), "debug", "Debug switches of the daemon",
                                     "  rsvpctl debug set 4\n  rsvpctl debug undo 4\n  rsvpctl debug show");
    AddDebugVerb(line, debug, "set", 0, "Set a switch");
    AddDebugVerb(line, debug, "undo", 1, "Clear a switch");
    AddDebugShow(line, debug);

    const Node reset = line.AddGroup(line.Root(), "reset", "Clear counters or an authentication entry",
                                     "  rsvpctl reset statistics 0,0\n  rsvpctl reset auth 10.1.12.2,0,0,0");
    AddResetStatistics(line, reset);
    AddResetAuth(line, reset);
}

} // namespace rsvpctl
