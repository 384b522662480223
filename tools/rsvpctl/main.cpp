// Entry of the tool: from the words of a command line to an exit status. A closed pipe must end a walk, not kill the
// process while a session is open, so SIGPIPE is ignored and shows as a failed write.
#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/commands.h"
#include "tools/rsvpctl/print/pager.h"

#include <csignal>
#include <fmt/format.h>
#include <system_error>

namespace rsvpctl {
namespace {

Exit Run(Output &out, const Command &command)
{
    try {
        return command.run(out);
    } catch (const UsageError &error) {
        return out.WrongUsage(command.name, error);
    } catch (const std::system_error &error) { // a watch that cannot have a process or a pipe
        out.Message(fmt::format("rsvpctl: {}: {}", command.name, error.what()));
        return Exit::Exchange;
    }
}

Exit RunProgram(const std::vector<std::string> &words)
{
    CommandLine line;
    AddCommands(line);
    std::string help;
    const Command *command = nullptr;
    try {
        command = line.Parse(words, help);
    } catch (const UsageError &error) {
        Output out(WantsJson(words) ? Style::Json : Style::Table, Color::Auto);
        return out.Finish(out.WrongUsage(error.command.empty() ? "usage" : error.command, error));
    }
    Output out(line.ChosenStyle(), line.ChosenColor());
    const Pager pager(line.MayUsePager() && (command == nullptr || command->mayBeLong));
    if (command != nullptr && out.IsJson())
        out.EndWholeOnInterrupt(command->name);
    return out.Finish(command == nullptr ? out.Help(help) : Run(out, *command));
}

} // namespace
} // namespace rsvpctl

int main(int argc, char **argv)
{
    (void)std::signal(SIGPIPE, SIG_IGN);
    return static_cast<int>(rsvpctl::RunProgram({argv + 1, argv + argc}));
}
