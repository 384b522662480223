// Reports of changes of the service. The library answers 0 where it found the service stopped, and it takes a node
// that cannot be asked for a stopped one; "done" is said only after a look.
#ifndef TOOLS_RSVPCTL_SET_VERIFY_H
#define TOOLS_RSVPCTL_SET_VERIFY_H

#include "tools/rsvpctl/print/output.h"

namespace rsvpctl {

/** Of a change that sends nothing, and answers 0, where the service is stopped. */
Exit ReportChange(Output &out, const Outcome &outcome);

/** Of a start or a stop of the service. */
Exit ReportStart(Output &out, const Outcome &outcome);
Exit ReportStop(Output &out, const Outcome &outcome);

} // namespace rsvpctl

#endif
