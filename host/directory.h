// The host directory: the folder of plain files that plays the device. The stand-in for the platform and the
// simulated daemon use the same code to find it, to check it and to name its files, so that they cannot disagree.
#ifndef HOST_DIRECTORY_H
#define HOST_DIRECTORY_H

#include <cstddef>
#include <string>
#include <string_view>
#include <sys/un.h>

namespace rsvp_host {

// Where the host directory is: `chosen` if it is not empty, else RSVP_HOST_DIR, else $XDG_RUNTIME_DIR/rsvp-host,
// else /tmp/rsvp-host-UID. The answer is a path only; nothing on the disk is touched.
std::string DirectoryPath(std::string_view chosen = {});

// Room for the path of a host directory, with its closing zero. A longer path is refused everywhere: with the name of
// the socket file it would not fit into a socket address.
inline constexpr size_t kDirectoryRoom = 94;

// The same for callers that must not use the heap. Returns the length of the whole path; if that is not below `size`,
// the written path is cut off.
size_t WriteDirectoryPath(char *path, size_t size);

// 0 if `path` is a directory of this user's that nobody else can enter; ENOENT if nothing is there, EACCES if it is
// a link, not a directory, another user's or open to others, or the reason why it cannot be looked at.
int CheckDirectory(const char *path);

// Creates the directory (0700) and its sub-folders where they are missing, and checks that it is a real directory
// of this user's, not a link and not open to others. Returns an empty string, or a sentence that says what is
// wrong with which path and what to do.
std::string PrepareDirectory(const std::string &path);

// The files of the device, all inside the directory; docs/host.md tells what each is for.
inline constexpr std::string_view kLockFile = "rsvpsimd.lock";
inline constexpr std::string_view kLogFile = "rsvpsimd.log";
inline constexpr std::string_view kCaptureFile = "rsvpsimd.pcapng";
inline constexpr std::string_view kNodesFile = "nodes";
inline constexpr std::string_view kOptionFolder = "etc";
inline constexpr std::string_view kOptionFile = "etc/te.conf";
inline constexpr std::string_view kScenarioFile = "scenario.toml";
inline constexpr std::string_view kDictionaryFile = "dictionary.toml";
inline constexpr std::string_view kServiceFolder = "service"; // has a file for each standby node, named by its number
inline constexpr std::string_view kServiceLockFile = "service/lock";
inline constexpr std::string_view kSocketPrefix = "lipc-";       // then bytes 2 to 5 of the address, in hexadecimal
inline constexpr std::string_view kSocketFile = "lipc-0ae18000"; // the daemon's
static_assert(kSocketFile.starts_with(kSocketPrefix));

std::string PathOf(std::string_view directory, std::string_view file);

// The same without the heap, for a directory whose path fits into kDirectoryRoom.
class FilePath {
public:
    FilePath(std::string_view directory, std::string_view file);

    const char *Get() const { return path_; }

private:
    char path_[kDirectoryRoom + 16];
};

// The daemon's address as a local socket.
sockaddr_un SocketAddress(std::string_view directory);

} // namespace rsvp_host

#endif
