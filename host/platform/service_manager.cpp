// The service manager of the device. On the master the service is the daemon itself, so its status comes from the
// living process. A standby node has no machine here to run the service, so its status is a number in a file.
#include "host/platform/checked_directory.h"
#include "host/platform/daemon_process.h"
#include "host/platform/files.h"
#include "host/platform/nodes.h"
#include "platform/service.h"
#include "rsvp_mor/status_codes.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/file.h>
#include <thread>

namespace rsvp_host {

namespace {

// Longer than another program's slowest start or stop.
constexpr std::chrono::seconds kLockPatience{15};

// Held while a service is started or stopped, so that two programs that enable at once start one daemon.
class ManagerLock {
public:
    explicit ManagerLock(const std::string &path)
        : file_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)),
          error_(file_.Get() < 0 ? errno : Take())
    {
    }
    ManagerLock(const ManagerLock &) = delete;
    // Unlocked explicitly: a child forked by another thread shares the lock and may outlive this object.
    ~ManagerLock() { flock(file_.Get(), LOCK_UN); }
    int Error() const { return error_; }

private:
    int Take() const
    {
        const auto deadline = std::chrono::steady_clock::now() + kLockPatience;
        while (flock(file_.Get(), LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() >= deadline)
                return errno;
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        return 0;
    }

    Descriptor file_;
    int error_;
};

enum class Role { Unknown, Master, Standby };

Role RoleOf(uint32_t node, const Nodes &nodes)
{
    if (node == nodes.master)
        return Role::Master;
    for (uint32_t i = 0; i < nodes.standbyCount; ++i)
        if (node == nodes.standby[i])
            return Role::Standby;
    return Role::Unknown;
}

bool IsOurs(const char *service)
{
    return service != nullptr && std::strcmp(service, "RSVP") == 0;
}

FilePath StatusFile(const char *directory, uint32_t standbyNode)
{
    char name[16];
    std::snprintf(name, sizeof(name), "%s/%u", kServiceFolder.data(), static_cast<unsigned>(standbyNode & 0xffff));
    return {directory, name};
}

// On a node where it was never started, the service counts as stopped. If that were an error, the node would drop out
// of the list of nodes to start, and the service would never start there.
bool ReadStandbyStatus(const char *directory, uint32_t node, uint32_t &status)
{
    char text[2];
    const int length = ReadFile(StatusFile(directory, node).Get(), text, sizeof(text));
    if (length != -ENOENT && (length < 1 || text[0] < '0' || text[0] > '3'))
        return false;
    status = length < 0 ? 0 : static_cast<uint32_t>(text[0] - '0');
    return true;
}

std::string Change(const std::string &directory, uint32_t node, bool start)
{
    Nodes nodes;
    if (const char *problem = ReadNodes(directory.c_str(), nodes); problem != nullptr)
        return PathOf(directory, kNodesFile) + " " + problem;
    const std::string lockPath = PathOf(directory, kServiceLockFile);
    const ManagerLock lock(lockPath);
    if (lock.Error() != 0)
        return lockPath + " cannot be locked: " + std::strerror(lock.Error());
    switch (RoleOf(node, nodes)) {
    case Role::Master:
        return start ? StartDaemon(directory) : StopDaemon(directory);
    case Role::Standby: {
        const FilePath file = StatusFile(directory.c_str(), node);
        const int error = ReplaceFile(file.Get(), start ? "1\n" : "0\n");
        return error == 0 ? "" : std::string(file.Get()) + " cannot be written: " + std::strerror(error);
    }
    case Role::Unknown:
        break;
    }
    return "the device has no node " + std::to_string(node);
}

// Callers reduce every code to success or failure, or ignore it, so the reason is printed here.
uint32_t ChangeService(uint32_t node, const char *service, bool start)
{
    if (!IsOurs(service))
        return RSVP_MOR_ERR_FAIL;
    const std::string directory = DirectoryPath();
    std::string problem = PrepareDirectory(directory);
    if (problem.empty())
        problem = Change(directory, node, start);
    if (problem.empty())
        return 0;
    std::fprintf(stderr, "rsvp_host: cannot %s RSVP on node %u: %s\n", start ? "start" : "stop",
                 static_cast<unsigned>(node), problem.c_str());
    return RSVP_MOR_ERR_FAIL;
}

// A node that fails does not stop the others from being changed.
uint32_t ChangeAll(const uint16_t *nodes, uint32_t count, const char *service, bool start)
{
    if (nodes == nullptr && count != 0)
        return RSVP_MOR_ERR_FAIL;
    uint32_t result = 0;
    for (uint32_t i = 0; i < count; ++i)
        if (ChangeService(nodes[i], service, start) != 0)
            result = RSVP_MOR_ERR_FAIL;
    return result;
}

} // namespace

} // namespace rsvp_host

extern "C" {

// Called before nearly every command: a few system calls, no heap. The selector makes no difference here.
uint32_t SERVICE_GetStatus(uint32_t node, const char *service, int32_t, uint32_t *status)
{
    using namespace rsvp_host;
    char directory[kDirectoryRoom];
    Nodes nodes;
    if (!IsOurs(service) || status == nullptr)
        return RSVP_MOR_ERR_FAIL;
    // If there is no directory yet, nothing has been started.
    if (const int error = FindDirectory(directory); error != 0 && error != ENOENT)
        return RSVP_MOR_ERR_FAIL;
    if (ReadNodes(directory, nodes) != nullptr)
        return RSVP_MOR_ERR_FAIL;
    switch (RoleOf(node, nodes)) {
    case Role::Master:
        *status = DaemonIsUp(directory) ? 1 : 0;
        return 0;
    case Role::Standby:
        return ReadStandbyStatus(directory, node, *status) ? 0 : RSVP_MOR_ERR_FAIL;
    case Role::Unknown:
        break;
    }
    return RSVP_MOR_ERR_FAIL;
}

uint32_t SERVICE_Start(uint32_t node, const char *service, uint32_t, uint32_t)
{
    return rsvp_host::ChangeService(node, service, true);
}

uint32_t SERVICE_Stop(uint32_t node, const char *service, uint32_t, uint32_t)
{
    return rsvp_host::ChangeService(node, service, false);
}

uint32_t SERVICE_BatchStart(uint16_t *nodes, uint32_t count, const char *service, uint32_t, uint32_t)
{
    return rsvp_host::ChangeAll(nodes, count, service, true);
}

uint32_t SERVICE_BatchStop(uint16_t *nodes, uint32_t count, const char *service, uint32_t, uint32_t)
{
    return rsvp_host::ChangeAll(nodes, count, service, false);
}

} // extern "C"
