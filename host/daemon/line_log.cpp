// Writing must not block. Whether it does is a property of the open file, which for standard error belongs to other
// programs as well, so a pipe or a terminal is opened once more for the daemon alone.
#include "host/daemon/line_log.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace rsvpsimd {

namespace {

constexpr size_t kMostWaiting = 256UL << 10;
constexpr int kForLines = O_WRONLY | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY;

} // namespace

LineLog::LineLog() : fd_(STDERR_FILENO)
{
    struct stat found {};
    fstat(fd_, &found);
    isRegular_ = S_ISREG(found.st_mode);
    isSocket_ = S_ISSOCK(found.st_mode);
    if (isRegular_ || isSocket_)
        return;
    const int own = open("/proc/self/fd/2", kForLines);
    mayBlock_ = own < 0;
    if (own >= 0)
        fd_ = own;
}

LineLog::LineLog(const std::string &path, uint64_t most)
    : fd_(open(path.c_str(), kForLines | O_CREAT | O_NOFOLLOW, 0600)), isRegular_(true), most_(most)
{
    struct stat found {};
    if (fd_ < 0 || fstat(fd_, &found) != 0)
        throw std::runtime_error(fmt::format("cannot write to {}: {}", path, std::strerror(errno)));
    if (!S_ISREG(found.st_mode)) {
        close(fd_);
        throw std::runtime_error(fmt::format("cannot write to {}: it is not a regular file", path));
    }
}

LineLog::~LineLog()
{
    Finish();
    if (fd_ != STDERR_FILENO)
        close(fd_);
}

void LineLog::Write(std::string_view line)
{
    TellLoss();
    if (lost_ > 0 || waiting_.size() + line.size() >= kMostWaiting)
        ++lost_;
    else
        waiting_.append(line).push_back('\n');
    Flush();
}

void LineLog::Flush()
{
    while (!waiting_.empty()) {
        const ssize_t written = WriteSome();
        if (written <= 0)
            return;
        waiting_.erase(0, static_cast<size_t>(written));
        TellLoss();
    }
}

uint64_t LineLog::Finish()
{
    most_ = UINT64_MAX;
    Flush();
    return lost_ + static_cast<uint64_t>(std::ranges::count(waiting_, '\n'));
}

// The line stands where the lost ones would. It waits until there is room again for a good many lines, so that lines
// and losses do not alternate.
void LineLog::TellLoss()
{
    if (lost_ == 0 || waiting_.size() > kMostWaiting / 2)
        return;
    waiting_ += fmt::format("rsvpsimd: {} lines were lost\n", lost_);
    lost_ = 0;
}

ssize_t LineLog::WriteSome() const
{
    size_t size = waiting_.size();
    if (isSocket_)
        return send(fd_, waiting_.data(), size, MSG_DONTWAIT | MSG_NOSIGNAL);
    struct stat found {};
    if (isRegular_ && (fstat(fd_, &found) != 0 || static_cast<uint64_t>(found.st_size) + size > most_))
        return -1;
    if (mayBlock_) {
        // A pipe that is ready takes this much at once, unless another program writes to it at this moment.
        pollfd ready{fd_, POLLOUT, 0};
        if (poll(&ready, 1, 0) <= 0)
            return -1;
        size = std::min(size, size_t{PIPE_BUF});
    }
    return write(fd_, waiting_.data(), size);
}

} // namespace rsvpsimd
