// The loop: one thread, one poll, a limited number of clients. A client is read only when it has taken its last
// answer, and each turn answers one request per client, so that none can fill the memory or keep the others waiting.
// Whatever comes with time is looked at between two turns, so that no client can keep it waiting either.
// Places are counted for each process, so that one that connects without end takes them from itself alone.
#ifndef HOST_DAEMON_SERVER_H
#define HOST_DAEMON_SERVER_H

#include "host/daemon/capture/captured_frame.h"
#include "host/daemon/daemon.h"

#include <deque>
#include <list>
#include <poll.h>
#include <set>

namespace rsvpsimd {

struct Places {
    size_t ofAll = 256;
    size_t ofProcess = 64;
    std::chrono::milliseconds idle = std::chrono::minutes(1); // a session that is silent for longer makes room
};

class Server {
public:
    // `listener` is a listening SOCK_SEQPACKET socket, `stop` a descriptor that becomes readable when it is time to
    // end. Neither may block, and both remain the caller's.
    Server(int listener, int stop, Daemon &daemon, Places places = {})
        : listener_(listener), stop_(stop), daemon_(daemon), places_(places)
    {
    }
    ~Server();
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;

    // Who hears of what goes wrong with the sockets.
    void TellTo(std::function<void(const std::string &)> sink) { tell_ = std::move(sink); }

    // Who keeps the frames: each when it has come, and when the socket has taken it.
    void CaptureTo(std::function<void(const CapturedFrame &)> sink) { capture_ = std::move(sink); }

    // Is called once a second, between two turns. What it throws ends the loop.
    void EverySecond(std::function<void()> chore) { chore_ = std::move(chore); }

    // Calls `task` between two turns when this descriptor can be read, which is for the task to do.
    void WhenReadable(int fd, std::function<void()> task)
    {
        signal_ = fd;
        signalTask_ = std::move(task);
    }

    // Is called at each turn with the time, and returns when it is to be called at the latest. What it throws ends
    // the loop.
    void EachTurn(std::function<Timeline::Time(Timeline::Time)> task) { task_ = std::move(task); }

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
        pid_t process = 0;                 // 0 if it cannot be seen from here: such processes share their places
        Clock::time_point heard{};         // when it connected or asked last
        std::deque<Outgoing> answers = {}; // never more than those to one request
        bool blocked = false;              // the socket did not take the answer
        CapturedFrame asked = {};          // the request that they answer, without its bytes

        bool Waits() const { return !answers.empty() && !blocked; } // for an answer that is not due yet
    };

    bool WaitForEvents(std::vector<pollfd> &polled); // false: there is nothing to look at
    Clock::time_point NextDeadline() const;
    void DoChores();
    void Accept();
    void Admit(int fd);
    bool MakeRoom(std::optional<pid_t> process);
    void TellOnce(const std::string &call, int error);
    void Tell(const std::string &sentence) const;
    bool Serve(Client &client, short events); // false: the client is to be dropped
    bool Read(Client &client);
    bool Write(Client &client);
    void Drop(std::list<Client>::iterator client);
    void Capture(const CapturedFrame &about, bool isReply, ByteView bytes, size_t length) const;

    int listener_;
    int stop_;
    int signal_ = -1;
    Daemon &daemon_;
    Places places_;
    std::function<void(const std::string &)> tell_;
    std::function<void()> chore_;
    std::function<void()> signalTask_;
    std::function<Timeline::Time(Timeline::Time)> task_;
    std::function<void(const CapturedFrame &)> capture_;
    std::list<Client> clients_; // the one that was silent longest comes first
    uint64_t accepted_ = 0;
    uint64_t requests_ = 0;
    uint64_t refused_ = 0; // since the last chores
    Clock::time_point nextChores_{};
    Clock::time_point nextTask_ = Clock::time_point::max();
    Clock::time_point nextAccept_{}; // until then, newcomers wait
    std::set<std::string> trouble_;  // calls of the system that fail at the moment
    bool crashed_ = false;
};

} // namespace rsvpsimd

#endif
