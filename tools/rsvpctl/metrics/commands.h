// The command of this room, for the one file that knows all commands.
#ifndef TOOLS_RSVPCTL_METRICS_COMMANDS_H
#define TOOLS_RSVPCTL_METRICS_COMMANDS_H

namespace rsvpctl {

class CommandLine;

void AddMetricsCommand(CommandLine &line);

} // namespace rsvpctl

#endif
