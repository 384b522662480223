// The database "eRSVP" belongs to the daemon and can be opened while the daemon lives. A handle is a descriptor of
// the daemon's lock file, so a handle that is never closed shows up as a leaked descriptor.
#include "platform/database.h"
#include "host/platform/checked_directory.h"
#include "host/platform/daemon_process.h"
#include "rsvp_mor/status_codes.h"

#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

extern "C" {

uint32_t DBM_Open(const char *database, const char *user, uint32_t, const uint32_t[8], int32_t *handle)
{
    if (database == nullptr || user == nullptr || handle == nullptr || std::strcmp(database, "eRSVP") != 0)
        return RSVP_MOR_ERR_FAIL;
    char directory[rsvp_host::kDirectoryRoom];
    if (rsvp_host::FindDirectory(directory) != 0 || rsvp_host::LivingDaemon(directory) == 0)
        return RSVP_MOR_ERR_NOT_EXIST;
    const int fd =
        open(rsvp_host::FilePath(directory, rsvp_host::kLockFile).Get(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0)
        return RSVP_MOR_ERR_FAIL;
    *handle = fd;
    return 0;
}

void DBM_Close(int32_t handle)
{
    close(handle);
}

} // extern "C"
