// The service manager of the device. On the master the service is the daemon itself, so its status comes from the
// living process. A standby node has no machine here to run the service, so its status is a number in a file.
#include "host/platform/checked_directory.h"
#include "host/platform/daemon_process.h"
#include "host/platform/daemon_state.h"
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

// The status file of a standby node, in the host directory.
class StatusFile {
public:
    explicit StatusFile(uint32_t node)
    {
        std::snprintf(name_, sizeof(name_), "%s/%u", kServiceFolder.data(), static_cast<unsigned>(node & 0xffff));
    }

    // On a node where it was never started, the service counts as stopped. If that were an error, the node would drop
    // out of the list of nodes to start, and the service would never start there.
    Problem Read(const char *directory, uint32_t &status) const
    {
        char text[2];
        const int length = ReadFile(FilePath(directory, name_).Get(), text, sizeof(text));
        if (length < 0 && length != -ENOENT)
            return {name_, "cannot be read", -length};
        if (length >= 0 && (length == 0 || text[0] < '0' || text[0] > '3'))
            return {name_, "does not hold a status from 0 to 3"};
        status = length < 0 ? 0 : static_cast<uint32_t>(text[0] - '0');
        return {};
    }

    // Stopping removes the file, which a full disk cannot prevent.
    Problem Write(const char *directory, bool start) const
    {
        const FilePath path(directory, name_);
        const int error = start ? ReplaceFile(path.Get(), "1\n") : unlink(path.Get()) != 0 ? errno : 0;
        return error == 0 || (!start && error == ENOENT) ? Problem() : Problem(name_, "cannot be changed", error);
    }

private:
    char name_[16];
};

std::string Change(const std::string &directory, uint32_t node, bool start)
{
    Nodes nodes;
    if (const Problem problem = ReadNodes(directory.c_str(), nodes))
        return problem.Sentence(directory.c_str());
    const ManagerLock lock(PathOf(directory, kServiceLockFile));
    if (lock.Error() != 0)
        return Problem(kServiceLockFile, "cannot be locked", lock.Error()).Sentence(directory.c_str());
    switch (RoleOf(node, nodes)) {
    case Role::Master:
        return start ? StartDaemon(directory) : StopDaemon(directory);
    case Role::Standby: {
        const Problem problem = StatusFile(node).Write(directory.c_str(), start);
        return problem ? problem.Sentence(directory.c_str()) : "";
    }
    case Role::Unknown:
        break;
    }
    return "the device has no node " + std::to_string(node);
}

// Callers reduce every code to success or failure, or ignore it, so the reason is printed here.
uint32_t ChangeService(uint32_t node, const char *service, bool start)
{
    return WithoutExceptions(uint32_t{RSVP_MOR_ERR_FAIL}, [&]() -> uint32_t {
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
    });
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

Problem ReadStatus(const char *directory, uint32_t node, uint32_t &status)
{
    Nodes nodes;
    if (const Problem problem = ReadNodes(directory, nodes))
        return problem;
    switch (RoleOf(node, nodes)) {
    case Role::Master: {
        const DaemonState state = FindDaemon(directory);
        status = state.pid != 0 ? 1 : 0;
        return state.problem;
    }
    case Role::Standby:
        return StatusFile(node).Read(directory, status);
    case Role::Unknown:
        break;
    }
    return {kNodesFile, "does not have the node that is asked for"};
}

} // namespace

} // namespace rsvp_host

extern "C" {

// Called before nearly every command: a few system calls, no heap. The selector makes no difference here.
uint32_t SERVICE_GetStatus(uint32_t node, const char *service, int32_t, uint32_t *status)
{
    using namespace rsvp_host;
    char directory[kDirectoryRoom];
    if (!IsOurs(service) || status == nullptr)
        return RSVP_MOR_ERR_FAIL;
    // If there is no directory yet, nothing has been started.
    if (const int error = FindDirectory(directory); error != 0 && error != ENOENT)
        return RSVP_MOR_ERR_FAIL;
    uint32_t found = 0;
    if (const Problem problem = ReadStatus(directory, node, found)) {
        problem.Tell(directory);
        return RSVP_MOR_ERR_FAIL;
    }
    *status = found;
    return 0;
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
