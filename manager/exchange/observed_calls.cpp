// The three system calls of an exchange, in the place of the C library's. A program's own definition comes before
// that of any library, so the calls of librsvp_mor come here. Each thread has a note of its own.
#include "manager/exchange/exchange.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace manager {
namespace {

using Clock = std::chrono::steady_clock;

thread_local Exchange last;
thread_local Clock::time_point start;

void Begin(Exchange::Stage stage)
{
    // A session that is held has no connect in front of its exchange.
    if (stage == Exchange::Stage::Open || (stage == Exchange::Stage::Send && last.stage != Exchange::Stage::Open)) {
        last = {};
        start = Clock::now();
    }
    last.stage = stage;
    last.error = 0;
}

// `result` is that of the system call, whose errno the caller of the library may still look at.
void End(ssize_t result)
{
    if (result < 0)
        last.error = errno;
    last.seconds = std::chrono::duration<double>(Clock::now() - start).count();
}

FrameHeader HeaderOf(const void *message, size_t length)
{
    uint8_t bytes[kHeaderSize] = {};
    std::memcpy(bytes, message, std::min(length, sizeof(bytes)));
    return {bytes[0], bytes[1], static_cast<uint16_t>(bytes[2] << 8 | bytes[3]),
            uint32_t{bytes[4]} << 24 | uint32_t{bytes[5]} << 16 | uint32_t{bytes[6]} << 8 | bytes[7]};
}

} // namespace

void ForgetExchange()
{
    last = {};
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
    manager::Begin(Exchange::Stage::Open);
    const auto result = static_cast<int>(syscall(SYS_connect, fd, address, length));
    manager::End(result);
    return result;
}

ssize_t send(int fd, const void *data, size_t length, int flags)
{
    manager::Begin(Exchange::Stage::Send);
    manager::last.length = length;
    manager::last.request = manager::HeaderOf(data, length);
    const ssize_t result = sendto(fd, data, length, flags, nullptr, 0);
    manager::last.sent = static_cast<size_t>(std::max<ssize_t>(result, 0));
    manager::End(result);
    return result;
}

ssize_t recv(int fd, void *data, size_t length, int flags)
{
    manager::Begin(Exchange::Stage::Receive);
    const ssize_t result = recvfrom(fd, data, length, flags, nullptr, nullptr);
    manager::last.received = static_cast<size_t>(std::max<ssize_t>(result, 0));
    manager::last.reply = manager::HeaderOf(data, manager::last.received);
    manager::End(result);
    return result;
}

} // extern "C"
