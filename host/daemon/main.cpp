// rsvpsimd: a simulated signalling daemon for machines that have none. It answers every request of the management
// protocol from a scenario, from rows made by number, and from the commands it has received.
#include "host/daemon/capture/capture_file.h"
#include "host/daemon/instance.h"
#include "host/daemon/life.h"
#include "host/daemon/line_log.h"
#include "host/daemon/notify.h"
#include "host/daemon/options.h"
#include "host/daemon/sandbox.h"
#include "host/daemon/server.h"
#include "host/directory.h"
#include "process/clock.h"
#include "process/hardening.h"
#include "process/standard_streams.h"

#include <csignal>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace {

enum ExitStatus { kDone = 0, kUsage = 2, kNoInstance = 3, kToldToCrash = 4 };

// Signals become something to read, so that they take effect between two requests.
int OpenSignals(std::initializer_list<int> numbers)
{
    sigset_t signals;
    sigemptyset(&signals);
    for (const int number : numbers)
        sigaddset(&signals, number);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    const int fd = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (fd < 0)
        throw std::system_error(errno, std::generic_category(), "signalfd");
    return fd;
}

bool HasTerminal()
{
    const int terminal = open("/dev/tty", O_RDONLY | O_CLOEXEC | O_NOCTTY);
    close(terminal);
    return terminal >= 0;
}

// Writing to a pipe without a reader, or beyond the largest file that this user may have, fails instead of ending
// the daemon.
void IgnoreSignalsOfWriting()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

// Standard error, and the file of the trace if it has one of its own.
class Logs {
public:
    ~Logs()
    {
        if (const uint64_t lost = trace_ ? trace_->Finish() : 0; lost != 0)
            Tell(fmt::format("{} lines of the trace were lost", lost));
    }

    void Tell(const std::string &sentence) { messages_.Write("rsvpsimd: " + sentence); }
    void OpenTrace(const std::string &path) { trace_.emplace(path); }
    void Trace(const std::string &line) { (trace_ ? *trace_ : messages_).Write(process::TimeStamp() + " " + line); }

    void Flush()
    {
        messages_.Flush();
        if (trace_)
            trace_->Flush();
    }

private:
    rsvpsimd::LineLog messages_;
    std::optional<rsvpsimd::LineLog> trace_;
};

int Serve(rsvpsimd::Daemon &daemon, rsvpsimd::Setup setup, const rsvpsimd::Options &options, Logs &logs)
{
    const auto tell = [&logs](const std::string &sentence) { logs.Tell(sentence); };
    const std::string directory = rsvp_host::DirectoryPath(options.hostDirectory);
    const int stop = OpenSignals({SIGTERM, SIGINT});
    const int again = OpenSignals({SIGHUP});
    rsvpsimd::Instance instance(directory);
    rsvpsimd::Server server(instance.Listener(), stop, daemon);
    server.TellTo(tell);
    std::optional<rsvpsimd::CaptureFile> capture;
    if (options.capture) {
        capture.emplace(options.capture->empty() ? rsvp_host::PathOf(directory, rsvp_host::kCaptureFile)
                                                 : *options.capture,
                        rsvpsimd::kVersion, options.captureSecrets);
        server.CaptureTo([&](const rsvpsimd::CapturedFrame &frame) { capture->Write(frame); });
    }
    const auto tellLoss = [&](bool isEnd) {
        if (const std::string loss = capture ? capture->Loss(isEnd) : ""; !loss.empty())
            tell(loss);
    };
    server.EverySecond([&] {
        if (const std::string done = instance.Recover(); !done.empty())
            logs.Tell(done);
        tellLoss(false);
        logs.Flush();
    });
    for (const std::string &missing : rsvpsimd::Confine(directory))
        logs.Tell(missing);
    rsvpsimd::Life life(daemon, options, std::move(setup), std::chrono::steady_clock::now(), tell);
    server.EachTurn([&life](rsvpsimd::Timeline::Time now) { return life.Turn(now); });
    rsvpsimd::Notifier notifier(options.readyFd, getenv("NOTIFY_SOCKET"), tell);
    server.WhenReadable(again, [&, hadTerminal = HasTerminal()] {
        signalfd_siginfo signal;
        if (read(again, &signal, sizeof(signal)) < 0)
            return;
        // A terminal that goes says so by the same signal.
        if (hadTerminal && !HasTerminal()) {
            raise(SIGTERM);
            return;
        }
        notifier.Reloading();
        life.ReadAgain(std::chrono::steady_clock::now());
        notifier.Ready();
    });
    notifier.Ready();
    // The fault is meant to leave everything as a crash would.
    if (server.Run() == rsvpsimd::Server::End::Crashed)
        _exit(kToldToCrash);
    tellLoss(true);
    notifier.Stopping();
    return kDone;
}

} // namespace

int main(int argc, char **argv)
{
    process::OpenStandardStreams();
    process::LeaveNoCore();
    IgnoreSignalsOfWriting();
    Logs logs;
    try {
        int exitStatus = kDone;
        std::optional<rsvpsimd::Options> options = rsvpsimd::ReadOptions(argc, argv, exitStatus);
        if (!options)
            return exitStatus == 0 ? kDone : kUsage;
        if (options->listLayouts) {
            rsvpsimd::ListLayouts();
            return kDone;
        }
        if (!options->decode.empty()) {
            rsvpsimd::PrintCapture(*options);
            return kDone;
        }
        if (options->generate && !options->serve) {
            rsvpsimd::PrintGenerated(*options);
            return kDone;
        }
        if (options->readyFd)
            rsvpsimd::CheckInherited(*options->readyFd);
        rsvpsimd::Daemon daemon;
        rsvpsimd::Setup setup = rsvpsimd::ReadSetup(*options);
        if (setup.behaviour.trace && !options->trace)
            options->trace = "";
        if (setup.behaviour.capture && !options->capture)
            options->capture = "";
        if (options->trace) {
            if (!options->trace->empty())
                logs.OpenTrace(*options->trace);
            daemon.TraceTo([&logs](const std::string &line) { logs.Trace(line); });
        }
        return options->check ? kDone : Serve(daemon, std::move(setup), *options, logs);
    } catch (const rsvpsimd::InstanceError &error) {
        logs.Tell(error.what());
        return kNoInstance;
    } catch (const std::system_error &error) {
        logs.Tell(error.what());
        return kNoInstance;
    } catch (const std::exception &error) {
        logs.Tell(error.what());
        return kUsage;
    }
}
