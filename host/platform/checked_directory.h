// Every platform call begins here: the host directory that the environment names now, known to be safe.
#ifndef HOST_PLATFORM_CHECKED_DIRECTORY_H
#define HOST_PLATFORM_CHECKED_DIRECTORY_H

#include "host/directory.h"

namespace rsvp_host {

// Fills `path` and returns 0, or the reason as an error number: ENOENT if the directory is not there, EACCES if it
// must not be trusted, ENAMETOOLONG. No heap; no system call where the same absolute path passed before.
int FindDirectory(char (&path)[kDirectoryRoom]);

} // namespace rsvp_host

#endif
