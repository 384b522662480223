// rsvpsimd: a simulated signalling daemon for machines that have none. It answers every request of the management
// protocol from a scenario, from rows made by number, and from the commands it has received.
#include "host/daemon/instance.h"
#include "host/daemon/options.h"
#include "host/daemon/server.h"
#include "host/directory.h"
#include "process/hardening.h"
#include "process/standard_streams.h"

#include <csignal>
#include <cstdio>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace {

enum ExitStatus { kDone = 0, kUsage = 2, kNoInstance = 3, kToldToCrash = 4 };

// The two signals that end the daemon become something to read, so that the loop ends between two requests.
int OpenStopSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    const int fd = signalfd(-1, &signals, SFD_CLOEXEC);
    if (fd < 0)
        throw std::system_error(errno, std::generic_category(), "signalfd");
    return fd;
}

// Lines go out at once: a trace that lacks its last lines does not tell why the daemon ended.
void OpenTrace(rsvpsimd::Daemon &daemon, const std::string &path)
{
    std::FILE *file = path.empty() ? stderr : std::fopen(path.c_str(), "ae");
    if (file == nullptr)
        throw std::runtime_error("--trace: cannot write to " + path);
    std::setvbuf(file, nullptr, _IOLBF, BUFSIZ);
    daemon.TraceTo([file](const std::string &line) { std::fprintf(file, "%s\n", line.c_str()); });
}

int Serve(rsvpsimd::Daemon &daemon, const rsvpsimd::Options &options)
{
    const int stop = OpenStopSignals();
    rsvpsimd::Instance instance(rsvp_host::DirectoryPath(options.hostDirectory));
    rsvpsimd::Server server(instance.Listener(), stop, daemon);
    // The fault is meant to leave everything as a crash would.
    if (server.Run() == rsvpsimd::Server::End::Crashed)
        _exit(kToldToCrash);
    return kDone;
}

} // namespace

int main(int argc, char **argv)
{
    process::OpenStandardStreams();
    process::LeaveNoCore();
    try {
        int exitStatus = kDone;
        std::optional<rsvpsimd::Options> options = rsvpsimd::ReadOptions(argc, argv, exitStatus);
        if (!options)
            return exitStatus == 0 ? kDone : kUsage;
        if (options->listLayouts) {
            rsvpsimd::ListLayouts();
            return kDone;
        }
        rsvpsimd::Daemon daemon;
        rsvpsimd::Configure(daemon, *options);
        if (options->trace)
            OpenTrace(daemon, *options->trace);
        return options->check ? kDone : Serve(daemon, *options);
    } catch (const rsvpsimd::InstanceError &error) {
        std::fprintf(stderr, "rsvpsimd: %s\n", error.what());
        return kNoInstance;
    } catch (const std::system_error &error) {
        std::fprintf(stderr, "rsvpsimd: %s\n", error.what());
        return kNoInstance;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "rsvpsimd: %s\n", error.what());
        return kUsage;
    }
}
