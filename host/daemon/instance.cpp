// Takes the lock before it touches anything else: whoever holds it may remove the socket file of a daemon that died.
// The lock file itself stays; if it were removed, two daemons could lock two different files.
#include "host/daemon/instance.h"

#include "host/directory.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rsvpsimd {

namespace {

constexpr int kBacklog = 128;

[[noreturn]] void Fail(const std::string &what, const std::string &path)
{
    throw InstanceError(fmt::format("{} {}: {}", what, path, std::strerror(errno)));
}

} // namespace

Instance::Instance(const std::string &directory) : socketPath_(rsvp_host::PathOf(directory, rsvp_host::kSocketFile))
{
    if (const std::string problem = rsvp_host::PrepareDirectory(directory); !problem.empty())
        throw InstanceError(problem);
    try {
        Lock(rsvp_host::PathOf(directory, rsvp_host::kLockFile));
        Listen(rsvp_host::SocketAddress(directory));
    } catch (const InstanceError &) {
        close(listener_);
        close(lock_);
        throw;
    }
}

Instance::~Instance()
{
    unlink(socketPath_.c_str());
    close(listener_);
    close(lock_);
}

void Instance::Lock(const std::string &path)
{
    lock_ = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (lock_ < 0)
        Fail("cannot open the lock file", path);
    if (flock(lock_, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK)
            Fail("cannot lock", path);
        throw InstanceError(fmt::format("another daemon is running here: it holds {}", path));
    }
    const std::string pid = fmt::format("{}\n", getpid());
    if (ftruncate(lock_, 0) != 0 || write(lock_, pid.data(), pid.size()) != static_cast<ssize_t>(pid.size()))
        Fail("cannot write to", path);
}

void Instance::Listen(const sockaddr_un &address)
{
    if (unlink(socketPath_.c_str()) != 0 && errno != ENOENT)
        Fail("cannot remove the stale socket", socketPath_);
    listener_ = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (listener_ < 0)
        Fail("cannot make the socket", socketPath_);
    const mode_t before = umask(0177);
    const int bound = bind(listener_, reinterpret_cast<const sockaddr *>(&address), sizeof(address));
    umask(before);
    if (bound != 0)
        Fail("cannot bind", socketPath_);
    if (listen(listener_, kBacklog) != 0)
        Fail("cannot listen on", socketPath_);
}

} // namespace rsvpsimd
