// `show` of what is one record or a few numbers: the daemon as a whole and the plain counters.
#include "walk.h"

namespace rsvpctl {
namespace {

struct Counter {
    const char *name;
    const char *function;
    uint32_t (*read)(uint32_t *count);
};

constexpr Counter kCounters[] = {
    {"frrInterfaces", "RSVP_MOR_GetFrrIfNum", RSVP_MOR_GetFrrIfNum},
    {"activeFrrInterfaces", "RSVP_MOR_GetFrrActiveIfNum", RSVP_MOR_GetFrrActiveIfNum},
    {"activeBypassTunnels", "RSVP_MOR_GetActBypassTunnels", RSVP_MOR_GetActBypassTunnels},
    {"upLsps", "RSVP_GetUpLspNumber", RSVP_GetUpLspNumber},
};

// All four or none: a zero in place of a counter that could not be read would be taken for the truth.
Exit ShowCounters(Output &out, const std::string &operation)
{
    nlohmann::ordered_json record;
    for (const Counter &counter : kCounters) {
        uint32_t count = 0;
        const uint32_t status = counter.read(&count);
        if (status != RSVP_MOR_OK)
            return out.Failed({operation, counter.function, "", status});
        record[counter.name] = count;
    }
    return out.Record(operation, record);
}

} // namespace

void AddRecordCommands(CommandLine &line, CLI::App &show)
{
    Command &global = line.Add(show, "global", "Settings and counters of the daemon as a whole",
                               "  rsvpctl show global\n  rsvpctl show global --json");
    global.run = [&global](Output &out) {
        return ShowHeld<RSVP_MOR_GlobalInfo>(out, global.name, "RSVP_MOR_GetGlobalInfo", RSVP_MOR_GetGlobalInfo);
    };
    Command &count = line.Add(show, "counters", "Fast reroute interfaces, bypass tunnels and LSPs that are up",
                              "  rsvpctl show counters");
    count.run = [&count](Output &out) { return ShowCounters(out, count.name); };
}

} // namespace rsvpctl
