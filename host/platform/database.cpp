// The database "eRSVP" belongs to the daemon and can be opened while the daemon answers: one that hangs cannot object
// to being stopped. A handle is a descriptor of the daemon's lock file, so a handle that is never closed shows up as
// a leaked descriptor.
#include "platform/database.h"
#include "host/platform/checked_directory.h"
#include "host/platform/daemon_state.h"
#include "rsvp_mor/status_codes.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace rsvp_host {

namespace {

constexpr std::chrono::seconds kAnswerPatience{2};

// The handle, or -1. It stays -1 without a problem if there is no daemon.
Problem OpenDatabase(const char *directory, int &handle)
{
    const DaemonState state = FindDaemon(directory);
    if (state.problem || state.pid == 0)
        return state.problem;
    if (!DaemonAnswers(directory, kAnswerPatience))
        return {kLockFile, "is held by a daemon that does not answer"};
    handle = open(FilePath(directory, kLockFile).Get(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
    return handle >= 0 ? Problem() : Problem(kLockFile, "cannot be opened", errno);
}

} // namespace

} // namespace rsvp_host

extern "C" {

uint32_t DBM_Open(const char *database, const char *user, uint32_t, const uint32_t[8], int32_t *handle)
{
    if (database == nullptr || user == nullptr || handle == nullptr || std::strcmp(database, "eRSVP") != 0)
        return RSVP_MOR_ERR_FAIL;
    char directory[rsvp_host::kDirectoryRoom];
    if (rsvp_host::FindDirectory(directory) != 0)
        return RSVP_MOR_ERR_NOT_EXIST;
    int opened = -1;
    if (const rsvp_host::Problem problem = rsvp_host::OpenDatabase(directory, opened)) {
        problem.Tell(directory);
        return RSVP_MOR_ERR_FAIL;
    }
    if (opened < 0)
        return RSVP_MOR_ERR_NOT_EXIST;
    *handle = opened;
    return 0;
}

void DBM_Close(int32_t handle)
{
    close(handle);
}

} // extern "C"
