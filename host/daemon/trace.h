// Describes each frame in one line of words, for whoever watches the daemon work. It never shows authentication keys.
#ifndef HOST_DAEMON_TRACE_H
#define HOST_DAEMON_TRACE_H

#include "host/daemon/faults.h"

#include <string>

namespace rsvpsimd {

std::string DescribeRequest(uint64_t client, ByteView frame);

// A frame that answers a request; `asked` is the type of the request's first item.
std::string DescribeReply(uint64_t client, uint16_t asked, ByteView frame);

// The same with what the daemon does beside it, or in its place.
std::string DescribeReply(uint64_t client, ByteView request, const Reply &reply);

} // namespace rsvpsimd

#endif
