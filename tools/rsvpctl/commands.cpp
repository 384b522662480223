// The one file that knows all commands, in the order of the help.
#include "tools/rsvpctl/commands.h"

#include "tools/rsvpctl/command/command_line.h"
#include "tools/rsvpctl/command/commands.h"
#include "tools/rsvpctl/metrics/commands.h"
#include "tools/rsvpctl/set/commands.h"
#include "tools/rsvpctl/show/commands.h"
#include "tools/rsvpctl/watch/commands.h"

namespace rsvpctl {

void AddCommands(CommandLine &line)
{
    AddServiceCommands(line);
    AddStatusCommand(line, line.Root());
    AddExplainCommand(line);
    AddSettingCommands(line);
    AddDebugCommands(line);
    AddShowCommands(line, line.Root());
    AddTreeCommand(line);
    AddWatchCommands(line);
    AddMetricsCommand(line);
    AddBatchCommand(line);
    AddDictionaryCommand(line);
    AddSchemaCommand(line);
    AddCompletionCommands(line);
    AddHelpCommands(line);
}

} // namespace rsvpctl
