// Lines of the trace. Sessions are numbered as they are opened, so that calls with a session of their own can be told
// from those of a walk. Each line is one write: what ends the process loses none.
#include "tools/rsvpctl/print/trace.h"

#include "host/daemon/capture/captured_frame.h"
#include "host/daemon/trace.h"
#include "manager/exchange/exchange.h"
#include "process/clock.h"
#include "tools/rsvpctl/print/usage_error.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace rsvpctl {
namespace {

using manager::Exchange;
using rsvpsimd::ByteView, rsvpsimd::CapturedFrame;

constexpr size_t kBytesOfLine = 16;

struct Session {
    uint64_t number = 0;
    uint16_t asked = rsvpsimd::kAskedNothing;
    std::chrono::steady_clock::time_point sent;
};

struct State {
    int fd = -1;
    bool hex = false;
    int error = 0; // of a write
    uint64_t opened = 0;
    std::map<int, Session> sessions; // by descriptor
};

State state;

[[noreturn]] void Refuse(const std::string &file, const std::string &problem)
{
    throw UsageError(fmt::format("--trace: {}: {}", file, problem));
}

int OpenFile(const std::string &file)
{
    // The process that polls for a watch has no standard error of its own.
    if (file.empty())
        return fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
    const int fd = open(file.c_str(), kFlags, 0600);
    struct stat found {};
    if (fd < 0 || fstat(fd, &found) != 0)
        Refuse(file, std::strerror(errno));
    if (!S_ISREG(found.st_mode)) {
        close(fd);
        Refuse(file, "is not a regular file");
    }
    return fd;
}

void Write(const std::string &text)
{
    for (size_t at = 0; at < text.size() && state.error == 0;) {
        const ssize_t written = write(state.fd, text.data() + at, text.size() - at);
        if (written > 0)
            at += static_cast<size_t>(written);
        else if (errno != EINTR)
            state.error = errno;
    }
}

std::string HexOf(const CapturedFrame &frame)
{
    const rsvpsimd::Bytes bytes = WithoutSecrets(frame);
    std::string text;
    for (size_t at = 0; at < bytes.size(); at += kBytesOfLine) {
        const ByteView line = ByteView(bytes).subspan(at, std::min(kBytesOfLine, bytes.size() - at));
        text += fmt::format("    {:04x}  {:02x}\n", at, fmt::join(line, " "));
    }
    return text;
}

void WriteMessage(const std::string &words, const CapturedFrame &frame)
{
    Write(fmt::format("{} {}\n{}", process::TimeStamp(), words, state.hex ? HexOf(frame) : ""));
}

void TellRequest(const Exchange &exchange, Session &session, ByteView bytes)
{
    session.sent = std::chrono::steady_clock::now();
    session.asked = rsvpsimd::AskedBy(bytes);
    const std::string words = rsvpsimd::DescribeRequest(session.number, bytes);
    const std::string failed =
        exchange.error == 0 ? "" : fmt::format(" (not sent: {})", std::strerror(exchange.error));
    WriteMessage(words + failed, {.length = bytes.size(), .bytes = bytes});
}

void TellReply(const Exchange &exchange, const Session &session, ByteView bytes)
{
    const std::chrono::duration<double, std::milli> time(std::chrono::steady_clock::now() - session.sent);
    rsvpsimd::Reply none;
    none.copies = 0;
    none.close = exchange.error == 0;
    const std::string words = bytes.empty() ? rsvpsimd::DescribeReply(session.number, {}, none)
                                            : rsvpsimd::DescribeReply(session.number, session.asked, bytes);
    WriteMessage(fmt::format("{} ({:.3f} ms)", words, time.count()),
                 {.isReply = true, .asked = session.asked, .length = bytes.size(), .bytes = bytes});
}

// The platform asks on connections of its own whether the daemon lives; no message goes over them.
void Observe(const Exchange &exchange, const void *message)
{
    if (exchange.stage == Exchange::Stage::Open) {
        state.sessions.erase(exchange.session);
        return;
    }
    if (exchange.length == 0)
        return;
    Session &session = state.sessions[exchange.session];
    if (session.number == 0)
        session.number = ++state.opened;
    const auto *bytes = static_cast<const uint8_t *>(message);
    if (exchange.stage == Exchange::Stage::Send)
        TellRequest(exchange, session, {bytes, exchange.length});
    else
        TellReply(exchange, session, {bytes, exchange.received});
}

} // namespace

Trace::Trace(const std::string &file, bool hex)
{
    state.fd = OpenFile(file);
    state.hex = hex;
    manager::ObserveExchanges(Observe);
}

Trace::~Trace()
{
    manager::ObserveExchanges(nullptr);
    close(state.fd);
}

std::string Trace::Problem()
{
    return state.error == 0 ? "" : fmt::format("the trace could not be written: {}", std::strerror(state.error));
}

} // namespace rsvpctl
