// The threads that may wait for the daemon, so that the agent's own never does. All of their waits end at once when
// the agent's cancel is given.
#ifndef TOOLS_AGENTX_WORKERS_H
#define TOOLS_AGENTX_WORKERS_H

#include "manager/exchange/deadline.h"
#include "tools/agentx/reads.h"

#include <condition_variable>
#include <deque>
#include <pthread.h>

namespace agentx {

/** A thread with a stack of its own size: a call of the library takes more than 20 KB of it. */
class Thread {
public:
    /** Throws std::system_error if the system has no more. */
    explicit Thread(std::function<void()> run);
    ~Thread(); // waits for its end
    Thread(const Thread &) = delete;
    Thread &operator=(const Thread &) = delete;

private:
    std::function<void()> run_;
    pthread_t thread_{};
};

/** Runs some jobs again and again, with a pause after each round. */
class Refresher {
public:
    Refresher(std::span<const std::unique_ptr<Job>> jobs, Clock::duration pause, const manager::Cancel &cancel);
    ~Refresher(); // the cancel has been given

private:
    void Work();

    std::span<const std::unique_ptr<Job>> jobs_;
    Clock::duration pause_;
    const manager::Cancel &cancel_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool isEnding_ = false;
    Thread thread_; // the last member: it uses all others
};

/** RSVP on one interface, on or off. */
struct Change {
    uint32_t ifIndex;
    bool enabled;
};

/** Gives commands to the daemon, in the order in which they come, and reads the interfaces again after each. */
class Setter {
public:
    /** `changed` is called in the setter's thread when there is an outcome to take. */
    Setter(Job *interfaces, const manager::Cancel &cancel, std::function<void()> changed);
    ~Setter(); // the cancel has been given

    /** The ticket comes back with the outcome. */
    void Ask(void *ticket, std::vector<Change> changes);

    struct Outcome {
        void *ticket;
        bool isDone;
    };
    std::vector<Outcome> TakeOutcomes();

private:
    struct Order {
        void *ticket;
        std::vector<Change> changes;
    };
    void Work();
    static bool Give(const Change &change);

    Job *interfaces_;
    const manager::Cancel &cancel_;
    std::function<void()> changed_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Order> orders_;
    std::vector<Outcome> outcomes_;
    bool isEnding_ = false;
    Thread thread_; // the last member: it uses all others
};

} // namespace agentx

#endif
