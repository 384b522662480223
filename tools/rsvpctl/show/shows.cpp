// The list of the shows, in the order of the help.
#include "tools/rsvpctl/show/shows.h"

#include "manager/table/tables.h"

#include <algorithm>

namespace rsvpctl {
namespace {

constexpr auto kStateKeyExample = "500,10.0.0.1,10.0.0.1,00000000,50,1,10.0.0.1,0,1,0,0,0000,0,0,0,0,0";
constexpr auto kCrLspKeyExample = "500,10.0.0.1,10.0.0.1,50,1,0,0,0,0,0,0";

const ShowSpec kShows[] = {
    {.words = "global", .help = "Settings and counters of the daemon as a whole", .table = &manager::kGlobalInfo},
    {.words = "counters", .help = "Fast reroute interfaces, bypass tunnels and LSPs that are up"},
    {.words = "interfaces", .help = "Settings and counters of interfaces", .table = &manager::kInterfaces},
    {.words = "interface-config", .help = "The configuration row of interfaces", .table = &manager::kInterfaceConfig},
    {.words = "neighbours", .help = "Neighbours", .table = &manager::kNeighbours},
    {.words = "auth", .help = "Authentication entries", .table = &manager::kAuthentication},
    {.words = "resources", .help = "Tunnel resources", .table = &manager::kResources},
    {.words = "tunnels", .help = "Tunnels", .table = &manager::kTunnels, .ingressTable = &manager::kIngressTunnels},
    {.words = "frr facility", .help = "The fast reroute facility table", .table = &manager::kFrrFacility},
    {.words = "frr general", .help = "The fast reroute general table", .table = &manager::kFrrGeneral},
    {.words = "hops computed", .help = "Computed hops", .table = &manager::kComputedHops},
    {.words = "hops actual", .help = "Actual route hops", .table = &manager::kActualHops},
    {.words = "hops extended", .help = "Fast reroute state of actual route hops", .table = &manager::kExtendedHops},
    {.words = "psb",
     .help = "Path state: one line an LSP, or all of it with --detail",
     .table = &manager::kPathState,
     .view = &psbView,
     .takes = TakesRow<RSVP_MOR_ReplyPsb>},
    {.words = "rsb",
     .help = "Reservation state",
     .table = &manager::kReservationState,
     .view = &rsbView,
     .takes = TakesRow<RSVP_MOR_ReplyRsb>},
    {.words = "phsb",
     .help = "Previous hop state: what is reserved towards the senders",
     .table = &manager::kPreviousHopState,
     .view = &phsbView,
     .takes = TakesRow<RSVP_MOR_ReplyPhsb>},
    {.words = "crlsp",
     .help = "CR-LSPs: signalled LSPs with their routes",
     .table = &manager::kCrLsps,
     .view = &crlspView,
     .takes = TakesRow<RSVP_MOR_ReplyCrlsp>},
    {.words = "p2mp psb",
     .help = "Path state of a sub-group",
     .table = &manager::kP2mpPathState,
     .view = &p2mpPsbView,
     .keyExample = kStateKeyExample},
    {.words = "p2mp rsb",
     .help = "Reservation state of a sub-group",
     .table = &manager::kP2mpReservationState,
     .view = &p2mpRsbView,
     .keyExample = kStateKeyExample},
    {.words = "p2mp crlsp",
     .help = "A CR-LSP with all its sub-LSPs",
     .table = &manager::kP2mpCrLsps,
     .view = &p2mpCrlspView,
     .keyExample = kCrLspKeyExample},
};

} // namespace

std::span<const ShowSpec> AllShows()
{
    return kShows;
}

const ShowSpec &ShowNamed(std::string_view words)
{
    return *std::find_if(std::begin(kShows), std::end(kShows),
                         [&](const ShowSpec &show) { return show.words == words; });
}

} // namespace rsvpctl
