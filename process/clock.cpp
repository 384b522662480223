// The time comes from the clock that people and other machines have: a trace is read beside other logs.
#include "process/clock.h"

#include <ctime>

namespace process {

std::string TimeStamp()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    tm utc{};
    gmtime_r(&now.tv_sec, &utc);
    std::string text(32, '\0');
    text.resize(strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &utc));
    const std::string digits = std::to_string(now.tv_nsec / 1000 + 1000000); // with a 1 in front, for the zeros
    return text + "." + digits.substr(1) + "Z";
}

} // namespace process
