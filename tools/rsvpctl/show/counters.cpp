// All four or none: a zero in place of a counter that could not be read would be taken for the truth.
#include "tools/rsvpctl/show/counters.h"

#include <nlohmann/json.hpp>

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

} // namespace

Exit ShowCounters(Output &out, const std::string &operation)
{
    manager::Json record;
    for (const Counter &counter : kCounters) {
        uint32_t count = 0;
        const uint32_t status = counter.read(&count);
        if (status != RSVP_MOR_OK)
            return out.Failed({operation, counter.function, "", status});
        record[counter.name] = count;
    }
    return out.Record(operation, record);
}

} // namespace rsvpctl
