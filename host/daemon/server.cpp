// Moves messages between the sockets and the daemon. Whatever a client does - sends nonsense, takes no answers, hangs
// up at any moment, opens connections without end - costs that client its place and nobody else anything. What the
// system refuses, memory or descriptors, is tried again: the daemon goes on with those that it has.
#include "host/daemon/server.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace rsvpsimd {

namespace {

constexpr size_t kAcceptsPerTurn = 16;
constexpr std::chrono::seconds kBetweenChores{1};
constexpr std::chrono::milliseconds kPause{100}; // before something is tried again that the system cannot do now

pid_t ProcessOf(int fd)
{
    ucred peer{};
    socklen_t size = sizeof(peer);
    return getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 ? peer.pid : 0;
}

} // namespace

Server::~Server()
{
    for (const Client &client : clients_)
        close(client.fd);
}

Server::End Server::Run()
{
    nextChores_ = Clock::now() + kBetweenChores;
    std::vector<pollfd> polled;
    for (;;) {
        if (Clock::now() >= nextChores_)
            DoChores();
        if (task_)
            nextTask_ = task_(Clock::now());
        // A negative descriptor is not looked at; a socket is, even if nothing is wanted of it.
        polled.assign(
            {{stop_, POLLIN, 0}, {Clock::now() >= nextAccept_ ? listener_ : -1, POLLIN, 0}, {signal_, POLLIN, 0}});
        const size_t first = polled.size();
        for (const Client &client : clients_) {
            const int wanted = client.answers.empty() ? POLLIN : client.blocked ? POLLOUT : 0;
            polled.push_back({client.fd, static_cast<short>(wanted), 0});
        }
        if (!WaitForEvents(polled))
            continue;
        if (polled[0].revents != 0)
            return End::Stopped;
        if (polled[2].revents != 0)
            signalTask_();
        auto client = clients_.begin();
        for (size_t i = first; i < polled.size(); ++i) {
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

// A poll that fails for want of memory or descriptors says nothing about the clients. After a pause it is tried
// again, and meanwhile the loop can still be told to end.
bool Server::WaitForEvents(std::vector<pollfd> &polled)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(NextDeadline() - Clock::now()).count();
    if (poll(polled.data(), polled.size(), static_cast<int>(std::max<int64_t>(left, 0))) >= 0) {
        trouble_.erase("poll");
        return true;
    }
    if (errno == EINTR)
        return false;
    TellOnce("poll", errno);
    std::this_thread::sleep_for(kPause);
    std::array<uint8_t, 128> content; // of an event or of a signal
    polled[0].revents = read(stop_, content.data(), content.size()) > 0 ? POLLIN : 0;
    return polled[0].revents != 0;
}

// The next chores or event, the first delayed answer, or the end of a pause.
Server::Clock::time_point Server::NextDeadline() const
{
    Clock::time_point next = std::min(nextChores_, nextTask_);
    if (nextAccept_ > Clock::now())
        next = std::min(next, nextAccept_);
    for (const Client &client : clients_)
        if (client.Waits())
            next = std::min(next, client.answers.front().due);
    return next;
}

void Server::DoChores()
{
    nextChores_ = Clock::now() + kBetweenChores;
    if (refused_ != 0)
        Tell(fmt::format("{} connections were closed: a process has at most {} sessions, all together {}", refused_,
                         places_.ofProcess, places_.ofAll));
    refused_ = 0;
    if (chore_)
        chore_();
}

void Server::Accept()
{
    for (size_t i = 0; i < kAcceptsPerTurn; ++i) {
        const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
        if (fd >= 0) {
            trouble_.erase("accept");
            Admit(fd);
            continue;
        }
        if (errno == EAGAIN || errno == EWOULDBLOCK)
            return;
        if (errno == EINTR || errno == ECONNABORTED)
            continue;
        // Most likely no descriptor is left. The newcomers stay in their queue until one is.
        const int error = errno;
        if (!MakeRoom(std::nullopt)) {
            TellOnce("accept", error);
            nextAccept_ = Clock::now() + kPause;
        }
        return;
    }
}

void Server::Admit(int fd)
{
    const pid_t process = ProcessOf(fd);
    const auto own = std::ranges::count(clients_, process, &Client::process);
    bool room = true;
    if (static_cast<size_t>(own) >= places_.ofProcess)
        room = MakeRoom(process);
    else if (clients_.size() >= places_.ofAll)
        room = MakeRoom(std::nullopt);
    if (room) {
        clients_.push_back({.fd = fd, .number = ++accepted_, .process = process, .heard = Clock::now()});
    } else {
        close(fd);
        ++refused_;
    }
}

// Drops the session that was silent longest, of this process or of all, unless all of them are in use.
bool Server::MakeRoom(std::optional<pid_t> process)
{
    const auto oldest = std::ranges::find_if(clients_, [&](const Client &client) {
        return process.value_or(client.process) == client.process && !client.Waits() &&
               Clock::now() - client.heard >= places_.idle;
    });
    if (oldest == clients_.end())
        return false;
    Drop(oldest);
    return true;
}

// Once until the call works again: it is tried ten times a second.
void Server::TellOnce(const std::string &call, int error)
{
    if (trouble_.insert(call).second)
        Tell(fmt::format("{}: {}; clients wait until it works again", call, std::strerror(error)));
}

void Server::Tell(const std::string &sentence) const
{
    if (tell_)
        tell_(sentence);
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
    // One byte more than the largest message, so that a longer one is noticed. The system tells its whole length.
    std::array<uint8_t, RSVP_MOR_MSG_MAX + 1> area;
    const ssize_t got = recv(client.fd, area.data(), area.size(), MSG_TRUNC);
    if (got < 0)
        return errno == EAGAIN || errno == EINTR;
    if (got == 0)
        return false;
    client.heard = Clock::now();
    const auto length = static_cast<size_t>(got);
    const ByteView request = ByteView(area).first(std::min(length, area.size()));
    if (capture_) {
        client.asked = {.asked = AskedBy(request),
                        .client = static_cast<uint32_t>(client.number),
                        .process = static_cast<uint32_t>(client.process),
                        .exchange = static_cast<uint32_t>(++requests_)};
        Capture(client.asked, false, request, length);
    }
    Reply reply = daemon_.Answer(request, client.number);
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
        if (capture_)
            Capture(client.asked, true, frame, frame.size());
        client.answers.pop_front();
    }
    return true;
}

void Server::Capture(const CapturedFrame &about, bool isReply, ByteView bytes, size_t length) const
{
    CapturedFrame frame = about;
    frame.isReply = isReply;
    frame.length = length;
    frame.bytes = bytes;
    capture_(frame);
}

void Server::Drop(std::list<Client>::iterator client)
{
    close(client->fd);
    clients_.erase(client);
}

} // namespace rsvpsimd
