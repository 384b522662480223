// The scripted calls themselves. Arguments are recorded as numbers and hex text, so that the lines are the same on
// every processor.
#include "tests/support/world.h"

#include "platform/database.h"
#include "platform/device.h"
#include "platform/options.h"
#include "platform/service.h"
#include "platform/stlv.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sstream>
#include <sys/socket.h>

extern "C" {
void *__real_malloc(size_t size);
void __real_free(void *block);
int __real_close(int fd);
void *__real_memset(void *area, int byte, size_t size);
}

namespace scripted {

World world;

namespace {

// More calls than any test has: a loop of the library's that would not end.
constexpr size_t kTooMany = 10000;

template <typename... Argument> void Note(const char *name, const Argument &...arguments)
{
    if (world.calls.size() == kTooMany)
        abort();
    std::ostringstream line;
    ((line << "," << arguments), ...);
    world.calls.push_back(name + ("(" + line.str().erase(0, 1)) + ")");
}

int Next(const char *name)
{
    std::deque<int> &results = world.script[name];
    if (results.empty())
        return 0;
    const int result = results.front();
    results.pop_front();
    return result;
}

// The result of a socket call: -1 with the scripted errno, or success, which leaves errno as it was.
int Socket(const char *name)
{
    const int error = Next(name);
    if (error <= 0)
        return 0;
    errno = error;
    return -1;
}

void Use(int fd)
{
    world.misuses += !world.descriptors.contains(fd);
}

std::string Numbers(const uint16_t *nodes, uint32_t count)
{
    std::ostringstream text;
    for (uint32_t i = 0; i < count; ++i)
        text << " " << nodes[i];
    return text.str().erase(0, 1);
}

} // namespace

void Reset()
{
    for (void *block : world.freed)
        __real_free(block);
    world = {};
    world.services[kMaster] = 1;
    world.descriptors.insert(kHeld);
}

std::string CallNames()
{
    std::string names;
    for (size_t i = 0, run = 1; i < world.calls.size(); i += run) {
        const std::string name = world.calls[i].substr(0, world.calls[i].find('('));
        for (run = 1; i + run < world.calls.size() && world.calls[i + run].starts_with(name + "("); ++run) {
        }
        names += " " + name + (run == 1 ? "" : "*" + std::to_string(run));
    }
    return names.erase(0, 1);
}

std::vector<std::string> PlatformCalls()
{
    std::vector<std::string> calls;
    for (const std::string &call : world.calls)
        if (call.starts_with("send(") || std::isupper(static_cast<unsigned char>(call[0])))
            calls.push_back(call);
    return calls;
}

::testing::AssertionResult Clean()
{
    if (world.descriptors == std::set<int>{kHeld} && world.blocks.empty() && world.misuses == 0)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << world.descriptors.size() << " sessions (1 held), " << world.blocks.size()
                                         << " blocks left, " << world.misuses << " misuses";
}

} // namespace scripted

using namespace scripted;

