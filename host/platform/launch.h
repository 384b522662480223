// Starts the daemon's program, cut off from the caller: whatever directory, environment, descriptors or signals the
// caller has, the daemon is the same.
#ifndef HOST_PLATFORM_LAUNCH_H
#define HOST_PLATFORM_LAUNCH_H

#include <string>
#include <sys/types.h>

namespace rsvp_host {

// Returns an empty string and the new process, or a sentence that says what went wrong; then nothing was started. The
// process is not a child of the caller's.
std::string LaunchDaemon(const std::string &directory, pid_t &daemon);

} // namespace rsvp_host

#endif
