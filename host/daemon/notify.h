// Tells whoever started the daemon what it is doing: a descriptor that waits for it to listen, and the notification
// socket of a service manager.
#ifndef HOST_DAEMON_NOTIFY_H
#define HOST_DAEMON_NOTIFY_H

#include <functional>
#include <optional>
#include <string>

namespace rsvpsimd {

// Throws std::runtime_error if the caller has not left this descriptor open for the daemon.
void CheckInherited(int fd);

class Notifier {
public:
    // `socket` is the value of NOTIFY_SOCKET, or null. `tell` hears of messages that cannot be sent.
    Notifier(std::optional<int> readyFd, const char *socket, std::function<void(const std::string &)> tell);
    ~Notifier();
    Notifier(const Notifier &) = delete;
    Notifier &operator=(const Notifier &) = delete;

    void Ready(); // the daemon listens, or has read its scenario again
    void Reloading();
    void Stopping();

private:
    void Send(const std::string &message);

    std::optional<int> readyFd_;
    std::string address_; // as it travels: an abstract one begins with a zero
    int fd_ = -1;
    std::function<void(const std::string &)> tell_;
};

} // namespace rsvpsimd

#endif
