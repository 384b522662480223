// Whether the service "RSVP" runs, and on which nodes; and what a command answers when it does not.
#ifndef CHANNEL_PRESENCE_H
#define CHANNEL_PRESENCE_H

#include "rsvp_mor/channel.h"

// The name by which the service manager knows the daemon.
#define RSVP_MOR_SERVICE "RSVP"

extern "C" {

// 1 if the service runs on the master or on a standby node, else 0.
uint32_t RSVP_MOR_IsServiceRunning(void);

// Reduces `nodes` in place to those that need a start (`mode` 1) or a stop (any other `mode`); their order stays.
// Returns how many are left. A node that cannot be asked is dropped.
uint32_t rsvp_mor_FilterStandbyNodes(uint32_t mode, uint32_t count, uint16_t *nodes);
}

namespace rsvp_mor {

// Values of rsvp_mor_FilterStandbyNodes' `mode`.
enum FilterMode : uint32_t { KEEP_TO_STOP = 0, KEEP_TO_START = 1 };

// How the library reads the service manager's answers. Any other value is neither.
inline bool IsRunning(uint32_t serviceStatus)
{
    return serviceStatus == 1 || serviceStatus == 2;
}

inline bool IsStopped(uint32_t serviceStatus)
{
    return serviceStatus == 0 || serviceStatus == 3;
}

// What a gated command returns when the service does not run: there is nothing to undo, and nothing to set.
inline uint32_t NotRunning(uint32_t op)
{
    return op == 1 ? RSVP_MOR_OK : RSVP_MOR_ERR_NOT_ENABLED;
}

} // namespace rsvp_mor

#endif
