// Entry of the tool: from the words of a command line to an exit status. A closed pipe must end a walk, not kill the
// process while a session is open, so SIGPIPE is ignored and shows as a failed write; so does a file that may not
// grow.
#include "process/hardening.h"
#include "process/standard_streams.h"
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/run.h"
#include "tools/rsvpctl/commands.h"
#include "tools/rsvpctl/print/names.h"
#include "tools/rsvpctl/print/pager.h"
#include "tools/rsvpctl/print/time_limit.h"
#include "tools/rsvpctl/print/trace.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <optional>

namespace rsvpctl {
namespace {

Exit RunInTime(Output &out, const CommandLine &line, const Command &command)
{
    std::optional<TimeLimit> limit;
    if (const auto timeout = line.ChosenTimeout(); timeout && !command.limitsItself)
        limit.emplace(*timeout, command.name);
    return Run(out, command);
}

Exit RunProgram(const std::vector<std::string> &words)
{
    CommandLine line;
    AddCommands(line);
    const Command *command = nullptr;
    std::optional<Trace> trace;
    try {
        ChooseDictionary(words);
        command = &line.Parse(words);
        if (const auto file = line.ChosenTrace())
            trace.emplace(*file, line.WantsTraceHex());
    } catch (const UsageError &error) {
        Output out(WantsJson(words) ? Style::Json : Style::Table, Color::Auto);
        return out.Finish(out.WrongUsage(error.command.empty() ? "usage" : error.command, error));
    }
    Output out(line.ChosenStyle(), line.ChosenColor());
    const Pager pager(line.MayUsePager() && command->mayBeLong);
    if (out.IsJson())
        out.EndWholeWhenEarly(command->name);
    const Exit exit = out.Finish(RunInTime(out, line, *command));
    if (!trace || Trace::Problem().empty())
        return exit;
    out.Message("rsvpctl: " + Trace::Problem());
    return exit == Exit::Done ? Exit::NotWritten : exit;
}

} // namespace
} // namespace rsvpctl

int main(int argc, char **argv)
{
    process::OpenStandardStreams();
    process::LeaveNoCore();
    (void)std::signal(SIGPIPE, SIG_IGN);
    (void)std::signal(SIGXFSZ, SIG_IGN);
    try {
        return static_cast<int>(rsvpctl::RunProgram({argv + 1, argv + argc}));
    } catch (const std::exception &error) { // not even the commands could be made: there is no memory
        (void)std::fprintf(stderr, "rsvpctl: %s\n", error.what());
        return static_cast<int>(rsvpctl::Exit::Exchange);
    }
}
