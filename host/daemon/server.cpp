// Moves messages between the sockets and the daemon. Whatever a client does - sends nonsense, takes no answers, hangs
// up at any moment, opens connections without end - costs that client its place and nobody else anything.
#include "host/daemon/server.h"

#include <cerrno>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace rsvpsimd {

namespace {

constexpr size_t kMaxClients = 256;
constexpr size_t kAcceptsPerTurn = 16;

} // namespace

Server::~Server()
{
    for (const Client &client : clients_)
        close(client.fd);
}

Server::End Server::Run()
{
    std::vector<pollfd> polled;
    for (;;) {
        polled.assign({{stop_, POLLIN, 0}, {listener_, POLLIN, 0}});
        for (const Client &client : clients_) {
            const int wanted = client.answers.empty() ? POLLIN : client.blocked ? POLLOUT : 0;
            polled.push_back({client.fd, static_cast<short>(wanted), 0});
        }
        if (poll(polled.data(), polled.size(), Timeout()) < 0 && errno != EINTR)
            throw std::system_error(errno, std::generic_category(), "poll");
        if (polled[0].revents != 0)
            return End::Stopped;
        auto client = clients_.begin();
        for (size_t i = 2; i < polled.size(); ++i) {
            const auto current = client++;
            const bool busy = polled[i].revents != 0;
            if (!Serve(*current, polled[i].revents))
                Drop(current);
            else if (busy)
                clients_.splice(clients_.end(), clients_, current);
            if (crashed_)
                return End::Crashed;
        }
        if (polled[1].revents != 0)
            Accept();
    }
}

// Until the first delayed answer is due, or for ever if there is none.
int Server::Timeout() const
{
    int timeout = -1;
    const auto now = Clock::now();
    for (const Client &client : clients_) {
        if (client.answers.empty() || client.blocked)
            continue;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(client.answers.front().due - now).count();
        const int wait = static_cast<int>(std::max<int64_t>(left, 0));
        timeout = timeout < 0 ? wait : std::min(timeout, wait);
    }
    return timeout;
}

void Server::Accept()
{
    for (size_t i = 0; i < kAcceptsPerTurn; ++i) {
        const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (fd < 0) {
            // Out of descriptors: the client that was silent longest makes room, and the next turn accepts again.
            if ((errno == EMFILE || errno == ENFILE || errno == ENOMEM || errno == ENOBUFS) && !clients_.empty())
                Drop(clients_.begin());
            return;
        }
        if (clients_.size() == kMaxClients)
            Drop(clients_.begin());
        clients_.push_back({.fd = fd, .number = ++accepted_});
    }
}

bool Server::Serve(Client &client, short events)
{
    if (client.answers.empty())
        return events == 0 || Read(client);
    if ((events & (POLLHUP | POLLERR | POLLNVAL)) != 0)
        return false;
    return (client.blocked && events == 0) || Write(client);
}

bool Server::Read(Client &client)
{
    // One byte more than the largest message, so that a longer one is noticed.
    std::array<uint8_t, RSVP_MOR_MSG_MAX + 1> request;
    const ssize_t got = recv(client.fd, request.data(), request.size(), 0);
    if (got < 0)
        return errno == EAGAIN || errno == EINTR;
    if (got == 0)
        return false;
    Reply reply = daemon_.Answer(ByteView(request).first(static_cast<size_t>(got)), client.number);
    crashed_ = reply.crash;
    for (int i = 0; i < reply.copies; ++i)
        client.answers.push_back({reply.frame, Clock::now() + reply.delay});
    return !reply.close && Write(client);
}

bool Server::Write(Client &client)
{
    while (!client.answers.empty() && client.answers.front().due <= Clock::now()) {
        const Bytes &frame = client.answers.front().frame;
        const ssize_t sent = send(client.fd, frame.data(), frame.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        client.blocked = sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK);
        if (client.blocked)
            return true;
        if (sent < 0)
            return false;
        client.answers.pop_front();
    }
    return true;
}

void Server::Drop(std::list<Client>::iterator client)
{
    close(client->fd);
    clients_.erase(client);
}

} // namespace rsvpsimd
