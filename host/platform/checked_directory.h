// Where every platform call begins: the host directory as the environment names it at this moment, known to be safe.
#pragma once

#include "host/directory.h"

namespace rsvp_host {

// Fills `path` and returns 0, or the reason as an error number: ENOENT if the directory is not there, EACCES if it
// must not be trusted, ENAMETOOLONG. No heap; no system call where the same directory passed before.
int FindDirectory(char (&path)[kDirectoryRoom]);

} // namespace rsvp_host
