// The commands of this room, for the one file that knows all commands.
#ifndef TOOLS_RSVPCTL_COMMAND_COMMANDS_H
#define TOOLS_RSVPCTL_COMMAND_COMMANDS_H

namespace rsvpctl {

class CommandLine;

void AddBatchCommand(CommandLine &line);
void AddCompletionCommands(CommandLine &line);
void AddHelpCommands(CommandLine &line);

} // namespace rsvpctl

#endif
