// The router's private socket family on a machine that has none. The linker redirects the library's own socket calls
// to this file, and family 37 becomes a local socket in the host directory. SOCK_SEQPACKET keeps one message per send
// and recv, and reports an error when the other side is gone.
#include "host/platform/checked_directory.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

namespace {

constexpr int kFamily = 37;
constexpr int kDatagram = 2;
constexpr int kProtocol = 1;
constexpr int kSocketLevel = 1;
constexpr int kSendTimeout = 0x1005;
constexpr int kReceiveTimeout = 0x1006;
constexpr size_t kAddressLength = 16;

} // namespace

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): names that the linker gives
int __wrap_socket(int family, int type, int protocol);
int __wrap_setsockopt(int fd, int level, int option, const void *value, socklen_t length);
int __wrap_connect(int fd, const sockaddr *address, socklen_t length);
ssize_t __wrap_send(int fd, const void *data, size_t length, int flags);
// NOLINTEND(bugprone-reserved-identifier)

int __wrap_socket(int family, int type, int protocol)
{
    if (family != kFamily || type != kDatagram || protocol != kProtocol)
        return socket(family, type, protocol);
    return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
}

// This system has no socket options with these two numbers, so the descriptor's family need not be checked.
int __wrap_setsockopt(int fd, int level, int option, const void *value, socklen_t length)
{
    uint32_t words[2];
    const bool timeout = option == kSendTimeout || option == kReceiveTimeout;
    if (level != kSocketLevel || !timeout || value == nullptr || length != sizeof(words))
        return setsockopt(fd, level, option, value, length);
    std::memcpy(words, value, sizeof(words));
    timeval time{};
    time.tv_sec = static_cast<decltype(time.tv_sec)>(words[0]);
    time.tv_usec = static_cast<decltype(time.tv_usec)>(words[1]);
    return setsockopt(fd, SOL_SOCKET, option == kSendTimeout ? SO_SNDTIMEO : SO_RCVTIMEO, &time, sizeof(time));
}

// The family's address begins with a length byte and a family byte. Read as a family number of this system, the two
// name a family that does not exist, in either byte order, so no other address can be mistaken for one.
int __wrap_connect(int fd, const sockaddr *address, socklen_t length)
{
    unsigned char bytes[kAddressLength] = {};
    if (address != nullptr && length == sizeof(bytes))
        std::memcpy(bytes, address, sizeof(bytes));
    if (bytes[0] != kAddressLength || bytes[1] != kFamily)
        return connect(fd, address, length);
    char directory[rsvp_host::kDirectoryRoom];
    if (const int error = rsvp_host::FindDirectory(directory); error != 0) {
        errno = error;
        return -1;
    }
    sockaddr_un file{};
    file.sun_family = AF_UNIX;
    // By hand: a formatted print would take as long as everything else that the library does in such a call.
    char *end = stpcpy(stpcpy(stpcpy(file.sun_path, directory), "/"), rsvp_host::kSocketPrefix.data());
    for (int i = 2; i < 6; ++i) {
        *end++ = "0123456789abcdef"[bytes[i] >> 4];
        *end++ = "0123456789abcdef"[bytes[i] & 0xf];
    }
    return connect(fd, reinterpret_cast<const sockaddr *>(&file), sizeof(file));
}

// A datagram family never raises SIGPIPE, and a management program must not die when the daemon does.
ssize_t __wrap_send(int fd, const void *data, size_t length, int flags)
{
    return send(fd, data, length, flags | MSG_NOSIGNAL);
}

} // extern "C"
