// The table behind `rsvpctl explain` and behind every refusal. A code with a narrower meaning in one function has
// a row of its own for it, since "an exchange failed" helps nobody whose service did not start.
#include "tools/rsvpctl/print/statuses.h"

#include <algorithm>
#include <rsvp_mor.h>

namespace rsvpctl {
namespace {

constexpr StatusText kKnown[] = {
    {RSVP_MOR_OK, "RSVP_MOR_OK", Exit::Done,
     "the operation was done; or the service does not run and there was nothing to take back", "nothing"},
    {RSVP_MOR_ERR_FAIL, "RSVP_MOR_ERR_FAIL", Exit::Exchange,
     "the daemon did not answer within 10 seconds, ended in mid-exchange, or sent a reply that is out of format",
     "look at 'rsvpctl status' and at the daemon's log, then try again"},
    {RSVP_MOR_ERR_NOT_EXIST, "RSVP_MOR_ERR_NOT_EXIST", Exit::Refused,
     "the daemon has no row with this key, or no next row",
     "list the rows that there are with the same 'rsvpctl show' without a key"},
    {RSVP_MOR_ERR_LIPC, "RSVP_MOR_ERR_LIPC", Exit::NoSession,
     "no session to the daemon could be opened: it does not run, or is not ready yet",
     "look at 'rsvpctl status'; 'rsvpctl enable' starts the service"},
    {RSVP_MOR_ERR_NOT_ENABLED, "RSVP_MOR_ERR_NOT_ENABLED", Exit::NotEnabled,
     "the service \"RSVP\" runs on no node, so there is nothing to command", "start it with 'rsvpctl enable'"},
};

constexpr StatusText kForeign = {
    0, "DAEMON_STATUS", Exit::Refused,
    "the daemon refused: the code is its own, for a value or a key that it does not take",
    "check the value against the daemon's ranges; its log tells more"};

struct Narrower {
    std::string_view function;
    StatusText text;
};

constexpr Narrower kNarrower[] = {
    {"RSVP_MOR_SetMplsRsvp(0)",
     {RSVP_MOR_ERR_FAIL, "RSVP_MOR_ERR_FAIL", Exit::Exchange,
      "the service manager could not be asked about the master, or the service did not start on a node; what has "
      "started stays started",
      "look at 'rsvpctl status' and the service manager's log; 'rsvpctl enable' again completes a start"}},
    {"RSVP_MOR_SetMplsRsvp(1)",
     {RSVP_MOR_ERR_FAIL, "RSVP_MOR_ERR_FAIL", Exit::Exchange,
      "the daemon did not confirm that it may be disabled, though its database can be opened; nothing was stopped",
      "look at the daemon's log, then try again"}},
    {"RSVP_Opt_Parse",
     {RSVP_MOR_ERR_NOT_EXIST, "RSVP_MOR_ERR_NOT_EXIST", Exit::Refused,
      "the option file /etc/te.conf is missing or cannot be used", "check that the file exists and is readable"}},
    {"RSVP_Opt_Parse",
     {RSVP_MOR_ERR_FAIL, "RSVP_MOR_ERR_FAIL", Exit::Exchange, "the option file /etc/te.conf holds no plug-in option",
      "add the option to the file"}},
};

} // namespace

std::span<const StatusText> KnownStatuses()
{
    return kKnown;
}

const StatusText &Explain(uint32_t status)
{
    const auto found = std::find_if(std::begin(kKnown), std::end(kKnown),
                                    [&](const StatusText &text) { return text.status == status; });
    return found == std::end(kKnown) ? kForeign : *found;
}

const StatusText &Explain(uint32_t status, std::string_view function)
{
    const auto found = std::find_if(std::begin(kNarrower), std::end(kNarrower), [&](const Narrower &row) {
        return row.text.status == status && row.function == function;
    });
    return found == std::end(kNarrower) ? Explain(status) : found->text;
}

std::span<const SimulatedStatus> SimulatedStatuses()
{
    // A test holds these against the daemon's own list.
    static constexpr SimulatedStatus kSimulated[] = {
        {0x60010001, "the frame or the items do not add up"},
        {0x60010002, "unknown class"},
        {0x60010003, "the item does not know this operation"},
        {0x60010004, "unknown item"},
        {0x60010005, "a value is not as long as its type demands"},
        {0x60010006, "bytes that must be 0 are not"},
        {0x60010007, "the wrong number of items, or the key item is not the first"},
        {0x60010008, "commands have made as many rows as one table takes"},
    };
    return kSimulated;
}

} // namespace rsvpctl
