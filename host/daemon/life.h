// A daemon as time goes by: the events of its scenario happen, and the scenario may be read again. Nothing here looks
// at a clock.
#ifndef HOST_DAEMON_LIFE_H
#define HOST_DAEMON_LIFE_H

#include "host/daemon/daemon.h"
#include "host/daemon/options.h"

#include <functional>

namespace rsvpsimd {

using Teller = std::function<void(const std::string &sentence)>;

class Life {
public:
    // From `start` on. `tell` hears of what does not go as the scenario has it, and of what is new in it.
    Life(Daemon &daemon, const Options &options, Setup setup, Timeline::Time start, Teller tell);

    // Lets happen what is due by now. Returns when something is due next.
    Timeline::Time Turn(Timeline::Time now);

    // Begins anew with what the scenario says by now, and tells what is different. If it cannot be read, everything
    // goes on as it was.
    void ReadAgain(Timeline::Time now);

private:
    void Begin(Setup setup, Timeline::Time now);

    Daemon &daemon_;
    Options options_;
    Behaviour behaviour_; // as it was at the start
    Timeline timeline_;
    Teller tell_;
    std::map<size_t, std::vector<std::string>> told_; // problems that each event had when it happened last, by line
};

// What is different, in words: "tunnel 1 added, 2 changed; global settingShort; 2 faults instead of 1".
std::string DescribeChanges(Device &device, const Behaviour &behaviour, Setup &next);

} // namespace rsvpsimd

#endif
