// How the help of a command looks, for the parser of command lines, and the commands that tell about the program.
#ifndef TOOLS_RSVPCTL_COMMAND_HELP_H
#define TOOLS_RSVPCTL_COMMAND_HELP_H

#include <memory>

namespace CLI {
class FormatterBase;
} // namespace CLI

namespace rsvpctl {

class CommandLine;

/** Each argument once, the options of the words before as well, no aliases, and only options that do something. */
std::shared_ptr<CLI::FormatterBase> HelpFormatter(const CommandLine &line);

} // namespace rsvpctl

#endif
