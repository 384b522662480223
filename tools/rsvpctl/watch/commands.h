// The commands of this room, for the one file that knows all commands.
#ifndef TOOLS_RSVPCTL_WATCH_COMMANDS_H
#define TOOLS_RSVPCTL_WATCH_COMMANDS_H

namespace rsvpctl {

class CommandLine;

void AddWatchCommands(CommandLine &line);

} // namespace rsvpctl

#endif
