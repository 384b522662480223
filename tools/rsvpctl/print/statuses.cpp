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

// A failed exchange has one code, whichever of its steps failed.
struct FaultText {
    manager::Fault fault;
    const char *cause;
    const char *remedy;
};

constexpr FaultText kFaults[] = {
    {manager::Fault::NotSent, "the daemon does not read its messages, or has just ended",
     "look at 'rsvpctl status' and at the daemon's log, then try again"},
    {manager::Fault::NoAnswer, "the daemon is busy or hangs, or ended before it answered",
     "look at 'rsvpctl status' and at the daemon's log, then try again"},
    {manager::Fault::BadReply, "the daemon and this program do not speak the same version of the protocol",
     "compare the versions; the daemon's trace shows what it sent"},
    {manager::Fault::Local, "the library or the platform refused, or there is no memory left",
     "look at 'rsvpctl status' and at the messages above"},
};

// Functions for which a code that was not the daemon's means something else than in general.
struct Narrower {
    std::string_view function;
    StatusText text;
};

constexpr StatusText kNotStarted = {
    RSVP_MOR_ERR_FAIL, "RSVP_MOR_ERR_FAIL", Exit::Exchange,
    "the service manager could not be asked about the master, or the service did not start on a node; what has "
    "started stays started",
    "look at 'rsvpctl status' and the service manager's log; 'rsvpctl enable' again completes a start"};
constexpr StatusText kNotStopped = {
    RSVP_MOR_ERR_FAIL, "RSVP_MOR_ERR_FAIL", Exit::Exchange,
    "the daemon did not confirm that it may be disabled, though its database can be opened; nothing was stopped",
    "look at the daemon's log, then try again"};

constexpr Narrower kNarrower[] = {
    {"RSVP_MOR_SetMplsRsvp(0)", kNotStarted},
    {"RSVP_SetGlobalCapability(1)", kNotStarted},
    {"RSVP_MOR_SetMplsRsvp(1)", kNotStopped},
    {"RSVP_SetGlobalCapability(0)", kNotStopped},
    {"RSVP_Opt_Parse",
     {RSVP_MOR_ERR_NOT_EXIST, "RSVP_MOR_ERR_NOT_EXIST", Exit::Exchange,
      "the option file /etc/te.conf is missing or cannot be used", "check that the file exists and is readable"}},
    {"RSVP_Opt_Parse",
     {RSVP_MOR_ERR_FAIL, "RSVP_MOR_ERR_FAIL", Exit::Exchange,
      "the option file /etc/te.conf has no plug-in option, or one with a name that was not asked for or a value that "
      "is not a number",
      "name every option of the file's first plug-in option"}},
};

constexpr StatusText kStuck = {RSVP_MOR_ERR_FAIL, "RSVP_MOR_ERR_FAIL", Exit::Exchange,
                               "the table changed in mid-walk, or the daemon does not advance",
                               "try again; if it stays so, look at the daemon's log"};
constexpr StatusText kNoKey = {RSVP_MOR_ERR_FAIL, "RSVP_MOR_ERR_FAIL", Exit::Exchange,
                               "the dictionary of this run has no next-key for the table",
                               "give the daemon's dictionary with --dictionary, or read single rows by their key"};
constexpr StatusText kNotDone = {RSVP_MOR_OK, "RSVP_MOR_OK", Exit::Exchange,
                                 "a node of the device cannot be asked, or did not follow the service manager",
                                 "look at 'rsvpctl status' and at the service manager's log, then try again"};

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

// The daemon's own statuses are not the library's, whatever their numbers; of the library's, it uses one.
StatusText Explain(uint32_t status, std::string_view function, const manager::Exchange &exchange)
{
    const manager::Fault fault = FaultOf(status, exchange);
    if (exchange.givenUp == manager::GivenUp::TimeOver)
        return {status, Explain(status).name, Exit::TimeOver,
                "the daemon is busy or hangs, or the time that --timeout gives is too short for it",
                "look at 'rsvpctl status' and at the daemon's log, or give more time"};
    if (fault == manager::Fault::Refused)
        return status == RSVP_MOR_ERR_NOT_EXIST ? Explain(status) : kForeign;
    const auto narrower = std::find_if(std::begin(kNarrower), std::end(kNarrower), [&](const Narrower &row) {
        return row.text.status == status && row.function == function;
    });
    if (narrower != std::end(kNarrower))
        return narrower->text;
    StatusText text = Explain(status);
    const auto why = std::find_if(std::begin(kFaults), std::end(kFaults),
                                  [&](const FaultText &row) { return row.fault == fault; });
    if (status == RSVP_MOR_ERR_FAIL && why != std::end(kFaults)) {
        text.cause = why->cause;
        text.remedy = why->remedy;
    }
    return text;
}

const StatusText &StuckText()
{
    return kStuck;
}

const StatusText &NoKeyText()
{
    return kNoKey;
}

const StatusText &NotDoneText()
{
    return kNotDone;
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
