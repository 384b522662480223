// One line of words for each frame, for whoever watches the daemon work. Authentication keys are never in it.
#pragma once

#include "faults.h"

namespace rsvpsimd {

std::string DescribeRequest(std::uint64_t client, ByteView frame);

// The request tells which tables the reply's items belong to.
std::string DescribeReply(std::uint64_t client, ByteView request, const Reply &reply);

} // namespace rsvpsimd
