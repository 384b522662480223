// All commands of the tool.
#ifndef TOOLS_RSVPCTL_COMMANDS_H
#define TOOLS_RSVPCTL_COMMANDS_H

namespace rsvpctl {

class CommandLine;

void AddCommands(CommandLine &line);

} // namespace rsvpctl

#endif
