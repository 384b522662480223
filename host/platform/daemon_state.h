// What can be known of the daemon that serves a host directory.
#ifndef HOST_PLATFORM_DAEMON_STATE_H
#define HOST_PLATFORM_DAEMON_STATE_H

#include "host/platform/report.h"

#include <chrono>
#include <sys/types.h>

namespace rsvp_host {

struct DaemonState {
    pid_t pid = 0;     // of the process that holds the daemon's lock; 0 if there is none
    Problem problem{}; // why it cannot be known; then `pid` says nothing
};

// A failure to open, read or lock is never taken for "no daemon". No heap, and a few system calls.
DaemonState FindDaemon(const char *directory);

// True if the daemon takes a connection and answers on it within that time. A connection alone says nothing: the
// system accepts it for a process that hangs.
bool DaemonAnswers(const char *directory, std::chrono::milliseconds patience);

} // namespace rsvp_host

#endif
