// What makes this process the only daemon of its host directory: the lock that a second daemon finds taken, and the
// socket file that clients connect to. Both are files that anybody with the directory can remove or replace, so they
// are looked at again while the daemon runs. The destructor gives up what is still its own.
#ifndef HOST_DAEMON_INSTANCE_H
#define HOST_DAEMON_INSTANCE_H

#include <stdexcept>
#include <string>
#include <sys/stat.h>

namespace rsvpsimd {

// Says in one sentence what the problem is.
class InstanceError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Instance {
public:
    // Throws InstanceError if the directory cannot be used or another daemon has it.
    explicit Instance(const std::string &directory);
    ~Instance();
    Instance(const Instance &) = delete;
    Instance &operator=(const Instance &) = delete;

    // The listening socket. It keeps its number when it is bound again.
    int Listener() const { return listener_; }

    // Takes the lock and binds the socket again if their files are gone or others by now. Returns what was done, or
    // what could not be done and is to be tried again later; empty if all is well. Throws InstanceError if there is
    // nothing to recover: the directory is gone, or another daemon has it.
    std::string Recover();

private:
    // A file as the system knows it, whatever its name.
    struct Identity {
        dev_t device = 0;
        ino_t inode = 0;
        bool operator==(const Identity &) const = default;
    };
    static Identity Of(const struct stat &file) { return {file.st_dev, file.st_ino}; }
    static Identity At(const std::string &path); // of nothing if there is no such file

    void Lock();
    void Listen();

    std::string directory_;
    std::string lockPath_;
    std::string socketPath_;
    int lock_ = -1;
    int listener_ = -1;
    Identity lockFile_;
    Identity socketFile_;
};

} // namespace rsvpsimd

#endif