extern "C" {

// ---- The operating system ----

int __wrap_socket(int family, int type, int protocol)
{
    Note("socket", family, type, protocol);
    if (Socket("socket") != 0)
        return -1;
    const int fd = world.zeroIsFree ? 0 : *world.descriptors.rbegin() + 1;
    world.descriptors.insert(fd);
    return fd;
}

int __wrap_setsockopt(int fd, int level, int option, const void *value, socklen_t length)
{
    uint32_t words[2] = {};
    memcpy(words, value, std::min<size_t>(length, sizeof(words)));
    Note("setsockopt", fd, level, option, words[0], words[1], length);
    Use(fd);
    return Socket("setsockopt");
}

int __wrap_connect(int fd, const sockaddr *address, socklen_t length)
{
    Note("connect", fd, ToHex(Bytes(reinterpret_cast<const char *>(address), length)));
    Use(fd);
    return Socket("connect");
}

ssize_t __wrap_send(int fd, const void *data, size_t length, int flags)
{
    Note("send", fd, length, flags);
    Use(fd);
    const int result = Next("send");
    if (result > 0) {
        errno = result;
        return -1;
    }
    world.request.assign(static_cast<const char *>(data), length);
    return static_cast<ssize_t>(length) + result;
}

ssize_t __wrap_recv(int fd, void *room, size_t length, int flags)
{
    Note("recv", fd, length, flags);
    Use(fd);
    if (Socket("recv") != 0)
        return -1;
    if (world.replies.empty()) {
        errno = EAGAIN;
        return -1;
    }
    const Bytes reply = world.replies.front().substr(0, length);
    world.replies.pop_front();
    memset(room, 0xee, length); // the bytes after a reply are not 0
    memcpy(room, reply.data(), reply.size());
    return static_cast<ssize_t>(reply.size());
}

int __wrap_close(int fd)
{
    if (fd < kHeld && !world.descriptors.contains(fd)) // the test framework's own
        return __real_close(fd);
    Note("close", fd);
    world.misuses += world.descriptors.erase(fd) == 0;
    return 0;
}

void *__wrap_memset(void *area, int byte, size_t size)
{
    if (area == world.area && byte == 0)
        world.wiped = size;
    return __real_memset(area, byte, size);
}

void *__wrap_malloc(size_t size)
{
    if (++world.allocations == world.failingAllocation)
        return nullptr;
    void *block = __real_malloc(size);
    memset(block, 0xcd, size);
    world.blocks[block] = size;
    return block;
}

void __wrap_free(void *block)
{
    if (block == nullptr)
        return;
    const auto known = world.blocks.find(block);
    if (known != world.blocks.end()) {
        memset(block, 0xdd, known->second);
        world.blocks.erase(known);
        world.freed.insert(block);
        ++world.releases;
    } else if (world.freed.contains(block)) {
        ++world.misuses;
    } else {
        __real_free(block); // the test framework's own
    }
}

// ---- The platform ----

uint32_t STLV_Set(void *buf, uint16_t room, uint16_t type, uint16_t length, const void *value)
{
    if (world.rooms.empty())
        world.area = static_cast<char *>(buf) - 8;
    world.rooms.push_back(room);
    const Bytes item = Item(type, Bytes(static_cast<const char *>(value), length));
    memcpy(buf, item.data(), item.size());
    return static_cast<uint32_t>(item.size());
}

uint32_t STLV_Get(const void *buf, uint16_t length, uint16_t *type, uint16_t *itemLength, void **value)
{
    const int lie = Next("STLV_Get");
    if (length < 4)
        return 0;
    const Bytes head(static_cast<const char *>(buf), 4);
    if (GetNet16(head, 2) > length - 4u)
        return 0;
    *type = static_cast<uint16_t>(GetNet16(head, 0));
    *itemLength = static_cast<uint16_t>(lie == kValueTooLong ? length - 3 : GetNet16(head, 2));
    *value = static_cast<char *>(const_cast<void *>(buf)) + (lie == kValueBeforeBuffer ? -1 : 4);
    if (lie == kValueNull)
        *value = nullptr;
    if (lie == kReadsNothing)
        return 0;
    return lie == kTakesTooMuch ? length + 1u : 4u + GetNet16(head, 2);
}

uint32_t DEV_GetSystemMaster(void)
{
    Note("DEV_GetSystemMaster");
    return kMaster;
}

uint16_t *DEV_GetAllStandbyNodes(uint32_t *count)
{
    Note("DEV_GetAllStandbyNodes");
    if (!world.standby) {
        *count = 3; // says nothing if there is no list
        return nullptr;
    }
    *count = static_cast<uint32_t>(world.standby->size());
    uint16_t *nodes = static_cast<uint16_t *>(malloc(*count * sizeof(*nodes)));
    std::copy(world.standby->begin(), world.standby->end(), nodes);
    return nodes;
}

uint32_t SERVICE_GetStatus(uint32_t node, const char *service, int32_t selector, uint32_t *status)
{
    Note("SERVICE_GetStatus", node, service, selector);
    const uint32_t result = static_cast<uint32_t>(Next("SERVICE_GetStatus"));
    const auto known = world.services.find(node);
    if (result == 0 && known != world.services.end())
        *status = known->second;
    return result == 0 && known == world.services.end() ? 77 : result;
}

uint32_t SERVICE_Start(uint32_t node, const char *service, uint32_t first, uint32_t second)
{
    Note("SERVICE_Start", node, service, first, second);
    return static_cast<uint32_t>(Next("SERVICE_Start"));
}

uint32_t SERVICE_Stop(uint32_t node, const char *service, uint32_t first, uint32_t second)
{
    Note("SERVICE_Stop", node, service, first, second);
    return static_cast<uint32_t>(Next("SERVICE_Stop"));
}

uint32_t SERVICE_BatchStart(uint16_t *nodes, uint32_t count, const char *service, uint32_t first, uint32_t second)
{
    Note("SERVICE_BatchStart", Numbers(nodes, count), service, first, second);
    return static_cast<uint32_t>(Next("SERVICE_BatchStart"));
}

uint32_t SERVICE_BatchStop(uint16_t *nodes, uint32_t count, const char *service, uint32_t first, uint32_t second)
{
    Note("SERVICE_BatchStop", Numbers(nodes, count), service, first, second);
    return static_cast<uint32_t>(Next("SERVICE_BatchStop"));
}

uint32_t DBM_Open(const char *database, const char *user, uint32_t number, const uint32_t record[8], int32_t *handle)
{
    std::string words;
    for (int i = 0; i < 8; ++i)
        words += std::to_string(record[i]);
    Note("DBM_Open", database, user, number, words, *handle);
    *handle = 7;
    return static_cast<uint32_t>(Next("DBM_Open"));
}

void DBM_Close(int32_t handle)
{
    Note("DBM_Close", handle);
}

void *PLUGIN_OptInit(const char *path)
{
    Note("PLUGIN_OptInit", path);
    return Next("PLUGIN_OptInit") == 0 ? reinterpret_cast<void *>(0x70) : nullptr;
}

void *PLUGIN_GetNextPlugOpt(void *handle, char buffer[128], uint32_t *word)
{
    Note("PLUGIN_GetNextPlugOpt", handle, int{buffer[0]}, *word);
    *word = 9;
    return Next("PLUGIN_GetNextPlugOpt") == 0 ? reinterpret_cast<void *>(0x71) : nullptr;
}

uint32_t OPT_ParseEx(uint32_t word, void *option, void *table, void *target)
{
    Note("OPT_ParseEx", word, option, table, target);
    return static_cast<uint32_t>(Next("OPT_ParseEx"));
}

void PLUGIN_OptFini(void *handle)
{
    Note("PLUGIN_OptFini", handle);
}
}
