// Remembers the last directory that passed its check, since a program that reads a table opens a session per row. A
// directory that is replaced later is not checked again; only its owner and root can replace it, as long as its
// parent is not writable by others, or is sticky as /tmp is.
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
    // A thread that finds the memory in use makes its own check: in a forked child the wait might never end.
    if (inUse.test_and_set(std::memory_order_acquire))
        return CheckDirectory(path);
    int error = 0;
    if (std::strcmp(path, lastGood) != 0) {
        error = CheckDirectory(path);
        // A relative path names another place once the working directory changes.
        if (error == 0 && path[0] == '/')
            std::memcpy(lastGood, path, sizeof(path));
    }
    inUse.clear(std::memory_order_release);
    return error;
}

} // namespace rsvp_host
