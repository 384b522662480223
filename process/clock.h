// The time in front of the lines of a trace, the same in every program, so that traces can be laid side by side.
#ifndef PROCESS_CLOCK_H
#define PROCESS_CLOCK_H

#include <string>

namespace process {

/** The time of day in UTC, as "2026-11-23T20:15:09.123456Z": all have the same length, and their order is that of the
 * text. */
std::string TimeStamp();

} // namespace process

#endif
