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
#include <sys/un.h>
#include <unistd.h>

namespace rsvpsimd {

namespace {

constexpr int kBacklog = 128;

// A call of the system that failed, and why.
struct Problem : InstanceError {
    Problem(const std::string &what, int error) : InstanceError(what), error(error) {}
    int error;
};

[[noreturn]] void Fail(const std::string &what, const std::string &path)
{
    const int error = errno;
    throw Problem(fmt::format("{} {}: {}", what, path, std::strerror(error)), error);
}

} // namespace

Instance::Instance(const std::string &directory)
    : directory_(directory), lockPath_(rsvp_host::PathOf(directory, rsvp_host::kLockFile)),
      socketPath_(rsvp_host::PathOf(directory, rsvp_host::kSocketFile))
{
    if (const std::string problem = rsvp_host::PrepareDirectory(directory); !problem.empty())
        throw InstanceError(problem);
    try {
        Lock();
        Listen();
    } catch (const InstanceError &) {
        close(listener_);
        close(lock_);
        throw;
    }
}

Instance::~Instance()
{
    // Another daemon may have bound its own socket here, after somebody removed the lock file.
    if (At(socketPath_) == socketFile_)
        unlink(socketPath_.c_str());
    close(listener_);
    close(lock_);
}

std::string Instance::Recover()
{
    try {
        const bool hasLock = At(lockPath_) == lockFile_;
        if (hasLock && At(socketPath_) == socketFile_)
            return {};
        if (!hasLock)
            Lock();
        Listen();
        return fmt::format("the socket {} was gone; it is bound again, and sessions that are open go on",
                           socketPath_);
    } catch (const Problem &problem) {
        if (problem.error == ENOENT || problem.error == ENOTDIR)
            throw InstanceError(fmt::format("the host directory {} is gone", directory_));
        return problem.what();
    }
}

Instance::Identity Instance::At(const std::string &path)
{
    struct stat file {};
    return lstat(path.c_str(), &file) == 0 ? Of(file) : Identity{};
}

// What was held before is released only when the new one is there.
void Instance::Lock()
{
    const int lock = open(lockPath_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (lock < 0)
        Fail("cannot open the lock file", lockPath_);
    try {
        if (flock(lock, LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK)
                Fail("cannot lock", lockPath_);
            throw InstanceError(fmt::format("another daemon is running here: it holds {}", lockPath_));
        }
        const std::string pid = fmt::format("{}\n", getpid());
        if (ftruncate(lock, 0) != 0 || write(lock, pid.data(), pid.size()) != static_cast<ssize_t>(pid.size()))
            Fail("cannot write to", lockPath_);
    } catch (const InstanceError &) {
        close(lock);
        throw;
    }
    close(lock_);
    lock_ = lock;
    struct stat file {};
    fstat(lock, &file);
    lockFile_ = Of(file);
}

void Instance::Listen()
{
    if (unlink(socketPath_.c_str()) != 0 && errno != ENOENT)
        Fail("cannot remove the stale socket", socketPath_);
    const int listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (listener < 0)
        Fail("cannot make the socket", socketPath_);
    try {
        const sockaddr_un address = rsvp_host::SocketAddress(directory_);
        const mode_t before = umask(0177);
        const int bound = bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof(address));
        umask(before);
        if (bound != 0)
            Fail("cannot bind", socketPath_);
        if (listen(listener, kBacklog) != 0)
            Fail("cannot listen on", socketPath_);
        if (listener_ >= 0 && dup3(listener, listener_, O_CLOEXEC) < 0)
            Fail("cannot replace the socket of", socketPath_);
    } catch (const InstanceError &) {
        close(listener);
        throw;
    }
    if (listener_ >= 0)
        close(listener);
    else
        listener_ = listener;
    socketFile_ = At(socketPath_);
}

} // namespace rsvpsimd
