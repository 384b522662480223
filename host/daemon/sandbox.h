// What the daemon gives up once it serves, so that a fault in it is worth less to whoever finds one.
#ifndef HOST_DAEMON_SANDBOX_H
#define HOST_DAEMON_SANDBOX_H

#include <string>
#include <vector>

namespace rsvpsimd {

// From now on this process starts no other, traces and signals none, has no sockets but local ones and connects to
// nobody, and changes no file outside the directory but those that it has open. It still accepts clients, reads
// files, and takes its lock and binds its socket again. Returns a sentence for each part that this system does not
// have.
std::vector<std::string> Confine(const std::string &directory);

} // namespace rsvpsimd

#endif
