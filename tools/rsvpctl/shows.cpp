// The list of all `show` commands.
#include "shows.h"

#include <algorithm>

namespace rsvpctl {
namespace {

// Aligned by hand, since the eye compares rows.
// clang-format off
constexpr ShowDescription kShows[] = {
    {"global",           Describe<RSVP_MOR_GlobalInfo>,       ShowForm::Record, {}},
    {"counters",         nullptr,                             ShowForm::Record, {}},
    {"interfaces",       Describe<RSVP_MOR_IfInfo>,           ShowForm::Both,   {"ifWord1"}},
    {"interface-config", Describe<RSVP_MOR_IfConfig>,         ShowForm::Both,   {"ifIndex"}},
    {"neighbours",       Describe<RSVP_MOR_ReplyNbr>,         ShowForm::Rows,   {"nbrWord0", "nbrWord1"}},
    {"auth",             Describe<RSVP_MOR_ReplyAuth>,        ShowForm::Rows,   {"authEntryWord0", "authEntryWord1"}},
    {"resources",        Describe<RSVP_MOR_ReplyResource>,    ShowForm::Both,   {"resourceIndex"}},
    {"tunnels",          Describe<RSVP_MOR_ReplyTunnel>,      ShowForm::Both,
     {"tunnelWord0", "tunnelWord1", "tunnelWord2", "tunnelWord3"}},
    {"frr facility",     Describe<RSVP_MOR_ReplyFrrFacility>, ShowForm::Both,
     {"facilityWord0", "facilityWord1", "facilityWord2", "facilityWord3", "facilityWord4", "facilityWord5"}},
    {"frr general",      Describe<RSVP_MOR_ReplyFrrGeneral>,  ShowForm::Both,   {"frrWord0", "frrWord1", "frrWord2"}},
    {"hops computed",    Describe<RSVP_MOR_ReplyCHop>,        ShowForm::Both,   {"hopListIndex", "hopIndex"}},
    {"hops actual",      Describe<RSVP_MOR_ReplyArHop>,       ShowForm::Both,   {"hopListIndex", "hopIndex"}},
    {"hops extended",    Describe<RSVP_MOR_ReplyExtArHop>,    ShowForm::Both,   {"extArHopWord0", "extArHopWord1"}},
    {"psb",              Describe<RSVP_MOR_ReplyPsb>,         ShowForm::Rows,   {"session", "sender"}},
    {"rsb",              Describe<RSVP_MOR_ReplyRsb>,         ShowForm::Rows,   {"session", "hop", "filter"}},
    {"phsb",             Describe<RSVP_MOR_ReplyPhsb>,        ShowForm::Rows,   {"session", "hop"}},
    {"crlsp",            Describe<RSVP_MOR_ReplyCrlsp>,       ShowForm::Rows,   {"key"}},
    {"p2mp psb",         Describe<RSVP_MOR_P2mpPsbInfo>,      ShowForm::Record, {}},
    {"p2mp rsb",         Describe<RSVP_MOR_P2mpRsbInfo>,      ShowForm::Record, {}},
    {"p2mp crlsp",       Describe<RSVP_MOR_P2mpCrlspInfo>,    ShowForm::Record, {}},
};
// clang-format on

} // namespace

std::span<const ShowDescription> AllShows()
{
    return kShows;
}

const ShowDescription *FindShow(std::string_view command)
{
    constexpr std::string_view kWatch = "watch ";
    constexpr std::string_view kShow = "show ";
    if (command.starts_with(kWatch))
        command.remove_prefix(kWatch.size());
    if (!command.starts_with(kShow))
        return nullptr;
    command.remove_prefix(kShow.size());
    const auto *found = std::find_if(std::begin(kShows), std::end(kShows),
                                     [&](const ShowDescription &row) { return row.command == command; });
    return found == std::end(kShows) ? nullptr : found;
}

} // namespace rsvpctl
