// The three system calls of an exchange, in the place of the C library's. A program's own definition comes before
// that of any library, so the calls of librsvp_mor come here. Each thread has a note of its own, and a call that a
// deadline bounds waits here and not in the system.
#include "manager/exchange/exchange.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

namespace manager {
namespace {

using Clock = std::chrono::steady_clock;

thread_local Exchange last;
thread_local Clock::time_point start;
std::atomic<ExchangeObserver> observerOfAll = nullptr;

void Begin(Exchange::Stage stage, int session)
{
    // A session that is held has no connect in front of its exchange.
    if (stage == Exchange::Stage::Open || (stage == Exchange::Stage::Send && last.stage != Exchange::Stage::Open)) {
        last = {};
        start = Clock::now();
    }
    last.stage = stage;
    last.session = session;
    last.error = 0;
    last.givenUp = GivenUp::No;
}

// `result` is that of the system call, whose errno the caller of the library may still look at.
void End(ssize_t result, const void *message)
{
    const int error = errno;
    if (result < 0)
        last.error = error;
    last.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    if (const ExchangeObserver observer = observerOfAll)
        observer(last, message);
    errno = error;
}

FrameHeader HeaderOf(const void *message, size_t length)
{
    uint8_t bytes[kHeaderSize] = {};
    std::memcpy(bytes, message, std::min(length, sizeof(bytes)));
    return {bytes[0], bytes[1], static_cast<uint16_t>(bytes[2] << 8 | bytes[3]),
            uint32_t{bytes[4]} << 24 | uint32_t{bytes[5]} << 16 | uint32_t{bytes[6]} << 8 | bytes[7]};
}

// ---- Within a deadline ----

// What the library asks of every session, where the session itself does not tell.
constexpr timeval kOwnTimeout = {10, 0};

// A wait that lasts this long at most, where nothing tells when to try again.
constexpr auto kPause = std::chrono::milliseconds(10);

// When the call would end without a deadline, which does not make it longer.
Clock::time_point OwnEnd(int fd, int option)
{
    timeval time{};
    socklen_t length = sizeof(time);
    if (getsockopt(fd, SOL_SOCKET, option, &time, &length) != 0 || (time.tv_sec == 0 && time.tv_usec == 0))
        time = kOwnTimeout;
    return Clock::now() + std::chrono::seconds(time.tv_sec) + std::chrono::microseconds(time.tv_usec);
}

int Refuse(GivenUp why)
{
    last.givenUp = why;
    errno = why == GivenUp::Cancelled ? ECANCELED : ETIMEDOUT;
    return -1;
}

bool WouldWait(int error)
{
    return error == EAGAIN || error == EINTR || error == EINPROGRESS || error == EALREADY;
}

// Makes a call that does not wait, as often as it says that it would have to.
template <typename Call> ssize_t Bounded(Deadline &deadline, int fd, short events, int ownOption, Call call)
{
    const Clock::time_point ownEnd = OwnEnd(fd, ownOption);
    for (;;) {
        if (const GivenUp why = deadline.Wait(fd, events, ownEnd); why != GivenUp::No)
            return Refuse(why);
        const ssize_t result = call();
        if (result >= 0 || !WouldWait(errno) || Clock::now() >= ownEnd)
            return result;
        // Someone else was faster, or a queue is full that no event tells of.
        if (const GivenUp why = deadline.Wait(-1, 0, Clock::now() + kPause); why != GivenUp::No)
            return Refuse(why);
    }
}

// A full backlog has no event: connecting is tried again after each pause.
template <typename Call> ssize_t BoundedConnect(Deadline &deadline, int fd, int flags, Call call)
{
    if (fcntl(fd, F_SETFL, flags | O_NONBLOCK) != 0)
        return -1;
    const ssize_t result = Bounded(deadline, fd, POLLOUT, SO_SNDTIMEO, call);
    const int error = errno;
    (void)fcntl(fd, F_SETFL, flags);
    errno = error;
    return result;
}

// The deadline of a call that may wait; one on a descriptor that never waits needs none.
Deadline *DeadlineOf(int fd, int &flags)
{
    Deadline *deadline = Deadline::Current();
    if (deadline == nullptr)
        return nullptr;
    flags = fcntl(fd, F_GETFL);
    return flags < 0 || (flags & O_NONBLOCK) != 0 ? nullptr : deadline;
}

template <typename Call> ssize_t Within(int fd, short events, int ownOption, int flags, Call call)
{
    int itsFlags = 0;
    Deadline *deadline = (flags & MSG_DONTWAIT) != 0 ? nullptr : DeadlineOf(fd, itsFlags);
    if (deadline == nullptr)
        return call(flags);
    return Bounded(*deadline, fd, events, ownOption, [&] { return call(flags | MSG_DONTWAIT); });
}

} // namespace

void ForgetExchange()
{
    last = {};
}

void ObserveExchanges(ExchangeObserver observer)
{
    observerOfAll = observer;
}

const Exchange &LastExchange()
{
    return last;
}

} // namespace manager

using manager::Exchange;

extern "C" {

int connect(int fd, const sockaddr *address, socklen_t length)
{
    manager::Begin(Exchange::Stage::Open, fd);
    const auto attempt = [&] { return syscall(SYS_connect, fd, address, length); };
    int flags = 0;
    manager::Deadline *deadline = manager::DeadlineOf(fd, flags);
    const auto result =
        static_cast<int>(deadline == nullptr ? attempt() : manager::BoundedConnect(*deadline, fd, flags, attempt));
    manager::End(result, nullptr);
    return result;
}

ssize_t send(int fd, const void *data, size_t length, int flags)
{
    manager::Begin(Exchange::Stage::Send, fd);
    manager::last.length = length;
    manager::last.request = manager::HeaderOf(data, length);
    const ssize_t result = manager::Within(fd, POLLOUT, SO_SNDTIMEO, flags, [&](int itsFlags) {
        return sendto(fd, data, length, itsFlags, nullptr, 0);
    });
    manager::last.sent = static_cast<size_t>(std::max<ssize_t>(result, 0));
    manager::End(result, data);
    return result;
}

ssize_t recv(int fd, void *data, size_t length, int flags)
{
    manager::Begin(Exchange::Stage::Receive, fd);
    const ssize_t result = manager::Within(fd, POLLIN, SO_RCVTIMEO, flags, [&](int itsFlags) {
        return recvfrom(fd, data, length, itsFlags, nullptr, nullptr);
    });
    manager::last.received = static_cast<size_t>(std::max<ssize_t>(result, 0));
    manager::last.reply = manager::HeaderOf(data, manager::last.received);
    manager::End(result, data);
    return result;
}

} // extern "C"
