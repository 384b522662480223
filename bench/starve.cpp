// What a session that asks every 50 ms notices of others that mean harm: the time of its answers, and what it loses.
// Each load runs in processes of its own against a daemon of its own, from before the first question until after the
// last one. The exit status is 1 if an answer is lost or the 99th percentile breaks the bound.
#include "calls.h"

#include "host/directory.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <list>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace rsvpsimd;

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr std::chrono::milliseconds kPause{50};
constexpr Milliseconds kBound{50};
constexpr size_t kQuestions = 300;
constexpr uint32_t kUndos = 400'000;
constexpr uint32_t kSets = 150'000;
constexpr size_t kHeldOpen = 1000;  // by the flood, below the usual limit of descriptors
constexpr size_t kSlowReaders = 60; // in each process

int Connect()
{
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    const sockaddr_un address = rsvp_host::SocketAddress(getenv("RSVP_HOST_DIR"));
    if (fd >= 0 && connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0)
        return fd;
    close(fd);
    return -1;
}

// True if an answer came, whatever its status.
bool Ask(int fd, const Bytes &request)
{
    std::array<uint8_t, RSVP_MOR_MSG_MAX> reply;
    return send(fd, request.data(), request.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(request.size()) &&
           recv(fd, reply.data(), reply.size(), 0) > 0;
}

Bytes OfInterface(uint8_t op, uint32_t index)
{
    Bytes number;
    AppendNet(number, index, 4);
    Bytes body;
    AppendItem(body, 1, number);
    AppendItem(body, 18, {});
    return BuildFrame(kInterface, op, kOk, body);
}

Bytes FirstInterface()
{
    Bytes body;
    AppendItem(body, 7, {});
    return BuildFrame(kShow, kGetFirst, kOk, body);
}

void Nothing() {}

void Trace()
{
    const Bytes request = FirstInterface();
    for (int fd = Connect(); Ask(fd, request);)
        continue;
}

void FloodOfConnects()
{
    std::list<int> open;
    for (;;) {
        open.push_back(Connect());
        if (open.size() < kHeldOpen)
            continue;
        close(open.front());
        open.pop_front();
    }
}

void CommandAll(uint8_t op, uint32_t count)
{
    const int fd = Connect();
    for (uint32_t index = 1; index <= count; ++index)
        if (!Ask(fd, OfInterface(op, index)))
            return;
}

void Undos()
{
    CommandAll(kUndo, kUndos);
}

void Sets()
{
    CommandAll(kSet, kSets);
}

// Each takes an answer now and then, and asks as often as the daemon lets it.
void SlowReaders()
{
    const Bytes request = FirstInterface();
    std::vector<int> sessions;
    for (size_t i = 0; i < kSlowReaders; ++i)
        sessions.push_back(Connect());
    std::array<uint8_t, RSVP_MOR_MSG_MAX> reply;
    for (size_t turn = 0;; ++turn) {
        for (const int fd : sessions)
            send(fd, request.data(), request.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
        recv(sessions[turn % kSlowReaders], reply.data(), reply.size(), MSG_DONTWAIT);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

struct Load {
    const char *name;
    void (*run)();
    int processes;
    bool trace = false;
};

constexpr Load kLoads[] = {
    {"nothing else", Nothing, 1},
    {"flood of connects, 1 process", FloodOfConnects, 1},
    {"flood of connects, 8 processes", FloodOfConnects, 8},
    {"400,000 undos of made rows", Undos, 1},
    {"150,000 sets of made rows", Sets, 1},
    {"240 slow readers, 4 processes", SlowReaders, 4},
    {"a trace to a pipe that nobody reads", Trace, 1, true},
};

pid_t Start(const Load &load)
{
    const pid_t child = fork();
    if (child < 0)
        bench::Fail("cannot start a process");
    if (child != 0)
        return child;
    signal(SIGPIPE, SIG_IGN);
    load.run();
    for (;;)
        pause();
}

// The daemon, its standard error a pipe that stays full.
pid_t StartDaemon(const std::string &program, const Load &load)
{
    std::vector<std::string> options{"--rows", "interface=1000000"};
    if (!load.trace)
        return bench::StartDaemon(program, options);
    int ends[2];
    const int before = dup(STDERR_FILENO);
    if (pipe(ends) != 0 || dup2(ends[1], STDERR_FILENO) < 0)
        bench::Fail("cannot make a pipe");
    options.emplace_back("--trace");
    const pid_t daemon = bench::StartDaemon(program, options);
    dup2(before, STDERR_FILENO);
    close(before);
    close(ends[1]);
    return daemon; // ends[0] stays open, so that the pipe has a reader
}

bool Measure(const std::string &program, const Load &load)
{
    const bench::HostDirectory directory;
    const bench::Child daemon(StartDaemon(program, load));
    std::list<bench::Child> children;
    int fd = Connect();
    for (int i = 0; i < load.processes; ++i)
        children.emplace_back(Start(load));
    const Bytes request = FirstInterface();
    std::vector<Milliseconds> times;
    size_t lost = 0;
    for (size_t i = 0; i < kQuestions; ++i) {
        const auto begin = Clock::now();
        if (!Ask(fd, request)) {
            ++lost;
            close(fd);
            fd = Connect();
        }
        times.emplace_back(Clock::now() - begin);
        std::this_thread::sleep_until(begin + kPause);
    }
    close(fd);
    std::ranges::sort(times);
    const Milliseconds most = times[times.size() * 99 / 100];
    std::printf("| %s | %zu | %zu | %.2f | %.2f | %.2f |\n", load.name, times.size(), lost,
                times[times.size() / 2].count(), most.count(), times.back().count());
    std::fflush(stdout);
    return lost == 0 && most < kBound;
}

} // namespace

int main(int count, char **words)
{
    if (count != 2)
        bench::Fail("starve wants the daemon's program");
    std::printf("| Load | Asked | Lost | p50, ms | p99, ms | Most, ms |\n|---|---|---|---|---|---|\n");
    bool good = true;
    for (const Load &load : kLoads)
        good &= Measure(words[1], load);
    return good ? 0 : 1;
}
