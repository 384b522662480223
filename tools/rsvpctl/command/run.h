// Running a parsed command, or rehearsing it: a dry run shows what a command would send and sends nothing.
#ifndef TOOLS_RSVPCTL_COMMAND_RUN_H
#define TOOLS_RSVPCTL_COMMAND_RUN_H

#include "tools/rsvpctl/command/command_line.h"

namespace rsvpctl {

/** Gives a command that changes something what it needs for a dry run, its option among it. */
void MakeRehearsable(Command &command, std::function<Rehearsal()> rehearse);

/** Runs the command, or shows what it would send if the user or `rehearse` wants that. What is wrong with its
 * arguments ends as wrong usage. */
Exit Run(Output &out, const Command &command, bool rehearse = false);

} // namespace rsvpctl

#endif
