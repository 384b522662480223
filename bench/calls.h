// The calls that are measured, each with the plain system calls that move the same bytes, and a server that answers
// from memory, so that a daemon's own work does not hide the difference.
#ifndef BENCH_CALLS_H
#define BENCH_CALLS_H

#include "host/daemon/wire/frame.h"

#include <string>
#include <sys/types.h>
#include <vector>

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

// Zeroes two areas, builds a header and an item, copies 440 bytes and swaps 90 words of them: the least that a read
// of a path state block needs.
void Floor();

// A host directory of this process, made for one run and removed with everything in it.
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

// A process; the destructor ends it and waits for it.
class Child {
public:
    explicit Child(pid_t pid) : pid_(pid) {}
    ~Child();
    Child(const Child &) = delete;
    Child &operator=(const Child &) = delete;

private:
    pid_t pid_;
};

// Answers one client after another: reads with a good header and `body`, commands with the header alone.
pid_t StartCannedServer(const std::string &directory, const rsvpsimd::Bytes &body);

// Starts the real daemon; returns once it answers.
pid_t StartDaemon(const std::string &program, const std::vector<std::string> &options);

[[noreturn]] void Fail(const std::string &what);

} // namespace bench

#endif
