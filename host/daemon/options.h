// The command line, and what it says that the daemon starts with.
#ifndef HOST_DAEMON_OPTIONS_H
#define HOST_DAEMON_OPTIONS_H

#include "host/daemon/device/device.h"
#include "host/daemon/scenario/behaviour.h"
#include "host/daemon/scenario/network.h"

#include <string>

namespace rsvpsimd {

struct Options {
    std::string hostDirectory;
    std::string scenario;
    std::vector<std::string> rows;
    std::vector<std::string> faults;
    std::optional<std::string> trace;   // empty: standard error
    std::optional<std::string> capture; // empty: the file of the host directory
    bool captureSecrets = false;
    std::string decode; // a capture to print; empty: none
    bool json = false;
    std::optional<int> readyFd;
    bool generate = false;
    NetworkPlan network;
    bool serve = false; // what is generated, instead of printing it
    bool check = false;
    bool listLayouts = false;
};

// Nothing if the command line asked for help or the version, or was wrong. Then the message has been printed, and
// `exitStatus` is the status to exit with.
std::optional<Options> ReadOptions(int argc, char **argv, int &exitStatus);

// What the daemon starts with.
struct Setup {
    Device device;
    Behaviour behaviour;
};

// Reads the scenario and adds rows and faults of the command line. Throws std::runtime_error with a sentence for the
// user.
Setup ReadSetup(const Options &options);

void ListLayouts();

// Prints the capture that the options name. Throws std::runtime_error with a sentence for the user.
void PrintCapture(const Options &options);

// "rsvpsimd 1.0.0"
extern const std::string_view kVersion;

// The generated network, as a scenario. Throws std::system_error if that cannot be written.
void PrintGenerated(const Options &options);

} // namespace rsvpsimd

#endif
