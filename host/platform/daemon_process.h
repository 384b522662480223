// The daemon as a process of this machine: finding the one that serves a host directory, starting it, stopping it.
#ifndef HOST_PLATFORM_DAEMON_PROCESS_H
#define HOST_PLATFORM_DAEMON_PROCESS_H

#include <string>
#include <sys/types.h>

namespace rsvp_host {

// The process that holds the daemon's lock, or 0. No heap.
pid_t LivingDaemon(const char *directory);

// True if the daemon lives and its socket exists. No heap.
bool DaemonIsUp(const char *directory);

// Both return an empty string or a sentence that says what went wrong. The caller holds the service manager's lock.
// Starting a daemon that already lives, or stopping one that does not, succeeds and does nothing.
std::string StartDaemon(const std::string &directory);
std::string StopDaemon(const std::string &directory);

} // namespace rsvp_host

#endif
