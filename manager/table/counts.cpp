// The list of the numbers.
#include "manager/table/counts.h"

#include <rsvp_mor.h>

namespace manager {
namespace {

constexpr Count kCounts[] = {
    {"frrInterfaces", "Interfaces with fast reroute", "RSVP_MOR_GetFrrIfNum", RSVP_MOR_GetFrrIfNum},
    {"activeFrrInterfaces", "Interfaces on which fast reroute is active", "RSVP_MOR_GetFrrActiveIfNum",
     RSVP_MOR_GetFrrActiveIfNum},
    {"activeBypassTunnels", "Active bypass tunnels", "RSVP_MOR_GetActBypassTunnels", RSVP_MOR_GetActBypassTunnels},
    {"upLsps", "LSPs that are up", "RSVP_GetUpLspNumber", RSVP_GetUpLspNumber},
};

} // namespace

std::span<const Count> AllCounts()
{
    return kCounts;
}

} // namespace manager
