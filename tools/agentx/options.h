// The command line of the agent.
#ifndef TOOLS_AGENTX_OPTIONS_H
#define TOOLS_AGENTX_OPTIONS_H

#include <chrono>
#include <optional>
#include <string>

namespace agentx {

struct Options {
    bool foreground = false;
    bool check = false;
    bool syslog = false;
    std::string socket = "unix:/var/agentx/master";
    std::string dictionary;
    std::chrono::milliseconds interval = std::chrono::seconds(10);
    std::chrono::milliseconds maxAge = std::chrono::seconds(60);
};

/** Nothing if the program is to end, with `exitStatus`. */
std::optional<Options> ReadOptions(int argc, char **argv, int &exitStatus);

} // namespace agentx

#endif
