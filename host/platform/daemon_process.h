// Starting and stopping the daemon that serves a host directory.
#ifndef HOST_PLATFORM_DAEMON_PROCESS_H
#define HOST_PLATFORM_DAEMON_PROCESS_H

#include <string>

namespace rsvp_host {

// Both return an empty string or a sentence that says what went wrong. The caller holds the service manager's lock.
// Starting a daemon that already lives, or stopping one that does not, succeeds and does nothing.
std::string StartDaemon(const std::string &directory);
std::string StopDaemon(const std::string &directory);

} // namespace rsvp_host

#endif
