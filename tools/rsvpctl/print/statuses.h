// What a status means to a person: its name, the likely cause, what to do about it, and the exit status that a script
// sees. The library has no texts of its own, so all of them are here.
#ifndef TOOLS_RSVPCTL_PRINT_STATUSES_H
#define TOOLS_RSVPCTL_PRINT_STATUSES_H

#include "manager/exchange/exchange.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace rsvpctl {

/** The tool's exit statuses. They are part of its interface: scripts test them. */
enum class Exit : int {
    Done = 0,
    Refused = 1,    // the daemon said no
    Usage = 2,      // wrong arguments; nothing was sent
    NoSession = 3,  // the daemon could not be reached
    Exchange = 4,   // the exchange failed, the reply was out of format, a walk was broken, the state cannot be asked
    NotEnabled = 5, // the service does not run
    TimeOver = 6,   // what the user gave it
    NotWritten = 7, // the output could not be written
    Interrupted = 130, // Ctrl-C, as a shell counts it
};

struct StatusText {
    uint32_t status;
    const char *name;
    Exit exit;
    const char *cause;
    const char *remedy;
};

/** The statuses that have a name, success among them. */
std::span<const StatusText> KnownStatuses();

/** The text of a status in general; a number without a name is the daemon's own. */
const StatusText &Explain(uint32_t status);

/** The text of a status that a certain library function returned in this exchange: a code has a narrower meaning
 * there.
 */
StatusText Explain(uint32_t status, std::string_view function, const manager::Exchange &exchange);

/** Of a walk whose rows come again, of one that nobody knows how to go on with, and of a change that is not known to
 * be done. */
const StatusText &StuckText();
const StatusText &NoKeyText();
const StatusText &NotDoneText();

/** What a status of the simulated daemon's own means. Another daemon may mean something else by the same number. */
struct SimulatedStatus {
    uint32_t status;
    const char *meaning;
};

std::span<const SimulatedStatus> SimulatedStatuses();

} // namespace rsvpctl

#endif
