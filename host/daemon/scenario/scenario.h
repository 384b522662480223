// The rule of this room: it turns what people ask for, in files and on command lines, into the contents of a device
// and a description of how the daemon shall behave. It answers no request. This header reads scenario files (TOML). A
// file with any mistake is refused as a whole, with the line and the key that are wrong.
#ifndef HOST_DAEMON_SCENARIO_SCENARIO_H
#define HOST_DAEMON_SCENARIO_SCENARIO_H

#include "host/daemon/device/device.h"
#include "host/daemon/scenario/behaviour.h"

#include <stdexcept>

namespace rsvpsimd {

class ScenarioError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Both fill the device. They throw ScenarioError ("FILE:LINE: KEY: what is wrong"); do not use the device then.
Behaviour ReadScenario(Device &device, const std::string &path);
Behaviour ReadScenarioText(Device &device, std::string_view text, const std::string &fileName);

} // namespace rsvpsimd

#endif
