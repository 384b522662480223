// The host directory: the folder of plain files that plays the device. The stand-in for the platform and the
// simulated daemon both find it, check it and name its files here, so that they cannot disagree about it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace rsvp_host {

// Where the host directory is: `chosen` if it is not empty, else RSVP_HOST_DIR, else $XDG_RUNTIME_DIR/rsvp-host,
// else /tmp/rsvp-host-UID. The answer is a path only; nothing on the disk is touched.
std::string DirectoryPath(std::string_view chosen = {});

// Room for the path of a host directory, its closing zero included. A longer one is refused everywhere: with the
// name of the socket file behind it, it would not fit into a socket address.
inline constexpr std::size_t kDirectoryRoom = 94;

// The same answer for callers that must not touch the heap. Returns the length of the whole path; if that is not
// below `size`, what was written is cut.
std::size_t WriteDirectoryPath(char *path, std::size_t size);

// 0 if `path` is a directory of this user's that nobody else can enter; ENOENT if nothing is there, EACCES if it is
// a link, no directory, another user's or open to others, or the reason why it cannot be looked at.
int CheckDirectory(const char *path);

// Creates the directory (0700) and its sub-folders where they are missing, and checks that it is a real directory
// of this user's, not a link and not open to others. Returns an empty string, or a sentence that says what is
// wrong with which path and what to do.
std::string PrepareDirectory(const std::string &path);

// Files of the device, all inside the directory.
std::string SocketPath(const std::string &directory); // "lipc-0ae18000": the daemon's address as a socket file
std::string
LockPath(const std::string &directory); // "rsvpsimd.lock": locked (flock) by the living daemon; holds its pid
std::string
ScenarioPath(const std::string &directory); // "scenario.toml": given to a daemon that the service manager starts
std::string LogPath(const std::string &directory); // "rsvpsimd.log": what such a daemon writes to standard error

} // namespace rsvp_host
