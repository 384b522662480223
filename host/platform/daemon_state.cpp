// Only the daemon's lock file says whether it lives: the kernel releases the lock however the daemon ends, so nothing
// here can become stale. The pid in the file says which process it is, and counts only while the file is locked.
#include "host/platform/daemon_state.h"
#include "host/directory.h"
#include "host/platform/files.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>

namespace rsvp_host {

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// A daemon that starts has the lock a moment before its socket, and one that is killed may lose the lock a moment
// before it. So much time is left to such a moment.
constexpr int kMoments = 100;
constexpr useconds_t kMoment = 1000;

DaemonState HolderOfTheLock(const char *directory)
{
    const Descriptor lock(open(FilePath(directory, kLockFile).Get(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (lock.Get() < 0)
        return errno == ENOENT ? DaemonState{} : DaemonState{.problem = {kLockFile, "cannot be opened", errno}};
    char text[16];
    const ssize_t length = read(lock.Get(), text, sizeof(text));
    if (length < 0)
        return {.problem = {kLockFile, "cannot be read", errno}};
    pid_t pid = 0;
    std::from_chars(text, text + length, pid);
    // If the process is gone, do not try the lock: trying it means holding it for a moment, and a daemon that starts
    // in that moment would think that another daemon holds it. A daemon that has not written its pid yet has no
    // socket yet either.
    if (pid <= 1 || (kill(pid, 0) != 0 && errno == ESRCH))
        return {};
    if (flock(lock.Get(), LOCK_SH | LOCK_NB) == 0) {
        flock(lock.Get(), LOCK_UN); // otherwise a child forked by another thread would keep it
        return {};
    }
    return errno == EWOULDBLOCK ? DaemonState{.pid = pid}
                                : DaemonState{.problem = {kLockFile, "cannot be locked", errno}};
}

// A descriptor, or the error number made negative. Never blocks.
int Connect(const char *directory)
{
    const sockaddr_un address = SocketAddress(directory);
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd < 0 || connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0)
        return fd < 0 ? -errno : fd;
    const int error = errno;
    close(fd);
    return -error;
}

// Whether the socket agrees with the lock: there if a process holds it, and nobody's if none does.
bool SocketAgrees(const char *directory, DaemonState &state)
{
    const bool there = access(FilePath(directory, kSocketFile).Get(), F_OK) == 0;
    if (!there && errno != ENOENT)
        state.problem = {kSocketFile, "cannot be looked at", errno};
    if (!there || state.pid != 0)
        return there == (state.pid != 0);
    const Descriptor probe(Connect(directory));
    if (probe.Get() >= 0 || probe.Get() == -EAGAIN)
        return false;
    if (probe.Get() != -ECONNREFUSED && probe.Get() != -ENOENT)
        state.problem = {kSocketFile, "cannot be asked for its daemon", -probe.Get()};
    return true;
}

} // namespace

DaemonState FindDaemon(const char *directory)
{
    for (int moment = 0;; ++moment) {
        DaemonState state = HolderOfTheLock(directory);
        if (state.problem || SocketAgrees(directory, state) || state.problem)
            return state;
        if (moment < kMoments) {
            usleep(kMoment);
            continue;
        }
        if (state.pid == 0)
            state.problem = {kSocketFile, "belongs to a process that does not hold the daemon's lock file"};
        return state;
    }
}

// Half a connection is enough: the daemon's loop hangs up on a client that has hung up. Nothing is asked, so nothing
// is counted or traced.
bool DaemonAnswers(const char *directory, milliseconds patience)
{
    const auto deadline = Clock::now() + patience;
    const Descriptor probe(Connect(directory));
    if (probe.Get() < 0 || shutdown(probe.Get(), SHUT_WR) != 0)
        return false;
    char byte;
    pollfd watch{probe.Get(), POLLIN, 0};
    int ready;
    do {
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now()).count();
        ready = poll(&watch, 1, left > 0 ? static_cast<int>(left) : 0);
    } while (ready < 0 && errno == EINTR);
    return ready > 0 && recv(probe.Get(), &byte, sizeof(byte), 0) == 0;
}

} // namespace rsvp_host
