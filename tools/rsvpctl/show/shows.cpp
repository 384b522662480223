// The list of the shows, in the order of the help.
#include "tools/rsvpctl/show/shows.h"

#include "manager/table/tables.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/view/record_view.h"

#include <algorithm>

namespace rsvpctl {
namespace {

constexpr auto kStateKeyExample = "500,10.0.0.1,10.0.0.1,00000000,50,1,10.0.0.1,0,1,0,0,0000,0,0,0,0,0";
constexpr auto kCrLspKeyExample = "500,10.0.0.1,10.0.0.1,50,1,0,0,0,0,0,0";

const ShowSpec kShows[] = {
    {.words = "global", .help = "Settings and counters of the daemon as a whole", .table = &manager::kGlobalInfo},
    {.words = "counters", .help = "Fast reroute interfaces, bypass tunnels and LSPs that are up"},
    {.words = "interfaces",
     .help = "Settings and counters of interfaces",
     .table = &manager::kInterfaces,
     .keyExample = "1",
     .aliases = {"interface"}},
    {.words = "interface-config",
     .help = "The configuration row of interfaces",
     .table = &manager::kInterfaceConfig,
     .keyExample = "1"},
    {.words = "neighbours",
     .help = "Neighbours",
     .table = &manager::kNeighbours,
     .keyExample = "10.1.12.2,0",
     .aliases = {"neighbour", "neighbor", "neighbors"}},
    {.words = "auth",
     .help = "Authentication entries",
     .table = &manager::kAuthentication,
     .keyExample = "10.1.12.2,0"},
    {.words = "resources", .help = "Tunnel resources", .table = &manager::kResources, .keyExample = "100"},
    {.words = "tunnels",
     .help = "Tunnels",
     .table = &manager::kTunnels,
     .ingressTable = &manager::kIngressTunnels,
     .keyExample = "100,1,10.0.0.1,10.0.0.4",
     .aliases = {"tunnel"}},
    {.words = "frr facility",
     .help = "The fast reroute facility table",
     .table = &manager::kFrrFacility,
     .keyExample = "1,900,100,1,10.0.0.1,10.0.0.4"},
    {.words = "frr general",
     .help = "The fast reroute general table",
     .table = &manager::kFrrGeneral,
     .keyExample = "0,100,1"},
    {.words = "hops computed", .help = "Computed hops", .table = &manager::kComputedHops, .keyExample = "100,1"},
    {.words = "hops actual", .help = "Actual route hops", .table = &manager::kActualHops, .keyExample = "100,1"},
    {.words = "hops extended",
     .help = "Fast reroute state of actual route hops",
     .table = &manager::kExtendedHops,
     .keyExample = "100,1"},
    {.words = "psb",
     .help = "Path state, one line an LSP",
     .table = &manager::kPathState,
     .view = &kPsbView,
     .takes = TakesRow<RSVP_MOR_ReplyPsb>,
     .keyExample = "10.0.0.4,100,10.0.0.1,10.0.0.1,1"},
    {.words = "rsb",
     .help = "Reservation state",
     .table = &manager::kReservationState,
     .view = &kRsbView,
     .takes = TakesRow<RSVP_MOR_ReplyRsb>,
     .keyExample = "10.0.0.4,100,10.0.0.1,10.1.12.2,1,10.0.0.1,1"},
    {.words = "phsb",
     .help = "Previous hop state: what is reserved towards the senders",
     .table = &manager::kPreviousHopState,
     .view = &kPhsbView,
     .takes = TakesRow<RSVP_MOR_ReplyPhsb>,
     .keyExample = "10.0.0.4,200,10.0.0.5,10.1.15.5,3"},
    {.words = "crlsp",
     .help = "CR-LSPs: signalled LSPs with their routes",
     .table = &manager::kCrLsps,
     .takes = TakesRow<RSVP_MOR_ReplyCrlsp>,
     .keyExample = "10.0.0.4,10.0.0.1,10.0.0.1,100,1,00000000"},
    {.words = "p2mp psb",
     .help = "Path state of a sub-group",
     .table = &manager::kP2mpPathState,
     .view = &kP2mpPsbView,
     .keyExample = kStateKeyExample},
    {.words = "p2mp rsb",
     .help = "Reservation state of a sub-group",
     .table = &manager::kP2mpReservationState,
     .view = &kP2mpRsbView,
     .keyExample = kStateKeyExample},
    {.words = "p2mp crlsp",
     .help = "A CR-LSP with all its sub-LSPs",
     .table = &manager::kP2mpCrLsps,
     .keyExample = kCrLspKeyExample,
     .aliases = {"lsp"}},
};

} // namespace

Columns ColumnsOf(const ShowSpec &show)
{
    return show.view != nullptr && show.view->columns != nullptr ? show.view->columns()
                                                                 : ColumnsOf(*show.table, Names());
}

DetailView DetailOf(const ShowSpec &show)
{
    const manager::RecordDescription &row = show.table->row();
    const manager::RecordMeanings &meanings = Names().Of(row);
    if (show.view == nullptr)
        return [&](const void *record) { return RecordText(row, record, meanings); };
    return [&show, &meanings](const void *record) { return show.view->detail(record, meanings); };
}

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
