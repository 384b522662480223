// The commands of this room, for the one file that knows all commands.
#ifndef TOOLS_RSVPCTL_SHOW_COMMANDS_H
#define TOOLS_RSVPCTL_SHOW_COMMANDS_H

#include "tools/rsvpctl/command/options.h"

namespace rsvpctl {

class CommandLine;

/** `show` and all commands below it. */
void AddShowCommands(CommandLine &line, Node parent);

void AddTreeCommand(CommandLine &line);
void AddStatusCommand(CommandLine &line, Node parent);
void AddExplainCommand(CommandLine &line);
void AddDictionaryCommand(CommandLine &line);
void AddSchemaCommand(CommandLine &line);

} // namespace rsvpctl

#endif
