// Events as time goes by: which are due, and what they do to a device. Nothing here looks at a clock.
#ifndef HOST_DAEMON_EVENTS_H
#define HOST_DAEMON_EVENTS_H

#include "host/daemon/device/device.h"
#include "host/daemon/scenario/behaviour.h"

#include <set>

namespace rsvpsimd {

class Timeline {
public:
    using Time = std::chrono::steady_clock::time_point;

    Timeline() = default;
    Timeline(std::vector<Event> events, Time start);

    // When something is due; the end of time if nothing ever is.
    Time Next() const { return due_.empty() ? Time::max() : due_.begin()->first; }

    // The next event that is due by now, or null. In the order of their times, then in that of the scenario. An event
    // whose period has passed several times happens once.
    const Event *Take(Time now);

private:
    std::vector<Event> events_;
    std::set<std::pair<Time, size_t>> due_;
};

struct Outcome {
    std::string done;                  // "crlsp 1 changed, nbr 2 removed"
    std::vector<std::string> problems; // such as rows that are not there; the rest happened all the same
};

// All of the event but its faults.
Outcome Apply(const Event &event, Device &device);

} // namespace rsvpsimd

#endif
