// A service manager gets datagrams of lines. None of it may keep the daemon waiting, so a message that does not go
// out at once is lost, and told.
#include "host/daemon/notify.h"

#include "process/standard_streams.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fmt/format.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace rsvpsimd {

void CheckInherited(int fd)
{
    // Whatever this program opens itself has the flag, and what has the flag is not inherited.
    const int flags = fcntl(fd, F_GETFD);
    if (flags < 0 || (flags & FD_CLOEXEC) != 0)
        throw std::runtime_error(fmt::format("--ready-fd: {} is not an open descriptor", fd));
}

Notifier::Notifier(std::optional<int> readyFd, const char *socket, std::function<void(const std::string &)> tell)
    : readyFd_(readyFd), address_(socket == nullptr ? "" : socket), tell_(std::move(tell))
{
    if (address_.empty())
        return;
    if ((address_[0] != '/' && address_[0] != '@') || address_.size() >= sizeof(sockaddr_un::sun_path)) {
        tell_(fmt::format("NOTIFY_SOCKET: \"{}\" is not the address of a local socket", address_));
        return;
    }
    if (address_[0] == '@')
        address_[0] = '\0';
    fd_ = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

Notifier::~Notifier()
{
    close(fd_);
}

void Notifier::Ready()
{
    if (readyFd_) {
        constexpr std::string_view kLine = "READY\n";
        if (write(*readyFd_, kLine.data(), kLine.size()) != static_cast<ssize_t>(kLine.size()))
            tell_(fmt::format("--ready-fd: {}", std::strerror(errno)));
        close(*readyFd_);
        process::OpenStandardStreams(); // it may have been one of them
        readyFd_.reset();
    }
    Send("READY=1");
}

void Notifier::Reloading()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    Send(fmt::format("RELOADING=1\nMONOTONIC_USEC={}", int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000));
}

void Notifier::Stopping()
{
    Send("STOPPING=1");
}

void Notifier::Send(const std::string &message)
{
    if (fd_ < 0)
        return;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, address_.data(), address_.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address_.size());
    if (sendto(fd_, message.data(), message.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr *>(&address),
               length) < 0)
        tell_(fmt::format("NOTIFY_SOCKET: {}", std::strerror(errno)));
}

} // namespace rsvpsimd
