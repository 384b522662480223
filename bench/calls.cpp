// The canned messages and the processes of the benchmark.
#include "calls.h"

#include "channel/message.h"
#include "host/directory.h"
#include "rsvp_mor.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace rsvpsimd;

namespace bench {

namespace {

constexpr size_t kPathState = 440;

sockaddr_un Address()
{
    return rsvp_host::SocketAddress(getenv("RSVP_HOST_DIR"));
}

void Check(uint32_t status)
{
    if (status != RSVP_MOR_OK)
        Fail("a call of the library returned " + std::to_string(status));
}

void PathState(int fd)
{
    static const RSVP_MOR_Session session{};
    static const RSVP_MOR_Sender sender{};
    RSVP_MOR_ReplyPsb record{};
    Check(RSVP_MOR_GetNextPsbInfo(fd, &session, &sender, &record));
    RSVP_MOR_FreeReplyPsb(&record);
}

void GlobalRecord(int fd)
{
    RSVP_MOR_GlobalInfo record;
    Check(RSVP_MOR_GetGlobalInfo(fd, &record));
}

void TunnelRow(int)
{
    static const RSVP_MOR_TunnelKey key{};
    RSVP_MOR_ReplyTunnel record;
    Check(RSVP_GetNextTunnel(&key, &record));
}

void Command(int)
{
    Check(RSVP_MOR_SetDscpValue(48));
}

Bytes Item(uint16_t type, const Bytes &value)
{
    Bytes body;
    AppendItem(body, type, value);
    return body;
}

// A path state block and, with `lists`, a route of three elements and a recorded route of three hops.
Bytes PathStateBody(bool lists)
{
    Bytes body = Item(15, Bytes(kPathState, 1));
    if (!lists)
        return body;
    for (const auto &[type, entry] : {std::pair{3, 12}, std::pair{7, 36}}) {
        Bytes list{0, 3};
        list.resize(list.size() + 3 * static_cast<size_t>(entry), 1);
        AppendItem(body, static_cast<uint16_t>(type), list);
    }
    return body;
}

void Answer(int client, const Bytes &body)
{
    std::array<uint8_t, RSVP_MOR_MSG_MAX> request;
    const Bytes read = BuildFrame(kShow, kGetNext, kOk, body);
    const Bytes command = BuildFrame(kGlobal, kSet, kOk, {});
    for (;;) {
        const ssize_t got = recv(client, request.data(), request.size(), 0);
        if (got <= 0)
            return;
        const Bytes &reply = request[0] == kShow ? read : command;
        send(client, reply.data(), reply.size(), MSG_NOSIGNAL);
    }
}

} // namespace

void Fail(const std::string &what)
{
    std::fprintf(stderr, "bench: %s (%s)\n", what.c_str(), std::strerror(errno));
    std::exit(1);
}

Call CallOf(Kind kind)
{
    const Bytes next = BuildFrame(kShow, kGetNext, kOk, Item(8, Bytes(20)));
    switch (kind) {
    case Kind::PathState:
        return {"path state block, held", false, PathState, next, PathStateBody(false)};
    case Kind::PathStateLists:
        return {"path state block, two lists, held", false, PathState, next, PathStateBody(true)};
    case Kind::GlobalRecord:
        return {"record of 680 bytes, held", false, GlobalRecord, BuildFrame(kShow, kGet, kOk, Item(6, {})),
                Item(6, Bytes(680, 1))};
    case Kind::TunnelRow:
        return {"row of 60 bytes, own session", true, TunnelRow,
                BuildFrame(kShow, kGetNext, kOk, Item(101, Bytes(16))), Item(101, Bytes(60, 1))};
    case Kind::Command:
        return {
            "command, own session", true, Command, BuildFrame(kGlobal, kSet, kOk, Item(19, Bytes{0, 0, 0, 48})), {}};
    }
    Fail("no such call");
}

void RawHeld(int fd, const Bytes &request)
{
    std::array<uint8_t, RSVP_MOR_MSG_MAX> reply;
    if (send(fd, request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size()) ||
        recv(fd, reply.data(), reply.size(), MSG_WAITALL) < static_cast<ssize_t>(kHeaderSize))
        Fail("the raw exchange failed");
}

void RawOwn(const Bytes &request)
{
    static const sockaddr_un address = Address();
    const timeval tenSeconds{10, 0};
    const int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &tenSeconds, sizeof(tenSeconds)) != 0 ||
        setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &tenSeconds, sizeof(tenSeconds)) != 0 ||
        connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0)
        Fail("the raw session failed");
    RawHeld(fd, request);
    close(fd);
}

void Floor()
{
    rsvp_mor::Request request{}; // the library's own types, so that they are zeroed in the same way
    rsvp_mor::Reply reply{};
    static volatile uint8_t source = 1;
    static std::array<uint32_t, kPathState / 4> record;
    for (size_t i = 0; i < 12; ++i)
        request.area[i] = source;
    asm volatile("" ::"r"(&request), "r"(&reply) : "memory"); // the system calls would be here
    std::memcpy(record.data(), reply.area + 12, kPathState);
    for (size_t i = 0; i < 90; ++i)
        record[i] = __builtin_bswap32(record[i]);
    asm volatile("" ::"r"(record.data()) : "memory");
}

HostDirectory::HostDirectory()
{
    char path[] = "/tmp/rsvp-bench-XXXXXX";
    if (mkdtemp(path) == nullptr)
        Fail("cannot make a folder for the run");
    path_ = path;
    setenv("RSVP_HOST_DIR", path, 1);
}

HostDirectory::~HostDirectory()
{
    std::filesystem::remove_all(path_);
}

Child::~Child()
{
    kill(pid_, SIGTERM);
    waitpid(pid_, nullptr, 0);
}

pid_t StartCannedServer(const std::string &directory, const Bytes &body)
{
    const sockaddr_un address = Address();
    const int listener = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    unlink((directory + "/lipc-0ae18000").c_str());
    if (bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) != 0 ||
        listen(listener, 16) != 0)
        Fail("the server cannot listen");
    const pid_t child = fork();
    if (child < 0)
        Fail("cannot start a process for the server");
    if (child != 0) {
        close(listener);
        return child;
    }
    for (;;) {
        const int client = accept(listener, nullptr, nullptr);
        Answer(client, body);
        close(client);
    }
}

pid_t StartDaemon(const std::string &program, const std::vector<std::string> &options)
{
    std::vector<const char *> words{program.c_str()};
    for (const std::string &option : options)
        words.push_back(option.c_str());
    words.push_back(nullptr);
    pid_t child;
    if (posix_spawn(&child, words[0], nullptr, nullptr, const_cast<char **>(words.data()), environ) != 0)
        Fail("cannot start " + program);
    for (int tries = 0; tries < 1000; ++tries) {
        if (const int fd = RSVP_MOR_LIPCOpen(); fd >= 0) {
            RSVP_MOR_LIPCClose(fd);
            return child;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    Fail(program + " does not answer");
}

} // namespace bench
