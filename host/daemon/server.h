// The loop: one thread, one poll, a limited number of clients. A client is read only when it has taken its last
// answer, and each turn answers one request per client, so that none can fill the memory or keep the others waiting.
#ifndef HOST_DAEMON_SERVER_H
#define HOST_DAEMON_SERVER_H

#include "host/daemon/daemon.h"

#include <deque>
#include <list>

namespace rsvpsimd {

class Server {
public:
    // `listener` is a listening SOCK_SEQPACKET socket, `stop` a descriptor that becomes readable when it is time to
    // end. Both remain the caller's.
    Server(int listener, int stop, Daemon &daemon) : listener_(listener), stop_(stop), daemon_(daemon) {}
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    enum class End : uint8_t { Stopped, Crashed };
    End Run();

private:
    using Clock = std::chrono::steady_clock;

    struct Outgoing {
        Bytes frame;
        Clock::time_point due;
    };
    struct Client {
        int fd = -1;
        uint64_t number = 0;
        std::deque<Outgoing> answers = {}; // never more than those to one request
        bool blocked = false;              // the socket did not take the answer
    };

    int Timeout() const;
    void Accept();
    bool Serve(Client &client, short events); // false: the client is to be dropped
    bool Read(Client &client);
    bool Write(Client &client);
    void Drop(std::list<Client>::iterator client);

    int listener_;
    int stop_;
    Daemon &daemon_;
    std::list<Client> clients_; // the one that was silent longest comes first
    uint64_t accepted_ = 0;
    bool crashed_ = false;
};

} // namespace rsvpsimd

#endif
