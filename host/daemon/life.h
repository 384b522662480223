// A daemon as time goes by: the events of its scenario happen, and the scenario may be read again. Nothing here looks
// at a clock.
#ifndef HOST_DAEMON_LIFE_H
#define HOST_DAEMON_LIFE_H

#include "host/daemon/daemon.h"
#include "host/daemon/options.h"

namespace rsvpsimd {

using Teller = std::function<void(const std::string &sentence)>;

class Life {
public:
    // From `start` on. `tell` hears of what does not go as the scenario has it.
    Life(Daemon &daemon, Setup setup, Timeline::Time start, Teller tell);

    // Lets happen what is due by now. Returns when something is due next.
    Timeline::Time Turn(Timeline::Time now);

private:
    Daemon &daemon_;
    Behaviour behaviour_; // as it was at the start
    Timeline timeline_;
    Teller tell_;
    std::map<size_t, std::vector<std::string>> told_; // problems that each event had when it happened last, by line
};

} // namespace rsvpsimd

#endif
