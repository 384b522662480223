// The commands of this room, for the one file that knows all commands.
#ifndef TOOLS_RSVPCTL_SET_COMMANDS_H
#define TOOLS_RSVPCTL_SET_COMMANDS_H

namespace rsvpctl {

class CommandLine;

void AddServiceCommands(CommandLine &line);
void AddSettingCommands(CommandLine &line);
void AddDebugCommands(CommandLine &line);

} // namespace rsvpctl

#endif
