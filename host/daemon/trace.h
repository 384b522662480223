// One line of words for each frame, for whoever watches the daemon work. Authentication keys are never in it.
#ifndef HOST_DAEMON_TRACE_H
#define HOST_DAEMON_TRACE_H

#include "host/daemon/faults.h"

#include <string>

namespace rsvpsimd {

std::string DescribeRequest(uint64_t client, ByteView frame);

// The request tells which tables the reply's items belong to.
std::string DescribeReply(uint64_t client, ByteView request, const Reply &reply);

} // namespace rsvpsimd

#endif
