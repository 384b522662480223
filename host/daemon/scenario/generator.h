// Makes rows by the thousand, for walks that are worth measuring. A row's content follows from its number.
#ifndef HOST_DAEMON_SCENARIO_GENERATOR_H
#define HOST_DAEMON_SCENARIO_GENERATOR_H

#include "host/daemon/device/device.h"

namespace rsvpsimd {

inline constexpr uint32_t kMostRows = 10'000'000;

// `kind` is a kind of rows, or "psb-plain" and so on for rows without lists. Throws std::invalid_argument if there is
// no such kind.
void MakeRows(Device &device, std::string_view kind, uint32_t count);

// The same for a request as people write it, "psb=100000". Also throws for a bad number.
void MakeRows(Device &device, std::string_view request);

} // namespace rsvpsimd

#endif
