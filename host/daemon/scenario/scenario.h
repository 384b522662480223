// The room of the scenario: what people ask the simulated device to be, from files and command lines, put into a
// device. This header has its door, a TOML file that says what the tables hold and how the daemon behaves. A file
// that is wrong in any way is refused whole, with the line and the key that are wrong.
#ifndef HOST_DAEMON_SCENARIO_SCENARIO_H
#define HOST_DAEMON_SCENARIO_SCENARIO_H

#include "host/daemon/device/device.h"
#include "host/daemon/scenario/behaviour.h"

#include <stdexcept>

namespace rsvpsimd {

class ScenarioError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Both fill the device and throw ScenarioError ("FILE:LINE: KEY: what is wrong"); the device is not to be used then.
Behaviour ReadScenario(Device &device, const std::string &path);
Behaviour ReadScenarioText(Device &device, std::string_view text, const std::string &fileName);

} // namespace rsvpsimd

#endif
