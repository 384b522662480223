// What makes this process the only daemon of its host directory: the lock that a second daemon finds taken, and the
// socket file that clients connect to. The destructor gives up both.
#ifndef HOST_DAEMON_INSTANCE_H
#define HOST_DAEMON_INSTANCE_H

#include <stdexcept>
#include <string>
#include <sys/un.h>

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

    int Listener() const { return listener_; }

private:
    void Lock(const std::string &path);
    void Listen(const sockaddr_un &address);

    std::string socketPath_;
    int lock_ = -1;
    int listener_ = -1;
};

} // namespace rsvpsimd

#endif
