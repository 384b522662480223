// The daemon as a process of this machine: whether one lives in a host directory, and its start and its end.
#ifndef HOST_PLATFORM_DAEMON_PROCESS_H
#define HOST_PLATFORM_DAEMON_PROCESS_H

#include <string>
#include <sys/types.h>

namespace rsvp_host {

// The process that holds the daemon's lock, or 0. No heap.
pid_t LivingDaemon(const char *directory);

// Lives, and has its socket in place. No heap.
bool DaemonIsUp(const char *directory);

// Both return an empty string or a sentence that says what went wrong. The caller holds the service manager's lock.
// A daemon that lives already is started by nobody a second time, and the end of one that does not is a success.
std::string StartDaemon(const std::string &directory);
std::string StopDaemon(const std::string &directory);

} // namespace rsvp_host

#endif
