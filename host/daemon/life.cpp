// An event that cannot do its work would say so each time that it happens; what has been told once is not repeated.
#include "host/daemon/life.h"

#include <fmt/format.h>

namespace rsvpsimd {

Life::Life(Daemon &daemon, Setup setup, Timeline::Time start, Teller tell)
    : daemon_(daemon), behaviour_(std::move(setup.behaviour)), timeline_(behaviour_.events, start),
      tell_(std::move(tell))
{
    daemon_.Start(std::move(setup.device), behaviour_);
}

Timeline::Time Life::Turn(Timeline::Time now)
{
    while (const Event *event = timeline_.Take(now)) {
        std::vector<std::string> problems = daemon_.Happen(*event);
        std::vector<std::string> &told = told_[event->line];
        if (problems != told)
            for (const std::string &problem : problems)
                tell_(fmt::format("event of line {}: {}", event->line, problem));
        told = std::move(problems);
    }
    return timeline_.Next();
}

} // namespace rsvpsimd
