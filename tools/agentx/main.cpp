// Entry of the agent: options, dictionary, then either the check or the service.
#include "manager/dictionary/find.h"
#include "manager/table/tables.h"
#include "process/hardening.h"
#include "process/standard_streams.h"
#include "tools/agentx/agent.h"
#include "tools/agentx/check.h"
#include "tools/agentx/log.h"

#include <csignal>
#include <cstdio>
#include <system_error>
#include <unistd.h>

namespace agentx {
namespace {

constexpr int kWrongUsage = 2;
constexpr int kRefused = 3;

int Run(int argc, char **argv)
{
    int exitStatus = 0;
    std::optional<Options> options = ReadOptions(argc, argv, exitStatus);
    if (!options)
        return exitStatus;
    try {
        const manager::Dictionary dictionary =
            manager::FindDictionary(options->dictionary, manager::AllTableShapes());
        const Jobs jobs = MakeJobs(dictionary);
        if (options->check)
            return Check(jobs);
        // Before there are threads: they would not come along.
        if (!options->foreground) {
            options->syslog = true;
            if (daemon(0, 0) != 0)
                throw std::system_error(errno, std::generic_category(), "the agent cannot go into the background");
        }
        if (options->syslog)
            LogToSyslog();
        Serve(*options, jobs);
        return 0;
    } catch (const manager::DictionaryError &error) {
        Log(Level::Error, error.what());
        return kWrongUsage;
    } catch (const std::exception &error) {
        Log(Level::Error, error.what());
        return kRefused;
    }
}

} // namespace
} // namespace agentx

int main(int argc, char **argv)
{
    process::OpenStandardStreams();
    process::LeaveNoCore();
    (void)std::signal(SIGPIPE, SIG_IGN);
    return agentx::Run(argc, argv);
}
