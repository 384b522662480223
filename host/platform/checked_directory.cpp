// Remembers the last directory that passed its check, since a program that reads a table opens a session per row.
// A directory that is replaced later is not looked at again; nobody but its owner and root can replace it, as long
// as the folder that it lies in is not open to others, or is sticky as /tmp is.
#include "host/platform/checked_directory.h"

#include <atomic>
#include <cerrno>
#include <cstring>

namespace rsvp_host {

namespace {

std::atomic_flag inUse = ATOMIC_FLAG_INIT;
char lastGood[kDirectoryRoom];

} // namespace

int FindDirectory(char (&path)[kDirectoryRoom])
{
    if (WriteDirectoryPath(path, sizeof(path)) >= sizeof(path))
        return ENAMETOOLONG;
    // Whoever finds the memory in use checks for itself: waiting could last for ever in a child of a fork.
    if (inUse.test_and_set(std::memory_order_acquire))
        return CheckDirectory(path);
    int error = 0;
    if (std::strcmp(path, lastGood) != 0) {
        error = CheckDirectory(path);
        // A relative path means another place after the next change of the working directory.
        if (error == 0 && path[0] == '/')
            std::memcpy(lastGood, path, sizeof(path));
    }
    inUse.clear(std::memory_order_release);
    return error;
}

} // namespace rsvp_host
