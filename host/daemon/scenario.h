// The scenario: a TOML file that says what the daemon's tables hold and how it behaves. A file that is wrong in any
// way is refused whole, with the line and the key that are wrong.
#pragma once

#include "daemon.h"

#include <stdexcept>

namespace rsvpsimd {

class ScenarioError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Both throw ScenarioError ("FILE:LINE: KEY: what is wrong"); the daemon is not to be used then. True if the
// scenario asks for a trace.
bool ReadScenario(Daemon &daemon, const std::string &path);
bool ReadScenarioText(Daemon &daemon, std::string_view text, const std::string &fileName);

} // namespace rsvpsimd
