// Debug switches and resets: the commands whose arguments are records of the daemon's numbers.
#include "command_line.h"
#include "walk.h"

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
    const CLI::Option *type;
    const CLI::Option *endpoint;
    const CLI::Option *tunnelId;
    const CLI::Option *extendedTunnelId;
};

bool BindsSession(uint32_t type)
{
    return type == RSVP_MOR_DEBUG_SESSION_A || type == RSVP_MOR_DEBUG_SESSION_B;
}

RSVP_MOR_DebugSwitch SwitchOf(const DebugArguments &arguments)
{
    RSVP_MOR_DebugSwitch debug{};
    debug.debugType = NumberValue(arguments.type);
    const bool session = arguments.endpoint->count() != 0;
    if (session != BindsSession(debug.debugType))
        throw UsageError(
            fmt::format("debug: type {} takes {}", debug.debugType,
                        session ? "no session" : "a session: --endpoint, --tunnel-id, --extended-tunnel-id"));
    if (session) {
        debug.session.tunnelEndpoint = AddressValue(arguments.endpoint);
        debug.session.tunnelId = static_cast<uint16_t>(NumberValue(arguments.tunnelId));
        debug.session.extendedTunnelId = AddressValue(arguments.extendedTunnelId);
    }
    return debug;
}

WireRequest RequestOf(uint8_t op, const RSVP_MOR_DebugSwitch &debug)
{
    std::vector<uint8_t> value = WordBytes(debug.session.tunnelEndpoint);
    Append(value, PairBytes(0, debug.session.tunnelId));
    Append(value, WordBytes(debug.session.extendedTunnelId));
    Append(value, WordBytes(debug.debugType));
    return {kGlobalClass, op, {{kDebugItem, value}}};
}

void AddDebugVerb(CommandLine &line, CLI::App &group, const std::string &verb, uint8_t op, const std::string &help)
{
    Command &command = line.Add(group, verb, help,
                                "  rsvpctl debug " + verb + " 4\n  rsvpctl debug " + verb +
                                    " 16 --endpoint 10.0.0.9 --tunnel-id 5 --extended-tunnel-id 10.0.0.1");
    CLI::App &app = *command.parser;
    CLI::Option *endpoint = AddAddress(app, "--endpoint", "Tunnel end point of the session, for types 16 and 64");
    CLI::Option *tunnelId = AddNumber(app, "--tunnel-id", UINT16_MAX, "Tunnel identifier of the session");
    CLI::Option *extended = AddAddress(app, "--extended-tunnel-id", "Extended tunnel identifier of the session");
    endpoint->needs(tunnelId)->needs(extended);
    tunnelId->needs(endpoint);
    extended->needs(endpoint);
    const DebugArguments arguments{AddNumber(app, "type,--type", UINT32_MAX, "Which switch")->required(), endpoint,
                                   tunnelId, extended};
    command.run = [&command, arguments, op](Output &out) {
        const RSVP_MOR_DebugSwitch debug = SwitchOf(arguments);
        const uint32_t status = RSVP_MOR_SetDebug(op, &debug);
        const std::string asked = "type " + TextValue(arguments.type);
        return status == RSVP_MOR_OK ? out.Done(command.name, asked)
                                     : out.Failed({command.name, "RSVP_MOR_SetDebug", asked, status});
    };
    command.requests = [arguments, op] { return std::vector<WireRequest>{RequestOf(op, SwitchOf(arguments))}; };
}

void AddDebugShow(CommandLine &line, CLI::App &group)
{
    Command &command = line.Add(group, "show", "The state of the debug switches", "  rsvpctl debug show --json");
    command.run = [&command](Output &out) {
        return ShowHeld<RSVP_MOR_DebugInfo>(out, command.name, "RSVP_MOR_GetRsvpDebug", RSVP_MOR_GetRsvpDebug);
    };
}

void AddResetStatistics(CommandLine &line, CLI::App &group)
{
    Command &command = line.Add(group, "statistics", "Clear counters; the numbers are the daemon's",
                                "  rsvpctl reset statistics 0,0\n  rsvpctl reset statistics statsId1=3,statsId2=1");
    const CLI::Option *key =
        AddKey(*command.parser, "key,--key", Describe<RSVP_MOR_StatisticsKey>(), "What to clear")->required();
    const auto keyOf = [key] {
        RSVP_MOR_StatisticsKey read{};
        RequireKey(Describe<RSVP_MOR_StatisticsKey>(), TextValue(key), &read);
        return read;
    };
    command.run = [&command, key, keyOf](Output &out) {
        const RSVP_MOR_StatisticsKey which = keyOf();
        const Session session(true);
        if (session.IsMissing())
            return out.Failed({command.name, "RSVP_MOR_LIPCOpen", "", RSVP_MOR_ERR_LIPC});
        const uint32_t status = RSVP_MOR_ResetStatistics(session.Fd(), &which);
        return status == RSVP_MOR_OK
                   ? out.Done(command.name, TextValue(key))
                   : out.Failed({command.name, "RSVP_MOR_ResetStatistics", "key " + TextValue(key), status});
    };
    command.requests = [keyOf] {
        const RSVP_MOR_StatisticsKey which = keyOf();
        std::vector<uint8_t> value = WordBytes(which.statsId1);
        Append(value, ShortBytes(which.statsId2));
        return std::vector<WireRequest>{{kResetClass, 0, {{kStatisticsItem, value}}}};
    };
}

void AddResetAuth(CommandLine &line, CLI::App &group)
{
    Command &command = line.Add(group, "auth", "Reset one authentication entry", "  rsvpctl reset auth 1,2,3,4");
    const CLI::Option *key =
        AddKey(*command.parser, "key,--key", Describe<RSVP_MOR_AuthEntryKey>(), "The entry")->required();
    const auto keyOf = [key] {
        RSVP_MOR_AuthEntryKey read{};
        RequireKey(Describe<RSVP_MOR_AuthEntryKey>(), TextValue(key), &read);
        return read;
    };
    command.run = [&command, key, keyOf](Output &out) {
        const RSVP_MOR_AuthEntryKey entry = keyOf();
        const uint32_t status = RSVP_MOR_ResetAuth(&entry);
        return status == RSVP_MOR_OK
                   ? out.Done(command.name, TextValue(key))
                   : out.Failed({command.name, "RSVP_MOR_ResetAuth", "key " + TextValue(key), status});
    };
    command.requests = [keyOf] {
        const RSVP_MOR_AuthEntryKey entry = keyOf();
        std::vector<uint8_t> value = WordBytes(entry.authId1);
        Append(value, WordBytes(entry.authId2));
        Append(value, PairBytes(entry.authId3, entry.authId4));
        return std::vector<WireRequest>{{kResetClass, 0, {{kAuthEntryItem, value}}}};
    };
}

} // namespace

void AddDebugCommands(CommandLine &line)
{
    CLI::App &debug = line.AddGroup(line.Root(), "debug", "Debug switches of the daemon",
                                    "  rsvpctl debug set 4\n  rsvpctl debug undo 4\n  rsvpctl debug show");
    AddDebugVerb(line, debug, "set", 0, "Set a switch");
    AddDebugVerb(line, debug, "undo", 1, "Clear a switch");
    AddDebugShow(line, debug);

    CLI::App &reset = line.AddGroup(line.Root(), "reset", "Clear counters or an authentication entry",
                                    "  rsvpctl reset statistics 0,0\n  rsvpctl reset auth 1,2,3,4");
    AddResetStatistics(line, reset);
    AddResetAuth(line, reset);
}

} // namespace rsvpctl
