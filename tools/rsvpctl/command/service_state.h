// Whether the service runs, asked of the platform. The library says yes or no and takes a node that cannot be asked
// for one where the service is stopped; before the tool says "done" or "stopped" it asks itself.
#ifndef TOOLS_RSVPCTL_COMMAND_SERVICE_STATE_H
#define TOOLS_RSVPCTL_COMMAND_SERVICE_STATE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rsvpctl {

enum class Running : uint8_t { No, Yes, Unknown };

/** "stopped", "running", "unknown". */
std::string_view NameOf(Running running);

struct DeviceNode {
    uint32_t node;
    std::string_view role; // "master" or "standby"
    Running service;
};

struct ServiceState {
    std::vector<DeviceNode> nodes; // the master first, then the standby nodes in the platform's order
    bool allNodes = true;          // false: the platform does not say which standby nodes there are

    /** Yes if it runs on any node; else Unknown if a node cannot be asked. */
    Running Anywhere() const;

    /** Yes if it runs on every node; else Unknown if none is known to be stopped. */
    Running Everywhere() const;

    /** The nodes in this state: "node 1", "nodes 2, 3"; an empty text for none. */
    std::string NodesThatAre(Running running) const;
};

ServiceState AskService();

/** Asks the daemon the cheapest question and returns the status. */
uint32_t AskDaemon();

/** Whether that status is an answer: a reply came, whatever it says. */
bool IsAnswer(uint32_t status);

} // namespace rsvpctl

#endif
