// Describes each frame in one line of words, for whoever watches the daemon work. It never shows authentication keys.
#ifndef HOST_DAEMON_TRACE_H
#define HOST_DAEMON_TRACE_H

#include "host/daemon/faults.h"

#include <string>

namespace rsvpsimd {

std::string DescribeRequest(uint64_t client, ByteView frame);

// The request tells which table the reply's items belong to.
std::string DescribeReply(uint64_t client, ByteView request, const Reply &reply);

} // namespace rsvpsimd

#endif
