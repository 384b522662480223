// The calls that are measured, each next to the plain system calls that move the same bytes, and a server that
// answers them from memory, so that a daemon's own work does not hide the difference.
#pragma once

#include "host/daemon/wire/frame.h"

#include <string>
#include <sys/types.h>

namespace bench {

enum class Kind { PathState, PathStateLists, GlobalRecord, TunnelRow, Command };

struct Call {
    const char *name;
    bool ownSession;
    void (*library)(int fd);
    rsvpsimd::Bytes request; // what the library sends
    rsvpsimd::Bytes body;    // of the reply
};

Call CallOf(Kind kind);

// The same on plain sockets. Both end the process if the exchange fails.
void RawHeld(int fd, const rsvpsimd::Bytes &request);
void RawOwn(const rsvpsimd::Bytes &request);

// Two areas zeroed, a header and an item built, 440 bytes copied, 90 words of them swapped: what a read of a path
// state block cannot do without.
void Floor();

// A host directory of this process, made for one run and removed with all that is in it.
class HostDirectory {
public:
    HostDirectory();
    ~HostDirectory();
    HostDirectory(const HostDirectory &) = delete;
    HostDirectory &operator=(const HostDirectory &) = delete;
    const std::string &Path() const { return path_; }

private:
    std::string path_;
};

// A process; it is ended and waited for in the destructor.
class Child {
public:
    explicit Child(pid_t pid) : pid_(pid) {}
    ~Child();
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

private:
    pid_t pid_;
};

// Answers one client after the other: `body` behind a good header to reads, nothing but the header to commands.
pid_t StartCannedServer(const std::string &directory, const rsvpsimd::Bytes &body);

// The real daemon with rows made by number ("tunnel=1000"); returns once it answers.
pid_t StartDaemon(const std::string &program, const std::string &rows);

[[noreturn]] void Fail(const std::string &what);

} // namespace bench
